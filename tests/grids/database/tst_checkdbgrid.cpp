// The check-box record grids over a real database, driven by keys and
// clicks: the record-advance probe, the wheel, check boxes, value cycling
// with its arming step, the column-order list and the confirmations.

#include "oxa/grids/CheckDBGrid.h"
#include "oxa/toolkit/SqlDataSet.h"
#include "support/TestDatabase.h"
#include "support/TestSupport.h"

#include <QtTest>

using namespace oxa;
using namespace oxa::test;

class TestCheckDBGrid : public QObject
{
    Q_OBJECT

    QString m_skip;
    std::unique_ptr<TSqlDataSet> m_set;
    std::unique_ptr<TDataSource> m_source;
    std::unique_ptr<test::TestForm> m_form;

    // vaccine: id, name, given (Boolean), state 0..2, dose (integer used as a check box).
    bool prepare()
    {
        QFETCH_GLOBAL(QString, database);
        const QString why = test::OpenTestDatabase(database, kMain);
        if (!why.isEmpty()) {
            m_skip = why;
            return false;
        }
        const QSqlDatabase db = QSqlDatabase::database(kMain);
        exec(db,
             QStringLiteral("CREATE TABLE vaccine (id INTEGER PRIMARY KEY, name VARCHAR(40) "
                            "NOT NULL, given BOOLEAN, state INTEGER, dose INTEGER)"));
        InsertNumbered(db, QStringLiteral("vaccine"), 3,
                       QStringLiteral("'v' || id, id = 2, id % 3, id % 2"));
        test::CloneTestDatabase(kMain, kOther);
        m_set = std::make_unique<TSqlDataSet>();
        m_set->SetConnectionName(kMain);
        m_set->SetTableName(QStringLiteral("vaccine"));
        m_set->Open();
        m_source = std::make_unique<TDataSource>();
        m_source->SetDataSet(m_set.get());
        m_form = std::make_unique<test::TestForm>();
        m_form->resize(520, 300);
        return true;
    }
    // A shown enhanced check grid with the columns name, given (check box)
    // and state (enumeration of three).
    TEnhancedCheckDBGrid *enhancedGrid()
    {
        auto *grid = m_form->Add<TEnhancedCheckDBGrid>(200);
        grid->resize(480, 200);
        grid->SetDataSource(m_source.get());
        grid->Columns()->Add()->SetFieldName(QStringLiteral("name"));
        auto *given = qobject_cast<TEnhancedCheckValueColumn *>(grid->Columns()->Add());
        given->SetFieldName(QStringLiteral("given"));
        given->SetChecking(true);
        auto *state = qobject_cast<TEnhancedCheckValueColumn *>(grid->Columns()->Add());
        state->SetFieldName(QStringLiteral("state"));
        state->SetStringValues(
            {QStringLiteral("plánováno"), QStringLiteral("podáno"), QStringLiteral("odloženo")});
        state->SetCheckLevel(3);
        m_form->Show(grid);
        return grid;
    }
    TField *field(const char *name) const { return m_set->FieldByName(QLatin1String(name)); }
    int id() const { return int(field("id")->AsInteger()); }
    int state() const { return int(field("state")->AsInteger()); }

#define PREPARE() OXA_REQUIRE_DATABASE(prepare(), m_skip)

private Q_SLOTS:
    void cleanup()
    {
        m_form.reset();
        m_source.reset();
        m_set.reset();
        test::CloseTestConnections();
    }
    void initTestCase_data()
    {
        test::AddDatabaseRows();
    }

    void probe_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("shift");
        QTest::addColumn<bool>("allowAppend");
        QTest::addColumn<int>("startRecord");
        QTest::addColumn<int>("column");
        QTest::addColumn<int>("keyAfter");
        QTest::addColumn<bool>("result");
        const int tab = VK_TAB, down = VK_DOWN;
        QTest::newRow("Tab, a tab stop to the right")
            << tab << false << false << 3 << 1 << tab << false;
        QTest::newRow("Tab from the last stop, last record")
            << tab << false << false << 3 << 5 << 0 << false;
        QTest::newRow("Down on the last record") << down << false << false << 3 << 1 << 0 << false;
        QTest::newRow("Down in the middle") << down << false << false << 2 << 1 << down << false;
        QTest::newRow("Shift+Tab") << tab << true << false << 3 << 5 << tab << false;
        QTest::newRow("Down at the end, AllowAppend")
            << down << false << true << 3 << 1 << down << true;
        QTest::newRow("Tab at the end, AllowAppend: only Down appends")
            << tab << false << true << 3 << 5 << tab << false;
    }
    void probe()
    {
        QFETCH(int, key);
        QFETCH(bool, shift);
        QFETCH(bool, allowAppend);
        QFETCH(int, startRecord);
        QFETCH(int, column);
        QFETCH(bool, result);
        PREPARE();
        auto *grid = m_form->Add<TCheckDBGrid>(150);
        grid->SetDataSource(m_source.get());
        grid->SetAllowAppend(allowAppend);
        if (startRecord == 3)
            m_set->Last();
        else
            m_set->MoveBy(startRecord - 1);
        grid->SetCol(column);
        // A pending change of the record, which a swallowed key cancels.
        m_set->Edit();
        field("state")->SetAsInteger(2 - startRecord % 3);
        int scrolls = 0;
        m_set->BeforeScroll = [&](TDataSet *) { ++scrolls; };
        m_set->AfterScroll = [&](TDataSet *) { ++scrolls; };
        Word k = Word(key);
        QCOMPARE(grid->OverNasledujiciZaznam(k, shift ? TShiftState(ssShift) : TShiftState()),
                 result);
        QTEST(int(k), "keyAfter");
        QCOMPARE(scrolls, 0);
        QCOMPARE(id(), startRecord);
        const bool touched =
            !allowAppend && !shift && (key == VK_DOWN || (key == VK_TAB && column == 5));
        // Moving off the record (and back) posted the pending change first,
        // as every move does; a key that never reached the data set left it.
        QCOMPARE(m_set->State(), touched ? dsBrowse : dsEdit);
        const int stored =
            scalar(QStringLiteral("SELECT state FROM vaccine WHERE id = %1").arg(startRecord))
                .toInt();
        QCOMPARE(stored, touched ? 2 - startRecord % 3 : startRecord % 3);
    }

    void probeRestoresHandlersOnFailure()
    {
        PREPARE();
        auto *grid = m_form->Add<TCheckDBGrid>(150);
        grid->SetDataSource(m_source.get());
        m_set->Edit();
        field("name")->Clear(); // NOT NULL: posting fails
        int scrolls = 0;
        m_set->BeforeScroll = [&](TDataSet *) { ++scrolls; };
        m_set->AfterScroll = [&](TDataSet *) { ++scrolls; };
        Word key = VK_DOWN;
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, grid->OverNasledujiciZaznam(key, {}));
        QVERIFY(m_set->BeforeScroll && m_set->AfterScroll);
        QCOMPARE(m_set->State(), dsEdit);
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, m_set->Next());
        QCOMPARE(scrolls, 0); // Next failed again, before moving
        m_set->Cancel();
        m_set->Next();
        QCOMPARE(scrolls, 2);
    }

    void wheelActsAsArrowKeys_data()
    {
        QTest::addColumn<int>("delta");
        QTest::addColumn<int>("record");
        QTest::newRow("up") << 120 << 1;
        QTest::newRow("no turn counts as down") << 0 << 3;
    }
    void wheelActsAsArrowKeys()
    {
        QFETCH(int, delta);
        PREPARE();
        auto *grid = m_form->Add<TCheckDBGrid>(150);
        grid->SetDataSource(m_source.get());
        QVERIFY(m_form->Show(grid));
        m_set->Next();
        QWheelEvent wheel(QPointF(30, 30), grid->mapToGlobal(QPointF(30, 30)), QPoint(),
                          QPoint(0, delta), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(grid->viewport(), &wheel);
        QTEST(id(), "record");
    }

    void checkBoxesToggle()
    {
        PREPARE();
        auto *grid = m_form->Add<TCheckDBGrid>(150);
        grid->resize(400, 150);
        grid->SetDataSource(m_source.get());
        grid->Columns()->Add()->SetFieldName(QStringLiteral("name"));
        for (const char *name : {"given", "dose"}) {
            auto *column = qobject_cast<TCheckColumn *>(grid->Columns()->Add());
            column->SetFieldName(QLatin1String(name));
            column->SetCheck(true);
        }
        QVERIFY(m_form->Show(grid));
        grid->SetSelectedIndex(0);
        QTest::keyClick(grid, Qt::Key_Right); // onto a check box: the editor is locked
        QTest::keyClick(grid, Qt::Key_Space);
        QCOMPARE(field("given")->AsVariant(), QVariant(true));
        QVERIFY(!grid->EditorMode());
        QTest::keyClick(grid, Qt::Key_Right);
        QTest::keyClick(grid, Qt::Key_Space); // 1 becomes 0, no arming step
        QCOMPARE(field("dose")->AsInteger(), 0);
        QTest::keyClick(grid, Qt::Key_Down);
        QCOMPARE(scalar("SELECT given FROM vaccine WHERE id = 1").toBool(), true);
        QCOMPARE(scalar("SELECT dose FROM vaccine WHERE id = 1").toInt(), 0);

        // A click on a check-box cell toggles it at once.
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->CellRect(2, 2).center());
        QCOMPARE(id(), 2);
        QCOMPARE(field("given")->AsBoolean(), false);
        QVERIFY(!grid->EditorMode());
        // A read-only column is never changed.
        grid->Columns()->Items(1)->SetReadOnly(true);
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->CellRect(2, 2).center());
        QCOMPARE(field("given")->AsBoolean(), false);
    }

    void enumerationStepsOnTheSecondRequest()
    {
        PREPARE();
        TEnhancedCheckDBGrid *grid = enhancedGrid();
        grid->SetSelectedIndex(2);
        QCOMPARE(state(), 1);
        QTest::keyClick(grid, Qt::Key_Space); // arms the row
        QCOMPARE(state(), 1);
        QTest::keyClick(grid, Qt::Key_Space);
        QCOMPARE(state(), 2);
        QTest::keyClick(grid, Qt::Key_Plus, Qt::KeypadModifier); // 2 forward wraps to 0
        QCOMPARE(state(), 0);
        QTest::keyClick(grid, Qt::Key_Minus, Qt::KeypadModifier); // 0 backward is 2
        QCOMPARE(state(), 2);
        QTest::keyClick(grid, Qt::Key_Minus, Qt::KeypadModifier | Qt::ShiftModifier);
        QCOMPARE(state(), 0); // Shift+minus counts as forward
        QTest::keyClick(grid, Qt::Key_Down);
        QCOMPARE(scalar("SELECT state FROM vaccine WHERE id = 1").toInt(), 0);

        // Moving sideways disarms the row.
        QTest::keyClick(grid, Qt::Key_Left);
        QTest::keyClick(grid, Qt::Key_Right);
        QCOMPARE(grid->OnFirstClickRow(), -10);
        const int before = state();
        QTest::keyClick(grid, Qt::Key_Space);
        QCOMPARE(state(), before);
    }

    void booleanInAnEnumerationIsInverted()
    {
        PREPARE();
        TEnhancedCheckDBGrid *grid = enhancedGrid();
        auto *column = qobject_cast<TEnhancedCheckValueColumn *>(grid->Columns()->Items(1));
        test::MessageRecorder messages(mrYes); // from check box to enumeration
        column->SetCheckLevel(2);
        column->SetStringValues({QStringLiteral("ne"), QStringLiteral("ano")});
        grid->SetSelectedIndex(1);
        TField *given = field("given");
        QCOMPARE(given->AsBoolean(), false);
        QTest::keyClick(grid, Qt::Key_Space); // arms
        QTest::keyClick(grid, Qt::Key_Space);
        QCOMPARE(given->AsBoolean(), true);
        QTest::keyClick(grid, Qt::Key_Minus, Qt::KeypadModifier); // backward: inverted too
        QCOMPARE(given->AsBoolean(), false);
    }

    void confirmationsBetweenModes_data()
    {
        QTest::addColumn<int>("answer");
        QTest::newRow("yes") << int(mrYes);
        QTest::newRow("no") << int(mrNo);
    }
    void confirmationsBetweenModes()
    {
        QFETCH(int, answer);
        PREPARE();
        TEnhancedCheckDBGrid grid;
        auto *column = qobject_cast<TEnhancedCheckValueColumn *>(grid.Columns()->Add());
        column->SetCheckLevel(2);
        test::MessageRecorder messages(answer);
        column->SetChecking(true);
        QCOMPARE(messages.Shown().size(), 1);
        QCOMPARE(messages.Shown().first().Caption, QStringLiteral("Řešení závislostí vlastností"));
        QCOMPARE(messages.Shown().first().Text,
                 QStringLiteral("Zapnutím režimu checkboxu zrušíte nastavení textového výčtu. "
                                "Souhlasíte se změnou stavu?"));
        QCOMPARE(column->Check(), answer == mrYes);
        QCOMPARE(column->CheckLevel(), answer == mrYes ? 0 : 2);
        column->SetCheckLevel(0);
        column->SetChecking(true);
        messages.Clear();
        column->SetCheckLevel(3);
        QCOMPARE(messages.Texts(),
                 QStringList{QStringLiteral("Zapnutím režimu textového výčtu zrušíte nastavení "
                                            "checkboxu. Souhlasíte se změnou stavu?")});
        QCOMPARE(column->Check(), answer != mrYes);
        QCOMPARE(column->CheckLevel(), answer == mrYes ? 3 : 0);
    }

    void columnOrder()
    {
        PREPARE();
        TEnhancedCheckDBGrid grid;
        grid.SetDataSource(m_source.get());
        auto names = [&grid] {
            QStringList result;
            for (int i = 0; i < grid.Columns()->Count(); ++i)
                result << grid.Columns()->Items(i)->FieldName();
            return result;
        };
        PreradeniSloupcuGridu(&grid, QStringLiteral("name;  "));
        QCOMPARE(names(), QStringList{QStringLiteral("name")});
        PreradeniSloupcuGridu(&grid, QStringLiteral("STATE; id;nothing;id"));
        QCOMPARE(
            names(),
            (QStringList{QStringLiteral("state"), QStringLiteral("id"), QStringLiteral("id")}));
        m_set->Close();
        PreradeniSloupcuGridu(&grid, QStringLiteral("name"));
        QCOMPARE(names().size(), 3);
    }
};

QTEST_MAIN(TestCheckDBGrid)
#include "tst_checkdbgrid.moc"
