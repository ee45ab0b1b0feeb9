#include "oxa/spreadsheet/XLSfile.h"
#include "oxa/toolkit/CodePage1250.h"

#include <QBuffer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <bit>
#include <functional>

using namespace oxa;

namespace {

// Builds expected bytes by hand, independently of the library's writer.
struct Bytes
{
    QByteArray b;
    Bytes &u8(int v)
    {
        b.append(char(v & 0xFF));
        return *this;
    }
    Bytes &u16(int v) { return u8(v).u8(v >> 8); }
    Bytes &f64(double v)
    {
        for (int i = 0; i < 8; ++i)
            u8(int(std::bit_cast<quint64>(v) >> (8 * i)));
        return *this;
    }
    Bytes &raw(const QByteArray &r)
    {
        b.append(r);
        return *this;
    }
    Bytes &cell(int op, int row, int col, int a3, const QByteArray &value)
    {
        return u16(op).u16(7 + value.size()).u16(row).u16(col).u8(0).u8(0).u8(a3).raw(value);
    }
};

// The header, code page and dimensions records every sheet starts with.
const QByteArray FixedRecords = QByteArray::fromHex("0908 0600 0000 1000 0000"
                                                    "4200 0200 e204"
                                                    "0000 0800 0000 e803 0000 6400");
const QByteArray EndRecord = QByteArray::fromHex("0a00 0000");
const QString FormatError = QStringLiteral(
    "File format error or file corrupt . Choose File -> Save as to save this file with new format");
const QString StreamError = QStringLiteral("Stream read error");

QByteArray WriteToBuffer(TDispatcher &d)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    d.SetStream(&buffer);
    d.Write();
    d.SetStream(nullptr);
    return buffer.data();
}

QByteArray WriteSheet(TXLSfile &xls, const QString &fileName)
{
    xls.SetFileName(fileName);
    xls.write();
    QFile f(fileName);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The message of the E that fn throws; empty when none is thrown.
template<class E = Exception>
QString FailureOf(const std::function<void()> &fn)
{
    try {
        fn();
    } catch (const E &e) {
        return e.Message();
    }
    return {};
}

// A record that reads count bytes, whatever the record holds, and writes
// count bytes 0, 1, 2...: a host's own record class.
class TProbe : public TData
{
public:
    TProbe(quint16 op, int n) : count(n) { opCode = op; }
    void Read(TMyReader &r) override
    {
        for (int i = 0; i < count; ++i)
            r.readByte();
    }
    void Write(TMyWriter &w) override
    {
        for (int i = 0; i < count; ++i)
            w.WriteByte(quint8(i));
    }
    int count;
};

// A device that takes whole writes while they fit into room bytes and
// refuses the rest; sequential when asked.
class TRefusing : public QIODevice
{
public:
    explicit TRefusing(qint64 room, bool sequential = false)
        : m_room(room), m_sequential(sequential)
    {
        open(QIODevice::WriteOnly);
    }
    bool isSequential() const override { return m_sequential; }
    QByteArray taken;

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *data, qint64 len) override
    {
        if (taken.size() + len > m_room)
            return -1;
        taken.append(data, len);
        return len;
    }

private:
    qint64 m_room;
    bool m_sequential;
};

} // namespace

class TestXLSfile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void attributes_data();
    void attributes();
    void sheetBytes();
    void largeSheetBytesAcrossFlushes();
    void lengthBackPatching_data();
    void lengthBackPatching();
    void writerHoldsNothingBack();
    void readLoop_data();
    void readLoop();
    void readSurvivesDamagedStreams();
    void failedWriteKeepsCells_data();
    void failedWriteKeepsCells();
};

void TestXLSfile::attributes_data()
{
    QTest::addColumn<TSetOfAtribut>("set");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("hidden locked") << (acHidden | acLocked) << QByteArray::fromHex("c00000");
    QTest::newRow("left wins over center, right")
        << (acLeft | acCenter | acRight) << QByteArray::fromHex("000001");
    QTest::newRow("center wins over right")
        << (acCenter | acRight) << QByteArray::fromHex("000002");
    QTest::newRow("left + fill adds to 5") << (acLeft | acFill) << QByteArray::fromHex("000005");
    QTest::newRow("right + fill adds to 7") << (acRight | acFill) << QByteArray::fromHex("000007");
}

void TestXLSfile::attributes()
{
    QFETCH(TSetOfAtribut, set);
    TWordCell cell;
    cell.SetAtribut(set);
    QTEST(QByteArray(reinterpret_cast<const char *>(cell.FAtribut.data()), 3), "bytes");
    QCOMPARE(cell.Atribut(), set);
}

void TestXLSfile::sheetBytes()
{
    QTemporaryDir dir;
    const QString name = dir.filePath(QStringLiteral("small.xls"));
    TXLSfile xls;
    QCOMPARE(WriteSheet(xls, name).size(), 32); // a new sheet: the fixed records and the end record
    xls.AddWordCell(1, 1, {}, 7);
    xls.AddDoubleCell(3, 2, acCenter | acBottomBorder, 1.5);
    xls.AddStrCell(2, 1, acLeft, QStringLiteral("Žluťoučký kůň"));
    xls.AddWordCell(2, 1, {}, 65535); // the same position twice: both kept
    xls.AddWordCell(0, 0, {}, 1);     // callers count from 1: 0 wraps to 65535
    xls.AddCell(4, 5, acCenter, CellClassOf<TBlankCell>());
    xls.AddDoubleCell(4, 5, {}, -1234.5e-3);
    xls.AddStrCell(1, 3, {}, QString(300, u'x')); // length byte 300 mod 256, all bytes

    const QByteArray expected = FixedRecords +
        QByteArray::fromHex("0200 0900 0000 0000 000000 0700") +
        Bytes().cell(3, 1, 2, 0x42, Bytes().f64(1.5).b).b +
        QByteArray::fromHex("0400 1500 0000 0100 000001 0d 8e6c759d6f75e86bfd206bf9f2") +
        QByteArray::fromHex("0200 0900 0000 0100 000000 ffff") +
        QByteArray::fromHex("0200 0900 ffff ffff 000000 0100") +
        QByteArray::fromHex("0100 0000") // a blank cell has no payload at all
        + Bytes().cell(3, 4, 3, 0, Bytes().f64(-1234.5e-3).b).b +
        Bytes().cell(4, 2, 0, 0, QByteArray(1, char(44)) + QByteArray(300, 'x')).b + EndRecord;
    QCOMPARE(WriteSheet(xls, name), expected);
    xls.clear();
    QCOMPARE(WriteSheet(xls, name), FixedRecords + EndRecord); // the longer file is replaced
}

void TestXLSfile::largeSheetBytesAcrossFlushes()
{
    TXLSfile xls;
    Bytes expected;
    expected.raw(FixedRecords);
    const QStringList texts = {QStringLiteral("Čapek"), QStringLiteral("Němcová"), QString()};
    for (int i = 0; i < 200000; ++i) {
        const int col = i % 50 + 1, row = i / 50 + 1;
        if (i == 100000) { // a host's record between the component's own
            xls.AddData(std::make_unique<TProbe>(0x77, 300));
            expected.u16(0x77).u16(300);
            for (int b = 0; b < 300; ++b)
                expected.u8(b);
        }
        if (i % 3 == 0) {
            xls.AddDoubleCell(col, row, acRight, i * 0.25);
            expected.cell(3, row - 1, col - 1, 3, Bytes().f64(i * 0.25).b);
        } else if (i % 3 == 1) {
            xls.AddWordCell(col, row, {}, quint16(i));
            expected.cell(2, row - 1, col - 1, 0, Bytes().u16(i).b);
        } else {
            const QString &t = texts[i % 9 / 3];
            xls.AddStrCell(col, row, {}, t);
            expected.cell(4, row - 1, col - 1, 0,
                          QByteArray(1, char(t.size())) + CodePage1250::FromUnicode(t));
        }
    }
    expected.raw(EndRecord);
    QVERIFY(expected.b.size() > 3 * 1024 * 1024); // several flushes of the writer
    QTemporaryDir dir;
    QCOMPARE(WriteSheet(xls, dir.filePath(QStringLiteral("large.xls"))), expected.b);
    QCOMPARE(WriteToBuffer(xls.Dispatcher()), expected.b); // the same through the plain writer
}

void TestXLSfile::lengthBackPatching_data()
{
    QTest::addColumn<int>("size"); // -1: nothing registered
    QTest::newRow("nothing registered") << -1;
    QTest::newRow("longer than 16 bits, truncated") << 70000;
}

void TestXLSfile::lengthBackPatching()
{
    QFETCH(int, size);
    TDispatcher d;
    Bytes expected;
    if (size >= 0) {
        d.RegisterObj(std::make_unique<TProbe>(0x77, size));
        expected.u16(0x77).u16(size & 0xFFFF);
        for (int i = 0; i < size; ++i)
            expected.u8(i);
    }
    QCOMPARE(WriteToBuffer(d), expected.u16(999).u16(0).b);
}

// The values of every writer function, in turn, and their bytes.
const std::vector<std::pair<std::function<void(TMyWriter &)>, QByteArray>> WriterSteps = {
    {[](TMyWriter &w) { w.WriteByte(0xAB); }, QByteArray::fromHex("ab")},
    {[](TMyWriter &w) { w.WriteWord(0x1234); }, QByteArray::fromHex("3412")},
    {[](TMyWriter &w) { w.WriteInt(-2); }, QByteArray::fromHex("feffffff")},
    {[](TMyWriter &w) { w.WriteDouble(0.5); }, QByteArray::fromHex("000000000000e03f")},
    {[](TMyWriter &w) { w.WriteStr(u"ťΩ"); }, QByteArray::fromHex("0200 9d3f")},
    {[](TMyWriter &w) { w.WriteSingleStr(u"Šíř"); }, QByteArray::fromHex("8aedf8")},
};

// Every value is in the stream when the writer's call returns, reads back as
// written, and a stream that refuses bytes fails that very call.
void TestXLSfile::writerHoldsNothingBack()
{
    QByteArray expected;
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    TMyWriter w(&buffer);
    for (const auto &step : WriterSteps) {
        step.first(w);
        expected += step.second;
        QCOMPARE(buffer.data(), expected);
    }
    buffer.seek(0);
    TMyReader r(&buffer);
    // readStr: the count is bytes, which fill the first half of a text of as many units.
    QCOMPARE((std::tuple{r.readByte(), r.readWord(), r.readInt(), r.readDouble(), r.readStr(),
                         r.readWord()}),
             (std::tuple{quint8(0xAB), quint16(0x1234), -2, 0.5, QString(QChar(0x3F9D)) + QChar(0),
                         quint16(0xED8A)}));
    QVERIFY_THROWS_EXCEPTION(EReadError, r.readWord()); // one byte left

    for (qint64 room = 0; room < expected.size(); ++room) {
        TRefusing device(room);
        TMyWriter writer(&device);
        qsizetype done = 0;
        bool thrown = false;
        for (const auto &step : WriterSteps) {
            try {
                step.first(writer);
            } catch (const EWriteError &) {
                thrown = true;
                break;
            }
            done += step.second.size();
        }
        QVERIFY2(thrown, qPrintable(QString::number(room)));
        QVERIFY(device.taken.size() >= done && device.taken.size() <= room);
        QVERIFY(expected.startsWith(device.taken));
    }

    TMyWriter unbound;
    QVERIFY_THROWS_EXCEPTION(EWriteError, unbound.WriteByte(1));
    // The record lengths are put back into the headers: a stream that cannot
    // seek is refused with a message, not written wrongly.
    TDispatcher d;
    d.RegisterObj(std::make_unique<TProbe>(0x77, 3));
    TRefusing sequential(1000, true);
    d.SetStream(&sequential);
    QVERIFY_THROWS_EXCEPTION(EWriteError, d.Write());
}

void TestXLSfile::readLoop_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QString>("error");
    using L = QStringList;
    const QByteArray eof = EndRecord;
    const auto hex = [](const char *h) { return QByteArray::fromHex(h); };
    QTest::newRow("end record only") << eof << L() << QString();
    QTest::newRow("unknown opcode")
        << hex("4d000300aabbcc") + eof << L{"Unknown Opcode 77 "} << FormatError;
    // The underrun moves back by its shortfall, onto bytes 4..7 of the
    // stream, which read as an end record.
    QTest::newRow("underrun moves backwards")
        << hex("4d0002000a00 02000600 000000000000")
        << L{"Unknown Opcode 77 ", "Opcode 2 underrun 6 bytes"} << FormatError;
    QTest::newRow("underrun back onto itself stops")
        << hex("0300 0400 0000 0000") + eof << L{"Opcode 3 underrun 4 bytes"} << FormatError;
    QTest::newRow("underrun before the start") << hex("0200 0900 0000 0000 000000 0700") + eof
                                               << L{"Opcode 2 underrun 9 bytes"} << StreamError;
    // Opcode 500 is registered twice: the first object, which reads 4
    // bytes, takes the end record's opcode too and is moved back onto the
    // record's end, so the end record is read after all.
    QTest::newRow("first registered reads; overrun lands on the end")
        << hex("f4010200 aabb") + eof << L{"Opcode 500 overrun 2 bytes"} << FormatError;
    QTest::newRow("skip past the end")
        << hex("4d00 ff00 00") << L{"Unknown Opcode 77 "} << StreamError;
}

void TestXLSfile::readLoop()
{
    QFETCH(QByteArray, stream);
    QBuffer buffer(&stream);
    buffer.open(QIODevice::ReadOnly);
    TXLSfile xls;
    xls.AddDoubleCell(1, 1, {}, 0); // registers opcode 3
    xls.AddWordCell(1, 1, {}, 0);   // and 2
    xls.AddData(std::make_unique<TProbe>(500, 4));
    xls.AddData(std::make_unique<TProbe>(500, 0));
    xls.Dispatcher().SetStream(&buffer);
    QTEST(FailureOf<EReadError>([&] { xls.Dispatcher().Read(); }), "error");
    QTEST(xls.Dispatcher().SLError(), "messages");
}

// Truncated, mutated and made-up streams must end in a reported error, never
// in a read past the buffer (the sanitizer run watches for that).
void TestXLSfile::readSurvivesDamagedStreams()
{
    QRandomGenerator random(20240611);
    TXLSfile source;
    for (int i = 0; i < 40; ++i) {
        source.AddWordCell(i % 7, i / 7, {}, quint16(i));
        source.AddDoubleCell(i % 5, i / 3, acCenter, i / 3.0);
        source.AddStrCell(i % 3, i, {}, QStringLiteral("Šťovík").left(i % 7));
    }
    const QByteArray valid = WriteToBuffer(source.Dispatcher());
    TXLSfile sheet;
    sheet.AddWordCell(1, 1, {}, 0);
    sheet.AddDoubleCell(1, 1, {}, 0);
    sheet.AddStrCell(1, 1, {}, {});
    sheet.AddData(std::make_unique<TProbe>(5, 3));
    for (int round = 0; round < 6000; ++round) {
        QByteArray stream = valid;
        if (round % 2) { // a few opcodes the sheet knows, with random lengths
            stream.clear();
            for (int n = random.bounded(1, 40); n > 0; --n)
                stream += Bytes().u16(random.bounded(0, 12)).u16(random.bounded(0, 24)).b;
        } else {
            for (int n = random.bounded(0, 8); n > 0; --n)
                stream[random.bounded(stream.size())] = char(random.bounded(256));
            stream.truncate(random.bounded(stream.size() + 1));
        }
        QBuffer buffer(&stream);
        buffer.open(QIODevice::ReadOnly);
        sheet.Dispatcher().SetStream(&buffer);
        FailureOf<EReadError>([&] { sheet.Dispatcher().Read(); });
        sheet.Dispatcher().SetStream(nullptr);
        QVERIFY(sheet.Dispatcher().SLError().size() <= stream.size() + 1);
        sheet.Dispatcher().SLError().clear();
    }
}

void TestXLSfile::failedWriteKeepsCells_data()
{
    QTest::addColumn<QString>("fileName"); // a relative one in a temporary directory
    QTest::addColumn<QString>("message");
    QTest::newRow("cannot create") << "chybí/list.xls"
                                   << "Nelze vytvořit soubor „%1“: ";
    QTest::newRow("cannot write") << "/dev/full"
                                  << "Chyba zápisu do souboru „%1“: ";
}

// The user is told why, and the cells stay to be written elsewhere with
// nothing of the failed attempt left over in the writer.
void TestXLSfile::failedWriteKeepsCells()
{
    QTemporaryDir dir;
    QFETCH(QString, fileName);
    const QString name = QDir(dir.path()).filePath(fileName);
    if (name == QLatin1String("/dev/full") && !QFile::exists(name))
        QSKIP("/dev/full is not available to provoke a write failure");
    TXLSfile xls;
    xls.AddStrCell(1, 1, {}, QStringLiteral("Zachováno"));
    xls.SetFileName(name);
    const QString thrown = FailureOf([&] { xls.write(); });
    QFETCH(QString, message);
    QVERIFY2(thrown.startsWith(message.arg(QDir::toNativeSeparators(name))), qPrintable(thrown));
    const QByteArray cell =
        Bytes().cell(4, 0, 0, 0, "\x09" + CodePage1250::FromUnicode(u"Zachováno")).b;
    QCOMPARE(WriteSheet(xls, dir.filePath(QStringLiteral("list.xls"))),
             FixedRecords + cell + EndRecord);
}

QTEST_MAIN(TestXLSfile)
#include "tst_xlsfile.moc"
