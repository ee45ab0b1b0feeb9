#pragma once

class QMimeData;
class QTextCursor;

namespace oxa {

class RichDocument;

// The editor's clipboard. Between our editors a MIME type of our own carries
// the style sheet and the body of the selection, so every style and table
// survives; other programs get HTML and plain text, built only when asked for.
namespace RichClipboard {

// Our own MIME type, offered first.
inline constexpr const char *MimeType = "application/x-oxa-richtext";

QMimeData *MimeOfSelection(const RichDocument &doc, const QTextCursor &cursor, bool saveFontName);
bool CanPaste(const QMimeData *source);
// Pastes at the cursor: our own type, else HTML mapped onto the style sheet,
// else plain text in the current style.
void Paste(RichDocument &doc, QTextCursor &cursor, const QMimeData *source);
// Pastes the plain text only.
void PasteText(RichDocument &doc, QTextCursor &cursor, const QMimeData *source);

} // namespace RichClipboard
} // namespace oxa
