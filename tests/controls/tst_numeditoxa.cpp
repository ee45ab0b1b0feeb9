#include "oxa/controls/NumEditOxa.h"
#include "oxa/toolkit/Exceptions.h"
#include "support/TestSupport.h"

#include <QClipboard>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <limits>

using namespace oxa;
using N = TNumEditOxa;

namespace {

// The numeric edit and an edit to leave it for, which holds the focus until
// the numeric edit is entered.
struct Form : test::TestForm
{
    TEditOxa *next = Add<TEditOxa>();
    TNumEditOxa *edit = Add<TNumEditOxa>();

    explicit Form(int type, int digits = 0)
    {
        edit->SetNumType(N::TNumType(type));
        edit->SetDigits(digits);
    }
    bool enter() { return Show(edit, Qt::TabFocusReason); }
};

// Presses a key for each character: \b Backspace, \x7f Delete, \r Enter.
void typeText(QWidget *widget, const QString &text)
{
    for (QChar c : text) {
        const Qt::Key key = c == u'\b' ? Qt::Key_Backspace
            : c == u'\x7f'             ? Qt::Key_Delete
            : c == u'\r'               ? Qt::Key_Return
                                       : Qt::Key(c.toUpper().unicode());
        QTest::sendKeyEvent(QTest::Click, widget, key, QString(c), {});
    }
}

enum PasteRoute { ctrlV, oxaMenu, qtMenu };

} // namespace

class TestNumEditOxa : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typing_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("caret");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, int type, const char *text, int caret,
                            const QString &typed, const QString &expected) {
            QTest::newRow(name) << type << QString(text) << caret << typed << expected;
        };
        row("minus to front, once", N::ntInteger, "", 0, "12--\r", "-12");
        row("cardinal", N::ntCardinal, "", 0, "1-2.3", "123");
        row("one separator", N::ntDouble, "", 0, "3.5,1", "3,51");
        row("beyond Latin-1", N::ntInteger, "", 0, QStringLiteral("1ž٣2"), "12");
        row("after minus", N::ntInteger, "-5", 2, "7\b\b", "-");
        row("none", N::ntNone, "-5", 0, "1-,a\b", "-5");
        row("Delete in none", N::ntNone, "-5", 0, "\x7f", "5");
    }

    void typing()
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

    void rewriteOnEntryAndExit_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("digits");
        QTest::addColumn<QString>("raw");
        QTest::addColumn<QString>("canonical");
        const auto row = [](const char *name, int type, int digits, const char *raw,
                            const char *canonical) {
            QTest::newRow(name) << type << digits << QString(raw) << QString(canonical);
        };
        row("empty", N::ntInteger, 0, "", "0");
        row("leading zeros", N::ntInteger, 0, "-007", "-7");
        row("two decimals", N::ntDouble, 2, "3,5", "3,50");
        row("no negative zero", N::ntDouble, 0, "-0,4", "0");
        row("currency rounds", N::ntCurrency, 2, "1,005", "1,01");
    }

    void rewriteOnEntryAndExit()
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
    }

    void exitRefusedWhileTextDoesNotConvert()
    {
        test::MessageRecorder messages;
        Form form(N::ntCardinal);
        QVERIFY(form.enter());
        // Converted as signed: a cardinal above 2147483647 does not convert.
        typeText(form.edit, QStringLiteral("3000000000"));
        QTest::keyClick(form.edit, Qt::Key_Tab);
        QVERIFY(form.edit->hasFocus());
        QCOMPARE(messages.Texts(),
                 QStringList{QStringLiteral("'3000000000' není platné celé číslo")});
        QCOMPARE(form.edit->Color(), clYellow);
        form.edit->setText(QStringLiteral("1"));
        QTest::keyClick(form.edit, Qt::Key_Tab);
        QVERIFY(form.next->hasFocus());
        QCOMPARE(messages.Shown().size(), 1);
    }

    void paste_data()
    {
        QTest::addColumn<int>("route");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("pasted");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("message");
        const auto row = [](const char *name, int route, int type, const char *pasted,
                            const char *expected, const char *message) {
            QTest::newRow(name) << route << type << QString(pasted) << QString(expected)
                                << QString::fromUtf8(message);
        };
        row("Ctrl+V", ctrlV, N::ntInteger, " 42 ", "42", "");
        row("Ctrl+V letters", ctrlV, N::ntInteger, "abc", "7", "'abc' není platné celé číslo");
        row("Vložit", oxaMenu, N::ntCurrency, "1.5", "7,00", "'1.5' není platné číslo");
        row("Qt's menu, once", qtMenu, N::ntInteger, "0012", "12", "");
    }

    void paste()
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
        QGuiApplication::clipboard()->setText(pasted);
        if (route == ctrlV)
            QTest::keyClick(form.edit, Qt::Key_V, Qt::ControlModifier);
        else
            QVERIFY(test::RightClick(form.edit, route == oxaMenu ? "Vložit" : "&Paste"));
        typeText(form.edit, QStringLiteral("a")); // refused again after Ctrl+V
        QTEST(form.edit->text(), "expected");
        QCOMPARE(messages.Texts(), message.isEmpty() ? QStringList() : QStringList{message});
        if (!message.isEmpty()) // the paste undone, the selection back
            QCOMPARE(form.edit->selectedText(), form.edit->text());
    }

    void valueAccessors()
    {
        TNumEditOxa edit;
        QCOMPARE(edit.getInteger(), 0);
        edit.setText(QStringLiteral("-"));
        QCOMPARE(edit.getCurrency(), TCurrency());
        edit.setText(QStringLiteral(" -5 "));
        QCOMPARE(edit.getCardinal(), 4294967291u); // a signed conversion
        QCOMPARE(edit.getCurrency().Scaled(), Q_INT64_C(-50000));
        edit.setText(QStringLiteral("1,2,3"));
        QVERIFY_THROWS_EXCEPTION(EConvertError, edit.getInteger());
        QVERIFY_THROWS_EXCEPTION(EConvertError, edit.getCurrency());
        edit.setCardinal(3000000000u); // printed as signed
        QCOMPARE(edit.text(), QStringLiteral("-1294967296"));
        QVERIFY_THROWS_EXCEPTION(EConvertError, edit.setDouble(std::nan("")));

        // The currency's range: 922337203685477.5807 either way, nothing wraps.
        edit.setText(QStringLiteral("922337203685477,5807"));
        QCOMPARE(edit.getCurrency().Scaled(), std::numeric_limits<qint64>::max());
        edit.setText(QStringLiteral("-922337203685477,5807"));
        QCOMPARE(edit.getCurrency().Scaled(), -std::numeric_limits<qint64>::max());
        edit.setText(QStringLiteral("922337203685477,5808"));
        QVERIFY_THROWS_EXCEPTION(EConvertError, edit.getCurrency());
        edit.setText(QStringLiteral("99999999999999999999"));
        QVERIFY_THROWS_EXCEPTION(EConvertError, edit.getCurrency());
        QVERIFY_THROWS_EXCEPTION(EConvertError, TCurrency::FromDouble(1e15));
        QVERIFY_THROWS_EXCEPTION(EConvertError,
                                 TCurrency::FromDouble(-std::numeric_limits<double>::infinity()));
        QCOMPARE(TCurrency::FromDouble(-9.22e14).Scaled(), Q_INT64_C(-9220000000000000000));
        edit.SetDigits(4);
        edit.setCurrency(TCurrency::FromScaled(std::numeric_limits<qint64>::min()));
        QVERIFY(edit.text().startsWith(QStringLiteral("-922337203685477,580")));
    }
};

QTEST_MAIN(TestNumEditOxa)
#include "tst_numeditoxa.moc"
