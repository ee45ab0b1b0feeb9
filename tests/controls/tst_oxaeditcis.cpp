#include "oxa/controls/OxaEditCis.h"
#include "oxa/toolkit/Exceptions.h"
#include "support/TestSupport.h"

#include <QLabel>
#include <QTest>

using namespace oxa;

namespace {

// The code-list edit holding "111", the edit for the second value, and an
// edit holding the focus at the start. The host's OnBtnClick records the
// text it got and answers "205".
struct Form : test::TestForm
{
    QLineEdit *other = Add<QLineEdit>();
    TOxaEditCis *edit = Add<TOxaEditCis>();
    QLineEdit *second = Add<QLineEdit>();
    QStringList calls;

    Form()
    {
        edit->setGeometry(10, 10, 100, 21);
        second->move(10, 40);
        other->move(10, 70);
        edit->setText(QStringLiteral("111"));
        edit->OnBtnClick = [this](QObject *sender, QString &text) {
            calls.append(sender == edit ? text : QStringLiteral("wrong sender"));
            text = QStringLiteral("205");
        };
    }
};

} // namespace

class TestOxaEditCis : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void buttonFollowsEdit()
    {
        Form form;
        QVERIFY(form.Show(form.other));
        QPointer<QToolButton> button = form.edit->Button();
        QCOMPARE(button->toolTip(), QStringLiteral("Otevřít číselník Ctrl+F1"));
        form.edit->SetShortCut(VK_F4);
        QCOMPARE(button->toolTip(), QStringLiteral("Otevřít číselník F4"));

        QCOMPARE(button->geometry(), QRect(110, 10, 21, 21));
        form.edit->hide();
        QVERIFY(!button->isVisible());
        delete form.edit;
        QVERIFY(!button);
    }

    void triggers_data()
    {
        QTest::addColumn<QString>("trigger");
        QTest::addColumn<int>("calls");
        QTest::newRow("Ctrl+F1") << "Ctrl+F1" << 1;
        QTest::newRow("button") << "button" << 1;
        QTest::newRow("double click") << "double click" << 1;
        QTest::newRow("Ctrl+double click") << "Ctrl+double click" << 0;
    }

    void triggers()
    {
        QFETCH(QString, trigger);
        Form form;
        QVERIFY(form.Show(form.other));
        if (trigger == QLatin1String("button")) {
            QTest::mouseClick(form.edit->Button(), Qt::LeftButton);
        } else if (trigger.endsWith(QLatin1String("double click"))) {
            const bool ctrl = trigger.startsWith(QLatin1String("Ctrl"));
            QTest::mouseDClick(form.edit, Qt::LeftButton,
                               ctrl ? Qt::ControlModifier : Qt::NoModifier);
        } else {
            form.edit->setFocus();
            const QKeySequence keys(trigger);
            QTest::keyClick(form.edit, keys[0].key(), keys[0].keyboardModifiers());
        }
        QTEST(int(form.calls.size()), "calls");
        QCOMPARE(form.edit->text(),
                 form.calls.isEmpty() ? QStringLiteral("111") : QStringLiteral("205"));
        QCOMPARE(form.calls, form.calls.isEmpty() ? QStringList() : QStringList{"111"});
        QVERIFY(form.edit->hasFocus()); // also after a click on the button
    }

    void secondEdit()
    {
        Form form;
        QVERIFY(form.Show(form.other));
        form.edit->SetSecondEdit(form.second);
        form.second->setText(QStringLiteral("old"));
        // Only OnBtnClick: it is not asked, and the second edit is cleared.
        form.edit->DoClick();
        QCOMPARE(form.calls, QStringList());
        QCOMPARE(form.edit->text(), QStringLiteral("111"));
        QCOMPARE(form.second->text(), QString());

        form.edit->OnBtnClick2 = [&](QObject *, QString &text, QString &second) {
            form.calls.append(text + QLatin1Char('|') + second);
            second = QStringLiteral("VZP");
        };
        QTest::mouseClick(form.edit->Button(), Qt::LeftButton);
        QCOMPARE(form.calls, QStringList{QStringLiteral("111|")});
        QCOMPARE(form.second->text(), QStringLiteral("VZP"));

        // A freed second edit is forgotten: OnBtnClick is asked again.
        delete form.second;
        form.edit->DoClick();
        QCOMPARE(form.calls.last(), QStringLiteral("111"));
        QWidget textless;
        QVERIFY_THROWS_EXCEPTION(EInvalidOperation, form.edit->SetSecondEdit(&textless));
    }
};

QTEST_MAIN(TestOxaEditCis)
#include "tst_oxaeditcis.moc"
