#include "oxa/toolkit/GeometryScale.h"

#include <QApplication>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>

using namespace oxa;

namespace {

// The application's font in another size.
QFont PointFont(int points, bool pixels = false)
{
    QFont font = QApplication::font();
    pixels ? font.setPixelSize(points) : font.setPointSize(points);
    return font;
}

} // namespace

class TestGeometryScale : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void factorForFont_data();
    void factorForFont();
    void hostFactor_data();
    void hostFactor();
    void formGeometry();
};

void TestGeometryScale::cleanup()
{
    TGeometryScale::Instance()->ResetFactor();
}

void TestGeometryScale::factorForFont_data()
{
    QTest::addColumn<QFont>("font");
    QTest::newRow("Qt's default font") << QApplication::font();
    QTest::newRow("6 points") << PointFont(6);
    QTest::newRow("30 pixels") << PointFont(30, true);
}

// The factor is never below 1, and the reference metrics scaled by it hold
// the font's line, its average letter and its digit.
void TestGeometryScale::factorForFont()
{
    QFETCH(QFont, font);
    const double factor = TGeometryScale::FactorForFont(font);
    QVERIFY(factor >= 1.0);
    const QFontMetricsF metrics(font);
    QVERIFY(metrics.height() <= ReferenceFontHeight * factor + 1e-9);
    QVERIFY(metrics.horizontalAdvance(QLatin1Char('0')) <= ReferenceDigitWidth * factor + 1e-9);
    const QString letters = QStringLiteral("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ");
    QVERIFY(metrics.horizontalAdvance(letters) / 52 <= ReferenceAverageCharWidth * factor + 1e-9);
}

void TestGeometryScale::hostFactor_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("factor");
    QTest::addColumn<int>("scaled65");
    QTest::newRow("1.0: the designed pixels") << 1.0 << 1.0 << 65;
    QTest::newRow("1.5, rounded") << 1.5 << 1.5 << 98;
    QTest::newRow("below 1") << 0.5 << 1.0 << 65;
    QTest::newRow("NaN") << std::nan("") << 1.0 << 65;
}

void TestGeometryScale::hostFactor()
{
    QFETCH(double, value);
    TGeometryScale *scale = TGeometryScale::Instance();
    QSignalSpy changes(scale, &TGeometryScale::factorChanged);
    const double automatic = scale->Factor();
    scale->SetFactor(value);
    QTEST(scale->Factor(), "factor");
    QTEST(ScalePixels(65), "scaled65");
    QVERIFY(!scale->Automatic());
    QCOMPARE(changes.size(), scale->Factor() == automatic ? 0 : 1);
    // Back to the application font's factor.
    scale->ResetFactor();
    QVERIFY(scale->Automatic());
    QCOMPARE(scale->Factor(), automatic);
}

void TestGeometryScale::formGeometry()
{
    QWidget form;
    auto *label = new QLabel(QStringLiteral("Vyberte"), &form);
    label->setGeometry(8, 8, 289, 16);
    form.resize(305, 208);
    form.setFixedSize(form.size());

    TGeometryScale::Instance()->SetFactor(2.0);
    ScaleFormGeometry(&form);
    QCOMPARE(label->geometry(), QRect(16, 16, 578, 32));
    QCOMPARE(form.size(), QSize(610, 416));

    // The designed geometry is remembered, so a scale back is exact.
    TGeometryScale::Instance()->SetFactor(1.0);
    ScaleFormGeometry(&form);
    QCOMPARE(label->geometry(), QRect(8, 8, 289, 16));
    QCOMPARE(form.size(), QSize(305, 208));
}

QTEST_MAIN(TestGeometryScale)
#include "tst_geometryscale.moc"
