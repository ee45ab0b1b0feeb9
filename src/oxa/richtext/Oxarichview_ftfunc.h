#pragma once

#include "oxa/oxa_export.h"

#include <QString>

namespace oxa {

class TOxaRichView;

// The tagged-text form of formatted text: <b>, <fs=12>, </c> and the like
// switch one attribute each, "<<" is a literal "<", CR LF a paragraph break.

// The tagged text of the items from (ItemStart, OffsetStart) to (ItemStop,
// OffsetStop); offsets count from 1 before the first character.
OXA_EXPORT QString GetFormatedText(const TOxaRichView *editor, int ItemStart, int OffsetStart,
                                   int ItemStop, int OffsetStop);
// Inserts tagged text at the caret as one undo step.
OXA_EXPORT void SetFormatedText(TOxaRichView *editor, const QString &Text);
// True when the text holds no recognised tag.
OXA_EXPORT bool IsPlainText(const QString &Text);

} // namespace oxa
