#include "oxa/package/Package.h"
#include "oxa/toolkit/Catalogue.h"

#include <QMetaProperty>
#include <QTest>
#include <QWidget>

using namespace oxa;

namespace {

// The classes registered so far: every one must be offered to a host.
constexpr qsizetype kRegistered = 35;

} // namespace

class TestCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { RegisterAll(); }
    // The odd ones of the catalogue: units named otherwise than their class,
    // several classes in one unit, pages other than "Oxa".
    void classesStandInTheirUnitAndPage_data()
    {
        QTest::addColumn<QString>("className");
        QTest::addColumn<QString>("unit");
        QTest::addColumn<QString>("page");
        QTest::newRow("menu spelt PopUp") << "TOxaPopUpMenu"
                                          << "OxaPopupMenu"
                                          << "Oxa";
        QTest::newRow("grid family") << "TEnhancedCheckDBGrid"
                                     << "CheckDBGrid"
                                     << "Oxa";
        QTest::newRow("diary page") << "TDiarPanel"
                                    << "DayListView"
                                    << "Oxa Diar";
    }

    void classesStandInTheirUnitAndPage()
    {
        QFETCH(QString, className);
        QCOMPARE(Catalogue::Instance().Components().size(), kRegistered);
        const TComponentEntry *entry = Catalogue::Instance().Find(className);
        QVERIFY(entry);
        QTEST(entry->Unit, "unit");
        QTEST(entry->Page, "page");
    }

    // Every class is created by name with its owner, as the class asked for, and
    // every published property can be read by name, as a .ui loader reads it.
    void hostCreatesClassesByName()
    {
        QWidget form;
        for (const TComponentEntry &entry : Catalogue::Instance().Components()) {
            QObject *object = Catalogue::Instance().Create(entry.ClassName, &form);
            QVERIFY2(object, qPrintable(entry.ClassName));
            QCOMPARE(object->parent(), &form);
            if (entry.IsWidget) // a non-visual class may still be a widget (a menu)
                QVERIFY(qobject_cast<QWidget *>(object));
            QVERIFY2(
                QString::fromLatin1(object->metaObject()->className()).endsWith(entry.ClassName),
                object->metaObject()->className());
            for (const QMetaObject *mo = object->metaObject();
                 mo && QByteArray(mo->className()).startsWith("oxa::"); mo = mo->superClass()) {
                for (int i = mo->propertyOffset(); i < mo->propertyCount(); ++i) {
                    const QMetaProperty property = mo->property(i);
                    const QByteArray where = entry.ClassName.toLatin1() + '.' + property.name();
                    QVERIFY2(object->property(property.name()).isValid(), where.constData());
                }
            }
        }
        QVERIFY(!Catalogue::Instance().Create(QStringLiteral("TNoSuchClass"), &form));
    }

    void registrationIsIdempotentAndOptional()
    {
        RegisterAll();
        QCOMPARE(Catalogue::Instance().Components().size(), kRegistered);
        Catalogue::Instance().Clear();
        QVERIFY(!Catalogue::Instance().Create(QStringLiteral("TEditOxa")));
        RegisterAll();
        QVERIFY(Catalogue::Instance().Find(QStringLiteral("TEditOxa")));
    }
};

QTEST_MAIN(TestCatalogue)
#include "tst_catalogue.moc"
