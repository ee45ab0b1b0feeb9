#include "oxa/controls/ErrorProvider.h"
#include "support/TestSupport.h"

#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <memory>

using namespace oxa;

class TestErrorProvider : public QObject
{
    Q_OBJECT

    std::unique_ptr<test::TestForm> form;
    TErrorProvider *provider = nullptr;
    QTimer *timer = nullptr;

    QLineEdit *AddEdit(const QString &name, int top = 50)
    {
        auto *edit = form->Add<QLineEdit>();
        edit->setObjectName(name);
        edit->setGeometry(100, top, 120, 21);
        return edit;
    }

    // The marks of the controls at each blink tick until the blinking ends:
    // 1 shown, 0 hidden, - no mark.
    QString BlinkPhases(const QList<QLineEdit *> &edits)
    {
        QStringList phases;
        auto c = connect(timer, &QTimer::timeout, this, [&] {
            QString phase;
            for (QLineEdit *edit : edits) {
                const TErrorImage *image = provider->ErrorImage(edit);
                phase += !image ? '-' : image->isVisible() ? '1' : '0';
            }
            phases.append(phase);
        });
        if (!QTest::qWaitFor([this] { return !timer->isActive(); }))
            phases.append("still blinking");
        disconnect(c);
        return phases.join(' ');
    }

private Q_SLOTS:
    void init()
    {
        form = std::make_unique<test::TestForm>();
        QVERIFY(form->Show());
        provider = new TErrorProvider(form.get());
        provider->SetBlickInterval(5);
        timer = provider->findChild<QTimer *>();
    }
    void cleanup() { form.reset(); }

    void placement_data()
    {
        QTest::addColumn<int>("justify");
        QTest::addColumn<QPoint>("expected");
        // The control is at (100, 50), 120 x 21: 120 + 2 to the right, 16 + 2 to the left.
        QTest::newRow("top left") << int(jtTopLeft) << QPoint(82, 50);
        QTest::newRow("bottom right") << int(jtBottomRight) << QPoint(222, 55);
        QTest::newRow("center right") << int(jtCenterRight) << QPoint(222, 52);
    }

    void placement()
    {
        QFETCH(int, justify);
        QFETCH(QPoint, expected);
        QLineEdit *edit = AddEdit("edJmeno");
        provider->SetError(edit, "Chybí jméno", etError, TJustifyType(justify));
        TErrorImage *image = provider->ErrorImage(edit);
        QCOMPARE(image->parentWidget(), form.get());
        QCOMPARE(image->geometry(), QRect(expected, QSize(16, 16)));
        QCOMPARE(image->toolTip(), QString("Chybí jméno"));
    }

    void severityOrdering_data()
    {
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("second");
        QTest::addColumn<int>("expectedType");
        QTest::addColumn<QString>("expectedText");
        const int error = etError, warning = etWarning, info = etInformation;
        QTest::newRow("warning keeps error") << error << warning << error << "první";
        QTest::newRow("confirmation keeps information")
            << info << int(etConfirmation) << info << "první";
        QTest::newRow("error replaces warning") << warning << error << error << "druhá";
        QTest::newRow("same kind replaces") << warning << warning << warning << "druhá";
    }

    void severityOrdering()
    {
        QFETCH(int, first);
        QFETCH(int, second);
        // A new mark blinks through six phases, then stays and the timer stops.
        QLineEdit *edit = AddEdit("edRC");
        provider->SetError(edit, "první", TErrorType(first));
        QCOMPARE(BlinkPhases({edit}), QStringLiteral("1 0 1 0 1 0 1"));
        provider->SetError(edit, "druhá", TErrorType(second));
        QCOMPARE(provider->ErrorCount(), 1);
        QTEST(int(provider->ErrorImage(edit)->ErrorType()), "expectedType");
        QTEST(provider->ErrorImage(edit)->Hint(), "expectedText");
        // Kept or replaced, it blinks again, in the phase the provider is in.
        QCOMPARE(BlinkPhases({edit}), QStringLiteral("0 1 0 1 0 1 1"));
        QCOMPARE(provider->BlickCount(), 0);
    }

    void clearing()
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
        QCOMPARE(provider->BlickCount(), 0);
        QVERIFY(form->findChildren<TErrorImage *>().isEmpty());
    }

    void doubleClickShowsMatchingBox_data()
    {
        QTest::addColumn<int>("errorType");
        QTest::addColumn<int>("boxType");
        QTest::newRow("error") << int(etError) << int(mtError);
        QTest::newRow("confirmation") << int(etConfirmation) << int(mtConfirmation);
    }

    void doubleClickShowsMatchingBox()
    {
        QFETCH(int, errorType);
        QLineEdit *edit = AddEdit("edJmeno");
        provider->SetError(edit, "Zkontrolujte jméno", TErrorType(errorType));
        BlinkPhases({edit});
        test::MessageRecorder recorder;
        QTest::mouseDClick(provider->ErrorImage(edit), Qt::LeftButton);
        QCOMPARE(recorder.Shown().size(), 1);
        QTEST(int(recorder.Shown().first().Type), "boxType");
        QCOMPARE(recorder.Shown().first().Text, QString("Zkontrolujte jméno"));
    }

    void destruction()
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

        // A provider freed before its form frees its marks.
        image = provider->ErrorImage("edPrijmeni");
        delete provider;
        QVERIFY(image.isNull());
    }
};

QTEST_MAIN(TestErrorProvider)
#include "tst_errorprovider.moc"
