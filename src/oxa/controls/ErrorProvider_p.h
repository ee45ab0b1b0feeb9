#pragma once

// Internals of ErrorProvider: not part of the installed API.

#include "oxa/controls/ErrorProvider.h"

#include <QList>
#include <QString>
#include <QTimer>

namespace oxa {

// A mark and the name of the control it stands beside.
struct TMarkEntry
{
    QString Name;
    TErrorImage *Image;
};
using TMarkList = QList<TMarkEntry>;

// The state of TErrorProvider, kept here so that the public class's layout does not
// change with it.
class TErrorProviderPrivate
{
public:
    TMarkList fErrorList;
    TMarkList fBlickList; // the same images, not owned here
    bool fUpdating = false;
    bool fVisible = false;
    int fBlickInterval = TErrorProvider::DefaultBlickInterval;
    QTimer *fTimer;
};

} // namespace oxa
