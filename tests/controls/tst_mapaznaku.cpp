#include "oxa/controls/MapaZnaku.h"
#include "oxa/toolkit/StringGrid.h"

#include "support/TestSupport.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

using namespace oxa;

namespace {

QPoint CellCentreOf(TMapaZnaku *form, QChar znak)
{
    const int index = int(TMapaZnaku::Znaky().indexOf(znak));
    return form->StrGdMapa()->CellRect(index % 11, index / 11).center();
}

// Runs the dialog through the message service, driving it with `drive`.
TModalResult RunDialog(TMapaZnaku &form, const std::function<void(TMapaZnaku *)> &drive)
{
    test::DialogAnswerer answerer([&](QDialog *dialog) {
        auto *shown = qobject_cast<TMapaZnaku *>(dialog);
        if (!shown || !test::ShowAndActivate(shown))
            return mrNone;
        drive(shown);
        const TModalResult result = shown->result();
        shown->hide();
        return result;
    });
    return MessageService::ExecDialog(&form);
}

} // namespace

class TestMapaZnaku : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void layoutAndTexts();
    void fiftyFiveCharactersInOrder();
    void doubleClickInsertsEuro();
    void enterInsertsFocusedCharacter();
    void keyboardMoveSelects();
    void closeButtonsCancel_data();
    void closeButtonsCancel();
    void emptyCellShowsMessage();
};

void TestMapaZnaku::layoutAndTexts()
{
    TMapaZnaku form;
    QCOMPARE(form.windowTitle(), QStringLiteral("Mapa znaků"));
    QCOMPARE(form.size(), QSize(305, 208));
    QCOMPARE(form.Label1()->text(), QStringLiteral("Vyberte  požadovaný znak:"));
    QCOMPARE(form.Label1()->pos(), QPoint(8, 8));
    TStringGrid *grid = form.StrGdMapa();
    QCOMPARE(grid->geometry(), QRect(8, 32, 291, 134));
    QCOMPARE(grid->ColCount(), 11);
    QCOMPARE(grid->RowCount(), 5);
    QCOMPARE(grid->FixedCols(), 0);
    QCOMPARE(grid->FixedRows(), 0);
    QCOMPARE(grid->DefaultColWidth(), 25);
    QCOMPARE(grid->DefaultRowHeight(), 25);
    QCOMPARE(grid->ScrollBars(), ssNone);
    QVERIFY(grid->Options().testFlag(goDrawFocusSelected));
    QCOMPARE(grid->font().pixelSize(), 20);
    QCOMPARE(form.btnVlozit()->text(), QStringLiteral("Vložit znak do textu"));
    QCOMPARE(form.btnVlozit()->geometry(), QRect(16, 176, 121, 25));
    QCOMPARE(form.btnZavrit()->text(), QStringLiteral("Zavřít"));
    QCOMPARE(form.btnZavrit()->geometry(), QRect(160, 176, 123, 25));
    // Tab order: grid, insert, close.
    QVERIFY(test::ShowAndActivate(&form));
    QVERIFY(grid->hasFocus());
    QTest::keyClick(grid, Qt::Key_Tab);
    QVERIFY(form.btnVlozit()->hasFocus());
    QTest::keyClick(form.btnVlozit(), Qt::Key_Tab);
    QVERIFY(form.btnZavrit()->hasFocus());
}

void TestMapaZnaku::fiftyFiveCharactersInOrder()
{
    const QString znaky = TMapaZnaku::Znaky();
    QCOMPARE(znaky.size(), 55);
    QCOMPARE(znaky, QStringLiteral("äëöüŕźśĺćńľÄËÖÜŔŹŚĹĆŃĽ@#$%‰§&€Ł×°<>«»+-*/=:^{}[]|\\;?!_~"));
    TMapaZnaku form;
    QVERIFY(test::ShowAndActivate(&form));
    TStringGrid *grid = form.StrGdMapa();
    for (int i = 0; i < 55; ++i)
        QCOMPARE(grid->Cells(i % 11, i / 11), QString(znaky.at(i)));
    // All 55 cells are shown whole in the designed size.
    QVERIFY(grid->viewport()->rect().contains(grid->CellRect(10, 4)));
    QCOMPARE((TGridCoord{grid->Col(), grid->Row()}), (TGridCoord{0, 0}));
    QCOMPARE(form.GetVybranyZnak(), QChar(u'ä'));
    QVERIFY(form.btnVlozit()->isEnabled());
    QVERIFY(grid->hasFocus());
}

void TestMapaZnaku::doubleClickInsertsEuro()
{
    TMapaZnaku form;
    const TModalResult result = RunDialog(form, [](TMapaZnaku *shown) {
        const QPoint euro = CellCentreOf(shown, QChar(u'€'));
        QTest::mouseClick(shown->StrGdMapa()->viewport(), Qt::LeftButton, {}, euro);
        QTest::mouseDClick(shown->StrGdMapa()->viewport(), Qt::LeftButton, {}, euro);
    });
    QCOMPARE(result, mrOk);
    QCOMPARE(form.GetVybranyZnak(), QChar(u'€'));
}

void TestMapaZnaku::enterInsertsFocusedCharacter()
{
    TMapaZnaku form;
    const TModalResult result = RunDialog(form, [](TMapaZnaku *shown) {
        QTest::keyClick(shown->StrGdMapa(), Qt::Key_Down);
        QTest::keyClick(shown->StrGdMapa(), Qt::Key_End);
        QTest::keyClick(shown->StrGdMapa(), Qt::Key_Return);
    });
    QCOMPARE(result, mrOk);
    QCOMPARE(form.GetVybranyZnak(), QChar(u'Ľ'));
}

void TestMapaZnaku::keyboardMoveSelects()
{
    TMapaZnaku form;
    QVERIFY(test::ShowAndActivate(&form));
    QTest::keyClick(form.StrGdMapa(), Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(form.GetVybranyZnak(), QChar(u'~'));
    QTest::keyClick(form.StrGdMapa(), Qt::Key_Left);
    QCOMPARE(form.GetVybranyZnak(), QChar(u'_'));
    QVERIFY(form.isVisible());
}

void TestMapaZnaku::closeButtonsCancel_data()
{
    QTest::addColumn<bool>("escape");
    QTest::newRow("Zavřít") << false;
    QTest::newRow("Escape") << true;
}

void TestMapaZnaku::closeButtonsCancel()
{
    QFETCH(bool, escape);
    TMapaZnaku form;
    const TModalResult result = RunDialog(form, [escape](TMapaZnaku *shown) {
        QTest::keyClick(shown->StrGdMapa(), Qt::Key_Right);
        if (escape)
            QTest::keyClick(shown->StrGdMapa(), Qt::Key_Escape);
        else
            QTest::mouseClick(shown->btnZavrit(), Qt::LeftButton);
    });
    QCOMPARE(result, mrCancel);
}

void TestMapaZnaku::emptyCellShowsMessage()
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
    // The dialog stays open: nothing empty is ever inserted.
    QVERIFY(form.isVisible());
    QCOMPARE(form.result(), 0);
    // Showing the form again refills the grid and selects its first cell.
    form.hide();
    QVERIFY(test::ShowAndActivate(&form));
    QCOMPARE(grid->Cells(4, 2), QStringLiteral("‰"));
    QCOMPARE(form.GetVybranyZnak(), QChar(u'ä'));
}

QTEST_MAIN(TestMapaZnaku)
#include "tst_mapaznaku.moc"
