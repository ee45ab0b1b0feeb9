#include "oxa/toolkit/Color.h"
#include "oxa/toolkit/Exceptions.h"

#include <QLineEdit>
#include <QTest>

using namespace oxa;

class TestColor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stringRoundTrip_data();
    void stringRoundTrip();
    void stringToColorRejectsGarbage();
    void plainAndSystemColors();
};

// The values are the platform's, written out: the names must map to them.
void TestColor::stringRoundTrip_data()
{
    QTest::addColumn<uint>("color");
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << 0x000000FFu << "clRed";
    QTest::newRow("none") << 0x1FFFFFFFu << "clNone";
    QTest::newRow("unnamed plain") << 0x00B9FFFFu << "$00B9FFFF";
    QTest::newRow("unnamed system") << 0xFF000019u << "$FF000019";
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
    for (const QString bad : {"", "clNoSuchColour", "$XYZ", "12abc"}) {
        try {
            StringToColor(bad);
            QFAIL(qPrintable(bad));
        } catch (const EConvertError &e) {
            QVERIFY(e.Message().contains(bad));
        }
    }
}

// A plain colour has red in its low byte; a system colour is a palette role,
// which a control's colour falls back to.
void TestColor::plainAndSystemColors()
{
    QCOMPARE(RGBColor(0x12, 0x34, 0x56), 0x00563412u);
    QCOMPARE(ColorToQColor(0x00B9FFFF), QColor(255, 255, 185));
    QCOMPARE(QColorToColor(QColor(255, 255, 185)), 0x00B9FFFFu);
    QVERIFY(!ColorToQColor(clNone).isValid());
    QPalette palette;
    palette.setColor(QPalette::ToolTipBase, QColor(1, 2, 3));
    QCOMPARE(ColorToQColor(clInfoBk, palette), QColor(1, 2, 3));

    QLineEdit edit;
    SetControlColor(&edit, clYellow);
    QCOMPARE(edit.palette().color(QPalette::Base), QColor(255, 255, 0));
    SetControlColor(&edit, clWindow);
    QCOMPARE(edit.palette().color(QPalette::Base),
             QApplication::palette(&edit).color(QPalette::Base));
}

QTEST_MAIN(TestColor)
#include "tst_color.moc"
