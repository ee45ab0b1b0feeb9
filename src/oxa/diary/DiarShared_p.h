#pragma once

// Internals of the diary model shared by the diary's units: not part of the
// installed API.

#include "oxa/diary/DiarShared.h"

namespace oxa {

// A time of day with its seconds and milliseconds dropped.
TTime TruncToMinutes(TTime aCas);

// Whether an entry lies in the span aCasOd to aCasDo: its start and end, cut
// to whole minutes, are a and b. Entries with a negative time never do. An
// entry with b > a meets the span when a < aCasDo and aCasOd < b, so one that
// only touches an edge of the span does not; an entry with b = a meets the
// span that contains it (aCasOd <= a < aCasDo). The store, the grids and the
// panel all use this rule.
bool EntryMeetsSpan(const TDayRecord &aZaznam, TTime aCasOd, TTime aCasDo);
// The same rule for a start a and an end b already cut to whole minutes.
inline bool MinutesMeetSpan(TTime a, TTime b, TTime aCasOd, TTime aCasDo)
{
    if (a < 0 || b < 0)
        return false;
    if (b > a)
        return a < aCasDo && aCasOd < b;
    return b == a && aCasOd <= a && a < aCasDo;
}

} // namespace oxa
