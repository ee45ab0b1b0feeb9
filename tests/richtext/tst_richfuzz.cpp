// Deterministic runs of the rich-text fuzz checks: valid streams and tagged
// texts, mutated by a seeded generator, go through the same checks as the
// libFuzzer targets (tests/fuzz).

#include "fuzz/RichFuzz.h"

#include <QRandomGenerator>
#include <QTest>

using namespace oxa;

namespace {

QByteArray Mutated(QByteArray bytes, QRandomGenerator &rng)
{
    const int edits = rng.bounded(1, 6);
    for (int i = 0; i < edits && !bytes.isEmpty(); ++i) {
        const int at = rng.bounded(int(bytes.size()));
        switch (rng.bounded(4)) {
        case 0:
            bytes[at] = char(rng.bounded(256));
            break;
        case 1:
            bytes.truncate(at);
            break;
        case 2:
            bytes.insert(at, char(rng.bounded(256)));
            break;
        default:
            bytes.remove(at, rng.bounded(1, 8));
            break;
        }
    }
    return bytes;
}

QList<QByteArray> StreamSeeds()
{
    QList<QByteArray> seeds;
    for (const QString &tagged :
         {QStringLiteral("a"), QStringLiteral("<b>tučně</b>\r\n<p=c><fs=14>střed"),
          QStringLiteral("<fn=Courier New><c=255>x<a=5>odkaz</a>\r\n\r\n<p=r>y")}) {
        TOxaRichView e;
        SetFormatedText(&e, tagged);
        e.InsTable({2, 2, 300, clRed, 1});
        e.InsertText(QStringLiteral("buňka"));
        e.InsTable({1, 1, 0, clBlack, 1}); // nested
        seeds << e.SaveOxaRVFToString();
    }
    return seeds;
}

} // namespace

class TestRichFuzz : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void streams();
    void taggedTexts();
};

void TestRichFuzz::streams()
{
    const QList<QByteArray> seeds = StreamSeeds();
    QRandomGenerator rng(20261124);
    for (int i = 0; i < 600; ++i) {
        const QByteArray bytes = Mutated(seeds[i % seeds.size()], rng);
        fuzz::RichStream(reinterpret_cast<const uint8_t *>(bytes.constData()),
                         size_t(bytes.size()));
    }
}

void TestRichFuzz::taggedTexts()
{
    const QList<QByteArray> seeds{
        "a<<b<b>c</b><fs=12>d</fs=10><c=255><g=65535>e</c></g><fn=Arial>f</fn>\r\n<p=c>",
        "<a=7>g</a><j><q>x<i><u><s>h<B>", "<<<<>>><</><=>", "1 <a=x>see</a> 2<p=j>"};
    QRandomGenerator rng(4242);
    for (int i = 0; i < 600; ++i) {
        const QByteArray bytes = Mutated(seeds[i % seeds.size()], rng);
        fuzz::TaggedText(reinterpret_cast<const uint8_t *>(bytes.constData()),
                         size_t(bytes.size()));
    }
}

QTEST_MAIN(TestRichFuzz)
#include "tst_richfuzz.moc"
