#pragma once

#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include "oxa/toolkit/Catalogue.h"

namespace oxa {

// Offers one widget class of the catalogue to Qt Designer.
class OxaWidgetPlugin : public QObject, public QDesignerCustomWidgetInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    OxaWidgetPlugin(const TComponentEntry &entry, QObject *parent);

    QString name() const override;
    QString group() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QString includeFile() const override;
    QIcon icon() const override;
    bool isContainer() const override;
    QWidget *createWidget(QWidget *parent) override;
    bool isInitialized() const override { return m_initialized; }
    void initialize(QDesignerFormEditorInterface *) override { m_initialized = true; }
    QString domXml() const override;

private:
    TComponentEntry m_entry;
    bool m_initialized = false;
};

// The collection Designer loads: the catalogue's widget classes.
class OxaDesignerPlugin : public QObject, public QDesignerCustomWidgetCollectionInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

public:
    explicit OxaDesignerPlugin(QObject *parent = nullptr);
    QList<QDesignerCustomWidgetInterface *> customWidgets() const override { return m_widgets; }

private:
    QList<QDesignerCustomWidgetInterface *> m_widgets;
};

} // namespace oxa
