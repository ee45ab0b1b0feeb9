#include "oxa/richtext/Oxarichview_ftfunc.h"
#include "oxa/richtext/RichClipboard.h"
#include "richtext/RichTestSupport.h"

#include <QDialog>
#include <QMimeData>
#include <QSignalSpy>
#include <QTextTable>
#include <QVBoxLayout>

using namespace oxa;
using namespace oxa::test;

namespace {

QString AllText(const TOxaRichView &e)
{
    return e.GetText(0, e.ItemCount() - 1);
}

} // namespace

class TestOxaRichView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stuckKeyGuard();
    void formattingShortcuts_data();
    void formattingShortcuts();
    void caretAtTheEdges();
    void insertTogglesOverwrite();
    void escapeReachesTheDialog();
    void undoTypesOfEdits();
    void insertedTable();
    void linksAreActivated();
    void itemsAndPositions();
    void copyBetweenEditorsKeepsStyles();
    void pastedHtmlMapsOntoTheStyleSheet();
};

void TestOxaRichView::stuckKeyGuard()
{
    EditorWindow s(380, 200);
    MessageRecorder messages;
    for (int i = 0; i < 51; ++i)
        QTest::keyClick(s.editor, Qt::Key_A);
    QCOMPARE(AllText(*s.editor), QString(51, u'a'));
    QVERIFY(messages.Shown().isEmpty());
    QTest::keyClick(s.editor, Qt::Key_A);
    QTest::keyClick(s.editor, Qt::Key_A);
    QCOMPARE(AllText(*s.editor), QString(51, u'a'));
    QCOMPARE(messages.Texts(),
             QStringList(2, QStringLiteral("Ochrana (max. 50x) proti zaseklé klávese (65).")));
    QTest::keyClick(s.editor, Qt::Key_B);
    QTest::keyClick(s.editor, Qt::Key_A);
    QCOMPARE(AllText(*s.editor), QString(51, u'a') + QStringLiteral("ba"));

    // Deleting and moving the caret are never refused.
    messages.Clear();
    s.editor->InsertText(QString(150, u'x'));
    for (Qt::Key key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Delete,
                        Qt::Key_Backspace}) {
        for (int i = 0; i < 60; ++i)
            QTest::keyClick(s.editor, key);
    }
    QVERIFY(messages.Shown().isEmpty());
}

void TestOxaRichView::formattingShortcuts_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("tagged");
    const int ctrl = int(Qt::ControlModifier);
    QTest::newRow("Ctrl+B") << int(Qt::Key_B) << ctrl << "a<b>b</b>";
    QTest::newRow("Ctrl+P") << int(Qt::Key_P) << ctrl << "a<u>b</u>";
    QTest::newRow("Ctrl+S") << int(Qt::Key_S) << ctrl << "a<s>b</s>";
    QTest::newRow("Ctrl+E") << int(Qt::Key_E) << ctrl << "<p=c>ab</p>";
    QTest::newRow("Ctrl+Shift+B") << int(Qt::Key_B) << int(Qt::ControlModifier | Qt::ShiftModifier)
                                  << "ab";
    QTest::newRow("Alt+B") << int(Qt::Key_B) << int(Qt::AltModifier) << "abb";
}

void TestOxaRichView::formattingShortcuts()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, tagged);
    EditorWindow s(380, 200);
    QTest::keyClick(s.editor, Qt::Key_A);
    QTest::keyClick(s.editor, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QTest::keyClick(s.editor, Qt::Key_B);
    QCOMPARE(GetFormatedText(s.editor, 0, 1, s.editor->ItemCount() - 1,
                             int(s.editor->GetItemText(s.editor->ItemCount() - 1).size()) + 1),
             tagged);
}

// The caret helpers, and the page keys that move like arrows in the first
// and the last line.
void TestOxaRichView::caretAtTheEdges()
{
    EditorWindow s(380, 200);
    TOxaRichView &e = *s.editor;
    e.InsertText(QStringLiteral("first\r\nsecond\r\nthird"));
    auto converted = [&](Word key) {
        e.KeyDown(key, {});
        return key;
    };
    e.CaretToEnd();
    QVERIFY(e.IsCaretInEnd() && e.IsCaretInLastLine() && !e.IsCaretInFirstLine());
    QCOMPARE(converted(VK_NEXT), VK_DOWN);
    QCOMPARE(converted(VK_PRIOR), VK_PRIOR);
    e.CaretToBegin();
    QVERIFY(e.IsCaretInBegin() && e.IsCaretInFirstLine() && !e.IsCaretInLastLine());
    QCOMPARE(converted(VK_PRIOR), VK_UP);
    QCOMPARE(converted(VK_NEXT), VK_NEXT);
    // PageDown in the last line moves like Down: the caret stays in that line.
    s.editor->CaretToEnd();
    s.editor->SetCursorPos({2, 1});
    QTest::keyClick(s.editor, Qt::Key_PageDown);
    QCOMPARE(s.editor->GetCursorPos().Item, 2);
}

void TestOxaRichView::insertTogglesOverwrite()
{
    EditorWindow s(380, 200);
    QSignalSpy changed(s.editor, &TOxaRichView::OnChangeInserting);
    s.editor->InsertText(QStringLiteral("abc"));
    s.editor->CaretToBegin();
    QTest::keyClick(s.editor, Qt::Key_Insert);
    QVERIFY(!s.editor->Inserting());
    QTest::keyClick(s.editor, Qt::Key_X);
    QCOMPARE(AllText(*s.editor), QStringLiteral("xbc"));
    QTest::keyClick(s.editor, Qt::Key_Insert);
    QVERIFY(s.editor->Inserting());
    QTest::keyClick(s.editor, Qt::Key_Y);
    QCOMPARE(AllText(*s.editor), QStringLiteral("xybc"));
    QCOMPARE(changed.count(), 2);
    QTest::keyClick(s.editor, Qt::Key_Insert, Qt::ShiftModifier);
    QVERIFY(s.editor->Inserting());
}

void TestOxaRichView::escapeReachesTheDialog()
{
    QDialog dialog;
    auto *editor = new TOxaRichView(&dialog);
    (new QVBoxLayout(&dialog))->addWidget(editor);
    QVERIFY(ShowAndActivate(&dialog));
    editor->setFocus();
    QTest::keyClick(editor, Qt::Key_Escape);
    QTRY_VERIFY(!dialog.isVisible());
}

void TestOxaRichView::undoTypesOfEdits()
{
    EditorWindow s(380, 200);
    TOxaRichView &e = *s.editor;
    QTest::keyClicks(&e, QStringLiteral("abc"));
    QTest::keyClick(&e, Qt::Key_Backspace);
    e.selectAll();
    QTest::keyClick(&e, Qt::Key_B, Qt::ControlModifier);
    QTest::keyClick(&e, Qt::Key_E, Qt::ControlModifier);
    QCOMPARE(e.UndoAction(), int(utParagraph));
    e.CaretToEnd();
    QVERIFY(e.InsTable({2, 2, 0, clBlack, 1}));
    QCOMPARE(e.UndoAction(), int(utInserting));
    QTest::keyClick(&e, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(e.ItemCount(), 1);
    QCOMPARE(e.RedoAction(), int(utInserting));
    QTest::keyClick(&e, Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(&e, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(e.UndoAction(), int(utDeleting));
    QVERIFY(!(e.Style().TextStyle(e.GetItemStyle(0)).Style & fsBold));
    QTest::keyClick(&e, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(e.Style().TextStyle(e.GetItemStyle(0)).Style & fsBold);
    e.RVData()->BeginUndoCustom(QStringLiteral("šablona"));
    e.InsertText(QStringLiteral("x"));
    QCOMPARE(e.UndoAction(), int(utCustom));
    QTest::keyClicks(&e, QStringLiteral("y"));
    QCOMPARE(e.UndoAction(), int(utTyping));
}

void TestOxaRichView::insertedTable()
{
    EditorWindow s(380, 200);
    TOxaRichView &e = *s.editor;
    QTest::keyClicks(&e, QStringLiteral("pred"));
    QVERIFY(e.InsTable({3, 2, 400, clRed, 2}));
    QTest::keyClicks(&e, QStringLiteral("A1"));
    const int table = 1;
    QCOMPARE(e.GetItemStyle(table), rvsTableItem);
    QTextTable *t = e.RVData()->GetItemTable(table);
    QCOMPARE(RichDocument::TableName(t), QStringLiteral("tabulka"));
    const TRVTableProps p = RichDocument::TableProps(t);
    // Columns, rows, width, cell border colour, width and style, table border.
    QCOMPARE(QList<qint64>({t->columns(), t->rows(), p.BestWidth, p.CellBorderColor,
                            p.CellBorderWidth, p.CellBorderStyle, p.BorderWidth}),
             QList<qint64>({3, 2, 400, clRed, 2, 2, 0}));
    QCOMPARE(e.GetAllItemText(table), QStringLiteral("A1\t\t\r\n\t\t"));
    e.SetTableColor(clYellow);
    QCOMPARE(RichDocument::CellColor(t, 0, 0), clYellow);
    QCOMPARE(e.UndoAction(), int(utModifying));
    QVERIFY(!e.InsTable({0, 2, 0, clBlack, 1})); // beeps
    QVERIFY(e.DeleteTable());
    QCOMPARE(e.GetText(0, e.ItemCount() - 1), QStringLiteral("pred"));
}

void TestOxaRichView::linksAreActivated()
{
    EditorWindow s(380, 200);
    TOxaRichView &e = *s.editor;
    QSignalSpy jumps(&e, &TOxaRichView::OnTextJump);
    SetFormatedText(&e, QStringLiteral("text <a=42>odkaz</a> dál"));
    e.SetCursorPos({1, 3});
    QTest::keyClick(&e, Qt::Key_Return);
    QCOMPARE(jumps.count(), 1);
    QCOMPARE(jumps.takeFirst().at(0).toInt(), 1);
    QCOMPARE(e.ItemCount(), 3); // no new paragraph
    e.SetCursorPos({1, 3});
    const QPoint onLink = e.cursorRect().center();
    QTest::mouseClick(e.viewport(), Qt::LeftButton, Qt::NoModifier, onLink);
    QCOMPARE(jumps.count(), 0);
    QTest::mouseClick(e.viewport(), Qt::LeftButton, Qt::ControlModifier, onLink);
    QCOMPARE(jumps.count(), 1);
    QCOMPARE(jumps.takeFirst().at(0).toInt(), 1);
}

void TestOxaRichView::itemsAndPositions()
{
    TOxaRichView e;
    SetFormatedText(&e, QStringLiteral("ab<b>cd</b>\r\n\r\nef"));
    // Paragraphs are joined with CR LF; a range outside the items is empty.
    QCOMPARE(e.GetText(0, 3), QStringLiteral("abcd\r\n\r\nef"));
    QCOMPARE(e.GetText(1, 2), QStringLiteral("cd\r\n"));
    QCOMPARE(e.GetText(7, 9), QString());
    e.SetCursorPos({1, 1}); // the start of a run is the end of the one before
    QCOMPARE(e.GetCursorPos(), (TCursorPos{0, 3}));
    e.selectAll();
    TCursorPos start, end;
    QVERIFY(e.GetSelectionBounds(start, end));
    QCOMPARE(start, (TCursorPos{0, 1}));
    QCOMPARE(end, (TCursorPos{3, 3}));
    // The empty paragraph's own formatting comes after its line break.
    QCOMPARE(e.GetSelFormatText(), QStringLiteral("ab<b>cd\r\n</b>\r\nef"));
}

void TestOxaRichView::copyBetweenEditorsKeepsStyles()
{
    TOxaRichView source;
    SetFormatedText(&source, QStringLiteral("<fs=20>velký <c=255>červený</c>\r\n<p=c>střed"));
    source.CaretToEnd();
    source.InsTable({2, 1, 0, clGreen, 1});
    source.selectAll();
    std::unique_ptr<QMimeData> mime(
        RichClipboard::MimeOfSelection(*source.RVData(), source.textCursor(), true));
    TOxaRichView target;
    SetFormatedText(&target, QStringLiteral("<i>x</i>"));
    target.CaretToEnd();
    QTextCursor c = target.textCursor();
    RichClipboard::Paste(*target.RVData(), c, mime.get());
    QCOMPARE(target.GetText(0, target.ItemCount() - 1),
             QStringLiteral("xvelký červený\r\nstřed\r\n\r\n"));
    const QString tagged = GetFormatedText(&target, 0, 1, 3, 6);
    QCOMPARE(tagged,
             QStringLiteral("<i>x<fs=20></i>velký <c=255>červený\r\n<c><p=c>střed</fs></c></p>"));
    QCOMPARE(target.GetItemStyle(4), rvsTableItem);
    QVERIFY(mime->text().startsWith(QStringLiteral("velký červený")));
}

void TestOxaRichView::pastedHtmlMapsOntoTheStyleSheet()
{
    TOxaRichView e;
    QMimeData mime;
    mime.setHtml(
        QStringLiteral("<p align=center><span style='font-family:Courier New; font-size:14pt; "
                       "color:#ff0000'><b>A</b></span>b</p><table><tr><td>c</td></tr></table>"));
    QTextCursor c = e.textCursor();
    RichClipboard::Paste(*e.RVData(), c, &mime);
    const TFontInfo &a = e.Style().TextStyle(e.GetItemStyle(0));
    QCOMPARE(QVariantList({e.GetItemText(0), a.FontName, a.Size, a.Color, a.Style.toInt()}),
             QVariantList({"A", "Courier New", 14, clRed, int(fsBold)}));
    QCOMPARE(e.Style().ParaStyle(e.GetItemPara(0)).Alignment, rvaCenter);
    QCOMPARE(e.GetItemStyle(2), rvsTableItem);
}

QTEST_MAIN(TestOxaRichView)
#include "tst_oxarichview.moc"
