#include "oxa/toolkit/Color.h"
#include "oxa/toolkit/Exceptions.h"

#include <QLineEdit>
#include <QTest>

using namespace oxa;

class TestColor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void constantsHaveTheToolkitValues();
    void stringRoundTrip_data();
    void stringRoundTrip();
    void stringToColorRejectsGarbage();
    void plainColorsConvertWithRedInTheLowByte();
    void systemColorsComeFromThePalette();
    void controlColorPaintsTheBackground();
};

void TestColor::constantsHaveTheToolkitValues()
{
    QCOMPARE(clYellow, 0x0000FFFFu);
    QCOMPARE(clWindow, 0xFF000005u);
    QCOMPARE(clWindowText, 0xFF000008u);
    QCOMPARE(clInactiveBorder, 0xFF00000Bu);
    QCOMPARE(clHighlight, 0xFF00000Du);
    QCOMPARE(clBtnFace, 0xFF00000Fu);
    QCOMPARE(clInfoBk, 0xFF000018u);
    QCOMPARE(clNone, 0x1FFFFFFFu);
    QCOMPARE(clDefault, 0x20000000u);
    QCOMPARE(RGBColor(0x12, 0x34, 0x56), 0x00563412u);
}

void TestColor::stringRoundTrip_data()
{
    QTest::addColumn<uint>("color");
    QTest::addColumn<QString>("text");
    QTest::newRow("named plain") << uint(clRed) << "clRed";
    QTest::newRow("named system") << uint(clWindowText) << "clWindowText";
    QTest::newRow("none") << uint(clNone) << "clNone";
    QTest::newRow("default") << uint(clDefault) << "clDefault";
    QTest::newRow("pale yellow") << 0x00B9FFFFu << "$00B9FFFF";
    QTest::newRow("unnamed system") << 0xFF000019u << "$FF000019";
    QTest::newRow("black is named") << uint(clBlack) << "clBlack";
}

void TestColor::stringRoundTrip()
{
    QFETCH(uint, color);
    QFETCH(QString, text);
    QCOMPARE(ColorToString(color), text);
    QCOMPARE(uint(StringToColor(text)), color);
}

void TestColor::stringToColorRejectsGarbage()
{
    QCOMPARE(StringToColor(QStringLiteral("255")), clRed);
    QCOMPARE(StringToColor(QStringLiteral("clwindow")), clWindow);
    for (const char *bad : {"", "clNoSuchColour", "$XYZ", "12abc"}) {
        try {
            StringToColor(QString::fromLatin1(bad));
            QFAIL(bad);
        } catch (const EConvertError &e) {
            QVERIFY(e.Message().contains(QString::fromLatin1(bad)));
        }
    }
}

void TestColor::plainColorsConvertWithRedInTheLowByte()
{
    QCOMPARE(ColorToQColor(clRed), QColor(255, 0, 0));
    QCOMPARE(ColorToQColor(clNavy), QColor(0, 0, 128));
    QCOMPARE(ColorToQColor(0x00B9FFFF), QColor(255, 255, 185));
    QVERIFY(!ColorToQColor(clNone).isValid());
    QCOMPARE(QColorToColor(QColor(255, 255, 185)), 0x00B9FFFFu);
}

void TestColor::systemColorsComeFromThePalette()
{
    QPalette p;
    p.setColor(QPalette::Base, QColor(1, 2, 3));
    p.setColor(QPalette::Text, QColor(4, 5, 6));
    p.setColor(QPalette::Highlight, QColor(7, 8, 9));
    p.setColor(QPalette::ToolTipBase, QColor(10, 11, 12));
    p.setColor(QPalette::Button, QColor(13, 14, 15));
    QCOMPARE(ColorToQColor(clWindow, p), QColor(1, 2, 3));
    QCOMPARE(ColorToQColor(clWindowText, p), QColor(4, 5, 6));
    QCOMPARE(ColorToQColor(clHighlight, p), QColor(7, 8, 9));
    QCOMPARE(ColorToQColor(clInfoBk, p), QColor(10, 11, 12));
    QCOMPARE(ColorToQColor(clBtnFace, p), QColor(13, 14, 15));
}

void TestColor::controlColorPaintsTheBackground()
{
    QLineEdit edit;
    edit.resize(120, 24);
    SetControlColor(&edit, clYellow);
    QCOMPARE(edit.palette().color(QPalette::Base), QColor(255, 255, 0));
    const QImage image = edit.grab().toImage();
    QCOMPARE(QColor(image.pixel(image.width() / 2, image.height() / 2)), QColor(255, 255, 0));
    SetControlColor(&edit, clWindow);
    QCOMPARE(edit.palette().color(QPalette::Base), QApplication::palette(&edit).color(QPalette::Base));
}

QTEST_MAIN(TestColor)
#include "tst_color.moc"
