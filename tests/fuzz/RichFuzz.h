// The checks of the rich-text fuzz targets, shared with the seeded runs of
// the test suite. Each takes arbitrary bytes; ending normally or with
// oxa::Exception is fine, anything else is a fault (abort).

#pragma once

#include "oxa/richtext/OxaRichView.h"
#include "oxa/richtext/Oxarichview_ftfunc.h"
#include "oxa/toolkit/Exceptions.h"

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <cstdlib>

namespace oxa::fuzz {

// A stream loads or fails with our message and leaves the document as it
// was; what loads saves and loads again to the same bytes.
inline void RichStream(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    TOxaRichView editor;
    editor.InsertText(QStringLiteral("původní"));
    try {
        editor.LoadOxaRVFFromString(bytes);
    } catch (const Exception &) {
        if (editor.GetText(0, editor.ItemCount() - 1) != QStringLiteral("původní"))
            std::abort();
        return;
    }
    const QByteArray saved = editor.SaveOxaRVFToString();
    TOxaRichView again;
    again.LoadOxaRVFFromString(saved);
    if (again.SaveOxaRVFToString() != saved)
        std::abort();
}

// Tagged text never throws; text without a recognised tag changes no
// formatting and inserts no more characters than it was given; a link piece
// gains its one space, so no text inserts more than twice its length.
inline void TaggedText(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const bool plain = IsPlainText(text);
    TOxaRichView editor;
    SetFormatedText(&editor, text);
    const int last = editor.ItemCount() - 1;
    GetFormatedText(&editor, 0, 1, last, int(editor.GetItemText(last).size()) + 1);
    const qsizetype inserted = editor.toPlainText().size();
    if (inserted > 2 * text.size() || (plain && inserted > text.size()))
        std::abort();
    for (int i = 0; plain && i <= last; ++i)
        if (editor.GetItemStyle(i) != 0 || editor.GetItemPara(i) != 0)
            std::abort();
}

} // namespace oxa::fuzz
