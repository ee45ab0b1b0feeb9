#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <memory>

class QTextCursor;
class QTextDocument;

namespace oxa {

class RichDocument;

// The document body of a rich-text stream (docs/richtext-format.md): the
// paragraphs, items and tables of a document, with style numbers but without
// the style sheet, which travels in the stream's header.
namespace RichBody {

inline constexpr quint16 Version = 1;

// Writes the whole document. The maps renumber the styles (old number ->
// number in the stream); empty maps keep the numbers.
QByteArray Save(const RichDocument &doc, const QList<int> &textMap = {},
                const QList<int> &paraMap = {});

// A body read and checked completely, ready to be inserted.
struct Content;
using ContentPtr = std::shared_ptr<const Content>;

// Reads a body whose style numbers must lie below the given counts. Throws
// oxa::Exception with a Czech message when the body is damaged or truncated.
ContentPtr Parse(QByteArrayView bytes, int textStyleCount, int paraStyleCount);

// Inserts a parsed body at the cursor. When the cursor stands in an empty
// paragraph, the body's first paragraph takes that paragraph's place; with
// inlineFirst its runs continue the cursor's paragraph, otherwise it starts a
// paragraph of its own. The maps renumber the body's styles into the
// document's (empty: as they are).
void Insert(RichDocument &doc, QTextCursor &cursor, const Content &content,
            const QList<int> &textMap = {}, const QList<int> &paraMap = {},
            bool inlineFirst = true);

// Reads a document of foreign formatting (pasted HTML) onto the style sheet
// of doc: every run and paragraph gets the style, found or added, that has
// its font, size, colours, font styles and alignment.
ContentPtr FromForeign(const QTextDocument &foreign, RichDocument &doc);

} // namespace RichBody
} // namespace oxa
