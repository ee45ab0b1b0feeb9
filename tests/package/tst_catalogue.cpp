#include "oxa/package/Package.h"
#include "oxa/toolkit/Catalogue.h"

#include <QMetaProperty>
#include <QTest>
#include <QWidget>

using namespace oxa;

namespace {

struct CatalogueRow
{
    const char *unit;
    const char *className;
    const char *page;
};

// The library's catalogue: which unit offers which class on which page.
const CatalogueRow kCatalogue[] = {
    {"MaskEditOxa", "TMaskEditOxa", "Oxa"},
    {"DateTimePickerOxa", "TDateTimePickerOxa", "Oxa"},
    {"OxaPopupMenu", "TOxaPopUpMenu", "Oxa"},
    {"EditOxa", "TEditOxa", "Oxa"},
    {"DBGridOxa", "TDBGridOxa", "Oxa"},
    {"ComboBoxOxa", "TComboBoxOxa", "Oxa"},
    {"StringGridOxa", "TStringGridOxa", "Oxa"},
    {"ExecApp", "TExecApplication", "Oxa"},
    {"CheckDBGrid", "TOxaBaseDBGrid", "Oxa"},
    {"CheckDBGrid", "TEnhancedDBGrid", "Oxa"},
    {"CheckDBGrid", "TCheckDBGrid", "Oxa"},
    {"CheckDBGrid", "TEnhancedCheckDBGrid", "Oxa"},
    {"DBEditOxa", "TDBEditOxa", "Oxa"},
    {"StringGridCheck", "TStringGridCheck", "Oxa"},
    {"MyGridControl", "TMyDBcomboBox", "Oxa"},
    {"DBLookupComboBoxOxa", "TDBLookupComboBoxOxa", "Oxa"},
    {"DBComboBoxOxa", "TDBComboBoxOxa", "Oxa"},
    {"CheckDBGridOxa", "TCheckDBGridOxa", "Oxa"},
    {"DBCheckBoxOxa", "TDBCheckBoxOxa", "Oxa"},
    {"CheckTreeView", "TCheckTreeView", "Oxa"},
    {"CheckTreeViewOxa", "TCheckTreeViewOxa", "Oxa"},
    {"CheckSwitch", "TCheckSwitch", "Oxa"},
    {"DBLookupComboBoxEditOxa", "TDBLookupComboBoxEditOxa", "Oxa"},
    {"MemoOxa", "TMemoOxa", "Oxa"},
    {"LabeledEditOxa", "TLabeledEditOxa", "Oxa"},
    {"DateEditOxa", "TDateEditOxa", "Oxa Edits"},
    {"EnhancedMonthCalendar", "TEnhancedMonthCalendar", "Oxa Diar"},
    {"DayListView", "TDayListView", "Oxa Diar"},
    {"DayListView", "TDayGroupBox", "Oxa Diar"},
    {"DayListView", "TDiarPanel", "Oxa Diar"},
    {"XLSfile", "TXLSfile", "Oxa"},
    {"ButtonOxa", "TButtonOxa", "Oxa"},
    {"MultiDBGrid", "TMultiDBGrid", "Oxa"},
    {"DBIBCheckBox", "TDBIBCheckBox", "Standard"},
    {"OxaBitBtn", "TOxaBitBtn", "Oxa"},
    {"OxaEditCis", "TOxaEditCis", "Oxa"},
    {"RVPopupMenu", "TRVPopupMenu", "Oxa"},
    {"OxaRichView", "TOxaRichView", "Oxa"},
    {"TiskRichView", "TTiskRichView", "Oxa"},
    {"RVToolBar", "TRVToolBar", "Oxa"},
    {"NumEditOxa", "TNumEditOxa", "Oxa"},
    {"ProgressBarOxa", "TProgressBarOxa", "Oxa"},
    {"EditOxaSearch", "TEditOxaSearch", "Samples"},
    {"ErrorProvider", "TErrorProvider", "Oxa"},
    {"BackgroundWorker", "TBackgroundWorker", "Oxa"},
};

// The classes built so far; each must be registered as the catalogue says.
const char *const kBuilt[] = {
    "TMaskEditOxa",
    "TDateTimePickerOxa",
    "TOxaPopUpMenu",
    "TEditOxa",
    "TComboBoxOxa",
    "TStringGridOxa",
    "TMemoOxa",
    "TLabeledEditOxa",
    "TButtonOxa",
    "TErrorProvider",
    "TEnhancedMonthCalendar",
    "TDayListView",
    "TDayGroupBox",
    "TXLSfile",
    "TExecApplication",
    "TBackgroundWorker",
    "TNumEditOxa",
    "TOxaEditCis",
    "TDiarPanel",
    "TOxaRichView",
    "TStringGridCheck",
    "TCheckTreeView",
    "TCheckTreeViewOxa",
    "TRVToolBar",
    "TRVPopupMenu",
};

// The record grids and the data-aware members, built so far.
const char *const kBuiltGrids[] = {"TDBGridOxa",    "TOxaBaseDBGrid",       "TEnhancedDBGrid",
                                   "TCheckDBGrid",  "TEnhancedCheckDBGrid", "TCheckDBGridOxa",
                                   "TDBEditOxa",    "TDBLookupComboBoxOxa", "TDBComboBoxOxa",
                                   "TDBCheckBoxOxa"};

const CatalogueRow *rowOf(const QString &className)
{
    for (const CatalogueRow &row : kCatalogue) {
        if (className == QLatin1String(row.className))
            return &row;
    }
    return nullptr;
}

} // namespace

class TestCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { RegisterAll(); }
    void everyRegisteredClassStandsInTheCatalogue();
    void everyBuiltClassIsRegistered();
    void hostCreatesClassesByName();
    void publishedPropertiesAreReadable();
    void registeringTwiceKeepsOneEntry();
    void classesWorkWithoutRegistration();
};

void TestCatalogue::everyRegisteredClassStandsInTheCatalogue()
{
    for (const TComponentEntry &entry : Catalogue::Instance().Components()) {
        const CatalogueRow *row = rowOf(entry.ClassName);
        QVERIFY2(row, qPrintable(entry.ClassName));
        QCOMPARE(entry.Page, QString::fromLatin1(row->page));
        QCOMPARE(entry.Unit, QString::fromLatin1(row->unit));
    }
}

void TestCatalogue::everyBuiltClassIsRegistered()
{
    for (const char *className : kBuilt)
        QVERIFY2(Catalogue::Instance().Find(QLatin1String(className)), className);
    for (const char *className : kBuiltGrids)
        QVERIFY2(Catalogue::Instance().Find(QLatin1String(className)), className);
}

void TestCatalogue::hostCreatesClassesByName()
{
    QWidget form;
    for (const TComponentEntry &entry : Catalogue::Instance().Components()) {
        QObject *object = Catalogue::Instance().Create(entry.ClassName, &form);
        QVERIFY2(object, qPrintable(entry.ClassName));
        QCOMPARE(object->parent(), &form);
        // Form widgets are widgets; a non-visual class may still be one (a menu).
        if (entry.IsWidget)
            QVERIFY(qobject_cast<QWidget *>(object));
        // The object is an instance of the class it was asked for.
        QVERIFY2(QString::fromLatin1(object->metaObject()->className()).endsWith(entry.ClassName),
                 object->metaObject()->className());
    }
    QVERIFY(!Catalogue::Instance().Create(QStringLiteral("TNoSuchClass"), &form));
}

// Every published property of the library's classes can be read by name, as
// the form designer and a .ui loader read them.
void TestCatalogue::publishedPropertiesAreReadable()
{
    QWidget form;
    for (const TComponentEntry &entry : Catalogue::Instance().Components()) {
        QObject *object = Catalogue::Instance().Create(entry.ClassName, &form);
        for (const QMetaObject *mo = object->metaObject();
             mo && QByteArray(mo->className()).startsWith("oxa::"); mo = mo->superClass()) {
            for (int i = mo->propertyOffset(); i < mo->propertyCount(); ++i) {
                const QMetaProperty property = mo->property(i);
                const QByteArray where = entry.ClassName.toLatin1() + '.' + property.name();
                QVERIFY2(property.metaType().isValid(), where.constData());
                if (property.isReadable())
                    QVERIFY2(object->property(property.name()).isValid(), where.constData());
            }
        }
    }
}

void TestCatalogue::registeringTwiceKeepsOneEntry()
{
    const qsizetype before = Catalogue::Instance().Components().size();
    RegisterAll();
    QCOMPARE(Catalogue::Instance().Components().size(), before);
}

void TestCatalogue::classesWorkWithoutRegistration()
{
    Catalogue::Instance().Clear();
    QVERIFY(Catalogue::Instance().Components().isEmpty());
    QVERIFY(!Catalogue::Instance().Create(QStringLiteral("TEditOxa")));
    RegisterAll();
    QVERIFY(Catalogue::Instance().Find(QStringLiteral("TEditOxa")));
}

QTEST_MAIN(TestCatalogue)
#include "tst_catalogue.moc"
