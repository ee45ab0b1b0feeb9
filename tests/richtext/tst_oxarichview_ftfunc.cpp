#include "oxa/richtext/OxaRichView.h"
#include "oxa/richtext/Oxarichview_ftfunc.h"

#include <QTest>

using namespace oxa;

namespace {

// Items of the editor as "style/para:text" strings, tags of links as "#tag".
QStringList Items(const TOxaRichView &e)
{
    QStringList items;
    for (int i = 0; i < e.ItemCount(); ++i) {
        QString s = (e.IsParaStart(i) ? QStringLiteral("|") : QString()) + e.GetItemText(i);
        const TFontInfo &f = e.Style().TextStyle(e.GetItemStyle(i));
        for (const auto &[flag, mark] :
             {std::pair{fsBold, "[b]"}, std::pair{fsItalic, "[i]"}, std::pair{fsUnderline, "[u]"},
              std::pair{fsStrikeOut, "[s]"}}) {
            if (f.Style & flag)
                s += QLatin1String(mark);
        }
        if (f.Size != 10)
            s += QStringLiteral("[%1]").arg(f.Size);
        if (f.FontName != QLatin1String("Arial"))
            s += QStringLiteral("[%1]").arg(f.FontName);
        if (f.Color != clWindowText)
            s += QStringLiteral("[c%1]").arg(qint32(f.Color));
        if (f.BackColor != clNone)
            s += QStringLiteral("[g%1]").arg(qint32(f.BackColor));
        if (f.Jump)
            s += QStringLiteral("[a#%1]").arg(e.GetItemTag(i));
        const TRVAlignment a = e.Style().ParaStyle(e.GetItemPara(i)).Alignment;
        if (a != rvaLeft)
            s += QStringLiteral("[p%1]").arg(int(a));
        items << s;
    }
    return items;
}

// The whole document, with the offsets the editor gives for its ends.
QString WholeText(const TOxaRichView &e)
{
    const int last = e.ItemCount() - 1;
    return GetFormatedText(&e, 0, 1, last, int(e.GetItemText(last).size()) + 1);
}

} // namespace

class TestFtFunc : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reading_data();
    void reading();
    void writing_data();
    void writing();
    void isPlainText_data();
    void isPlainText();
    void linkRunningToTheEndIsNotClosed();
    void clippedRanges_data();
    void clippedRanges();
    void insertionIsOneUndoStep();
    void resetKeepsSizeAndAlignment();
};

void TestFtFunc::reading_data()
{
    QTest::addColumn<QString>("tagged");
    QTest::addColumn<QStringList>("items");
    QTest::newRow("escaped <") << "a<<b" << QStringList{"|a<b"};
    QTest::newRow("link piece gets a space")
        << "1 <a=7>see</a> 2" << QStringList{"|1 ", "see[u][c16711680][a#7]", "  2"};
    QTest::newRow("non-numeric link tag is 0")
        << "<a=x>L" << QStringList{"|L[u][c16711680][a#0]", " "};
    QTest::newRow("unknown tag is text") << "<q>z" << QStringList{"|<q>z"};
    QTest::newRow("capital B is text") << "<B>x</B>" << QStringList{"|<B>x</B>"};
    QTest::newRow("tags need not nest")
        << "<b>x<i>y</b>z</i>" << QStringList{"|x[b]", "y[b][i]", "z[i]"};
    QTest::newRow("closing fs with a value")
        << "a</fs=10>b<fs=20>c</fs=12>d" << QStringList{"|ab", "c[20]", "d[12]"};
    QTest::newRow("p without value is left") << "<p=c>a\r\n<p>b" << QStringList{"|a[p2]", "|b"};
    QTest::newRow("p with unknown letter is left")
        << "<p=r>a\r\n<p=x>b" << QStringList{"|a[p1]", "|b"};
    QTest::newRow("reserved j has no effect") << "<j>a</j>" << QStringList{"|a"};
    QTest::newRow("colours fall back")
        << "<c=255>a<c=zz>b<g=65280>c</g>d" << QStringList{"|a[c255]", "b", "c[g65280]", "d"};
    QTest::newRow("unknown tag inside a link keeps the link")
        << "<a=3>x<q=5>y"
        << QStringList{"|x[u][c16711680][a#3]", " ", "<q=5>y[u][c16711680][a#5]", " "};
    QTest::newRow("link style does not carry on")
        << "<b>a<a=1>L</a>b" << QStringList{"|a[b]", "L[u][c16711680][a#1]", " b"};
}

void TestFtFunc::reading()
{
    QFETCH(QString, tagged);
    QFETCH(QStringList, items);
    TOxaRichView e;
    SetFormatedText(&e, tagged);
    QCOMPARE(Items(e), items);
}

void TestFtFunc::writing_data()
{
    QTest::addColumn<QString>("tagged");
    QTest::addColumn<QString>("written");
    QTest::newRow("two paragraphs") << "Hello\r\n<p=c><b>World"
                                    << "Hello\r\n<p=c><b>World</b></p>";
    QTest::newRow("value back to default still closes") << "a<fs=12>b</fs>c"
                                                        << "a<fs=12>b<fs>c</fs>";
    QTest::newRow("link followed by its space") << "x<a=7>see"
                                                << "x<c=16711680><u><a=7>see<c></u></a> </c>";
    QTest::newRow("alignment back to default") << "<p=r>a\r\n<p>b"
                                               << "<p=r>a\r\n<p>b</p>";
    QTest::newRow("system colour is negative") << "<c=-16777201>a"
                                               << "<c=-16777201>a</c>";
    QTest::newRow("font styles in order") << "<i><s><u><b>a"
                                          << "<b><u><i><s>a</b></u></i></s>";
}

void TestFtFunc::writing()
{
    QFETCH(QString, tagged);
    QFETCH(QString, written);
    TOxaRichView e;
    SetFormatedText(&e, tagged);
    QCOMPARE(WholeText(e), written);
}

void TestFtFunc::isPlainText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("plain");
    QTest::newRow("empty") << "" << true;
    QTest::newRow("escapes only") << "a<<b<<" << true;
    QTest::newRow("unknown tag") << "<q>x</q>" << true;
    QTest::newRow("unterminated") << "x<b" << true;
    QTest::newRow("bold") << "<b>x" << false;
    QTest::newRow("closing only") << "x</i>" << false;
    QTest::newRow("reserved j") << "<j>" << false;
    QTest::newRow("with value") << "<fs=12>" << false;
    QTest::newRow("escape then tag") << "<<b>" << true;
}

void TestFtFunc::isPlainText()
{
    QFETCH(QString, text);
    QFETCH(bool, plain);
    QCOMPARE(IsPlainText(text), plain);
}

void TestFtFunc::linkRunningToTheEndIsNotClosed()
{
    TOxaRichView e;
    e.InsertText(QStringLiteral("x"));
    e.InsLink(QStringLiteral("see"), 7, TRVStyle::HyperlinkStyleNo, false);
    QCOMPARE(WholeText(e), QStringLiteral("x<c=16711680><u><a=7>see</u></c>"));
}

void TestFtFunc::clippedRanges_data()
{
    QTest::addColumn<QString>("tagged");
    QTest::addColumn<int>("itemStart");
    QTest::addColumn<int>("offsetStart");
    QTest::addColumn<int>("itemStop");
    QTest::addColumn<int>("offsetStop");
    QTest::addColumn<QString>("written");
    const QString runs = QStringLiteral("abcdef<b>ghij");
    QTest::newRow("inside one item") << runs << 0 << 2 << 0 << 5 << "bcd";
    QTest::newRow("across two items") << runs << 0 << 5 << 1 << 3 << "ef<b>gh</b>";
    QTest::newRow("stop offset 1 keeps nothing") << runs << 0 << 0 << 1 << 1 << "abcdef<b></b>";
    QTest::newRow("zero offsets take whole items")
        << runs << 0 << 0 << 1 << 0 << "abcdef<b>ghij</b>";
    const QString paragraphs = QStringLiteral("one\r\ntwo\r\nthree");
    QTest::newRow("a range starting a paragraph begins with CR LF")
        << paragraphs << 1 << 1 << 2 << 6 << "\r\ntwo\r\nthree";
}

void TestFtFunc::clippedRanges()
{
    QFETCH(QString, tagged);
    QFETCH(int, itemStart);
    QFETCH(int, offsetStart);
    QFETCH(int, itemStop);
    QFETCH(int, offsetStop);
    QFETCH(QString, written);
    TOxaRichView e;
    SetFormatedText(&e, tagged);
    QCOMPARE(GetFormatedText(&e, itemStart, offsetStart, itemStop, offsetStop), written);
}

void TestFtFunc::insertionIsOneUndoStep()
{
    TOxaRichView e;
    e.InsertText(QStringLiteral("start "));
    SetFormatedText(&e, QStringLiteral("<b>a</b><fs=14>b\r\n<p=c>c<a=1>d"));
    QCOMPARE(e.UndoAction(), int(utInserting));
    e.Undo();
    QCOMPARE(e.GetText(0, e.ItemCount() - 1), QStringLiteral("start "));
    QCOMPARE(e.UndoAction(), int(utInserting));
    QCOMPARE(e.RedoAction(), int(utInserting));
    e.Redo();
    QCOMPARE(e.GetText(0, e.ItemCount() - 1), QStringLiteral("start ab\r\ncd "));
}

void TestFtFunc::resetKeepsSizeAndAlignment()
{
    TOxaRichView e;
    e.SetFontSize(16);
    e.SetParaStyle(apsRight);
    e.SetFontStyle(afsBold);
    e.SetColor(clRed);
    SetFormatedText(&e, QStringLiteral("x"));
    QCOMPARE(Items(e), QStringList{"|x[16][p1]"});
}

QTEST_MAIN(TestFtFunc)
#include "tst_oxarichview_ftfunc.moc"
