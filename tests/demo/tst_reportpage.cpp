#include "DemoTestSupport.h"
#include "ReportPage.h"

#include "oxa/richtext/OxaRichView.h"
#include "oxa/richtext/RVPopupMenu.h"
#include "support/TestDatabase.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QMenu>
#include <QSqlQuery>
#include <QTest>
#include <QToolButton>

#include <memory>

using namespace oxa;

namespace {

QString PlainText(const TOxaRichView *editor)
{
    return editor->GetText(0, editor->ItemCount() - 1);
}

QToolButton *Button(const ReportPage &page, TRVToolButtonType typ)
{
    return qobject_cast<QToolButton *>(page.ToolBar()->GetButton(typ).Obj);
}

// Clicks the item of the menu that is open.
bool ChooseFromPopup(const QString &caption)
{
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    if (!menu)
        return false;
    for (QAction *action : menu->actions()) {
        if (action->text() == caption) {
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
            return true;
        }
    }
    return false;
}

} // namespace

// The report page: the toolbar's insertion buttons bring the patient's
// records from the sample database, on SQLite and on PostgreSQL.
class TestReportPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { SampleDatabase::Close(); }
    void toolbarInsertsFromTheDatabase_data() { test::AddDatabaseRows(); }
    void toolbarInsertsFromTheDatabase();
};

void TestReportPage::toolbarInsertsFromTheDatabase()
{
    QFETCH(QString, database);
    const QString why = test::OpenSample(database);
    OXA_REQUIRE_DATABASE(why.isEmpty(), why);
    auto page = std::make_unique<ReportPage>();
    page->resize(1600, 800);
    QVERIFY(test::ShowAndActivate(page.get()));
    TOxaRichView *editor = page->Editor();
    editor->setFocus();

    // The editor's context menu is the toolbar's companion. (Clicked near the
    // editor's corner: the page is wider than the test screen.)
    QTest::mouseClick(page->windowHandle(), Qt::RightButton, {},
                      editor->viewport()->mapTo(page.get(), QPoint(30, 30)));
    QCOMPARE(QApplication::activePopupWidget(), page->findChild<TRVPopupMenu *>());
    QApplication::activePopupWidget()->close();

    const int medicines =
        test::SampleValue(QStringLiteral("SELECT COUNT(*) FROM trvaly_lek WHERE pacient = ?"),
                          page->PatientId())
            .toInt();
    QVERIFY(medicines >= 2);

    QTest::mouseClick(Button(*page, tbtInTrvaleLeky), Qt::LeftButton);
    const QStringList lines = PlainText(editor).split(QStringLiteral("\r\n"));
    QCOMPARE(lines.first(), QStringLiteral("Trvalá medikace:"));
    QCOMPARE(lines.size(), 1 + medicines + 1);
    QVERIFY(editor->Style().TextStyle(editor->GetItemStyle(0)).Style & fsBold);

    QTest::mouseClick(Button(*page, tbtInBloky), Qt::LeftButton);
    QVERIFY(ChooseFromPopup(QStringLiteral("Kontrola")));
    QVERIFY(PlainText(editor).contains(QStringLiteral("Kontrola za 3 měsíce s výsledky")));
    QTest::mouseClick(Button(*page, tbtInTrvaleDiagnozy), Qt::LeftButton);
    QVERIFY(ChooseFromPopup(QStringLiteral("Všechny")));
    QTest::mouseClick(Button(*page, tbtInAnamnezy), Qt::LeftButton);
    QVERIFY(PlainText(editor).contains(QStringLiteral("Anamnéza:\r\n")));

    // Stored twice over: the report replaces the earlier one.
    QVERIFY(page->SaveReport());
    QVERIFY(page->SaveReport());
    QSqlQuery reports(QStringLiteral("SELECT COUNT(*) FROM zprava"), SampleDatabase::Database());
    QVERIFY(reports.next());
    QCOMPARE(reports.value(0).toInt(), 1);
}

QTEST_MAIN(TestReportPage)
#include "tst_reportpage.moc"
