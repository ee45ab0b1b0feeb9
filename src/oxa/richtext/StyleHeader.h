#pragma once

#include "oxa/richtext/RVStyle.h"

#include <QList>
#include <QString>

namespace oxa::StyleHeader {

// The header of a rich-text stream: the non-standard text styles and
// paragraph styles, each list closed by the bar. The maps (old number ->
// number in the stream, -1 for a style left out) say which styles are used.
QString Build(const TRVStyle &style, const QList<int> &textMap, const QList<int> &paraMap,
              bool saveFontName);

// Appends the styles of a header to the sheet. Malformed numbers take their
// defaults; an unreadable colour throws EConvertError.
void Parse(const QString &header, bool saveFontName, TRVStyle &style);

} // namespace oxa::StyleHeader
