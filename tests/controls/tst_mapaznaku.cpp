#include "oxa/controls/MapaZnaku.h"
#include "oxa/toolkit/StringGrid.h"

#include "support/TestSupport.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>

using namespace oxa;

enum Action { DoubleClickEuro, ArrowsAndEnter, Zavrit };

class TestMapaZnaku : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formOpensOnTheFirstCharacter()
    {
        TMapaZnaku form;
        QCOMPARE(form.Label1()->text(), QStringLiteral("Vyberte  požadovaný znak:")); // two spaces
        QVERIFY(test::ShowAndActivate(&form));
        TStringGrid *grid = form.StrGdMapa();
        QCOMPARE(form.GetVybranyZnak(), QChar(u'ä'));
        QVERIFY(grid->hasFocus());
        QTest::keyClick(grid, Qt::Key_Tab); // the tab order: grid, insert, close
        QVERIFY(form.btnVlozit()->hasFocus());
    }

    void dialogResult_data()
    {
        QTest::addColumn<int>("action");
        QTest::addColumn<int>("result");
        QTest::addColumn<QChar>("znak");
        QTest::newRow("double click on €") << int(DoubleClickEuro) << int(mrOk) << QChar(u'€');
        QTest::newRow("Down, End, Enter") << int(ArrowsAndEnter) << int(mrOk) << QChar(u'Ľ');
        QTest::newRow("Zavřít") << int(Zavrit) << int(mrCancel) << QChar(u'ë');
    }

    // Runs the dialog through the message service and drives it as the row says.
    void dialogResult()
    {
        QFETCH(int, action);
        TMapaZnaku form;
        test::DialogAnswerer answerer([&](QDialog *dialog) {
            if (dialog != &form || !test::ShowAndActivate(&form))
                return mrNone;
            TStringGrid *grid = form.StrGdMapa();
            const int euro = int(TMapaZnaku::Znaky().indexOf(u'€'));
            const QPoint euroCentre = grid->CellRect(euro % 11, euro / 11).center();
            switch (action) {
            case DoubleClickEuro:
                QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, euroCentre);
                QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, euroCentre);
                break;
            case ArrowsAndEnter:
                for (Qt::Key key : {Qt::Key_Down, Qt::Key_End, Qt::Key_Return})
                    QTest::keyClick(grid, key);
                break;
            default:
                QTest::keyClick(grid, Qt::Key_Right);
                QTest::mouseClick(form.btnZavrit(), Qt::LeftButton);
            }
            form.hide();
            return TModalResult(form.result());
        });
        QTEST(int(MessageService::ExecDialog(&form)), "result");
        QTEST(form.GetVybranyZnak(), "znak");
    }

    void emptyCellShowsMessage()
    {
        test::MessageRecorder messages;
        TMapaZnaku form;
        QVERIFY(test::ShowAndActivate(&form));
        TStringGrid *grid = form.StrGdMapa();
        grid->SetCells(4, 2, QString());
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->CellRect(4, 2).center());
        QVERIFY(!form.btnVlozit()->isEnabled());
        QVERIFY(form.GetVybranyZnak().isNull());
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, grid->CellRect(4, 2).center());
        QCOMPARE(messages.Texts(), QStringList{QStringLiteral("Nebyl vybrán znak !!!")});
        QVERIFY(form.isVisible()); // nothing empty is ever inserted
    }

    // With the application's font each character is shown whole in its cell.
    void everyCharacterFitsItsCell()
    {
        const test::ApplicationFontScope font(12);

        TMapaZnaku form;
        QVERIFY(test::ShowAndActivate(&form));
        TStringGrid *grid = form.StrGdMapa();
        const QFontMetrics metrics(grid->font());
        for (int i = 0; i < TMapaZnaku::Znaky().size(); ++i) {
            const QString znak = grid->Cells(i % 11, i / 11);
            const QRect cell = grid->CellRect(i % 11, i / 11);
            QVERIFY(grid->viewport()->rect().contains(cell));
            const QSize text(metrics.horizontalAdvance(znak), metrics.height());
            QVERIFY2(
                QRect(cell.topLeft() + QPoint(TStringGrid::TextOffset, TStringGrid::TextOffset),
                      text)
                        .intersected(cell)
                        .size() == text,
                qPrintable(znak));
        }
    }
};

QTEST_MAIN(TestMapaZnaku)
#include "tst_mapaznaku.moc"
