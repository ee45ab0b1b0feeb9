#include "ReportPage.h"
#include "SampleDatabase.h"

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

// Opens the sample database of the kind; the reason when it cannot.
QString OpenSample(const QString &kind)
{
    static QTemporaryDir files;
    static int serial = 0;
    if (kind == QLatin1String("sqlite"))
        return SampleDatabase::Open(files.filePath(QStringLiteral("clinic%1.sqlite").arg(++serial)))
            ? QString()
            : QStringLiteral("SQLite refused the file");
    // A new empty server database, which the demo fills as on its first start.
    const QString why = test::OpenTestDatabase(kind, test::kMain);
    if (!why.isEmpty())
        return why;
    const QString name = QSqlDatabase::database(test::kMain).databaseName();
    QString dir, unavailable;
    test::PostgresSocketDir(dir, unavailable);
    test::CloseTestConnections();
    QString error;
    if (!SampleDatabase::Open(QStringLiteral("postgresql://oxa@/%1?host=%2").arg(name, dir),
                              &error))
        return error;
    return QString();
}

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
    const QString why = OpenSample(database);
    if (!why.isEmpty())
        QSKIP(qPrintable(why));
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

    QSqlQuery q(SampleDatabase::Database());
    q.prepare(QStringLiteral("SELECT COUNT(*) FROM trvaly_lek WHERE pacient = ?"));
    q.addBindValue(page->PatientId());
    QVERIFY(q.exec());
    QVERIFY(q.next());
    const int medicines = q.value(0).toInt();
    QVERIFY(medicines >= 2);

    QTest::mouseClick(Button(*page, tbtInTrvaleLeky), Qt::LeftButton);
    const QStringList lines = PlainText(editor).split(QStringLiteral("\r\n"));
    QCOMPARE(lines.first(), QStringLiteral("Trvalá medikace:"));
    QCOMPARE(lines.size(), 1 + medicines + 1);
    QVERIFY(editor->Style().TextStyle(editor->GetItemStyle(0)).Style & fsBold);
    QCOMPARE(Button(*page, tbtUndo)->toolTip(), QStringLiteral("Zpět (vkládání)"));

    QTest::mouseClick(Button(*page, tbtInBloky), Qt::LeftButton);
    QVERIFY(ChooseFromPopup(QStringLiteral("Kontrola")));
    QVERIFY(PlainText(editor).contains(QStringLiteral("Kontrola za 3 měsíce s výsledky")));
    QTest::mouseClick(Button(*page, tbtInTrvaleDiagnozy), Qt::LeftButton);
    QVERIFY(ChooseFromPopup(QStringLiteral("Všechny")));
    QTest::mouseClick(Button(*page, tbtInAnamnezy), Qt::LeftButton);
    QVERIFY(PlainText(editor).contains(QStringLiteral("Anamnéza:\r\n")));

    test::DialogAnswerer answerer([](QDialog *) { return mrOk; });
    QTest::mouseClick(Button(*page, tbtTable), Qt::LeftButton);
    QVERIFY(editor->CurrentTable());

    // Stored twice over: the report replaces the earlier one.
    QVERIFY(page->SaveReport());
    QVERIFY(page->SaveReport());
    QVERIFY(q.exec(QStringLiteral("SELECT COUNT(*) FROM zprava")));
    QVERIFY(q.next());
    QCOMPARE(q.value(0).toInt(), 1);
}

QTEST_MAIN(TestReportPage)
#include "tst_reportpage.moc"
