#include "oxa/toolkit/WinControl.h"

#include <QMetaMethod>
#include <QMetaProperty>

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
    return event->reason() != Qt::ActiveWindowFocusReason &&
        event->reason() != Qt::PopupFocusReason;
}

void NotifyPropertyChanged(QObject *object, const char *property)
{
    const QMetaObject *meta = object->metaObject();
    const int index = meta->indexOfProperty(property);
    if (index < 0)
        return;
    const QMetaMethod signal = meta->property(index).notifySignal();
    if (signal.isValid() && signal.parameterCount() == 0)
        signal.invoke(object, Qt::DirectConnection);
}

} // namespace oxa
