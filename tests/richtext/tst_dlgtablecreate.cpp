#include "oxa/richtext/DlgTableCreate.h"
#include "oxa/richtext/DlgTableCreate_p.h"
#include "oxa/richtext/OxaRichView.h"
#include "support/TestSupport.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTextTable>
#include <QToolButton>

#include <memory>

using namespace oxa;
using namespace oxa::test;

namespace {

// A shown dialog and its controls by the names the form gives them.
struct Dialog
{
    std::unique_ptr<TTableCreateDlg> owned;
    TTableCreateDlg *dlg;

    explicit Dialog(TTableCreateDlg *existing = nullptr)
        : owned(existing ? nullptr : new TTableCreateDlg), dlg(existing ? existing : owned.get())
    {
        ShowAndActivate(dlg);
    }
    template<class T = QWidget>
    T *Control(const char *name) const
    {
        return dlg->findChild<T *>(QLatin1String(name));
    }
    QLineEdit *Edit(const char *name) const { return Control<QLineEdit>(name); }
    TUpDown *UpDown(const char *name) const { return Control<TUpDown>(name); }
    QString Auto() const { return Control<QLabel>("lAuto")->text(); }
    // The edits' texts and the border colour's name.
    QStringList Values() const
    {
        QStringList texts;
        for (const char *edit : {"eCols", "eRows", "eWidth", "Edit_BorderWidth"})
            texts << Edit(edit)->text();
        return texts << Control<QComboBox>("RVColorCombo_Border")->currentText();
    }
    // Replaces an edit's text by typing.
    void Type(const char *edit, const QString &text) const
    {
        QLineEdit *e = Edit(edit);
        e->setFocus();
        e->selectAll();
        QTest::keyClicks(e, text);
    }
    void Press(const char *upDown, bool up, int times = 1) const
    {
        for (int i = 0; i < times; ++i)
            QTest::mouseClick(up ? UpDown(upDown)->UpButton() : UpDown(upDown)->DownButton(),
                              Qt::LeftButton);
    }
    void ChooseBorderColour(int index) const
    {
        auto *combo = Control<QComboBox>("RVColorCombo_Border");
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Home);
        for (int i = 0; i < index; ++i)
            QTest::keyClick(combo, Qt::Key_Down);
    }
    // The preview's tables.
    QList<QTextTable *> Tables() const
    {
        TOxaRichView *preview = dlg->Preview();
        QList<QTextTable *> tables;
        for (int i = 0; i < preview->ItemCount(); ++i) {
            if (preview->GetItemStyle(i) == rvsTableItem)
                tables << preview->RVData()->GetItemTable(i);
        }
        return tables;
    }
    QTextTable *Table() const { return Tables().value(0); }
    // The preview's one table as "columns x rows, width, border width and colour".
    QString TableText() const
    {
        if (Tables().size() != 1)
            return QStringLiteral("%1 tables").arg(Tables().size());
        const TRVTableProps p = RichDocument::TableProps(Table());
        return QStringLiteral("%1x%2 w%3 b%4 c%5")
            .arg(Table()->columns())
            .arg(Table()->rows())
            .arg(p.BestWidth)
            .arg(p.CellBorderWidth)
            .arg(p.CellBorderColor);
    }
};

constexpr int kRed = 9;   // "červená" in the picker's palette
constexpr int kBlue = 12; // "modrá"

} // namespace

class TestDlgTableCreate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void upDownLimits_data();
    void upDownLimits();
    void previewFollowsTheControls();
    void nonIntegerBorderWidthFails();
    void showCopiesBackOnlyOnOk_data();
    void showCopiesBackOnlyOnOk();
    void editorInsertsThroughTheDialog();
};

void TestDlgTableCreate::upDownLimits_data()
{
    QTest::addColumn<QByteArray>("upDown");
    QTest::addColumn<QByteArray>("edit");
    QTest::addColumn<bool>("up");
    QTest::addColumn<int>("presses");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<bool>("keys"); // the arrow keys in the edit instead of the buttons
    const auto row = [](const char *name, const char *upDown, const char *edit, bool up,
                        int presses, const char *text, const char *unit, bool keys) {
        QTest::newRow(name) << QByteArray(upDown) << QByteArray(edit) << up << presses
                            << QString(text) << QString(unit) << keys;
    };
    row("columns stop at 50", "udCols", "eCols", true, 60, "50", "automaticky", false);
    row("columns stop at 1, keys", "udCols", "eCols", false, 3, "1", "automaticky", true);
    row("one width step", "udWidth", "eWidth", true, 1, "50", "px", false);
    row("width stops at 1000, keys", "udWidth", "eWidth", true, 25, "1000", "px", true);
    row("width stops at 0", "udWidth", "eWidth", false, 2, "0", "automaticky", false);
    row("border stops at 50, keys", "UpDown_BorderWidth", "Edit_BorderWidth", true, 52, "50",
        "automaticky", true);
}

void TestDlgTableCreate::upDownLimits()
{
    QFETCH(QByteArray, upDown);
    QFETCH(QByteArray, edit);
    QFETCH(bool, up);
    QFETCH(int, presses);
    QFETCH(QString, text);
    QFETCH(QString, unit);
    QFETCH(bool, keys);
    Dialog d;
    QLineEdit *e = d.Edit(edit.constData());
    e->setFocus();
    for (int i = 0; keys && i < presses; ++i)
        QTest::keyClick(e, up ? Qt::Key_Up : Qt::Key_Down);
    if (!keys)
        d.Press(upDown.constData(), up, presses);
    QCOMPARE(e->text(), text);
    QCOMPARE(d.UpDown(upDown.constData())->Position(), text.toInt());
    QCOMPARE(d.Auto(), unit);
}

void TestDlgTableCreate::previewFollowsTheControls()
{
    Dialog d;
    // It starts as a table of one cell, and the focus is in the columns.
    QCOMPARE(d.Values(), QStringList({"1", "1", "0", "1", "černá"}));
    QVERIFY(d.Edit("eCols")->hasFocus());
    QCOMPARE(d.TableText(), QStringLiteral("1x1 w0 b1 c0"));
    d.Type("eCols", QStringLiteral("4"));
    d.Press("udRows", true, 2);
    d.Press("udWidth", true, 3);
    QCOMPARE(d.TableText(), QStringLiteral("4x3 w150 b1 c0"));

    // Colour and border width change the table that is there.
    QTextTable *table = d.Table();
    d.ChooseBorderColour(kRed);
    QCOMPARE(d.Table(), table);
    d.Type("Edit_BorderWidth", QStringLiteral("3"));
    QCOMPARE(d.Table(), table);
    QCOMPARE(d.TableText(), QStringLiteral("4x3 w150 b3 c255"));

    // A typed number beyond the limit makes the largest table.
    d.Type("eCols", QStringLiteral("70"));
    QCOMPARE(d.TableText(), QStringLiteral("50x3 w150 b3 c255"));
}

void TestDlgTableCreate::nonIntegerBorderWidthFails()
{
    MessageRecorder messages;
    Dialog d;
    QTextTable *table = d.Table();
    const QStringList error{QStringLiteral("'2x' není platné celé číslo")};
    d.Type("Edit_BorderWidth", QStringLiteral("2x"));
    QCOMPARE(messages.Texts(), error);
    QCOMPARE(d.Table(), table);
    QVERIFY(d.dlg->Preview()->updatesEnabled());

    // Rebuilding fails the same way until the width is a number again.
    messages.Clear();
    d.Press("udCols", true);
    QCOMPARE(messages.Texts(), error);
    QVERIFY(d.dlg->Preview()->updatesEnabled());
    QCOMPARE(d.TableText(), QStringLiteral("0 tables")); // cleared, then the rebuild failed
    d.Type("Edit_BorderWidth", QStringLiteral("$A"));
    QCOMPARE(messages.Texts().size(), 2); // "$" alone is no number yet
    d.Press("udCols", true);
    QCOMPARE(messages.Texts().size(), 2);
    QCOMPARE(d.TableText(), QStringLiteral("3x1 w0 b10 c0"));
    QVERIFY(d.dlg->isVisible());
}

void TestDlgTableCreate::showCopiesBackOnlyOnOk_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<bool>("confirmed");
    QTest::newRow("OK") << QByteArray("BitBtn_OK") << true;
    QTest::newRow("Cancel") << QByteArray("BitBtn_Cancel") << false;
}

void TestDlgTableCreate::showCopiesBackOnlyOnOk()
{
    QFETCH(QByteArray, button);
    QFETCH(bool, confirmed);
    QStringList preset;
    DialogAnswerer answerer([&](QDialog *dialog) {
        Dialog d(qobject_cast<TTableCreateDlg *>(dialog));
        preset = d.Values();
        d.Type("eCols", QStringLiteral("5"));
        d.Press("udRows", false);
        d.Press("udWidth", true, 2);
        d.ChooseBorderColour(kBlue);
        d.Press("UpDown_BorderWidth", true);
        QTest::mouseClick(d.Control<QPushButton>(button.constData()), Qt::LeftButton);
        return dialog->result() == QDialog::Accepted ? mrOk : mrCancel;
    });
    TTableCreateInfo info{2, 4, 300, clRed, 1};
    QCOMPARE(ShowDlgTableCreate(info), confirmed);
    QCOMPARE(answerer.Count(), 1);
    QCOMPARE(preset, QStringList({"2", "4", "300", "1", "červená"}));
    const TTableCreateInfo expected =
        confirmed ? TTableCreateInfo{5, 3, 400, clBlue, 2} : TTableCreateInfo{2, 4, 300, clRed, 1};
    const auto fields = [](const TTableCreateInfo &i) {
        return QList<uint>{uint(i.Cols), uint(i.Rows), uint(i.Width), i.CellBorderColor,
                           uint(i.CellBorderWidth)};
    };
    QCOMPARE(fields(info), fields(expected));
}

void TestDlgTableCreate::editorInsertsThroughTheDialog()
{
    TestForm form;
    auto *editor = form.Add<TOxaRichView>(150);
    QVERIFY(form.Show(editor));
    QTest::keyClicks(editor, QStringLiteral("Tlak:"));
    QList<QWidget *> parents;
    DialogAnswerer answerer([&](QDialog *dialog) {
        parents << dialog->parentWidget();
        Dialog d(qobject_cast<TTableCreateDlg *>(dialog));
        d.Type("eCols", QStringLiteral("2"));
        d.Type("eRows", QStringLiteral("3"));
        d.ChooseBorderColour(kRed);
        return mrOk;
    });
    QVERIFY(editor->InsTableDlg());
    QCOMPARE(parents, QList<QWidget *>{&form}); // centred on the editor's window
    QTextTable *table = editor->CurrentTable();
    QVERIFY(table);
    QCOMPARE(QList<qint64>({table->columns(), table->rows(),
                            RichDocument::TableProps(table).CellBorderColor}),
             QList<qint64>({2, 3, clRed}));
}

QTEST_MAIN(TestDlgTableCreate)
#include "tst_dlgtablecreate.moc"
