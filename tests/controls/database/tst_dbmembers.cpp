// The data-aware members of the data-entry family over a real database: what
// they show, what the user's change does to the record and the database,
// their colours and their focus neighbours.

#include "oxa/controls/DBCheckBoxOxa.h"
#include "oxa/controls/DBComboBoxOxa.h"
#include "oxa/controls/DBEditOxa.h"
#include "oxa/controls/DBLookupComboBoxOxa.h"
#include "oxa/toolkit/SqlDataSet.h"
#include "support/TestDatabase.h"
#include "support/TestSupport.h"

#include <QSqlQuery>
#include <QtTest>

using namespace oxa;
using oxa::test::kMain;
using oxa::test::kOther;
using oxa::test::scalar;

namespace {

void exec(const QString &sql)
{
    test::exec(QSqlDatabase::database(test::kMain), sql);
}

} // namespace

class TestDBMembers : public QObject
{
    Q_OBJECT

    QString m_skip;
    std::unique_ptr<TSqlDataSet> m_shots;
    std::unique_ptr<TSqlDataSet> m_doctors;
    std::unique_ptr<TDataSource> m_source;
    std::unique_ptr<TDataSource> m_doctorSource;
    std::unique_ptr<test::TestForm> m_form;

    bool prepare()
    {
        QFETCH_GLOBAL(QString, database);
        const QString why = test::OpenTestDatabase(database, kMain);
        if (!why.isEmpty()) {
            m_skip = why;
            return false;
        }
        exec(QStringLiteral("CREATE TABLE doctor (id INTEGER PRIMARY KEY, name VARCHAR(40))"));
        exec(QStringLiteral("INSERT INTO doctor VALUES (1, 'MUDr. Novák'), (2, 'MUDr. Dvořák')"));
        exec(QStringLiteral("CREATE TABLE shot (id INTEGER PRIMARY KEY, vaccine VARCHAR(40), "
                            "doctor INTEGER, given BOOLEAN, booster INTEGER)"));
        exec(QStringLiteral("INSERT INTO shot VALUES (1, 'tetanus', 1, FALSE, 0)"));
        test::CloneTestDatabase(kMain, kOther);
        auto open = [](const QString &table) {
            auto set = std::make_unique<TSqlDataSet>();
            set->SetConnectionName(kMain);
            set->SetTableName(table);
            set->Open();
            return set;
        };
        m_shots = open(QStringLiteral("shot"));
        m_doctors = open(QStringLiteral("doctor"));
        m_source = std::make_unique<TDataSource>();
        m_source->SetDataSet(m_shots.get());
        m_doctorSource = std::make_unique<TDataSource>();
        m_doctorSource->SetDataSet(m_doctors.get());
        m_form = std::make_unique<test::TestForm>();
        return true;
    }
    TField *field(const char *name) const { return m_shots->FieldByName(QLatin1String(name)); }

#define PREPARE() OXA_REQUIRE_DATABASE(prepare(), m_skip)

private Q_SLOTS:
    void cleanup()
    {
        m_form.reset();
        m_source.reset();
        m_doctorSource.reset();
        m_shots.reset();
        m_doctors.reset();
        test::CloseTestConnections();
    }
    void initTestCase_data()
    {
        test::AddDatabaseRows();
    }

    void editWritesTheField()
    {
        PREPARE();
        auto *edit = m_form->Add<TDBEditOxa>();
        auto *other = m_form->Add<TDBEditOxa>();
        edit->SetDataSource(m_source.get());
        edit->SetDataField(QStringLiteral("vaccine"));
        edit->SetFocDown(other);
        QVERIFY(m_form->Show(edit));
        QCOMPARE(edit->text(), QStringLiteral("tetanus"));
        edit->selectAll();
        QTest::keyClicks(edit, QStringLiteral("hepatitida"));
        QCOMPARE(m_shots->State(), dsEdit);
        QTest::keyClick(edit, Qt::Key_Escape); // back to the stored text
        QCOMPARE(edit->text(), QStringLiteral("tetanus"));
        edit->selectAll();
        QTest::keyClicks(edit, QStringLiteral("hepatitida"));
        QTest::keyClick(edit, Qt::Key_Down, Qt::ControlModifier);
        QVERIFY(other->hasFocus());
        QCOMPARE(field("vaccine")->AsString(), QStringLiteral("hepatitida"));
        m_shots->Post();
        QCOMPARE(scalar("SELECT vaccine FROM shot").toString(), QStringLiteral("hepatitida"));
    }

    void checkBoxWritesBooleanAndValues()
    {
        PREPARE();
        auto *given = m_form->Add<TDBCheckBoxOxa>();
        given->SetDataSource(m_source.get());
        given->SetDataField(QStringLiteral("given"));
        auto *booster = m_form->Add<TDBCheckBoxOxa>();
        booster->SetValueChecked(QStringLiteral("1"));
        booster->SetValueUnchecked(QStringLiteral("0"));
        booster->SetDataSource(m_source.get());
        booster->SetDataField(QStringLiteral("booster"));
        QVERIFY(m_form->Show(given));
        QVERIFY(!given->isChecked());
        QTest::keyClick(given, Qt::Key_Space);
        QCOMPARE(field("given")->AsVariant(), QVariant(true));
        QTest::mouseClick(booster, Qt::LeftButton, {}, QPoint(8, booster->height() / 2));
        QCOMPARE(field("booster")->AsInteger(), 1);
        m_shots->Post();
        QCOMPARE(scalar("SELECT booster FROM shot").toInt(), 1);
        QCOMPARE(scalar("SELECT given FROM shot").toBool(), true);
        m_shots->Edit();
        field("given")->SetAsBoolean(false);
        QVERIFY(!given->isChecked());
        m_shots->Cancel();
    }

    void lookupPicksTheKey()
    {
        PREPARE();
        auto *doctor = m_form->Add<TDBLookupComboBoxOxa>();
        doctor->SetListSource(m_doctorSource.get());
        doctor->SetKeyField(QStringLiteral("id"));
        doctor->SetListField(QStringLiteral("name"));
        doctor->SetDataSource(m_source.get());
        doctor->SetDataField(QStringLiteral("doctor"));
        auto *vaccine = m_form->Add<TDBComboBoxOxa>();
        vaccine->addItems({QStringLiteral("tetanus"), QStringLiteral("chřipka")});
        vaccine->SetDataSource(m_source.get());
        vaccine->SetDataField(QStringLiteral("vaccine"));
        QVERIFY(m_form->Show(doctor));
        QCOMPARE(doctor->count(), 2);
        QCOMPARE(doctor->currentText(), QStringLiteral("MUDr. Novák"));
        QTest::keyClick(doctor, Qt::Key_Down);
        QCOMPARE(field("doctor")->AsInteger(), 2);
        vaccine->setFocus();
        QTest::keyClick(vaccine, Qt::Key_Down);
        QCOMPARE(field("vaccine")->AsString(), QStringLiteral("chřipka"));
        m_shots->Post();
        QCOMPARE(scalar("SELECT doctor FROM shot").toInt(), 2);
        QCOMPARE(scalar("SELECT vaccine FROM shot").toString(), QStringLiteral("chřipka"));
    }
};

QTEST_MAIN(TestDBMembers)
#include "tst_dbmembers.moc"
