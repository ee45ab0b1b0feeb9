#include "oxa/spreadsheet/CodePage1250.h"
#include "oxa/spreadsheet/XLSfile.h"
#include "oxa/toolkit/Catalogue.h"

#include <QBuffer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <cstring>

using namespace oxa;

namespace {

// Builds expected bytes by hand, independently of the library's writer.
struct Bytes
{
    QByteArray b;
    Bytes &u8(int v) { b.append(char(v & 0xFF)); return *this; }
    Bytes &u16(int v) { return u8(v).u8(v >> 8); }
    Bytes &f64(double v)
    {
        quint64 bits;
        std::memcpy(&bits, &v, 8);
        for (int i = 0; i < 8; ++i)
            u8(int(bits >> (8 * i)));
        return *this;
    }
    Bytes &raw(const QByteArray &r) { b.append(r); return *this; }
    Bytes &record(int op, const QByteArray &payload) { return u16(op).u16(payload.size()).raw(payload); }
    Bytes &cell(int op, int row, int col, int a3, const QByteArray &value)
    {
        return record(op, Bytes().u16(row).u16(col).u8(0).u8(0).u8(a3).raw(value).b);
    }
};

const QByteArray FixedRecords = QByteArray::fromHex("0908 0600 0000 1000 0000"
                                                    "4200 0200 e204"
                                                    "0000 0800 0000 e803 0000 6400");
const QByteArray EndRecord = QByteArray::fromHex("0a00 0000");
const QString FormatError = QStringLiteral(
    "File format error or file corrupt . Choose File -> Save as to save this file with new format");

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

// A record that reads a fixed number of bytes, whatever the record holds.
class TGreedy : public TData
{
public:
    TGreedy(quint16 op, int n) : count(n) { opCode = op; }
    void Read(TMyReader &r) override
    {
        ++reads;
        for (int i = 0; i < count; ++i)
            r.readByte();
    }
    int count;
    int reads = 0;
};

// A record that writes a payload of n bytes, optionally flushing half-way.
class TPayload : public TData
{
public:
    TPayload(int n, bool flush) : size(n), flushInside(flush) { opCode = 0x77; }
    void Write(TMyWriter &w) override
    {
        for (int i = 0; i < size; ++i) {
            w.WriteByte(quint8(i));
            if (flushInside && i == size / 2)
                w.FlushBuffer();
        }
    }
    int size;
    bool flushInside;
};

// Parses the cells of a file back, to prove our own reader sees them.
class TCellParser : public TData
{
public:
    TCellParser(quint16 op, QStringList *out) : cells(out) { opCode = op; }
    void Read(TMyReader &r) override
    {
        const int row = r.readWord();
        const int col = r.readWord();
        const quint8 a0 = r.readByte(), a1 = r.readByte(), a2 = r.readByte();
        QString value;
        if (opCode == 2)
            value = QString::number(r.readWord());
        else if (opCode == 3)
            value = QString::number(r.readDouble());
        else {
            QByteArray text(r.readByte(), Qt::Uninitialized);
            for (char &c : text)
                c = char(r.readByte());
            value = CodePage1250::ToUnicode(text);
        }
        cells->append(QStringLiteral("%1,%2,%3.%4.%5,%6").arg(row).arg(col).arg(a0).arg(a1).arg(a2).arg(value));
    }
    QStringList *cells;
};

} // namespace

class TestXLSfile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyDispatcherWritesOnlyEndRecord();
    void attributes_data();
    void attributes();
    void newSheetIs32Bytes();
    void smallSheetBytes();
    void largeSheetBytesAcrossFlushes();
    void lengthBackPatching_data();
    void lengthBackPatching();
    void writerAndReaderPrimitives();
    void readLoop_data();
    void readLoop();
    void readerUsesFirstRegisteredAndOverrunLandsOnEnd();
    void roundTripThroughOurReader();
    void createFailureKeepsCells();
    void writeFailureKeepsCells();
    void clearStartsAgain();
    void codePage1250_data();
    void codePage1250();
    void codePage1250TableIsConsistent();
    void registrationAndProperties();
    void readSurvivesDamagedStreams();
};

void TestXLSfile::emptyDispatcherWritesOnlyEndRecord()
{
    TDispatcher d;
    QCOMPARE(d.OpcodeEOF(), quint16(999));
    QCOMPARE(WriteToBuffer(d), QByteArray::fromHex("e7030000"));
}

void TestXLSfile::attributes_data()
{
    QTest::addColumn<TSetOfAtribut>("set");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("none") << TSetOfAtribut() << QByteArray::fromHex("000000");
    QTest::newRow("hidden locked") << (acHidden | acLocked) << QByteArray::fromHex("c00000");
    QTest::newRow("borders shaded") << (acShaded | acBottomBorder | acTopBorder | acRightBorder | acLeftBorder)
                                    << QByteArray::fromHex("0000f8");
    QTest::newRow("left wins over center, right") << (acLeft | acCenter | acRight) << QByteArray::fromHex("000001");
    QTest::newRow("center wins over right") << (acCenter | acRight) << QByteArray::fromHex("000002");
    QTest::newRow("right") << TSetOfAtribut(acRight) << QByteArray::fromHex("000003");
    QTest::newRow("left + fill adds to 5") << (acLeft | acFill) << QByteArray::fromHex("000005");
    QTest::newRow("right + fill adds to 7") << (acRight | acFill) << QByteArray::fromHex("000007");
    QTest::newRow("center + bottom") << (acCenter | acBottomBorder) << QByteArray::fromHex("000042");
}

void TestXLSfile::attributes()
{
    QFETCH(TSetOfAtribut, set);
    QFETCH(QByteArray, bytes);
    TWordCell cell;
    cell.SetAtribut(set);
    QCOMPARE(QByteArray(reinterpret_cast<const char *>(cell.FAtribut.data()), 3), bytes);
    QCOMPARE(cell.Atribut(), set);
}

void TestXLSfile::newSheetIs32Bytes()
{
    QTemporaryDir dir;
    TXLSfile xls;
    QVERIFY(!xls.ModeOpen());
    const QByteArray file = WriteSheet(xls, dir.filePath(QStringLiteral("new.xls")));
    QCOMPARE(file.size(), 32);
    QCOMPARE(file, FixedRecords + EndRecord);
}

void TestXLSfile::smallSheetBytes()
{
    QTemporaryDir dir;
    const QString name = dir.filePath(QStringLiteral("small.xls"));
    QFile old(name); // a longer file already there is replaced
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write(QByteArray(500, 'z')) == 500);
    old.close();

    TXLSfile xls;
    xls.AddWordCell(1, 1, {}, 7);
    xls.AddDoubleCell(3, 2, acCenter | acBottomBorder, 1.5);
    xls.AddStrCell(2, 1, acLeft, QStringLiteral("Žluťoučký kůň"));
    xls.AddWordCell(2, 1, {}, 65535); // the same position twice: both kept
    xls.AddWordCell(0, 0, {}, 1);     // callers count from 1: 0 wraps to 65535
    xls.AddCell(4, 5, acCenter, CellClassOf<TBlankCell>());
    xls.AddDoubleCell(4, 5, {}, -1234.5e-3);
    xls.AddStrCell(1, 3, {}, QString(300, u'x')); // length byte 300 mod 256, all bytes

    const QByteArray expected = FixedRecords
        + QByteArray::fromHex("0200 0900 0000 0000 000000 0700")
        + Bytes().cell(3, 1, 2, 0x42, Bytes().f64(1.5).b).b
        + QByteArray::fromHex("0400 1500 0000 0100 000001 0d 8e6c759d6f75e86bfd206bf9f2")
        + QByteArray::fromHex("0200 0900 0000 0100 000000 ffff")
        + QByteArray::fromHex("0200 0900 ffff ffff 000000 0100")
        + QByteArray::fromHex("0100 0000") // a blank cell has no payload at all
        + Bytes().cell(3, 4, 3, 0, Bytes().f64(-1234.5e-3).b).b
        + Bytes().cell(4, 2, 0, 0, QByteArray(1, char(44)) + QByteArray(300, 'x')).b + EndRecord;
    QCOMPARE(WriteSheet(xls, name), expected);
    QCOMPARE(WriteSheet(xls, name), expected); // written again: the same bytes
}

void TestXLSfile::largeSheetBytesAcrossFlushes()
{
    TXLSfile xls;
    Bytes expected;
    expected.raw(FixedRecords);
    const QStringList texts = {QStringLiteral("Čapek"), QStringLiteral("Němcová"), QString()};
    for (int i = 0; i < 60000; ++i) {
        const int col = i % 50 + 1, row = i / 50 + 1;
        if (i % 3 == 0) {
            xls.AddDoubleCell(col, row, acRight, i * 0.25);
            expected.cell(3, row - 1, col - 1, 3, Bytes().f64(i * 0.25).b);
        } else if (i % 3 == 1) {
            xls.AddWordCell(col, row, {}, quint16(i));
            expected.cell(2, row - 1, col - 1, 0, Bytes().u16(i).b);
        } else {
            const QString &t = texts[i % 9 / 3];
            xls.AddStrCell(col, row, {}, t);
            expected.cell(4, row - 1, col - 1, 0, QByteArray(1, char(t.size())) + CodePage1250::FromUnicode(t));
        }
    }
    expected.raw(EndRecord);
    QVERIFY(expected.b.size() > 3 * 256 * 1024); // several flushes of the writer
    QTemporaryDir dir;
    QCOMPARE(WriteSheet(xls, dir.filePath(QStringLiteral("large.xls"))), expected.b);
}

void TestXLSfile::lengthBackPatching_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("flushInside");
    QTest::newRow("small") << 5 << false;
    QTest::newRow("flushed by the record itself") << 9 << true;
    QTest::newRow("longer than 16 bits, truncated") << 70000 << false;
    QTest::newRow("long, flushed inside") << 70000 << true;
}

void TestXLSfile::lengthBackPatching()
{
    QFETCH(int, size);
    QFETCH(bool, flushInside);
    TDispatcher d;
    d.RegisterObj(std::make_unique<TPayload>(size, flushInside));
    QByteArray payload(size, Qt::Uninitialized);
    for (int i = 0; i < size; ++i)
        payload[i] = char(i);
    const QByteArray expected = Bytes().u16(0x77).u16(size & 0xFFFF).raw(payload).u16(999).u16(0).b;
    QCOMPARE(WriteToBuffer(d), expected);
}

void TestXLSfile::writerAndReaderPrimitives()
{
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    TMyWriter w(&buffer);
    w.WriteByte(0xAB);
    w.WriteWord(0x1234);
    w.WriteInt(-2);
    w.WriteDouble(0.5);
    w.WriteSingleStr(u"Šíř");
    w.WriteStr(u"ťΩ");
    QCOMPARE(buffer.size(), 0); // still in the writer's buffer
    w.FlushBuffer();
    QCOMPARE(buffer.data(), QByteArray::fromHex("ab 3412 feffffff 000000000000e03f 8aedf8 0200 9d3f"));

    buffer.seek(0);
    TMyReader r(&buffer);
    QCOMPARE(r.readByte(), quint8(0xAB));
    QCOMPARE(r.readWord(), quint16(0x1234));
    QCOMPARE(r.readInt(), -2);
    QCOMPARE(r.readDouble(), 0.5);
    // readStr: the count is bytes, which fill the first half of the text.
    QByteArray counted = QByteArray::fromHex("0400 41424344");
    QBuffer strBuffer(&counted);
    strBuffer.open(QIODevice::ReadOnly);
    r.SetStream(&strBuffer);
    const QChar units[] = {QChar(0x4241), QChar(0x4443), QChar(0), QChar(0)};
    QCOMPARE(r.readStr(), QString(units, 4));
    QVERIFY_THROWS_EXCEPTION(EReadError, r.readWord());
}

void TestXLSfile::readLoop_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QString>("error");
    const QByteArray eof = QByteArray::fromHex("0a000000");
    QTest::newRow("end record only") << eof << QStringList() << QString();
    QTest::newRow("registered, empty") << QByteArray::fromHex("03000000") + eof << QStringList() << QString();
    QTest::newRow("unknown opcode")
        << QByteArray::fromHex("4d000300aabbcc") + eof << QStringList{QStringLiteral("Unknown Opcode 77 ")}
        << FormatError;
    // The underrun moves back by its shortfall, onto bytes 4..7 of the
    // stream, which read as an end record.
    QTest::newRow("underrun moves backwards")
        << QByteArray::fromHex("4d0002000a00 02000600 000000000000")
        << QStringList{QStringLiteral("Unknown Opcode 77 "), QStringLiteral("Opcode 2 underrun 6 bytes")}
        << FormatError;
    QTest::newRow("underrun back onto itself stops")
        << QByteArray::fromHex("0300 0400 0000 0000") + eof
        << QStringList{QStringLiteral("Opcode 3 underrun 4 bytes")} << FormatError;
    QTest::newRow("underrun before the start")
        << QByteArray::fromHex("0200 0900 0000 0000 000000 0700") + eof
        << QStringList{QStringLiteral("Opcode 2 underrun 9 bytes")} << QStringLiteral("Stream read error");
    QTest::newRow("truncated: no end record") << QByteArray::fromHex("03000000 0a") << QStringList()
                                              << QStringLiteral("Stream read error");
    QTest::newRow("skip past the end") << QByteArray::fromHex("4d00 ff00 00")
                                       << QStringList{QStringLiteral("Unknown Opcode 77 ")}
                                       << QStringLiteral("Stream read error");
}

void TestXLSfile::readLoop()
{
    QFETCH(QByteArray, stream);
    QFETCH(QStringList, messages);
    QFETCH(QString, error);
    TXLSfile xls;
    xls.AddDoubleCell(1, 1, {}, 0); // registers opcode 3
    xls.AddWordCell(1, 1, {}, 0);   // and 2
    QBuffer buffer(&stream);
    buffer.open(QIODevice::ReadOnly);
    TDispatcher &d = xls.Dispatcher();
    d.SetStream(&buffer);
    QString thrown;
    try {
        d.Read();
    } catch (const EReadError &e) {
        thrown = e.Message();
    }
    QCOMPARE(thrown, error);
    QCOMPARE(d.SLError(), messages);
}

void TestXLSfile::readerUsesFirstRegisteredAndOverrunLandsOnEnd()
{
    TDispatcher d;
    auto *first = static_cast<TGreedy *>(d.RegisterObj(std::make_unique<TGreedy>(500, 4)));
    auto *second = static_cast<TGreedy *>(d.RegisterObj(std::make_unique<TGreedy>(500, 0)));
    QCOMPARE(d.Strings(1), QStringLiteral("500"));
    // The greedy first reader takes the end record's opcode as well.
    QByteArray stream = QByteArray::fromHex("f4010200 aabb e7030000");
    QBuffer buffer(&stream);
    buffer.open(QIODevice::ReadOnly);
    d.SetStream(&buffer);
    QVERIFY_THROWS_EXCEPTION(EReadError, d.Read());
    QCOMPARE(d.SLError(), QStringList{QStringLiteral("Opcode 500 overrun 2 bytes")});
    // Moved back onto the record's end, the end record was read after all.
    QCOMPARE(buffer.pos(), buffer.size());
    QCOMPARE(first->reads, 1);
    QCOMPARE(second->reads, 0);
}

void TestXLSfile::roundTripThroughOurReader()
{
    QTemporaryDir dir;
    TXLSfile xls;
    xls.AddWordCell(2, 3, acHidden, 42);
    xls.AddDoubleCell(1, 1, acShaded | acLeft, -0.125);
    xls.AddStrCell(5, 9, acRight, QStringLiteral("Řeřicha ó €"));
    QByteArray file = WriteSheet(xls, dir.filePath(QStringLiteral("rt.xls")));

    QStringList cells;
    TDispatcher d;
    d.SetOpcodeEOF(10);
    d.RegisterObj(std::make_unique<TGreedy>(0x0809, 6));
    d.RegisterObj(std::make_unique<TGreedy>(0x0042, 2));
    d.RegisterObj(std::make_unique<TGreedy>(0x0000, 8));
    for (quint16 op : {2, 3, 4})
        d.RegisterObj(std::make_unique<TCellParser>(op, &cells));
    QBuffer buffer(&file);
    buffer.open(QIODevice::ReadOnly);
    d.SetStream(&buffer);
    d.Read();
    QCOMPARE(d.SLError(), QStringList());
    QCOMPARE(cells, (QStringList{QStringLiteral("2,1,128.0.0,42"), QStringLiteral("0,0,0.0.129,-0.125"),
                                 QStringLiteral("8,4,0.0.3,Řeřicha ó €")}));
}

void TestXLSfile::createFailureKeepsCells()
{
    QTemporaryDir dir;
    TXLSfile xls;
    xls.AddStrCell(1, 1, {}, QStringLiteral("Zachováno"));
    const QString bad = dir.filePath(QStringLiteral("chybí/list.xls"));
    xls.SetFileName(bad);
    try {
        xls.write();
        QFAIL("write into a missing folder must fail");
    } catch (const EFCreateError &e) {
        QVERIFY2(e.Message().startsWith(QStringLiteral("Nelze vytvořit soubor „")), qPrintable(e.Message()));
        QVERIFY(e.Message().contains(QDir::toNativeSeparators(bad)));
    }
    QCOMPARE(xls.Dispatcher().Count(), 4);
    const QByteArray file = WriteSheet(xls, dir.filePath(QStringLiteral("list.xls")));
    QVERIFY(file.contains(CodePage1250::FromUnicode(u"Zachováno")));
}

void TestXLSfile::writeFailureKeepsCells()
{
    if (!QFile::exists(QStringLiteral("/dev/full")))
        QSKIP("/dev/full is not available to provoke a write failure");
    TXLSfile xls;
    xls.AddWordCell(1, 1, {}, 5);
    xls.SetFileName(QStringLiteral("/dev/full"));
    try {
        xls.write();
        QFAIL("writing to a full device must fail");
    } catch (const EWriteError &e) {
        QVERIFY2(e.Message().startsWith(QStringLiteral("Chyba zápisu do souboru „/dev/full“")),
                 qPrintable(e.Message()));
    }
    // Nothing of the failed attempt is left over in the writer.
    QTemporaryDir dir;
    QCOMPARE(WriteSheet(xls, dir.filePath(QStringLiteral("ok.xls"))),
             FixedRecords + QByteArray::fromHex("0200 0900 0000 0000 000000 0500") + EndRecord);
}

void TestXLSfile::clearStartsAgain()
{
    TXLSfile xls;
    xls.AddWordCell(1, 1, {}, 5);
    xls.AddStrCell(1, 2, {}, QStringLiteral("x"));
    xls.clear();
    QCOMPARE(xls.Dispatcher().Count(), 3);
    QCOMPARE(xls.Dispatcher().Objects(0), xls.BOF());
    QCOMPARE(xls.Dispatcher().Objects(1), xls.CodePage());
    QCOMPARE(xls.Dispatcher().Objects(2), xls.Dimension());
    QCOMPARE(WriteToBuffer(xls.Dispatcher()), FixedRecords + EndRecord);
}

void TestXLSfile::codePage1250_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("ascii") << QStringLiteral("Aa 09~") << QByteArray("Aa 09~");
    QTest::newRow("czech lower") << QStringLiteral("áčďéěíňóřšťúůýž")
                                 << QByteArray::fromHex("e1e8efe9ecedf2f3f89a9dfaf9fd9e");
    QTest::newRow("czech upper") << QStringLiteral("ÁČĎÉĚÍŇÓŘŠŤÚŮÝŽ")
                                 << QByteArray::fromHex("c1c8cfc9cccdd2d3d88a8ddad9dd8e");
    QTest::newRow("typography") << QStringLiteral("„–€™“") << QByteArray::fromHex("8496809993");
    // Not in the code page: one '?' per UTF-16 unit, a surrogate pair too.
    QTest::newRow("outside") << QStringLiteral("Ωà中\u0085") << QByteArray("????");
    QTest::newRow("surrogate pair") << QString::fromUtf8("a\xF0\x9F\x98\x80z") << QByteArray("a??z");
}

void TestXLSfile::codePage1250()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QCOMPARE(CodePage1250::FromUnicode(text), bytes);
    if (!bytes.contains('?'))
        QCOMPARE(CodePage1250::ToUnicode(bytes), text);
}

void TestXLSfile::codePage1250TableIsConsistent()
{
    int undefined = 0;
    for (int b = 0; b < 256; ++b) {
        const char16_t u = CodePage1250::ToUnicode(uchar(b));
        if (u == 0xFFFD)
            ++undefined;
        else
            QCOMPARE(uchar(CodePage1250::FromUnicode(u)), uchar(b));
    }
    QCOMPARE(undefined, 5);
    QCOMPARE(CodePage1250::FromUnicode(char16_t(0x81)), '?');
}

void TestXLSfile::registrationAndProperties()
{
    Catalogue::Instance().Clear();
    TXLSfile unregistered; // usable without registration
    QVERIFY(unregistered.setProperty("FileName", QStringLiteral("a.xls")));
    QCOMPARE(unregistered.FileName(), QStringLiteral("a.xls"));

    RegisterXLSfile();
    const TComponentEntry *entry = Catalogue::Instance().Find(QStringLiteral("TXLSfile"));
    QVERIFY(entry);
    QCOMPARE(entry->Page, QStringLiteral("Oxa"));
    QCOMPARE(entry->Unit, QStringLiteral("XLSfile"));
    QVERIFY(!entry->IsWidget);
    QObject *created = Catalogue::Instance().Create(QStringLiteral("TXLSfile"));
    QVERIFY(qobject_cast<TXLSfile *>(created));
    delete created;
    Catalogue::Instance().Clear();
}

// Random, truncated and mutated streams may only end in EReadError: no
// crash, no hang, no other exception, and a bounded list of messages.
void TestXLSfile::readSurvivesDamagedStreams()
{
    QRandomGenerator random(20240611);
    TXLSfile source;
    for (int i = 0; i < 40; ++i) {
        source.AddWordCell(i % 7, i / 7, {}, quint16(i));
        source.AddDoubleCell(i % 5, i / 3, acCenter, i / 3.0);
        source.AddStrCell(i % 3, i, {}, QStringLiteral("Šťovík").left(i % 7));
    }
    source.AddCell(1, 1, {}, CellClassOf<TBlankCell>());
    const QByteArray valid = WriteToBuffer(source.Dispatcher());

    TXLSfile sheet;
    sheet.AddCell(1, 1, {}, CellClassOf<TBlankCell>());
    sheet.AddWordCell(1, 1, {}, 0);
    sheet.AddDoubleCell(1, 1, {}, 0);
    sheet.AddStrCell(1, 1, {}, QString());
    sheet.AddData(std::make_unique<TGreedy>(0x0005, 3));
    TDispatcher &d = sheet.Dispatcher();

    for (int round = 0; round < 6000; ++round) {
        QByteArray stream;
        switch (round % 4) {
        case 0: stream = valid.left(random.bounded(valid.size())); break;
        case 1: // a few opcodes the sheet knows, with random lengths
            for (int n = random.bounded(1, 40); n > 0; --n)
                stream += Bytes().u16(random.bounded(0, 12)).u16(random.bounded(0, 24)).b;
            break;
        case 2:
            stream.resize(random.bounded(0, 300));
            for (char &c : stream)
                c = char(random.bounded(256));
            break;
        default:
            stream = valid;
            for (int n = random.bounded(1, 8); n > 0; --n)
                stream[random.bounded(stream.size())] = char(random.bounded(256));
            stream.truncate(random.bounded(stream.size() + 1));
            break;
        }
        QBuffer buffer(&stream);
        buffer.open(QIODevice::ReadOnly);
        d.SetStream(&buffer);
        try {
            d.Read();
        } catch (const EReadError &) {
        }
        QVERIFY(d.SLError().size() <= stream.size() + 1);
        d.SLError().clear();
    }
    d.SetStream(nullptr);
}

QTEST_MAIN(TestXLSfile)
#include "tst_xlsfile.moc"
