#include "oxa/toolkit/GeometryScale.h"
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
    // The glyphs are read at their designed 14 pixels: scale 1.
    void initTestCase() { TGeometryScale::Instance()->SetFactor(1.0); }
    void cleanupTestCase() { TGeometryScale::Instance()->ResetFactor(); }
    // A new host takes the last test's picker with it.
    void init() { host = std::make_unique<QWidget>(); }
    void paletteButtons()
    {
        OpenForm(cdmNone, clOlive);
        QCOMPARE(form->pos(), QPoint(40, 120));
        const QList<QToolButton *> buttons = form->PaletteButtons();
        QCOMPARE(buttons.size(), 16);
        // The preset is checked, red is framed in white, the misspelt hint is kept.
        for (const auto &[index, hint, color] : QList<std::tuple<int, QString, TColor>>{
                 {3, "olivová", clOlive}, {9, "červená", clRed}, {10, "žlutozenená", clLime}}) {
            QCOMPARE(buttons.at(index)->toolTip(), hint);
            QCOMPARE(buttons.at(index)->isChecked(), color == clOlive);
            const QImage glyph = buttons.at(index)->icon().pixmap(14, 14).toImage();
            QCOMPARE(glyph.pixelColor(7, 7), ColorToQColor(color));
            QCOMPARE(glyph.pixelColor(0, 0), QColor(color == clRed ? Qt::white : Qt::red));
        }
        QVERIFY(!form->SpecialButton());
        QCOMPARE(form->OthersButton()->text(), QString("Další barvy..."));
    }

    void clickChoosesAndCloses_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("tag"); // of the clicked button; -1 is the special button
        QTest::addColumn<QString>("caption");
        QTest::addColumn<TColor>("result");
        QTest::newRow("palette") << int(cdmTransparent) << 10 << "" << clLime;
        QTest::newRow("transparent") << int(cdmTransparent) << -1 << "Průhledná" << clNone;
        QTest::newRow("automatic") << int(cdmAutomatic) << -1 << "Automatická" << clWindowText;
        QTest::newRow("tag outside 0-15") << int(cdmNone) << 16 << "" << clRed;
    }

    void clickChoosesAndCloses()
    {
        QFETCH(int, mode);
        QFETCH(int, tag);
        QFETCH(QString, caption);
        QFETCH(TColor, result);
        const bool chosen = tag < 16;
        OpenForm(TColorDlgMode(mode), clRed);
        if (QToolButton *special = form->SpecialButton(); tag == -1) {
            QCOMPARE(special->text(), caption);
            QCOMPARE(!special->icon().isNull(), result != clNone);
            QTest::mouseClick(special, Qt::LeftButton);
        } else if (chosen) {
            QTest::mouseClick(form->PaletteButtons().at(tag), Qt::LeftButton);
        } else {
            QToolButton stranger;
            stranger.setProperty("Tag", tag);
            form->BtnClick(&stranger);
        }
        QCOMPARE(closed->count(), 1);
        QCOMPARE(closed->at(0), (QVariantList{chosen, QVariant::fromValue(result)}));
        QCOMPARE(selected->count(), int(chosen));
        QVERIFY(FreedAfterClosing());
    }

    // Cancelled, the picker stays open as it was, until it loses activation (a
    // click elsewhere) and closes without a choice; confirmed, it takes the colour.
    void moreColoursAndDeactivation()
    {
        OpenForm(cdmNone, clTeal);
        QList<QColor> presets;
        QPointer<QDialog> shown;
        bool accept = false;
        test::DialogAnswerer answerer([&](QDialog *dialog) {
            shown = dialog;
            auto *colorDialog = qobject_cast<QColorDialog *>(dialog);
            presets.append(colorDialog->currentColor());
            colorDialog->setCurrentColor(QColor(0x12, 0x34, 0x56));
            accept ? dialog->accept() : dialog->reject();
            return dialog->result();
        });
        QTest::mouseClick(form->OthersButton(), Qt::LeftButton);
        QVERIFY(shown.isNull() && !FreedAfterClosing() && form->isVisible());
        QCOMPARE(form->Color(), clTeal);
        QVERIFY(test::ShowAndActivate(host.get()));
        QCOMPARE(closed->count(), 1);
        QCOMPARE(closed->at(0), (QVariantList{false, QVariant::fromValue(clTeal)}));
        QVERIFY(FreedAfterClosing());

        OpenForm(cdmNone, clTeal);
        accept = true;
        QTest::mouseClick(form->OthersButton(), Qt::LeftButton);
        QCOMPARE(presets, (QList<QColor>{ColorToQColor(clTeal), ColorToQColor(clTeal)}));
        QCOMPARE(selected->at(0).at(0).value<TColor>(), RGBColor(0x12, 0x34, 0x56));
        QVERIFY(shown.isNull() && FreedAfterClosing());
    }

private:
    // A shown picker at (40, 120) with the preset colour, and spies on its signals.
    void OpenForm(TColorDlgMode mode, TColor preset)
    {
        form = new TColorForm(host.get());
        form->SetColor(preset);
        form->Init(120, 40, mode);
        QVERIFY(test::ShowAndActivate(form));
        selected = std::make_unique<QSignalSpy>(form.data(), &TColorForm::ColorSelected);
        closed = std::make_unique<QSignalSpy>(form.data(), &TColorForm::Closed);
    }

    bool FreedAfterClosing()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return form.isNull();
    }

    std::unique_ptr<QWidget> host;
    QPointer<TColorForm> form;
    std::unique_ptr<QSignalSpy> selected, closed;
};

QTEST_MAIN(TestColorDlg)
#include "tst_colordlg.moc"
