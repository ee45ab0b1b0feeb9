#include "oxa/toolkit/WinControl.h"

#include "oxa/toolkit/Exceptions.h"

namespace oxa {

QString CannotFocusMessage()
{
    return QStringLiteral("Nelze přesunout fokus na zakázané nebo neviditelné okno");
}

bool ControlEnabled(const QWidget *control)
{
    return control && !control->testAttribute(Qt::WA_ForceDisabled);
}

void SetFocusTo(QWidget *control)
{
    if (!control)
        return;
    if (!control->isEnabled() || !control->isVisible())
        throw EInvalidOperation(CannotFocusMessage());
    control->setFocus(Qt::OtherFocusReason);
}

bool IsControlFocusChange(const QFocusEvent *event)
{
    return event->reason() != Qt::ActiveWindowFocusReason
        && event->reason() != Qt::PopupFocusReason;
}

} // namespace oxa
