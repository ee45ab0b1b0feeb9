#include "oxa/spreadsheet/XLSfile.h"

#include "oxa/spreadsheet/CodePage1250.h"
#include "oxa/toolkit/Catalogue.h"

#include <QDir>
#include <QFile>
#include <QIODevice>
#include <QWidget>
#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace oxa {

namespace {

// The reader's messages are English, as they have always been.
const char *const StreamReadError = "Stream read error";
const char *const FileFormatError =
    "File format error or file corrupt . Choose File -> Save as to save this file with new format";

// The writer hands its buffer to the stream once it holds this much, between
// two records; a record never reaches the stream in pieces.
constexpr qsizetype FlushThreshold = 1024 * 1024;
constexpr size_t InitialBuffer = 64 * 1024;
constexpr size_t PrefetchDistance = 32;

} // namespace

// --- TMyPersistent ---------------------------------------------------------

void TMyPersistent::Write(TMyWriter &) {}

void TMyPersistent::Read(TMyReader &) {}

// --- TMyReader -------------------------------------------------------------

void TMyReader::ReadBuffer(void *dest, qint64 count)
{
    if (!FStream || FStream->read(static_cast<char *>(dest), count) != count)
        throw EReadError(QString::fromLatin1(StreamReadError));
}

quint8 TMyReader::readByte()
{
    quint8 value = 0;
    ReadBuffer(&value, 1);
    return value;
}

quint16 TMyReader::readWord()
{
    uchar bytes[2];
    ReadBuffer(bytes, sizeof bytes);
    return qFromLittleEndian<quint16>(bytes);
}

qint32 TMyReader::readInt()
{
    uchar bytes[4];
    ReadBuffer(bytes, sizeof bytes);
    return qFromLittleEndian<qint32>(bytes);
}

double TMyReader::readDouble()
{
    uchar bytes[8];
    ReadBuffer(bytes, sizeof bytes);
    const quint64 bits = qFromLittleEndian<quint64>(bytes);
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

QString TMyReader::readStr()
{
    const quint16 count = readWord();
    QString text(count, QChar(0));
    ReadBuffer(text.data(), count);
    return text;
}

// --- TMyWriter -------------------------------------------------------------

void TMyWriter::Grow(qsizetype count)
{
    const qsizetype used = Buffered();
    m_buffer.resize(std::max({m_buffer.size() * 2, size_t(used + count), InitialBuffer}));
    m_cur = m_buffer.data() + used;
    m_end = m_buffer.data() + m_buffer.size();
}

void TMyWriter::WriteSingleStr(QStringView Value)
{
    CodePage1250::FromUnicode(Value, Append(Value.size()));
}

void TMyWriter::WriteStr(QStringView Value)
{
    WriteWord(quint16(Value.size())); // one byte per UTF-16 unit
    WriteSingleStr(Value);
}

void TMyWriter::SetStream(QIODevice *stream)
{
    TMyFiler::SetStream(stream);
    DiscardBuffer();
    m_flushed = 0;
}

void TMyWriter::PatchFlushed(qint64 position, quint16 Value)
{
    char bytes[2];
    qToLittleEndian(Value, bytes);
    PatchByte(position, bytes[0]);
    PatchByte(position + 1, bytes[1]);
}

void TMyWriter::PatchByte(qint64 position, char value)
{
    Q_ASSERT(position >= 0 && position < Position());
    if (position >= m_flushed) {
        m_buffer[size_t(position - m_flushed)] = value;
        return;
    }
    // Already in the stream, which now stands just after the flushed bytes.
    const qint64 here = FStream->pos();
    const qint64 at = here - (m_flushed - position);
    if (!FStream->seek(at) || FStream->write(&value, 1) != 1 || !FStream->seek(here))
        throw EWriteError(QStringLiteral("Chyba zápisu do proudu: %1").arg(FStream->errorString()));
}

void TMyWriter::FlushBuffer()
{
    const qint64 count = Buffered();
    if (count == 0)
        return;
    DiscardBuffer();
    if (!FStream)
        throw EWriteError(QStringLiteral("Chyba zápisu: není určen proud, do kterého se zapisuje."));
    if (FStream->write(m_buffer.data(), count) != count)
        throw EWriteError(QStringLiteral("Chyba zápisu do proudu: %1").arg(FStream->errorString()));
    m_flushed += count;
}

// --- TDispatcher -----------------------------------------------------------

TDispatcher::TDispatcher()
    : FReader(std::make_unique<TMyReader>()), FWriter(std::make_unique<TMyWriter>())
{
}

TDispatcher::~TDispatcher()
{
    Clear();
}

void TDispatcher::SetStream(QIODevice *stream)
{
    FStream = stream;
    FReader->SetStream(stream);
    FWriter->SetStream(stream);
}

TMyPersistent *TDispatcher::RegisterObj(std::unique_ptr<TMyPersistent> MyPers)
{
    TMyPersistent *object = MyPers.get();
    StrList.push_back(std::move(MyPers));
    StrListOpcodes.push_back(object->opCode);
    return object;
}

void TDispatcher::Clear()
{
    StrList.clear();
    StrListOpcodes.clear();
    FSLError.clear();
}

QString TDispatcher::Strings(qsizetype index) const
{
    return QString::number(StrListOpcodes.at(size_t(index)));
}

// Every record goes into the writer's buffer: its header with a zero length,
// then its payload; the length is then put into the header. The buffer goes
// to the stream in large blocks between records, so the stream sees no
// seeking unless a record flushes the writer itself.
void TDispatcher::Write()
{
    TMyWriter &writer = *FWriter;
    try {
        const size_t count = StrList.size();
        for (size_t i = 0; i < count; ++i) {
            // The objects lie all over the heap: fetch the next ones early.
            if (i + PrefetchDistance < count)
                __builtin_prefetch(StrList[i + PrefetchDistance].get());
            WriteRecord(writer, StrList[i]->opCode, StrList[i].get());
        }
        WriteRecord(writer, FOpcodeEOF, nullptr);
        writer.FlushBuffer();
    } catch (...) {
        writer.DiscardBuffer();
        throw;
    }
}

inline void TDispatcher::WriteRecord(TMyWriter &writer, quint16 opCode, TMyPersistent *object)
{
    const quint8 header[4] = {quint8(opCode), quint8(opCode >> 8), 0, 0};
    writer.WriteBuffer(header, sizeof header);
    if (object) {
        const qint64 payload = writer.Position();
        object->Write(writer);
        // The length is kept to 16 bits, as the record header holds no more.
        writer.PatchWord(payload - 2, quint16(writer.Position() - payload));
    }
    if (writer.Buffered() >= FlushThreshold)
        writer.FlushBuffer();
}

// The first registered object of each opcode answers for it.
QHash<quint16, TMyPersistent *> TDispatcher::FirstByOpcode() const
{
    QHash<quint16, TMyPersistent *> first;
    for (size_t i = 0; i < StrList.size(); ++i) {
        if (!first.contains(StrListOpcodes[i]))
            first.insert(StrListOpcodes[i], StrList[i].get());
    }
    return first;
}

// A move before the start or past the end of the stream fails as reading
// there would.
void TDispatcher::SeekRelative(qint64 offset)
{
    const qint64 target = FStream->pos() + offset;
    if (target < 0 || target > FStream->size() || !FStream->seek(target))
        throw EReadError(QString::fromLatin1(StreamReadError));
}

// Reads records until the end record. An unknown opcode is reported and its
// payload skipped. A record whose object reads less than the record holds is
// reported as an underrun, and the stream then moves back by the shortfall,
// away from the record's end: a long-standing behaviour that is kept. One
// that reads more is reported as an overrun and the stream moves back onto
// the record's end.
//
// Moving back can bring the reading to a record it has read before, and from
// there it would go round the same records for ever; so a record position met
// a second time ends the reading. That happens only after an underrun, so the
// reading then ends in EReadError as well.
void TDispatcher::Read()
{
    if (!FStream)
        throw EReadError(QString::fromLatin1(StreamReadError));
    const QHash<quint16, TMyPersistent *> registered = FirstByOpcode();
    std::vector<bool> visited(size_t(std::max<qint64>(FStream->size(), 0)) + 1);

    for (;;) {
        const qint64 start = FStream->pos();
        if (start >= 0 && size_t(start) < visited.size()) {
            if (visited[size_t(start)])
                break;
            visited[size_t(start)] = true;
        }
        const quint16 opcode = FReader->readWord();
        const quint16 length = FReader->readWord();
        if (opcode == FOpcodeEOF)
            break;
        const qint64 end = FStream->pos() + length;
        if (TMyPersistent *object = registered.value(opcode)) {
            object->Read(*FReader);
        } else {
            FSLError.append(QStringLiteral("Unknown Opcode %1 ").arg(opcode));
            SeekRelative(length);
        }
        const qint64 position = FStream->pos();
        if (position < end) {
            FSLError.append(QStringLiteral("Opcode %1 underrun %2 bytes").arg(opcode).arg(end - position));
            SeekRelative(position - end);
        } else if (position > end) {
            FSLError.append(QStringLiteral("Opcode %1 overrun %2 bytes").arg(opcode).arg(position - end));
            SeekRelative(end - position);
        }
    }
    if (!FSLError.isEmpty())
        throw EReadError(QString::fromLatin1(FileFormatError));
}

// --- The records -----------------------------------------------------------

TBOF::TBOF()
{
    opCode = 0x0809;
}

void TBOF::Write(TMyWriter &Writer)
{
    Writer.WriteWord(0);
    Writer.WriteWord(0x0010); // a worksheet
    Writer.WriteWord(0);
}

TCodePage::TCodePage()
{
    opCode = 0x0042;
}

void TCodePage::Write(TMyWriter &Writer)
{
    Writer.WriteWord(1250);
}

TDimension::TDimension()
{
    opCode = 0x0000;
}

void TDimension::Write(TMyWriter &Writer)
{
    Writer.WriteWord(MinSaveRecs);
    Writer.WriteWord(MaxSaveRecs);
    Writer.WriteWord(MinSaveCols);
    Writer.WriteWord(MaxSaveCols);
}

// The attribute bytes add their values; the alignment takes the first of
// left, centre and right, and fill is added on top of it.
void TCell::SetAtribut(TSetOfAtribut Value)
{
    FAtributSet = Value;
    std::array<quint8, 3> bytes{0, 0, 0};
    if (Value & acHidden)
        bytes[0] += 0x80;
    if (Value & acLocked)
        bytes[0] += 0x40;
    if (Value & acShaded)
        bytes[2] += 0x80;
    if (Value & acBottomBorder)
        bytes[2] += 0x40;
    if (Value & acTopBorder)
        bytes[2] += 0x20;
    if (Value & acRightBorder)
        bytes[2] += 0x10;
    if (Value & acLeftBorder)
        bytes[2] += 0x08;
    if (Value & acLeft)
        bytes[2] += 1;
    else if (Value & acCenter)
        bytes[2] += 2;
    else if (Value & acRight)
        bytes[2] += 3;
    if (Value & acFill)
        bytes[2] += 4;
    FAtribut = bytes;
}

void TCell::PutHeader(quint8 *dest) const
{
    qToLittleEndian(Row, dest);
    qToLittleEndian(Col, dest + 2);
    std::memcpy(dest + 4, FAtribut.data(), FAtribut.size());
}

void TCell::Write(TMyWriter &Writer)
{
    quint8 header[HeaderSize];
    PutHeader(header);
    Writer.WriteBuffer(header, sizeof header);
}

TBlankCell::TBlankCell()
{
    opCode = 0x0001;
}

void TBlankCell::Write(TMyWriter &)
{
    // A blank cell's record has no payload at all.
}

TWordCell::TWordCell()
{
    opCode = 0x0002;
}

// The header and the value go to the writer in one piece.
void TWordCell::Write(TMyWriter &Writer)
{
    quint8 record[HeaderSize + sizeof Value];
    PutHeader(record);
    qToLittleEndian(Value, record + HeaderSize);
    Writer.WriteBuffer(record, sizeof record);
}

TDoubleCell::TDoubleCell()
{
    opCode = 0x0003;
}

void TDoubleCell::Write(TMyWriter &Writer)
{
    quint8 record[HeaderSize + sizeof Value];
    PutHeader(record);
    quint64 bits;
    std::memcpy(&bits, &Value, sizeof bits);
    qToLittleEndian(bits, record + HeaderSize);
    Writer.WriteBuffer(record, sizeof record);
}

TStrCell::TStrCell()
{
    opCode = 0x0004;
}

void TStrCell::Write(TMyWriter &Writer)
{
    quint8 record[HeaderSize + 1];
    PutHeader(record);
    record[HeaderSize] = quint8(Value.size()); // UTF-16 units, modulo 256
    Writer.WriteBuffer(record, sizeof record);
    Writer.WriteSingleStr(Value);
}

void TStrCell::Read(TMyReader &Reader)
{
    TCell::Read(Reader);
}

// --- TXLSfile --------------------------------------------------------------

TXLSfile::TXLSfile(QObject *owner)
    : QObject(owner), FDispatcher(std::make_unique<TDispatcher>())
{
    FModeOpen = false;
    FDispatcher->SetOpcodeEOF(10);
    clear();
}

TXLSfile::~TXLSfile() = default;

void TXLSfile::clear()
{
    FDispatcher->Clear();
    FBOF = static_cast<TBOF *>(AddData(std::make_unique<TBOF>()));
    FCodePage = static_cast<TCodePage *>(AddData(std::make_unique<TCodePage>()));
    FDimension = static_cast<TDimension *>(AddData(std::make_unique<TDimension>()));
}

template <class T>
T *TXLSfile::AddTypedCell(quint16 vCol, quint16 vRow, TSetOfAtribut vAtribut)
{
    return static_cast<T *>(AddCell(vCol, vRow, vAtribut, CellClassOf<T>()));
}

TWordCell *TXLSfile::AddWordCell(quint16 vCol, quint16 vRow, TSetOfAtribut vAtribut, quint16 aValue)
{
    TWordCell *cell = AddTypedCell<TWordCell>(vCol, vRow, vAtribut);
    cell->Value = aValue;
    return cell;
}

TDoubleCell *TXLSfile::AddDoubleCell(quint16 vCol, quint16 vRow, TSetOfAtribut vAtribut, double aValue)
{
    TDoubleCell *cell = AddTypedCell<TDoubleCell>(vCol, vRow, vAtribut);
    cell->Value = aValue;
    return cell;
}

TStrCell *TXLSfile::AddStrCell(quint16 vCol, quint16 vRow, TSetOfAtribut vAtribut, const QString &aValue)
{
    TStrCell *cell = AddTypedCell<TStrCell>(vCol, vRow, vAtribut);
    cell->Value = aValue;
    return cell;
}

TCell *TXLSfile::AddCell(quint16 vCol, quint16 vRow, TSetOfAtribut vAtribut, TCellClass CellClass)
{
    std::unique_ptr<TCell> cell = CellClass();
    // Callers count from 1; 0 wraps round to 65535 and is written so.
    cell->Col = quint16(vCol - 1);
    cell->Row = quint16(vRow - 1);
    cell->SetAtribut(vAtribut);
    return static_cast<TCell *>(AddData(std::move(cell)));
}

TData *TXLSfile::AddData(std::unique_ptr<TData> Data)
{
    return static_cast<TData *>(FDispatcher->RegisterObj(std::move(Data)));
}

// The file is written without Qt's buffering: the dispatcher's writer already
// hands it the records in large blocks.
void TXLSfile::write()
{
    QFile file(FFileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        throw EFCreateError(QStringLiteral("Nelze vytvořit soubor „%1“: %2")
                                .arg(QDir::toNativeSeparators(FFileName), file.errorString()));
    }
    FDispatcher->SetStream(&file);
    try {
        FDispatcher->Write();
    } catch (const EWriteError &) {
        FDispatcher->SetStream(nullptr);
        throw EWriteError(QStringLiteral("Chyba zápisu do souboru „%1“: %2")
                              .arg(QDir::toNativeSeparators(FFileName), file.errorString()));
    } catch (...) {
        FDispatcher->SetStream(nullptr);
        throw;
    }
    FDispatcher->SetStream(nullptr);
}

void RegisterXLSfile()
{
    Catalogue::Instance().RegisterComponents({ComponentEntry<TXLSfile>(
        QStringLiteral("Oxa"), QStringLiteral("TXLSfile"), QStringLiteral("XLSfile"),
        QStringLiteral("oxa/spreadsheet/XLSfile.h"))});
}

} // namespace oxa
