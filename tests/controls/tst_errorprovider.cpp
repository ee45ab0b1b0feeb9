#include "oxa/controls/ErrorProvider.h"
#include "oxa/toolkit/Catalogue.h"
#include "support/TestSupport.h"

#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace oxa;

class TestErrorProvider : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void placement_data();
    void placement();
    void markFollowsControl();
    void severityOrdering_data();
    void severityOrdering();
    void clearing();
    void blinkPhasesThenSteady();
    void newMarkJoinsSharedPhase();
    void updateBatchStartsHidden();
    void doubleClickShowsMatchingBox_data();
    void doubleClickShowsMatchingBox();
    void destructionOrder();
    void iconsAndRegistration();

private:
    QLineEdit *AddEdit(const QString &name, int top = 50);
    // Records the visibility of the control's mark at every blink tick until
    // the blinking ends.
    QList<bool> BlinkPhases(QLineEdit *edit);

    QWidget *form = nullptr;
    TErrorProvider *provider = nullptr;
    QTimer *timer = nullptr;
};

void TestErrorProvider::init()
{
    form = new QWidget;
    form->resize(400, 300);
    QVERIFY(test::ShowAndActivate(form));
    provider = new TErrorProvider(form);
    provider->SetBlickInterval(5);
    timer = provider->findChild<QTimer *>();
}

void TestErrorProvider::cleanup()
{
    delete form;
}

QLineEdit *TestErrorProvider::AddEdit(const QString &name, int top)
{
    auto *edit = new QLineEdit(form);
    edit->setObjectName(name);
    edit->setGeometry(100, top, 120, 21);
    edit->show();
    return edit;
}

QList<bool> TestErrorProvider::BlinkPhases(QLineEdit *edit)
{
    QList<bool> phases;
    auto c = connect(timer, &QTimer::timeout, this,
                     [&] { phases.append(provider->ErrorImage(edit)->isVisible()); });
    if (!QTest::qWaitFor([this] { return !timer->isActive(); }))
        phases.append(false); // still blinking: no caller's expectation matches
    disconnect(c);
    return phases;
}

void TestErrorProvider::placement_data()
{
    QTest::addColumn<int>("justify");
    QTest::addColumn<QPoint>("expected");
    // The control is at (100, 50), 120 x 21: 120 + 2 to the right, 16 + 2 to the left.
    QTest::newRow("top left") << int(jtTopLeft) << QPoint(82, 50);
    QTest::newRow("top right") << int(jtTopRight) << QPoint(222, 50);
    QTest::newRow("bottom left") << int(jtBottomLeft) << QPoint(82, 55);
    QTest::newRow("bottom right") << int(jtBottomRight) << QPoint(222, 55);
    QTest::newRow("center right") << int(jtCenterRight) << QPoint(222, 52);
    QTest::newRow("center left") << int(jtCenterLeft) << QPoint(82, 52);
}

void TestErrorProvider::placement()
{
    QFETCH(int, justify);
    QFETCH(QPoint, expected);
    QLineEdit *edit = AddEdit("edJmeno");
    provider->SetError(edit, "Chybí jméno", etError, TJustifyType(justify));
    TErrorImage *image = provider->ErrorImage(edit);
    QCOMPARE(image->parentWidget(), form);
    QCOMPARE(image->geometry(), QRect(expected, QSize(16, 16)));
    QCOMPARE(image->toolTip(), QString("Chybí jméno"));

    provider->SetError(AddEdit("edDefault", 150), "x", etError);
    QCOMPARE(provider->ErrorImage("edDefault")->pos(), QPoint(222, 150)); // top right
}

void TestErrorProvider::markFollowsControl()
{
    QLineEdit *edit = AddEdit("edJmeno");
    provider->SetError(edit, "Chybí jméno", etError, jtCenterRight);
    TErrorImage *image = provider->ErrorImage(edit);
    edit->move(10, 200);
    QCOMPARE(image->pos(), QPoint(132, 202));
    edit->resize(60, 31);
    QCOMPARE(image->pos(), QPoint(72, 207));

    BlinkPhases(edit);
    edit->hide();
    QVERIFY(!image->isVisible());
    edit->show();
    QVERIFY(image->isVisible());

    auto *panel = new QWidget(form);
    panel->show();
    edit->setParent(panel);
    edit->show();
    QCOMPARE(image->parentWidget(), panel);
    QVERIFY(image->isVisible());
}

void TestErrorProvider::severityOrdering_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::addColumn<int>("expectedType");
    QTest::addColumn<QString>("expectedText");
    QTest::newRow("warning keeps error") << int(etError) << int(etWarning) << int(etError) << "první";
    QTest::newRow("confirmation keeps information")
        << int(etInformation) << int(etConfirmation) << int(etInformation) << "první";
    QTest::newRow("error replaces warning") << int(etWarning) << int(etError) << int(etError) << "druhá";
    QTest::newRow("same kind replaces") << int(etWarning) << int(etWarning) << int(etWarning) << "druhá";
}

void TestErrorProvider::severityOrdering()
{
    QFETCH(int, first);
    QFETCH(int, second);
    QFETCH(int, expectedType);
    QFETCH(QString, expectedText);
    QLineEdit *edit = AddEdit("edRC");
    provider->SetError(edit, "první", TErrorType(first));
    BlinkPhases(edit);

    provider->SetError(edit, "druhá", TErrorType(second));
    QCOMPARE(provider->ErrorCount(), 1);
    TErrorImage *image = provider->ErrorImage(edit);
    QCOMPARE(int(image->ErrorType()), expectedType);
    QCOMPARE(image->Hint(), expectedText);
    // Kept or replaced, the mark blinks again from the start.
    QCOMPARE(BlinkPhases(edit).size(), TErrorProvider::BlickSteps + 1);
}

void TestErrorProvider::clearing()
{
    QLineEdit *marked = AddEdit("edMarked");
    provider->SetError(marked, "Chyba", etError);
    QPointer<TErrorImage> image = provider->ErrorImage(marked);
    provider->SetError(AddEdit("edUnmarked", 100), QString(), etError);
    QCOMPARE(provider->ErrorCount(), 1);
    provider->SetError(marked, QString(), etError);
    QCOMPARE(provider->ErrorCount(), 0);
    QVERIFY(image.isNull());
    QVERIFY(!timer->isActive());

    // Controls of one name share one mark.
    QLineEdit *twin = AddEdit("edMarked", 100);
    provider->SetError(marked, "první", etWarning);
    provider->SetError(twin, "druhá", etWarning);
    QCOMPARE(provider->ErrorCount(), 1);
    QCOMPARE(provider->ErrorImage(marked)->pos(), QPoint(222, 100));

    provider->SetError(AddEdit("edOther"), "x", etError);
    provider->ClearAllErrors();
    QCOMPARE(provider->ErrorCount(), 0);
    QCOMPARE(provider->BlickCount(), 0);
    QVERIFY(form->findChildren<TErrorImage *>().isEmpty());
}

void TestErrorProvider::blinkPhasesThenSteady()
{
    QLineEdit *edit = AddEdit("edJmeno");
    provider->SetError(edit, "Chybí jméno", etError);
    QVERIFY(provider->ErrorImage(edit)->isVisible());
    // Six phases, then visible for good and the timer stops.
    QCOMPARE(BlinkPhases(edit), (QList<bool>{true, false, true, false, true, false, true}));
    QCOMPARE(provider->BlickCount(), 0);
    QVERIFY(provider->ErrorImage(edit)->isVisible());
}

void TestErrorProvider::newMarkJoinsSharedPhase()
{
    QLineEdit *first = AddEdit("edPrvni");
    QLineEdit *second = AddEdit("edDruhy", 100);
    int ticks = 0;
    QList<QPair<bool, bool>> phases;
    connect(timer, &QTimer::timeout, this, [&] {
        if (++ticks == 2) // the second mark arrives while the first one blinks
            provider->SetError(second, "druhá", etWarning);
        else if (ticks > 2)
            phases.append({provider->ErrorImage(first)->isVisible(), provider->ErrorImage(second)->isVisible()});
    });
    provider->SetError(first, "první", etError);
    QVERIFY(QTest::qWaitFor([&] { return !timer->isActive(); }));
    // One phase for both while both blink; the older mark settles first.
    QCOMPARE(phases.size(), 7);
    for (qsizetype i = 0; i < 4; ++i)
        QCOMPARE(phases.at(i).first, phases.at(i).second);
    QCOMPARE(phases.last(), qMakePair(true, true));
}

void TestErrorProvider::updateBatchStartsHidden()
{
    QLineEdit *first = AddEdit("edPrvni");
    QLineEdit *second = AddEdit("edDruhy", 100);
    provider->BeginUpdate();
    provider->SetError(first, "první", etError);
    provider->SetError(second, "druhá", etInformation);
    QSignalSpy ticks(timer, &QTimer::timeout);
    QVERIFY(ticks.wait() && ticks.wait());
    // The timer runs, but the blinking pauses until the batch ends.
    QVERIFY(!provider->ErrorImage(first)->isVisible());
    QVERIFY(!provider->ErrorImage(second)->isVisible());

    provider->EndUpdate();
    QCOMPARE(BlinkPhases(first), (QList<bool>{false, true, false, true, false, true, true}));
    QVERIFY(provider->ErrorImage(second)->isVisible());
}

void TestErrorProvider::doubleClickShowsMatchingBox_data()
{
    QTest::addColumn<int>("errorType");
    QTest::addColumn<int>("boxType");
    QTest::newRow("error") << int(etError) << int(mtError);
    QTest::newRow("warning") << int(etWarning) << int(mtWarning);
    QTest::newRow("information") << int(etInformation) << int(mtInformation);
    QTest::newRow("confirmation") << int(etConfirmation) << int(mtConfirmation);
}

void TestErrorProvider::doubleClickShowsMatchingBox()
{
    QFETCH(int, errorType);
    QFETCH(int, boxType);
    QLineEdit *edit = AddEdit("edJmeno");
    provider->SetError(edit, "Zkontrolujte jméno", TErrorType(errorType));
    BlinkPhases(edit);

    test::MessageRecorder recorder;
    QTest::mouseDClick(provider->ErrorImage(edit), Qt::LeftButton);
    QCOMPARE(recorder.Shown().size(), 1);
    const TMessageRequest &box = recorder.Shown().constFirst();
    QCOMPARE(int(box.Type), boxType);
    QCOMPARE(box.Text, QString("Zkontrolujte jméno"));
    QCOMPARE(box.Buttons, TMsgDlgButtons(mbOK));
}

void TestErrorProvider::destructionOrder()
{
    // A destroyed control takes its mark along; the other marks go on.
    QLineEdit *edit = AddEdit("edJmeno");
    provider->SetError(edit, "Chyba", etError);
    provider->SetError(AddEdit("edPrijmeni", 100), "Chyba", etWarning);
    QPointer<TErrorImage> image = provider->ErrorImage(edit);
    delete edit;
    QVERIFY(image.isNull());
    QCOMPARE(provider->ErrorCount(), 1);
    QCOMPARE(provider->BlickCount(), 1);

    // A provider outliving the form, and a mark beside a control without a
    // parent, which must never become a window.
    auto *ownerless = new TErrorProvider;
    auto *panel = new QWidget;
    auto *inPanel = new QLineEdit(panel);
    inPanel->setObjectName("edPanel");
    ownerless->SetError(inPanel, "Chyba", etError);
    delete panel;
    QCOMPARE(ownerless->ErrorCount(), 0);
    QLineEdit lonely;
    lonely.setObjectName("edSam");
    lonely.show();
    ownerless->SetError(&lonely, "Chyba", etError);
    QVERIFY(!ownerless->ErrorImage(&lonely)->isVisible());
    delete ownerless;

    // A provider freed before its form frees its marks.
    image = provider->ErrorImage("edPrijmeni");
    delete provider;
    QVERIFY(image.isNull());
}

void TestErrorProvider::iconsAndRegistration()
{
    for (TErrorType type : {etError, etWarning, etInformation, etConfirmation}) {
        const QImage icon = TErrorProvider::ErrorBitmap(type).toImage();
        QCOMPARE(icon.size(), QSize(16, 16));
        QCOMPARE(qAlpha(icon.pixel(0, 0)), 0); // drawn transparently
    }
    QVERIFY(TErrorProvider::ErrorBitmap(etError).toImage() != TErrorProvider::ErrorBitmap(etWarning).toImage());

    RegisterErrorProvider();
    const TComponentEntry *entry = Catalogue::Instance().Find("TErrorProvider");
    QVERIFY(entry);
    QCOMPARE(entry->Page, QString("Oxa"));
    QVERIFY(!entry->IsWidget);
    QVERIFY(qobject_cast<TErrorProvider *>(Catalogue::Instance().Create("TErrorProvider", form)));
}

QTEST_MAIN(TestErrorProvider)
#include "tst_errorprovider.moc"
