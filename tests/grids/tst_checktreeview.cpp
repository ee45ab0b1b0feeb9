#include "oxa/grids/CheckTreeView.h"
#include "oxa/grids/CheckTreeViewOxa.h"

#include "support/TestSupport.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

using namespace oxa;

namespace {

// The nodes in pre-order, each with its parent (-1 for the root) and state:
//   Root 1
//     A 1:  A1 1, A2 1
//     B 1:  B1 1, Bn 0 (no check box): Bn1 1
//     C 0:  C1 1
const char *const kNames[] = {"Root", "A", "A1", "A2", "B", "B1", "Bn", "Bn1", "C", "C1"};
const int kParents[] = {-1, 0, 1, 1, 0, 4, 4, 6, 0, 8};
const char kInitial[] = "1111110101";

template<class Tree>
struct TreeForm : test::TestForm
{
    Tree *tree = new Tree(this);
    QLineEdit *below = new QLineEdit(this);
    QMap<QString, QTreeWidgetItem *> nodes;

    explicit TreeForm(const char *states = kInitial)
    {
        tree->setGeometry(0, 0, 240, 280);
        below->setGeometry(0, 290, 100, 24);
        resize(250, 320);
        QList<QTreeWidgetItem *> items;
        for (int i = 0; i < int(std::size(kNames)); ++i) {
            auto *item = kParents[i] < 0 ? new QTreeWidgetItem(tree)
                                         : new QTreeWidgetItem(items.at(kParents[i]));
            item->setText(0, QString::fromLatin1(kNames[i]));
            TCheckTreeView::SetStateIndex(item, states[i] - '0');
            items.append(item);
            nodes.insert(item->text(0), item);
        }
        tree->expandAll();
    }
    QString states() const
    {
        QString s;
        for (const char *name : kNames)
            s += QString::number(TCheckTreeView::StateIndex(nodes.value(QLatin1String(name))));
        return s;
    }
    // Runs one step: "click:A1", "dclick:A", "label:A1", "space:A", "enter:A", "call:A".
    // A double click comes as the platform delivers it: press, release,
    // press, double click, release.
    void step(const QString &step)
    {
        const QString action = step.section(QLatin1Char(':'), 0, 0);
        QTreeWidgetItem *node = nodes.value(step.section(QLatin1Char(':'), 1));
        const QRect label = tree->visualItemRect(node);
        const QPoint image = tree->StateImageRect(node).center();
        QWidget *viewport = tree->viewport();
        if (action == QLatin1String("click") || action == QLatin1String("dclick"))
            QTest::mouseClick(viewport, Qt::LeftButton, {}, image);
        if (action == QLatin1String("dclick")) {
            QTest::mousePress(viewport, Qt::LeftButton, {}, image);
            QMouseEvent dblClick(QEvent::MouseButtonDblClick, image, viewport->mapToGlobal(image),
                                 Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(viewport, &dblClick);
            QTest::mouseRelease(viewport, Qt::LeftButton, {}, image);
        } else if (action == QLatin1String("label")) {
            QTest::mouseClick(viewport, Qt::LeftButton, {},
                              QPoint(label.right() - 4, label.center().y()));
        } else if (action == QLatin1String("call")) {
            tree->StateImageClick(node);
        } else if (action != QLatin1String("click")) {
            tree->setCurrentItem(node);
            QTest::keyClick(tree,
                            action == QLatin1String("space") ? Qt::Key_Space : Qt::Key_Return);
        }
    }
};

} // namespace

class TestCheckTreeView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void toggles_data()
    {
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QStringList>("states"); // after each step, in pre-order
        // Children without a check box and their subtrees are left alone.
        QTest::newRow("grey node becomes unchecked with its subtree")
            << QStringList{"click:A1", "click:A"} << QStringList{"2231110101", "1111110101"};
        QTest::newRow("last unchecked child completes the parent, upwards")
            << QStringList{"click:A1", "click:A2", "click:B1"}
            << QStringList{"2231110101", "2333110101", "3333330101"};
        // The parent takes its child's state: it gains a check box.
        QTest::newRow("parent without a check box")
            << QStringList{"click:C1"} << QStringList{"2111110133"};
        QTest::newRow("space") << QStringList{"space:A", "space:A2"}
                               << QStringList{"2333110101", "2231110101"};
        QTest::newRow("a click beside the state image")
            << QStringList{"label:A1", "label:Root"} << QStringList{"1111110101", "1111110101"};
        // Two clicks, and the node stays expanded.
        QTest::newRow("double click on the state image")
            << QStringList{"dclick:A", "dclick:A"} << QStringList{"1111110101", "1111110101"};
        QTest::newRow("StateImageClick")
            << QStringList{"call:B", "call:Bn"} << QStringList{"2111330101", "2111330101"};
    }

    void toggles()
    {
        QFETCH(QStringList, steps);
        QFETCH(QStringList, states);
        TreeForm<TCheckTreeView> form;
        QSignalSpy toggled(form.tree, &TCheckTreeView::stateImageClicked);
        QVERIFY(form.Show(form.tree));
        int toggles = 0;
        const bool doubleClicks = steps.first().startsWith(QLatin1String("dclick"));
        for (int i = 0; i < steps.size(); ++i) {
            form.step(steps.at(i));
            QCOMPARE(form.states(), states.at(i));
            if (form.states() != (i ? states.at(i - 1) : QString::fromLatin1(kInitial)))
                ++toggles;
            if (!doubleClicks)
                QCOMPARE(toggled.size(), toggles);
        }
        if (doubleClicks) {
            QCOMPARE(toggled.size(), 2 * steps.size());
            QVERIFY(form.nodes.value(QStringLiteral("A"))->isExpanded());
        }
    }

    // The three propagations called by themselves: RefreshParent also compares
    // the children without a check box, CTVSetParent does not.
    void propagationAsWritten_data()
    {
        // Each row's name starts with the call; "state" is CTVSetChild's argument.
        QTest::addColumn<QString>("initial");
        QTest::addColumn<QString>("node");
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("states");
        const auto row = [](const char *name, const char *initial, const char *node, int state,
                            const char *states) {
            QTest::newRow(name) << QString(initial) << QString(node) << state << QString(states);
        };
        row("RefreshParent counts a child without a check box", "1111130101", "B1", 0,
            "1111230101");
        row("CTVSetParent skips it", "1111130101", "B1", 0, "2111330101");
        row("RefreshParent only the direct parent", "1131110101", "A1", 0, "1231110101");
        row("CTVSetParent keeps a parent of boxless children", "1111110130", "C1", 0, "2111110130");
        row("CTVSetParent gives a boxless parent a state", "1111110301", "Bn1", 0, "2111213301");
        row("CTVSetChild to grey", "1111110101", "B", 2, "1111220101");
        row("CTVSetChild of a boxless node", "1111110101", "Bn", 3, "1111110301");
    }

    void propagationAsWritten()
    {
        QFETCH(QString, initial);
        QFETCH(QString, node);
        QFETCH(int, state);
        TreeForm<TCheckTreeView> form(initial.toLatin1().constData());
        QTreeWidgetItem *item = form.nodes.value(node);
        const QByteArray call = QByteArray(QTest::currentDataTag()).split(' ').first();
        if (call == "RefreshParent")
            form.tree->RefreshParent(item);
        else if (call == "CTVSetParent")
            form.tree->CTVSetParent(item);
        else
            form.tree->CTVSetChild(item, state);
        QTEST(form.states(), "states");
    }

    // Enter expands and collapses, not recursively: the children keep their own.
    void enterExpandsAndCollapses()
    {
        TreeForm<TCheckTreeView> form;
        QVERIFY(form.Show(form.tree));
        QTreeWidgetItem *a = form.nodes.value(QStringLiteral("A"));
        QTreeWidgetItem *root = form.nodes.value(QStringLiteral("Root"));
        for (const auto &[node, aExpanded, rootExpanded] :
             {std::tuple{"A", false, true}, {"A", true, true}, {"Root", true, false}}) {
            form.step(QStringLiteral("enter:") + QLatin1String(node));
            QCOMPARE((std::pair{a->isExpanded(), root->isExpanded()}),
                     (std::pair{aExpanded, rootExpanded}));
        }
        QCOMPARE(form.states(), QString::fromLatin1(kInitial));
    }

    void hostHandlerReplacesTheToggle()
    {
        TreeForm<TCheckTreeView> form;
        QStringList calls;
        form.tree->OnStateImageClick = [&](QObject *sender, QTreeWidgetItem *node) {
            calls.append((sender == form.tree ? QString() : QStringLiteral("?")) + node->text(0));
        };
        QVERIFY(form.Show(form.tree));
        form.step(QStringLiteral("click:A1"));
        form.step(QStringLiteral("space:B"));
        form.step(QStringLiteral("label:C1"));
        QCOMPARE(calls, (QStringList{"A1", "B"}));
        QCOMPARE(form.states(), QString::fromLatin1(kInitial));
    }

    void keyReleaseRules_data()
    {
        QTest::addColumn<bool>("autoRepeat");
        QTest::addColumn<bool>("consumedByHost");
        QTest::addColumn<QString>("states");
        QTest::newRow("release") << false << false << "2111330101";
        QTest::newRow("repeated release of a held key") << true << false << kInitial;
        QTest::newRow("OnKeyUp consumes it") << false << true << kInitial;
    }

    void keyReleaseRules()
    {
        QFETCH(bool, autoRepeat);
        QFETCH(bool, consumedByHost);
        QFETCH(QString, states);
        TreeForm<TCheckTreeView> form;
        if (consumedByHost)
            form.tree->OnKeyUp = [](QObject *, Word &key, TShiftState) { key = 0; };
        QVERIFY(form.Show(form.tree));
        form.tree->setCurrentItem(form.nodes.value(QStringLiteral("B")));
        // The press alone changes nothing; the release toggles.
        QTest::keyPress(form.tree, Qt::Key_Space);
        QCOMPARE(form.states(), QString::fromLatin1(kInitial));
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "),
                          autoRepeat);
        QApplication::sendEvent(form.tree, &release);
        QCOMPARE(form.states(), states);
    }

    void oxaArrowsMoveInTheTreeCtrlArrowsLeave_data()
    {
        QTest::addColumn<QKeyCombination>("key");
        QTest::addColumn<bool>("left");
        QTest::addColumn<QString>("current");
        QTest::newRow("ctrl down") << (Qt::ControlModifier | Qt::Key_Down) << true << "B";
        QTest::newRow("ctrl shift down")
            << (Qt::ControlModifier | Qt::ShiftModifier | Qt::Key_Down) << false << "B1";
        QTest::newRow("ctrl up, no neighbour")
            << (Qt::ControlModifier | Qt::Key_Up) << false << "A2";
    }

    void oxaArrowsMoveInTheTreeCtrlArrowsLeave()
    {
        QFETCH(QKeyCombination, key);
        QFETCH(bool, left);
        TreeForm<TCheckTreeViewOxa> form;
        form.tree->SetFocDown(form.below);
        QVERIFY(form.Show(form.tree));
        form.tree->setCurrentItem(form.nodes.value(QStringLiteral("B")));
        QTest::keyClick(form.tree, key.key(), key.keyboardModifiers());
        QTRY_COMPARE(QApplication::focusWidget(),
                     left ? static_cast<QWidget *>(form.below) : form.tree);
        QTEST(form.tree->currentItem()->text(0), "current");
        QCOMPARE(form.states(), QString::fromLatin1(kInitial));
    }
};

QTEST_MAIN(TestCheckTreeView)
#include "tst_checktreeview.moc"
