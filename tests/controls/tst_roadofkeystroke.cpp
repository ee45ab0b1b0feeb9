#include "oxa/controls/EditOxa.h"
#include "support/TestSupport.h"

#include <QTest>

using namespace oxa;

// One keystroke from key to screen: Ctrl+Down moves from one edit to the
// next, the colours and the context menu follow the focus, and typing a
// double quote and a in the correcting edit leaves "ä" with the caret behind.
class TestRoadOfKeystroke : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ctrlDownThenTypedDiaeresis();
};

void TestRoadOfKeystroke::ctrlDownThenTypedDiaeresis()
{
    QWidget window;
    window.resize(240, 80);
    auto *first = new TEditOxa(&window);
    first->setGeometry(10, 10, 200, 24);
    auto *second = new TEditOxa(&window);
    second->setGeometry(10, 44, 200, 24);
    second->SetKorekceTextu(true);
    first->SetFocDown(second);
    QVERIFY(test::ShowAndActivate(&window));
    first->setFocus();
    QVERIFY(first->IsFocused());
    QPointer<QMenu> firstMenu = first->PopupMenu();
    QVERIFY(qobject_cast<TOxaPopUpMenu *>(firstMenu));

    QTest::keyClick(first, Qt::Key_Down, Qt::ControlModifier);

    QVERIFY(second->hasFocus());
    QVERIFY(!first->IsFocused());
    QVERIFY(second->IsFocused());
    QCOMPARE(first->Color(), first->DefaultColor());
    QCOMPARE(second->Color(), second->ActiveColor());
    QCOMPARE(second->palette().color(QPalette::Base), ColorToQColor(clYellow));
    QCOMPARE(first->PopupMenu(), nullptr);
    QVERIFY(qobject_cast<TOxaPopUpMenu *>(second->PopupMenu()));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(firstMenu.isNull());

    QTest::keyClick(second, '"');
    QCOMPARE(second->text(), QStringLiteral("\""));
    QTest::keyClick(second, 'a');
    QCOMPARE(second->text(), QStringLiteral("ä"));
    QCOMPARE(second->cursorPosition(), 1);
}

QTEST_MAIN(TestRoadOfKeystroke)
#include "tst_roadofkeystroke.moc"
