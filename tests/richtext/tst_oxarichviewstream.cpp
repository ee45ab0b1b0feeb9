#include "oxa/richtext/OxaRichView.h"
#include "oxa/richtext/Oxarichview_ftfunc.h"
#include "oxa/toolkit/CodePage1250.h"
#include "oxa/toolkit/Exceptions.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QTest>
#include <QTextTable>

#include <functional>

using namespace oxa;

namespace {

// What a document is made of: items with their styles' formats, texts and tags.
QStringList Describe(const TOxaRichView &e)
{
    QStringList out;
    for (int i = 0; i < e.ItemCount(); ++i) {
        QVariantList fields;
        if (e.GetItemStyle(i) == rvsTableItem) {
            const QTextTable *t = e.RVData()->GetItemTable(i);
            const TRVTableProps p = RichDocument::TableProps(t);
            fields = {"table",
                      t->rows(),
                      t->columns(),
                      p.BestWidth,
                      p.CellBorderWidth,
                      p.CellBorderColor,
                      RichDocument::TableName(t)};
        } else {
            const TFontInfo &f = e.Style().TextStyle(e.GetItemStyle(i));
            const TParaInfo &p = e.Style().ParaStyle(e.GetItemPara(i));
            fields = {e.IsParaStart(i), e.GetItemText(i), f.FontName,   f.Size,
                      f.Style.toInt(),  f.Color,          f.BackColor,  p.FirstIndent,
                      p.LeftIndent,     p.SpaceBefore,    p.SpaceAfter, p.LineSpacing,
                      int(p.Alignment), e.GetItemTag(i)};
        }
        QStringList texts;
        for (const QVariant &field : fields)
            texts << field.toString();
        out << texts.join(u' ');
    }
    return out;
}

QByteArray Padded(QByteArray bytes, int size)
{
    while (bytes.size() < size)
        bytes += ' ';
    return bytes;
}

QString LoadError(TOxaRichView &e, const QByteArray &bytes)
{
    try {
        e.LoadOxaRVFFromString(bytes);
    } catch (const Exception &error) {
        return error.Message();
    }
    return QString();
}

// A random document: runs in random formats, paragraphs, links and tables.
void FillRandom(TOxaRichView &e, quint32 seed)
{
    QRandomGenerator rng(seed);
    const QStringList fonts{"Arial", "Times New Roman", "Courier New", "Verdana"};
    const std::function<void(int)> steps[] = {
        [&](int i) { e.InsertText(QStringLiteral("text <%1> ěščř ").arg(i)); },
        [&](int) { e.InsertText(QStringLiteral("\r\n")); },
        [&](int) { e.SetFontStyle(TARVFontStyle(rng.bounded(int(afsFontNone) + 1))); },
        [&](int) { e.SetFontName(fonts[rng.bounded(int(fonts.size()))]); },
        [&](int) { e.SetFontSize(rng.bounded(6, 30)); },
        [&](int) { e.SetColor(TColor(rng.bounded(0x1000000))); },
        [&](int) { e.SetParaStyle(TARVParaStyle(rng.bounded(4))); },
        [&](int i) {
            e.InsLink(QStringLiteral("odkaz%1").arg(i), rng.bounded(1000), 2, rng.bounded(2));
        },
        [&](int) {
            if (e.CurrentTable())
                return;
            e.InsTable({rng.bounded(1, 4), rng.bounded(1, 4), rng.bounded(2) * 300, clRed, 1});
            e.InsertText(QStringLiteral("buňka"));
            e.CaretToEnd();
        }};
    const int pieces = rng.bounded(1, 30);
    for (int i = 0; i < pieces; ++i)
        steps[rng.bounded(9)](i);
}

} // namespace

class TestStream : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void header_data();
    void header();
    void loadErrors_data();
    void loadErrors();
    void twentyBytesPassTheSizeCheck();
    void malformedHeaderNumbersTakeDefaults();
    void loadsIntoADifferentStyleSheet();
    void randomRoundTrips();
    void bodyAloneAndStreams();
};

void TestStream::header_data()
{
    QTest::addColumn<QString>("tagged");
    QTest::addColumn<bool>("saveFontName");
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QString>("fontBack");
    QTest::newRow("standard styles only: an empty header")
        << "a" << true << QByteArray("1 2|||ORTB") << "Arial";
    QTest::newRow("bold, right-aligned")
        << "<fn=Times New Roman><b><p=r>x" << true
        << QByteArray("1 58|clWindowText clNone 10 1 Times_New_Roman ,|0 0 0 0 100 1,|")
        << "Times New Roman";
    QTest::newRow("unused styles are not written")
        << "<fs=30><fs=20><b>a" << true << QByteArray("1 34|clWindowText clNone 20 1 Arial ,||")
        << "Arial";
    QTest::newRow("code page 1250")
        << "<fn=Písmo č>a" << true
        << "1 36|clWindowText clNone 10 0 " + CodePage1250::FromUnicode(u"Písmo_č") + " ,||"
        << "Písmo č";
    // Spaces are written as underscores, so a name's own underscore comes back a space.
    QTest::newRow("underscore") << "<fn=My_Font>a" << true << QByteArray("1") << "My Font";
    QTest::newRow("font name not saved")
        << "<fn=Courier New><fs=14>a" << false << QByteArray("1 28|clWindowText clNone 14 0 ,||")
        << "Arial";
}

void TestStream::header()
{
    QFETCH(QString, tagged);
    QFETCH(bool, saveFontName);
    QFETCH(QByteArray, start);
    QFETCH(QString, fontBack);
    TOxaRichView e;
    e.SetSaveFontName(saveFontName);
    SetFormatedText(&e, tagged);
    const QByteArray bytes = e.SaveOxaRVFToString();
    QVERIFY2(bytes.startsWith(start), bytes.left(80).toPercentEncoding(" |,_").constData());
    const int last = e.ItemCount() - 1;
    const TFontInfo &font = e.Style().TextStyle(e.GetItemStyle(last));
    // An editor of the other setting reads a font name field that is not there.
    for (bool setting : {saveFontName, !saveFontName}) {
        TOxaRichView other;
        other.SetSaveFontName(setting);
        other.LoadOxaRVFFromString(bytes);
        QCOMPARE(other.Style().TextStyle(other.GetItemStyle(last)).Size, font.Size);
        if (setting == saveFontName && fontBack == font.FontName)
            QCOMPARE(Describe(other), Describe(e));
        if (setting == saveFontName)
            QCOMPARE(other.Style().TextStyle(other.GetItemStyle(last)).FontName, fontBack);
    }
}

void TestStream::loadErrors_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("message");
    QTest::newRow("19 bytes") << QByteArray("1 2|||ORTB\x01\0\0\0\0\0\0\0\0", 19)
                              << "Neplatný formát - malý soubor";
    QTest::newRow("no bar in 20 bytes") << Padded("1 2", 20) + "|||"
                                        << "Neplatný formát - neplatná hlavička";
    QTest::newRow("version 2") << Padded("2 10|", 30) << "Neplatný formát - neznámá verze";
    QTest::newRow("length not a number")
        << Padded("1 x|", 30) << "Neplatný formát - chybná délka hlavičky";
    QTest::newRow("negative length")
        << Padded("1 -5|", 30) << "Neplatný formát - chybná délka hlavičky";

    // A stream of text and a table, its body damaged.
    TOxaRichView source;
    SetFormatedText(&source, QStringLiteral("<b>a</b>\r\nb"));
    source.InsTable({2, 2, 0, clBlack, 1});
    const QByteArray valid = source.SaveOxaRVFToString();
    QByteArray wrongMagic = valid;
    wrongMagic[wrongMagic.indexOf("ORTB")] = 'X';
    const QString damaged = QStringLiteral("Neplatný formát - poškozený obsah dokumentu");
    QTest::newRow("truncated by one") << valid.chopped(1) << damaged;
    QTest::newRow("trailing garbage") << valid + "zz" << damaged;
    QTest::newRow("wrong magic") << wrongMagic << damaged;
}

void TestStream::loadErrors()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, message);
    TOxaRichView e;
    SetFormatedText(&e, QStringLiteral("<b>kept</b> text"));
    const QStringList before = Describe(e);
    const int styles = int(e.Style().TextStyles.size());
    QCOMPARE(LoadError(e, bytes), message);
    QCOMPARE(Describe(e), before);
    QCOMPARE(int(e.Style().TextStyles.size()), styles);
}

void TestStream::twentyBytesPassTheSizeCheck()
{
    TOxaRichView source;
    const QByteArray body = source.SaveRVFToString();
    const QByteArray bytes = "1 6|||xxxx" + body;
    QCOMPARE(bytes.size(), 20 + body.size() - 10);
    TOxaRichView e;
    e.InsertText(QStringLiteral("old"));
    QCOMPARE(LoadError(e, bytes), QString());
    QVERIFY(e.IsEmpty());
}

void TestStream::malformedHeaderNumbersTakeDefaults()
{
    TOxaRichView source;
    source.InsertText(QStringLiteral("a"));
    const QByteArray body = source.SaveRVFToString();
    // The body uses style 0 only; the header's styles are added all the same.
    const QByteArray header =
        "clRed clNone x y ,clBlue $00FF0000 12 5 Cou_rier ,|a b c d e f,1 2 3 4 150 2,|";
    TOxaRichView e;
    e.LoadOxaRVFFromString("1 " + QByteArray::number(header.size()) + "|" + header + body);
    const TRVStyle &s = e.Style();
    QCOMPARE(s.TextStyles.size(), 5);
    QCOMPARE(s.ParaStyles.size(), 4);
    const TFontInfo &t3 = s.TextStyles[3], &t4 = s.TextStyles[4];
    QCOMPARE(QVariantList({t3.Color, t3.Size, t3.Style.toInt(), t3.FontName, t3.Standard}),
             QVariantList({clRed, 10, 0, "Arial", false}));
    QCOMPARE(QVariantList({t4.BackColor, t4.Style.toInt(), t4.FontName}),
             QVariantList({0x00FF0000u, int(fsBold | fsUnderline), "Cou rier"}));
    const TParaInfo &p2 = s.ParaStyles[2], &p3 = s.ParaStyles[3];
    QCOMPARE(QVariantList({p2.LineSpacing, p2.FirstIndent, p3.SpaceAfter, int(p3.Alignment)}),
             QVariantList({100, 0, 4, int(rvaCenter)}));
}

void TestStream::loadsIntoADifferentStyleSheet()
{
    TOxaRichView source;
    SetFormatedText(&source, QStringLiteral("<b>a</b><c=255>b</c>\r\n<p=r><fs=20>c"));
    TOxaRichView target;
    SetFormatedText(&target, QStringLiteral("<i><u><s>x<fs=30>y<fn=Verdana>z"));
    QVERIFY(target.Style().TextStyles.size() > source.Style().TextStyles.size());
    target.LoadOxaRVFFromString(source.SaveOxaRVFToString());
    QCOMPARE(Describe(target), Describe(source));
}

void TestStream::randomRoundTrips()
{
    for (quint32 seed = 1; seed <= 60; ++seed) {
        TOxaRichView e;
        FillRandom(e, seed);
        const QByteArray bytes = e.SaveOxaRVFToString();
        TOxaRichView loaded;
        loaded.LoadOxaRVFFromString(bytes);
        QCOMPARE(Describe(loaded), Describe(e));
        QCOMPARE(loaded.SaveOxaRVFToString(), bytes);
    }
}

void TestStream::bodyAloneAndStreams()
{
    TOxaRichView e;
    SetFormatedText(&e, QStringLiteral("a<b>b</b>"));
    const QByteArray body = e.SaveRVFToString();
    TOxaRichView other;
    other.SetStyle(e.Style());
    other.LoadRVFFromString(body);
    QCOMPARE(Describe(other), Describe(e));
    other.AppendRVFFromString(body);
    QCOMPARE(other.GetText(0, other.ItemCount() - 1), QStringLiteral("ab\r\nab"));
    other.CaretToBegin();
    other.InsertRVFFromStringEd(body);
    QCOMPARE(other.GetText(0, other.ItemCount() - 1), QStringLiteral("abab\r\nab"));

    // Saving to a seekable stream truncates what was there.
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    buffer.write(QByteArray(1000, 'x'));
    e.SaveOxaRVFToStream(buffer);
    QCOMPARE(buffer.data(), e.SaveOxaRVFToString());
    other.LoadOxaRVFFromStream(buffer);
    QCOMPARE(Describe(other), Describe(e));
}

QTEST_MAIN(TestStream)
#include "tst_oxarichviewstream.moc"
