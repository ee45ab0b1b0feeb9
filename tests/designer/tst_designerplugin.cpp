#include "oxa/controls/EditOxa.h"
#include "oxa/toolkit/Catalogue.h"

#include <QBuffer>
#include <QDir>
#include <QPluginLoader>
#include <QTest>
#include <QUiLoader>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <memory>

#include "support/TestSupport.h"

namespace {

const char kForm[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0">
 <class>Registrace</class>
 <widget class="QWidget" name="Registrace">
  <property name="geometry"><rect><x>0</x><y>0</y><width>320</width><height>120</height></rect></property>
  <widget class="oxa::TEditOxa" name="editPrijmeni">
   <property name="geometry"><rect><x>10</x><y>10</y><width>200</width><height>24</height></rect></property>
   <property name="KorekceTextu"><bool>true</bool></property>
  </widget>
 </widget>
</ui>
)";

QString pluginFile()
{
    const QDir dir(QStringLiteral(OXA_DESIGNER_PLUGIN_DIR));
    const QStringList files = dir.entryList({QStringLiteral("*oxadesigner*")}, QDir::Files);
    return files.isEmpty() ? QString() : dir.filePath(files.first());
}

} // namespace

class TestDesignerPlugin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void offersEveryWidgetClassOnItsPage()
    {
        QPluginLoader loader(pluginFile());
        QVERIFY2(loader.load(), qPrintable(loader.errorString()));
        auto *collection =
            qobject_cast<QDesignerCustomWidgetCollectionInterface *>(loader.instance());
        QVERIFY(collection);

        QMap<QString, QString> groups;
        for (QDesignerCustomWidgetInterface *w : collection->customWidgets()) {
            groups.insert(w->name(), w->group());
            QVERIFY2(w->domXml().contains(w->name()), qPrintable(w->name()));
            QVERIFY(!w->includeFile().isEmpty());
        }
        int widgets = 0;
        for (const oxa::TComponentEntry &entry : oxa::Catalogue::Instance().Components()) {
            if (!entry.IsWidget) {
                QVERIFY(!groups.contains(QStringLiteral("oxa::") + entry.ClassName));
                continue;
            }
            ++widgets;
            QCOMPARE(groups.value(QStringLiteral("oxa::") + entry.ClassName), entry.Page);
        }
        QCOMPARE(groups.size(), widgets);
        QVERIFY(groups.contains(QStringLiteral("oxa::TEditOxa")));
        // The context menu is a non-visual component, as the edits' menu is.
        QVERIFY(!groups.contains(QStringLiteral("oxa::TRVPopupMenu")));
    }

    void loaderBuildsAFormOfOxaWidgets()
    {
        QUiLoader loader;
        loader.clearPluginPaths();
        loader.addPluginPath(QStringLiteral(OXA_DESIGNER_PLUGIN_DIR));
        QVERIFY(loader.availableWidgets().contains(QStringLiteral("oxa::TEditOxa")));

        QByteArray xml(kForm);
        QBuffer buffer(&xml);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        std::unique_ptr<QWidget> form(loader.load(&buffer));
        QVERIFY2(form, qPrintable(loader.errorString()));

        auto *surname = form->findChild<oxa::TEditOxa *>(QStringLiteral("editPrijmeni"));
        QVERIFY(surname);

        // The form's widgets behave as Oxa controls: the correction runs.
        QVERIFY(oxa::test::ShowAndActivate(form.get()));
        surname->setFocus();
        QTest::keyClicks(surname, QStringLiteral("M\"uller"));
        QCOMPARE(surname->text(), QStringLiteral("Müller"));
    }
};

QTEST_MAIN(TestDesignerPlugin)
#include "tst_designerplugin.moc"
