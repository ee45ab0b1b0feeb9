#include "OxaDesignerPlugin.h"

#include "oxa/package/Package.h"

#include <QIcon>
#include <QWidget>

namespace oxa {

OxaWidgetPlugin::OxaWidgetPlugin(const TComponentEntry &entry, QObject *parent)
    : QObject(parent), m_entry(entry)
{ }

// Forms name the class with its namespace, so that code generated from them
// compiles as it stands.
QString OxaWidgetPlugin::name() const
{
    return QStringLiteral("oxa::") + m_entry.ClassName;
}

QString OxaWidgetPlugin::group() const
{
    return m_entry.Page;
}

QString OxaWidgetPlugin::toolTip() const
{
    return m_entry.ClassName;
}

QString OxaWidgetPlugin::whatsThis() const
{
    return m_entry.ClassName + QStringLiteral(" (") + m_entry.Unit + QLatin1Char(')');
}

QString OxaWidgetPlugin::includeFile() const
{
    return m_entry.IncludeFile;
}

QIcon OxaWidgetPlugin::icon() const
{
    return QIcon();
}

bool OxaWidgetPlugin::isContainer() const
{
    return false;
}

QWidget *OxaWidgetPlugin::createWidget(QWidget *parent)
{
    QObject *object = m_entry.Factory ? m_entry.Factory(parent) : nullptr;
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget)
        delete object;
    return widget;
}

QString OxaWidgetPlugin::domXml() const
{
    QString objectName = m_entry.ClassName.mid(1);
    objectName[0] = objectName[0].toLower();
    return QStringLiteral("<ui language=\"c++\"><widget class=\"%1\" name=\"%2\"/></ui>")
        .arg(name(), objectName);
}

OxaDesignerPlugin::OxaDesignerPlugin(QObject *parent) : QObject(parent)
{
    RegisterAll();
    for (const TComponentEntry &entry : Catalogue::Instance().Components()) {
        if (entry.IsWidget)
            m_widgets.append(new OxaWidgetPlugin(entry, this));
    }
}

} // namespace oxa
