#include "oxa/controls/NumEditOxa.h"
#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/Exceptions.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <QSignalSpy>
#include <cmath>
#include <memory>

using namespace oxa;
using N = TNumEditOxa;

namespace {

// A shown window with the numeric edit and a plain edit to leave it for.
struct Form
{
    QWidget window;
    TNumEditOxa *edit = new TNumEditOxa(&window);
    TEditOxa *next = new TEditOxa(&window);

    Form(N::TNumType type, int digits = 0)
    {
        edit->SetNumType(type);
        edit->SetDigits(digits);
        edit->setGeometry(10, 10, 200, 24);
        next->setGeometry(10, 44, 200, 24);
    }
    bool enter()
    {
        if (!test::ShowAndActivate(&window))
            return false;
        edit->setFocus(Qt::TabFocusReason);
        return edit->hasFocus();
    }
};

// Types each character as a key press carrying that text.
void typeText(QWidget *widget, const QString &text)
{
    for (QChar c : text)
        QTest::sendKeyEvent(QTest::Click, widget, Qt::Key(c.toUpper().unicode()), QString(c), {});
}

enum PasteRoute { ctrlV, shiftInsert, oxaMenu, qtMenu, programmatic };

void pasteBy(TNumEditOxa *edit, PasteRoute route)
{
    if (route == ctrlV || route == shiftInsert) {
        QTest::keyClick(edit, route == ctrlV ? Qt::Key_V : Qt::Key_Insert,
                        route == ctrlV ? Qt::ControlModifier : Qt::ShiftModifier);
        return;
    }
    if (route == programmatic) {
        edit->PasteFromClipboard();
        return;
    }
    QWidget *top = edit->window();
    QTest::mouseClick(top->windowHandle(), Qt::RightButton, {}, edit->mapTo(top, QPoint(5, 5)));
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

    void typedCharacters_data();
    void typedCharacters();
    void keysAtTheCaret_data();
    void keysAtTheCaret();
    void clipboardShortcutsPassInNone();
    void rewriteOnEntryAndExit_data();
    void rewriteOnEntryAndExit();
    void exitRefusedWhileTextDoesNotConvert_data();
    void exitRefusedWhileTextDoesNotConvert();
    void paste_data();
    void paste();

    void readingValues_data();
    void readingValues();
    void writingValuesKeepsOddities();
    void digitsRewriteAtOnce();
    void decimalSeparatorOfTheHost();
    void aligmentMenuAndFamily();
    void registration();
};

void TestNumEditOxa::typedCharacters_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("expected");

    QTest::newRow("minus to front") << int(N::ntInteger) << "12-" << "-12";
    QTest::newRow("one minus") << int(N::ntInteger) << "12--" << "-12";
    QTest::newRow("letters") << int(N::ntInteger) << "1a,2" << "12";
    QTest::newRow("cardinal") << int(N::ntCardinal) << "1-2.3" << "123";
    QTest::newRow("full stop") << int(N::ntDouble) << "3.5" << "3,5";
    QTest::newRow("one separator") << int(N::ntDouble) << "3,5.1" << "3,51";
    QTest::newRow("currency") << int(N::ntCurrency) << "-1.25" << "-1,25";
    QTest::newRow("beyond Latin-1") << int(N::ntInteger) << QStringLiteral("1ž٣2") << "12";
    QTest::newRow("none") << int(N::ntNone) << "12-,a" << "";
}

void TestNumEditOxa::typedCharacters()
{
    QFETCH(int, type);
    QFETCH(QString, typed);
    Form form{N::TNumType(type)};
    QVERIFY(form.enter());
    form.edit->clear();
    typeText(form.edit, typed);
    QTEST(form.edit->text(), "expected");
}

void TestNumEditOxa::keysAtTheCaret_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("caret");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("keyText");
    QTest::addColumn<QString>("expected");

    QTest::newRow("digit before minus") << int(N::ntInteger) << 0 << int(Qt::Key_7) << "7" << "-5";
    QTest::newRow("digit after minus") << int(N::ntInteger) << 2 << int(Qt::Key_7) << "7" << "-57";
    QTest::newRow("backspace") << int(N::ntInteger) << 2 << int(Qt::Key_Backspace) << "\b" << "-";
    QTest::newRow("backspace in none") << int(N::ntNone) << 2 << int(Qt::Key_Backspace) << "\b" << "-5";
    QTest::newRow("delete in none") << int(N::ntNone) << 0 << int(Qt::Key_Delete) << "\x7f" << "5";
}

void TestNumEditOxa::keysAtTheCaret()
{
    QFETCH(int, type);
    QFETCH(int, caret);
    QFETCH(int, key);
    QFETCH(QString, keyText);
    Form form{N::TNumType(type)};
    QVERIFY(form.enter());
    form.edit->setText(QStringLiteral("-5"));
    form.edit->setCursorPosition(caret);
    QTest::sendKeyEvent(QTest::Click, form.edit, Qt::Key(key), keyText, {});
    QTEST(form.edit->text(), "expected");

    // Enter is swallowed as well.
    QSignalSpy returned(form.edit, &QLineEdit::returnPressed);
    QTest::keyClick(form.edit, Qt::Key_Return);
    QCOMPARE(returned.count(), 0);
}

void TestNumEditOxa::clipboardShortcutsPassInNone()
{
    Form form(N::ntNone);
    QVERIFY(form.enter());
    form.edit->setText(QStringLiteral("12"));
    form.edit->selectAll();
    QTest::keyClick(form.edit, Qt::Key_X, Qt::ControlModifier);
    QCOMPARE(form.edit->text(), QString());
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("12"));
    QTest::keyClick(form.edit, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(form.edit->text(), QStringLiteral("12"));
    // Once the shortcut is released, typing is refused again.
    typeText(form.edit, QStringLiteral("3"));
    QCOMPARE(form.edit->text(), QStringLiteral("12"));
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
    Form form{N::TNumType(type), digits};
    form.edit->setText(raw);
    QVERIFY(form.enter());
    QCOMPARE(form.edit->text(), canonical);
    QCOMPARE(form.edit->Color(), clYellow);

    form.edit->clear();
    typeText(form.edit, raw);
    QTest::keyClick(form.edit, Qt::Key_Tab);
    QVERIFY(form.next->hasFocus());
    QCOMPARE(form.edit->text(), canonical);
    QCOMPARE(form.edit->Color(), clWindow);
}

void TestNumEditOxa::exitRefusedWhileTextDoesNotConvert_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("message");

    QTest::newRow("lone separator") << int(N::ntDouble) << "," << "',' není platné číslo";
    // Converted as signed: a cardinal above 2147483647 does not convert.
    QTest::newRow("big cardinal") << int(N::ntCardinal) << "3000000000"
                                  << "'3000000000' není platné celé číslo";
}

void TestNumEditOxa::exitRefusedWhileTextDoesNotConvert()
{
    QFETCH(int, type);
    QFETCH(QString, typed);
    test::MessageRecorder messages;
    Form form{N::TNumType(type)};
    QVERIFY(form.enter());
    form.edit->clear();
    typeText(form.edit, typed);
    QTest::keyClick(form.edit, Qt::Key_Tab);
    QVERIFY(form.edit->hasFocus());
    QTEST(messages.Texts().value(0), "message");
    QCOMPARE(messages.Shown().value(0).Type, mtError);
    QCOMPARE(form.edit->Color(), clYellow);

    form.edit->setText(QStringLiteral("1"));
    QTest::keyClick(form.edit, Qt::Key_Tab);
    QVERIFY(form.next->hasFocus());
    QCOMPARE(messages.Shown().size(), 1);
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
    QTest::newRow("Vložit letters") << int(oxaMenu) << int(N::ntCurrency) << "1.5" << "7,00"
                                    << "'1.5' není platné číslo";
    QTest::newRow("Qt's menu") << int(qtMenu) << int(N::ntInteger) << "0012" << "12" << "";
    QTest::newRow("host") << int(programmatic) << int(N::ntDouble) << "2,256" << "2,26" << "";
    QTest::newRow("none") << int(ctrlV) << int(N::ntNone) << "abc" << "abc" << "";
}

void TestNumEditOxa::paste()
{
    QFETCH(int, route);
    QFETCH(int, type);
    QFETCH(QString, expected);
    QFETCH(QString, message);
    test::MessageRecorder messages;
    Form form{N::TNumType(type), 2};
    form.edit->SetMapaZnaku(route != qtMenu);
    form.edit->setText(QStringLiteral("7"));
    QVERIFY(form.enter());
    form.edit->selectAll();
    const QString before = form.edit->text();
    QFETCH(QString, pasted);
    QGuiApplication::clipboard()->setText(pasted);
    pasteBy(form.edit, PasteRoute(route));
    QCOMPARE(form.edit->text(), expected);
    QCOMPARE(messages.Texts(), message.isEmpty() ? QStringList() : QStringList{message});
    if (!message.isEmpty())
        QCOMPARE(form.edit->selectedText(), before);
}

void TestNumEditOxa::readingValues_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("integer");
    QTest::addColumn<uint>("cardinal");
    QTest::addColumn<qint64>("currency");

    QTest::newRow("empty") << "" << 0 << 0u << Q_INT64_C(0);
    QTest::newRow("lone minus") << "-" << 0 << 0u << Q_INT64_C(0);
    QTest::newRow("negative") << "-5" << -5 << 4294967291u << Q_INT64_C(-50000);
    QTest::newRow("blanks") << " 12 " << 12 << 12u << Q_INT64_C(120000);
}

void TestNumEditOxa::readingValues()
{
    QFETCH(QString, text);
    QFETCH(int, integer);
    TNumEditOxa edit;
    edit.setText(text);
    QCOMPARE(edit.getInteger(), integer);
    QTEST(edit.getCardinal(), "cardinal");
    QCOMPARE(edit.getDouble(), double(integer));
    QTEST(edit.getCurrency().Scaled(), "currency");

    edit.setText(QStringLiteral("-0,125e1"));
    QCOMPARE(edit.getDouble(), -1.25);
    for (const char *bad : {"abc", "3.5", "1,2,3", "99999999999"}) {
        edit.setText(QString::fromLatin1(bad));
        QVERIFY_THROWS_EXCEPTION(EConvertError, edit.getInteger());
        if (QByteArray(bad) != "99999999999") {
            QVERIFY_THROWS_EXCEPTION(EConvertError, edit.getDouble());
            QVERIFY_THROWS_EXCEPTION(EConvertError, edit.getCurrency());
        }
    }
}

void TestNumEditOxa::writingValuesKeepsOddities()
{
    TNumEditOxa edit;
    edit.setCardinal(3000000000u);
    QCOMPARE(edit.text(), QStringLiteral("-1294967296"));
    edit.setCardinal(4294967295u);
    QCOMPARE(edit.text(), QStringLiteral("-1"));
    edit.setInteger(-42);
    QCOMPARE(edit.text(), QStringLiteral("-42"));

    edit.SetDigits(2);
    QCOMPARE(edit.GetMaska(), QStringLiteral("%0.2f"));
    edit.setDouble(-0.004);
    QCOMPARE(edit.text(), QStringLiteral("0,00"));
    edit.setDouble(1234.5);
    QCOMPARE(edit.text(), QStringLiteral("1234,50"));
    edit.setCurrency(TCurrency::FromScaled(Q_INT64_C(9223372036854775807)));
    QCOMPARE(edit.text(), QStringLiteral("922337203685477,58"));
    QCOMPARE(TCurrency::FromDouble(-2.00005).Scaled(), Q_INT64_C(-20001));
    QVERIFY_THROWS_EXCEPTION(EConvertError, edit.setDouble(std::nan("")));
    QVERIFY_THROWS_EXCEPTION(EConvertError, TCurrency::FromDouble(1e300));
}

void TestNumEditOxa::digitsRewriteAtOnce()
{
    TNumEditOxa edit;
    edit.SetNumType(N::ntDouble);
    edit.setText(QStringLiteral("3,14159"));
    edit.SetDigits(2);
    QCOMPARE(edit.text(), QStringLiteral("3,14"));
    edit.SetDigits(9);
    QCOMPARE(edit.Digits(), 4);
    QCOMPARE(edit.text(), QStringLiteral("3,1400"));
    edit.SetNumType(N::ntCurrency);
    edit.SetDigits(0);
    QCOMPARE(edit.text(), QStringLiteral("3"));
    edit.setText(QStringLiteral("x"));
    QVERIFY_THROWS_EXCEPTION(EConvertError, edit.SetDigits(1));
}

void TestNumEditOxa::decimalSeparatorOfTheHost()
{
    QVERIFY_THROWS_EXCEPTION(EInvalidOperation, SetDecimalSeparator(QLatin1Char('7')));
    QCOMPARE(DecimalSeparator(), QLatin1Char(','));
    SetDecimalSeparator(QLatin1Char('.'));
    Form form(N::ntDouble, 2);
    QVERIFY(form.enter());
    form.edit->clear();
    typeText(form.edit, QStringLiteral("3,5"));
    QCOMPARE(form.edit->text(), QStringLiteral("3.5"));
    QTest::keyClick(form.edit, Qt::Key_Tab);
    QCOMPARE(form.edit->text(), QStringLiteral("3.50"));
    QCOMPARE(form.edit->getDouble(), 3.5);
}

void TestNumEditOxa::aligmentMenuAndFamily()
{
    Form form(N::ntInteger);
    QCOMPARE(form.edit->Aligment(), N::taLeftJustify);
    form.edit->SetAligment(N::taRightJustify);
    QVERIFY(form.edit->alignment() & Qt::AlignRight);
    form.edit->SetAligment(N::taCenter);
    QVERIFY(form.edit->alignment() & Qt::AlignHCenter);

    // A disabled numeric edit is passed through on the way of a TEditOxa.
    auto *start = new TEditOxa(&form.window);
    start->setGeometry(10, 78, 200, 24);
    start->SetFocDown(form.edit);
    form.edit->SetFocDown(form.next);
    QVERIFY(form.enter());
    QVERIFY(qobject_cast<TOxaPopUpMenu *>(form.edit->PopupMenu()));
    form.edit->setEnabled(false);
    start->setFocus();
    QTest::keyClick(start, Qt::Key_Down, Qt::ControlModifier);
    QVERIFY(form.next->hasFocus());
}

void TestNumEditOxa::registration()
{
    RegisterNumEditOxa();
    const TComponentEntry *entry = Catalogue::Instance().Find(QStringLiteral("TNumEditOxa"));
    QVERIFY(entry);
    QCOMPARE(entry->Page, QStringLiteral("Oxa"));
    std::unique_ptr<QObject> created(Catalogue::Instance().Create(QStringLiteral("TNumEditOxa")));
    QVERIFY(qobject_cast<TNumEditOxa *>(created.get()));
}

QTEST_MAIN(TestNumEditOxa)
#include "tst_numeditoxa.moc"
