#pragma once

// Internals of DateTimePickerOxa: not part of the installed API.

#include "oxa/controls/DateTimePickerOxa.h"

namespace oxa {

// The state of TDateTimePickerOxa, kept here so that the public class's layout does not
// change with it.
class TDateTimePickerOxaPrivate
{
public:
    Word FLastKey = 0;
    quint8 FSection = 0;
    quint8 FPrevSection = 0;
    bool FDroppedDown = false;
    QString FSavedFormat;
    QString FFormat;
    TDateTime FMinDate = 0;
    TDateTime FTimeOfDay = 0;
    // Dates set by the picker itself are not the control's notification.
    bool m_settingDate = false;
    int m_keyDepth = 0;
    bool m_sectionSyncPending = false;
};

} // namespace oxa
