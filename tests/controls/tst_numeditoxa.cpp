#include "oxa/controls/NumEditOxa.h"
#include "oxa/toolkit/Exceptions.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QClipboard>
#include <QSignalSpy>
#include <QTest>
#include <cmath>

using namespace oxa;
using N = TNumEditOxa;

namespace {

// A shown window with the numeric edit and an edit to leave it for, which
// holds the focus until the edit is entered.
struct Form
{
    QWidget window;
    TEditOxa *next = new TEditOxa(&window);
    TNumEditOxa *edit = new TNumEditOxa(&window);

    Form(int type, int digits = 0)
    {
        edit->SetNumType(N::TNumType(type));
        edit->SetDigits(digits);
        next->move(0, 40);
    }
    bool enter()
    {
        if (!test::ShowAndActivate(&window))
            return false;
        edit->setFocus(Qt::TabFocusReason);
        return edit->hasFocus();
    }
};

// Presses a key for each character: \b Backspace, \x7f Delete, \r Enter.
void typeText(QWidget *widget, const QString &text)
{
    for (QChar c : text) {
        const Qt::Key key = c == u'\b' ? Qt::Key_Backspace : c == u'\x7f' ? Qt::Key_Delete
                          : c == u'\r' ? Qt::Key_Return : Qt::Key(c.toUpper().unicode());
        QTest::sendKeyEvent(QTest::Click, widget, key, QString(c), {});
    }
}

enum PasteRoute { ctrlV, shiftInsert, oxaMenu, qtMenu, programmatic };

void pasteBy(TNumEditOxa *edit, PasteRoute route)
{
    if (route == ctrlV || route == shiftInsert)
        return QTest::keyClick(edit, route == ctrlV ? Qt::Key_V : Qt::Key_Insert,
                               route == ctrlV ? Qt::ControlModifier : Qt::ShiftModifier);
    if (route == programmatic)
        return edit->PasteFromClipboard();
    QTest::mouseClick(edit->window()->windowHandle(), Qt::RightButton, {}, edit->pos() + QPoint(5, 5));
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    for (QAction *item : menu->actions()) {
        if (item->text() == QStringLiteral("Vložit") || item->text().startsWith(QStringLiteral("&Paste")))
            return QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
    }
    QFAIL("no paste item");
}

} // namespace

class TestNumEditOxa : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { SetDecimalSeparator(QLatin1Char(',')); }
    void typing_data();
    void typing();
    void rewriteOnEntryAndExit_data();
    void rewriteOnEntryAndExit();
    void exitRefusedWhileTextDoesNotConvert();
    void paste_data();
    void paste();
    void valueAccessors();
    void digitsSeparatorAndAligment();
};

void TestNumEditOxa::typing_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("caret");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("expected");

    QTest::newRow("minus to front, once") << int(N::ntInteger) << "" << 0 << "12--\r" << "-12";
    QTest::newRow("letters") << int(N::ntInteger) << "" << 0 << "1a,.2" << "12";
    QTest::newRow("cardinal") << int(N::ntCardinal) << "" << 0 << "1-2.3" << "123";
    QTest::newRow("one separator") << int(N::ntDouble) << "" << 0 << "3.5,1" << "3,51";
    QTest::newRow("currency") << int(N::ntCurrency) << "" << 0 << "-1.25" << "-1,25";
    QTest::newRow("beyond Latin-1") << int(N::ntInteger) << "" << 0 << QStringLiteral("1ž٣2") << "12";
    QTest::newRow("before minus") << int(N::ntInteger) << "-5" << 0 << "7" << "-5";
    QTest::newRow("after minus") << int(N::ntInteger) << "-5" << 2 << "7\b\b" << "-";
    QTest::newRow("none") << int(N::ntNone) << "-5" << 0 << "1-,a\b" << "-5";
    QTest::newRow("Delete in none") << int(N::ntNone) << "-5" << 0 << "\x7f" << "5";
}

void TestNumEditOxa::typing()
{
    QFETCH(int, type);
    QFETCH(QString, text);
    QFETCH(int, caret);
    QFETCH(QString, typed);
    Form form(type);
    QVERIFY(form.enter());
    form.edit->setText(text);
    form.edit->setCursorPosition(caret);
    QSignalSpy returned(form.edit, &QLineEdit::returnPressed);
    typeText(form.edit, typed);
    QTEST(form.edit->text(), "expected");
    QCOMPARE(returned.count(), 0); // Enter is swallowed
}

void TestNumEditOxa::rewriteOnEntryAndExit_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("digits");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("canonical");

    QTest::newRow("empty") << int(N::ntInteger) << 0 << "" << "0";
    QTest::newRow("lone minus") << int(N::ntInteger) << 0 << "-" << "0";
    QTest::newRow("leading zeros") << int(N::ntInteger) << 0 << "-007" << "-7";
    QTest::newRow("cardinal") << int(N::ntCardinal) << 0 << "042" << "42";
    QTest::newRow("two decimals") << int(N::ntDouble) << 2 << "3,5" << "3,50";
    QTest::newRow("no negative zero") << int(N::ntDouble) << 0 << "-0,4" << "0";
    QTest::newRow("currency rounds") << int(N::ntCurrency) << 2 << "1,005" << "1,01";
    QTest::newRow("away from zero") << int(N::ntCurrency) << 2 << "-2,345" << "-2,35";
}

void TestNumEditOxa::rewriteOnEntryAndExit()
{
    QFETCH(int, type);
    QFETCH(int, digits);
    QFETCH(QString, raw);
    QFETCH(QString, canonical);
    Form form(type, digits);
    form.edit->setText(raw);
    QVERIFY(form.enter());
    QCOMPARE(form.edit->text(), canonical);
    QCOMPARE(form.edit->selectedText(), canonical); // Tab's selection kept

    form.edit->clear();
    typeText(form.edit, raw);
    QTest::keyClick(form.edit, Qt::Key_Tab);
    QVERIFY(form.next->hasFocus());
    QCOMPARE(form.edit->text(), canonical);
    QCOMPARE(form.edit->Color(), clWindow);
}

void TestNumEditOxa::exitRefusedWhileTextDoesNotConvert()
{
    test::MessageRecorder messages;
    Form form(N::ntCardinal);
    QVERIFY(form.enter());
    // Converted as signed: a cardinal above 2147483647 does not convert.
    typeText(form.edit, QStringLiteral("3000000000"));
    QTest::keyClick(form.edit, Qt::Key_Tab);
    QVERIFY(form.edit->hasFocus());
    QCOMPARE(messages.Texts(), QStringList{QStringLiteral("'3000000000' není platné celé číslo")});
    QCOMPARE(messages.Shown().first().Type, mtError);
    QCOMPARE(form.edit->Color(), clYellow);

    form.edit->SetNumType(N::ntDouble);
    form.edit->setText(QStringLiteral(","));
    QTest::keyClick(form.edit, Qt::Key_Tab);
    QCOMPARE(messages.Texts().last(), QStringLiteral("',' není platné číslo"));
    form.edit->setText(QStringLiteral("1"));
    QTest::keyClick(form.edit, Qt::Key_Tab);
    QVERIFY(form.next->hasFocus());
    QCOMPARE(messages.Shown().size(), 2);
}

void TestNumEditOxa::paste_data()
{
    QTest::addColumn<int>("route");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("message");

    QTest::newRow("Ctrl+V") << int(ctrlV) << int(N::ntInteger) << " 42 " << "42" << "";
    QTest::newRow("Ctrl+V letters") << int(ctrlV) << int(N::ntInteger) << "abc" << "7"
                                    << "'abc' není platné celé číslo";
    QTest::newRow("Shift+Insert") << int(shiftInsert) << int(N::ntDouble) << "1,5" << "1,50" << "";
    QTest::newRow("Vložit") << int(oxaMenu) << int(N::ntInteger) << "0012" << "12" << "";
    QTest::newRow("Vložit full stop") << int(oxaMenu) << int(N::ntCurrency) << "1.5" << "7,00"
                                      << "'1.5' není platné číslo";
    QTest::newRow("Qt's menu, once") << int(qtMenu) << int(N::ntInteger) << "0012" << "12" << "";
    QTest::newRow("host") << int(programmatic) << int(N::ntDouble) << "2,256" << "2,26" << "";
    QTest::newRow("none") << int(ctrlV) << int(N::ntNone) << "abc" << "abc" << "";
}

void TestNumEditOxa::paste()
{
    QFETCH(int, route);
    QFETCH(int, type);
    QFETCH(QString, pasted);
    QFETCH(QString, message);
    test::MessageRecorder messages;
    Form form(type, 2);
    form.edit->SetMapaZnaku(route != qtMenu);
    form.edit->setText(QStringLiteral("7"));
    QVERIFY(form.enter());
    form.edit->selectAll();
    const QString before = form.edit->text();
    QGuiApplication::clipboard()->setText(pasted);
    pasteBy(form.edit, PasteRoute(route));
    typeText(form.edit, QStringLiteral("a")); // refused again after Ctrl+V
    QTEST(form.edit->text(), "expected");
    QCOMPARE(messages.Texts(), message.isEmpty() ? QStringList() : QStringList{message});
    if (!message.isEmpty())
        QCOMPARE(form.edit->selectedText(), before); // the paste undone
}

void TestNumEditOxa::valueAccessors()
{
    TNumEditOxa edit;
    QCOMPARE(edit.getInteger(), 0);
    edit.setText(QStringLiteral("-"));
    QCOMPARE(edit.getCurrency(), TCurrency());
    edit.setText(QStringLiteral(" -5 "));
    QCOMPARE(edit.getCardinal(), 4294967291u);
    QCOMPARE(edit.getCurrency().Scaled(), Q_INT64_C(-50000));
    edit.setText(QStringLiteral("-0,125e1"));
    QCOMPARE(edit.getDouble(), -1.25);
    for (const char *bad : {"abc", "3.5", "1,2,3"}) {
        edit.setText(QString::fromLatin1(bad));
        QVERIFY_THROWS_EXCEPTION(EConvertError, edit.getInteger());
        QVERIFY_THROWS_EXCEPTION(EConvertError, edit.getDouble());
        QVERIFY_THROWS_EXCEPTION(EConvertError, edit.getCurrency());
    }
    edit.setCardinal(3000000000u); // printed as signed
    QCOMPARE(edit.text(), QStringLiteral("-1294967296"));
    QCOMPARE(edit.getCardinal(), 3000000000u);
    edit.SetDigits(2);
    QCOMPARE(edit.GetMaska(), QStringLiteral("%0.2f"));
    edit.setDouble(-0.004);
    QCOMPARE(edit.text(), QStringLiteral("0,00"));
    edit.setCurrency(TCurrency::FromScaled(Q_INT64_C(9223372036854775807)));
    QCOMPARE(edit.text(), QStringLiteral("922337203685477,58"));
    QCOMPARE(TCurrency::FromDouble(-2.00005).Scaled(), Q_INT64_C(-20001));
    QVERIFY_THROWS_EXCEPTION(EConvertError, edit.setDouble(std::nan("")));
    QVERIFY_THROWS_EXCEPTION(EConvertError, TCurrency::FromDouble(1e300));
}

void TestNumEditOxa::digitsSeparatorAndAligment()
{
    TNumEditOxa edit;
    edit.SetNumType(N::ntDouble);
    edit.setText(QStringLiteral("3,14159"));
    edit.SetDigits(2);
    QCOMPARE(edit.text(), QStringLiteral("3,14"));
    edit.SetDigits(9);
    QCOMPARE(edit.text(), QStringLiteral("3,1400"));
    edit.SetNumType(N::ntCurrency);
    edit.SetDigits(0);
    QCOMPARE(edit.text(), QStringLiteral("3"));
    edit.SetAligment(N::taRightJustify);
    QVERIFY(edit.alignment() & Qt::AlignRight);
    edit.SetAligment(N::taCenter);
    QVERIFY(edit.alignment() & Qt::AlignHCenter);

    QVERIFY_THROWS_EXCEPTION(EInvalidOperation, SetDecimalSeparator(QLatin1Char('7')));
    SetDecimalSeparator(QLatin1Char('.'));
    Form form(N::ntDouble, 2);
    QVERIFY(form.enter());
    typeText(form.edit, QStringLiteral("3,5"));
    QCOMPARE(form.edit->text(), QStringLiteral("3.5"));
    QTest::keyClick(form.edit, Qt::Key_Tab);
    QCOMPARE(form.edit->text(), QStringLiteral("3.50"));
}

QTEST_MAIN(TestNumEditOxa)
#include "tst_numeditoxa.moc"
