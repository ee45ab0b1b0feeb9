#include "oxa/utilities/ColorDlg.h"
#include "support/TestSupport.h"

#include <QColorDialog>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <memory>

using namespace oxa;

class TestColorDlg : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void paletteButtons();
    void clickingColourReportsItAndCloses();
    void specialButtonByMode_data();
    void specialButtonByMode();
    void moreColours_data();
    void moreColours();
    void closingWithoutChoice();

private:
    // A shown picker at (40, 120) with the preset colour, and spies on its signals.
    void OpenForm(TColorDlgMode mode, TColor preset);
    static bool FreedAfterClosing(const QPointer<TColorForm> &form);

    QWidget *host = nullptr;
    QPointer<TColorForm> form;
    std::unique_ptr<QSignalSpy> selected, closed;
};

void TestColorDlg::init()
{
    host = new QWidget;
}

void TestColorDlg::cleanup()
{
    selected.reset();
    closed.reset();
    delete host; // takes a picker still open with it
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void TestColorDlg::OpenForm(TColorDlgMode mode, TColor preset)
{
    form = new TColorForm(host);
    form->SetColor(preset);
    form->Init(120, 40, mode);
    QVERIFY(test::ShowAndActivate(form));
    selected = std::make_unique<QSignalSpy>(form.data(), &TColorForm::ColorSelected);
    closed = std::make_unique<QSignalSpy>(form.data(), &TColorForm::Closed);
}

bool TestColorDlg::FreedAfterClosing(const QPointer<TColorForm> &form)
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return form.isNull();
}

void TestColorDlg::paletteButtons()
{
    const QStringList hints = {"černá", "kaštanová", "zelená", "olivová", "námořnická modř",
                               "fialová", "šedozelená", "šedá", "stříbrná", "červená",
                               "žlutozenená", "žlutá", "modrá", "fuchsiová", "akvamarínová", "bílá"};
    const QList<TColor> colors = {0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080,
                                  0x808000, 0x808080, 0xC0C0C0, 0x0000FF, 0x00FF00, 0x00FFFF,
                                  0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};
    OpenForm(cdmNone, clOlive);
    QCOMPARE(form->pos(), QPoint(40, 120));
    QVERIFY(form->windowFlags().testFlag(Qt::FramelessWindowHint));
    const QList<QToolButton *> buttons = form->PaletteButtons();
    QCOMPARE(buttons.size(), 16);
    for (int i = 0; i < 16; ++i) {
        QCOMPARE(buttons.at(i)->toolTip(), hints.at(i));
        QCOMPARE(buttons.at(i)->isChecked(), colors.at(i) == clOlive);
        const QImage glyph = buttons.at(i)->icon().pixmap(14, 14).toImage();
        QCOMPARE(glyph.pixelColor(7, 7), ColorToQColor(colors.at(i)));
        // Framed in red, the red glyph in white.
        QCOMPARE(glyph.pixelColor(0, 0), QColor(colors.at(i) == clRed ? Qt::white : Qt::red));
    }
    QCOMPARE(buttons.at(7)->y(), buttons.at(0)->y()); // rows of eight
    QCOMPARE(buttons.at(8)->x(), buttons.at(0)->x());
    QVERIFY(buttons.at(8)->y() > buttons.at(0)->y());
}

void TestColorDlg::clickingColourReportsItAndCloses()
{
    OpenForm(cdmTransparent, clBlack);
    QTest::mouseClick(form->PaletteButtons().at(10), Qt::LeftButton);
    QCOMPARE(selected->count(), 1);
    QCOMPARE(selected->at(0).at(0).value<TColor>(), clLime);
    QCOMPARE(closed->count(), 1);
    QCOMPARE(closed->at(0), (QVariantList{true, QVariant::fromValue(clLime)}));
    QVERIFY(FreedAfterClosing(form));

    // A button that is not one of the palette closes with the colour unchanged.
    OpenForm(cdmNone, clNavy);
    QToolButton stranger;
    stranger.setProperty("Tag", 16);
    form->BtnClick(&stranger);
    QCOMPARE(closed->at(0), (QVariantList{false, QVariant::fromValue(clNavy)}));
}

void TestColorDlg::specialButtonByMode_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<TColor>("result");
    QTest::addColumn<bool>("hasGlyph");
    QTest::newRow("none") << int(cdmNone) << QString() << clRed << false;
    QTest::newRow("transparent") << int(cdmTransparent) << "Průhledná" << clNone << false;
    QTest::newRow("automatic") << int(cdmAutomatic) << "Automatická" << clWindowText << true;
}

void TestColorDlg::specialButtonByMode()
{
    QFETCH(int, mode);
    QFETCH(QString, caption);
    QFETCH(TColor, result);
    QFETCH(bool, hasGlyph);
    OpenForm(TColorDlgMode(mode), clRed);
    QCOMPARE(form->OthersButton()->text(), QString("Další barvy..."));
    QVERIFY(form->OthersButton()->icon().isNull());
    QVERIFY(form->OthersButton()->y() > form->PaletteButtons().last()->y());
    QToolButton *special = form->SpecialButton();
    QCOMPARE(special != nullptr, mode != cdmNone);
    if (!special)
        return;
    QCOMPARE(special->text(), caption);
    QCOMPARE(!special->icon().isNull(), hasGlyph);
    QVERIFY(special->y() < form->PaletteButtons().first()->y());
    QTest::mouseClick(special, Qt::LeftButton);
    QCOMPARE(closed->at(0), (QVariantList{true, QVariant::fromValue(result)}));
}

void TestColorDlg::moreColours_data()
{
    QTest::addColumn<bool>("accept");
    QTest::newRow("accepted") << true;
    QTest::newRow("cancelled") << false;
}

void TestColorDlg::moreColours()
{
    QFETCH(bool, accept);
    OpenForm(cdmNone, clTeal);
    QColor preset;
    QPointer<QDialog> shown;
    test::DialogAnswerer answerer([&](QDialog *dialog) {
        shown = dialog;
        auto *colorDialog = qobject_cast<QColorDialog *>(dialog);
        preset = colorDialog->currentColor();
        colorDialog->setCurrentColor(QColor(0x12, 0x34, 0x56));
        accept ? dialog->accept() : dialog->reject();
        return dialog->result();
    });
    QTest::mouseClick(form->OthersButton(), Qt::LeftButton);
    QCOMPARE(answerer.Count(), 1);
    QCOMPARE(preset, ColorToQColor(clTeal));
    QVERIFY(shown.isNull());
    if (accept) {
        QCOMPARE(selected->at(0).at(0).value<TColor>(), RGBColor(0x12, 0x34, 0x56));
        QVERIFY(FreedAfterClosing(form));
    } else {
        QVERIFY(!FreedAfterClosing(form));
        QVERIFY(form->isVisible());
        QCOMPARE(closed->count(), 0);
        QCOMPARE(form->Color(), clTeal);
    }
}

void TestColorDlg::closingWithoutChoice()
{
    OpenForm(cdmAutomatic, clSilver);
    QVERIFY(test::ShowAndActivate(host)); // the user clicks elsewhere
    QCOMPARE(selected->count(), 0);
    QCOMPARE(closed->at(0), (QVariantList{false, QVariant::fromValue(clSilver)}));
    QVERIFY(FreedAfterClosing(form));

    OpenForm(cdmNone, clSilver);
    QTest::keyClick(form, Qt::Key_Escape);
    QCOMPARE(closed->count(), 1);
    QCOMPARE(selected->count(), 0);
}

QTEST_MAIN(TestColorDlg)
#include "tst_colordlg.moc"
