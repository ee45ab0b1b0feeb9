#include "oxa/spreadsheet/XLSfile.h"
#include "oxa/spreadsheet/XLSfile_p.h"

#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/CodePage1250.h"

#include <QDir>
#include <QFile>
#include <QIODevice>
#include <QVarLengthArray>
#include <QWidget>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <functional>
#include <mutex>
#include <system_error>
#include <thread>
#include <typeinfo>
#include <utility>

namespace oxa {

namespace {

// The reader's messages are English, as they have always been.
const char *const StreamReadError = "Stream read error";
const char *const FileFormatError =
    "File format error or file corrupt . Choose File -> Save as to save this file with new format";

// The writer hands its buffer on (to the stream or to its thread) once it
// holds this much, between two records; a record never goes out in pieces.
constexpr qsizetype FlushThreshold = 1024 * 1024;
constexpr size_t InitialBuffer = 64 * 1024;
// A full block and the ordinary record (at most 64 KiB) that crosses its end.
constexpr size_t BlockCapacity = FlushThreshold + 64 * 1024;
constexpr size_t PrefetchDistance = 32;

QString StreamWriteError(const QIODevice &stream)
{
    return QStringLiteral("Chyba zápisu do proudu: %1").arg(stream.errorString());
}

} // namespace

// --- TMyPersistent ---------------------------------------------------------

void TMyPersistent::Write(TMyWriter &) { }

void TMyPersistent::Read(TMyReader &) { }

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

// --- TBlockWriter::TBackground --------------------------------------------

// The thread that writes the writer's full blocks to the stream, in the order
// queued, while the writer fills the next one. Before the first block it
// runs the preparation it was given (opening the file), and the writer fills
// blocks meanwhile. The two sides pass whole buffers to each other, only
// under the mutex: a queued block belongs to the thread until it comes back
// as a spare, so neither side copies or touches the other's bytes, and the
// thread alone uses the stream while it has work. After a failed
// preparation or write it writes nothing more; the writer learns of the
// failure on its next call.
class TBlockWriter::TBackground
{
public:
    // Takes spare buffers of an earlier writing: fresh memory costs more
    // than filling it.
    TBackground(QIODevice &stream, std::vector<std::vector<char>> spare,
                std::function<bool()> prepare)
        : m_stream(stream), m_prepare(std::move(prepare)), m_spare(std::move(spare)),
          m_blocks(1 + int(m_spare.size())), m_busy(bool(m_prepare)),
          m_thread(&TBackground::Enter, static_cast<void *>(this))
    { }

    ~TBackground() { Stop(); }

    // Queues the first count bytes of block and returns an empty buffer for
    // the next ones: a written one, or a new one of the same size while fewer
    // than MaxBlocks exist; otherwise waits for one. Throws EWriteError once
    // a write has failed.
    std::vector<char> Queue(std::vector<char> block, qsizetype count)
    {
        const size_t capacity = block.size();
        {
            const std::lock_guard lock(m_mutex);
            ThrowIfFailed();
            m_queue.push_back({std::move(block), count});
        }
        // Woken with the mutex free, the thread need not wait for it.
        m_changed.notify_all();
        {
            std::unique_lock lock(m_mutex);
            if (m_spare.empty() && m_blocks >= MaxBlocks)
                m_changed.wait(lock, [this] { return !m_spare.empty() || !m_error.isEmpty(); });
            if (!m_spare.empty()) {
                std::vector<char> spare = std::move(m_spare.back());
                m_spare.pop_back();
                return spare;
            }
            ++m_blocks;
        }
        return std::vector<char>(capacity);
    }

    // Waits until the stream is prepared and every queued block is in it;
    // the stream is then the caller's to use until the next Queue. Throws
    // EWriteError when the preparation or a write failed.
    void Drain()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return (m_queue.empty() && !m_busy) || !m_error.isEmpty(); });
        ThrowIfFailed();
    }

    // Stops the thread after the block being written, and gives back every
    // buffer, the blocks not written included.
    std::vector<std::vector<char>> Stop()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_stop = true;
        }
        m_changed.notify_all();
        if (m_thread.joinable())
            m_thread.join();
        // The thread has ended: the buffers are this side's alone.
        for (TBlock &block : m_queue)
            m_spare.push_back(std::move(block.bytes));
        m_queue.clear();
        return std::move(m_spare);
    }

private:
    struct TBlock
    {
        std::vector<char> bytes;
        qsizetype count;
    };

    // The writer's own buffer and the blocks queued or being written: the
    // writer runs at most this many blocks (16 MiB) ahead of the stream.
    // Once the file is open the thread keeps up and a few blocks suffice;
    // the rest is for the time the file takes to open.
    static constexpr int MaxBlocks = 16;

    void ThrowIfFailed() const
    {
        if (!m_error.isEmpty())
            throw EWriteError(m_error);
    }

    // The thread's entry names no type of the library: the instance of
    // std::thread's machinery it needs then shows no internals outside.
    static void Enter(void *self) { static_cast<TBackground *>(self)->Run(); }

    void Run()
    {
        if (m_prepare) {
            const bool prepared = Attempt(m_prepare);
            const std::lock_guard lock(m_mutex);
            m_busy = false;
            if (!prepared)
                m_error = StreamWriteError(m_stream);
            m_changed.notify_all();
        }
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_changed.wait(lock, [this] { return m_stop || !m_queue.empty(); });
            if (m_stop)
                return;
            TBlock block = std::move(m_queue.front());
            m_queue.pop_front();
            if (m_error.isEmpty()) {
                m_busy = true;
                lock.unlock();
                const bool written = Attempt(
                    [&] { return m_stream.write(block.bytes.data(), block.count) == block.count; });
                lock.lock();
                m_busy = false;
                if (!written)
                    m_error = StreamWriteError(m_stream);
            }
            m_spare.push_back(std::move(block.bytes));
            m_changed.notify_all();
        }
    }

    // Nothing may escape the thread: whatever the stream throws counts as a
    // failed write.
    template<class F>
    static bool Attempt(const F &step) noexcept
    {
        try {
            return step();
        } catch (...) {
            return false;
        }
    }

    QIODevice &m_stream;
    const std::function<bool()> m_prepare;
    std::mutex m_mutex;
    // Signals every change of the state below, to either side.
    std::condition_variable m_changed;
    std::deque<TBlock> m_queue;
    std::vector<std::vector<char>> m_spare;
    int m_blocks;
    // The thread is preparing the stream or writing a block.
    bool m_busy;
    bool m_stop = false;
    QString m_error;
    // Started last, when everything it uses is ready.
    std::thread m_thread;
};

// --- TMyWriter -------------------------------------------------------------

void TMyWriter::WriteBuffer(const void *data, qsizetype count)
{
    if (!FStream)
        throw EWriteError(
            QStringLiteral("Chyba zápisu: není určen proud, do kterého se zapisuje."));
    if (FStream->write(static_cast<const char *>(data), count) != count)
        throw EWriteError(StreamWriteError(*FStream));
}

void TMyWriter::WriteByte(quint8 Value)
{
    WriteBuffer(&Value, sizeof Value);
}

void TMyWriter::WriteWord(quint16 Value)
{
    uchar bytes[sizeof Value];
    qToLittleEndian(Value, bytes);
    WriteBuffer(bytes, sizeof bytes);
}

void TMyWriter::WriteInt(qint32 Value)
{
    uchar bytes[sizeof Value];
    qToLittleEndian(Value, bytes);
    WriteBuffer(bytes, sizeof bytes);
}

void TMyWriter::WriteDouble(double Value)
{
    uchar bytes[sizeof Value];
    qToLittleEndian(std::bit_cast<quint64>(Value), bytes);
    WriteBuffer(bytes, sizeof bytes);
}

void TMyWriter::WriteSingleStr(QStringView Value)
{
    QVarLengthArray<char, 256> bytes(Value.size());
    CodePage1250::FromUnicode(Value, bytes.data());
    WriteBuffer(bytes.data(), bytes.size());
}

void TMyWriter::WriteStr(QStringView Value)
{
    WriteWord(quint16(Value.size())); // one byte per UTF-16 unit
    WriteSingleStr(Value);
}

// --- TBlockWriter ----------------------------------------------------------

TBlockWriter::TBlockWriter(QIODevice &stream) : m_stream(stream) { }

TBlockWriter::~TBlockWriter()
{
    EndBackground();
}

// Doubles the buffer from InitialBuffer up to a full block and the record
// that crosses its end; only a larger record grows it further.
void TBlockWriter::Grow(qsizetype count)
{
    const qsizetype used = Buffered();
    size_t size = std::max(m_buffer.size() * 2, InitialBuffer);
    if (m_buffer.size() < BlockCapacity)
        size = std::min(size, BlockCapacity);
    m_buffer.resize(std::max(size, size_t(used + count)));
    m_cur = m_buffer.data() + used;
    m_end = m_buffer.data() + m_buffer.size();
}

// A thread that cannot be started leaves the writing in the caller's thread,
// and the preparation, too.
void TBlockWriter::BeginBackground(const std::function<bool()> &prepare)
{
    EndBackground();
    try {
        m_background =
            std::make_unique<TBackground>(m_stream, std::vector<std::vector<char>>(), prepare);
        return;
    } catch (const std::system_error &) { }
    if (prepare && !prepare())
        throw EWriteError(StreamWriteError(m_stream));
}

void TBlockWriter::EndBackground()
{
    if (!m_background)
        return;
    m_background->Stop();
    m_background.reset();
}

// The buffer goes to the thread whole, and a free one takes its place. The
// writer is left empty and valid first, should the queueing throw.
void TBlockWriter::QueueBuffer()
{
    const qint64 count = Buffered();
    if (count == 0)
        return;
    if (!m_background) {
        FlushBuffer();
        return;
    }
    std::vector<char> full = std::exchange(m_buffer, {});
    m_cur = m_end = nullptr;
    m_buffer = m_background->Queue(std::move(full), count);
    m_cur = m_buffer.data();
    m_end = m_cur + m_buffer.size();
}

// Writing in the background, the blocks queued before go first, and the
// rest is written here: handing it to the thread would only add the wait
// for the thread to wake up.
void TBlockWriter::FlushBuffer()
{
    if (m_background)
        m_background->Drain();
    const qint64 count = Buffered();
    if (count == 0)
        return;
    DiscardBuffer();
    if (m_stream.write(m_buffer.data(), count) != count)
        throw EWriteError(StreamWriteError(m_stream));
}

// --- TDispatcher -----------------------------------------------------------

TDispatcher::TDispatcher()
    : FReader(std::make_unique<TMyReader>()), FWriter(std::make_unique<TMyWriter>())
{ }

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

namespace {

// Writes one record through writer: its header with a zero length, its
// payload by the object's own Write, then the length, by seeking back into
// the header and forward again.
void WriteRecordThrough(TMyWriter &writer, quint16 opCode, TMyPersistent *object)
{
    writer.WriteWord(opCode);
    writer.WriteWord(0);
    if (!object)
        return;
    QIODevice &stream = *writer.Stream();
    const qint64 payload = stream.pos();
    object->Write(writer);
    const qint64 length = stream.pos() - payload;
    const auto seek = [&stream](qint64 offset) {
        if (stream.isSequential() || !stream.seek(stream.pos() + offset))
            throw EWriteError(QStringLiteral("Chyba zápisu do proudu: v proudu se nelze vrátit k "
                                             "hlavičce záznamu."));
    };
    seek(-(length + 2));
    // The length is kept to 16 bits, as the record header holds no more.
    writer.WriteWord(quint16(length));
    seek(length);
}

} // namespace

void TDispatcher::Write()
{
    if (!FStream)
        throw EWriteError(
            QStringLiteral("Chyba zápisu: není určen proud, do kterého se zapisuje."));
    for (const std::unique_ptr<TMyPersistent> &object : StrList)
        WriteRecordThrough(*FWriter, object->opCode, object.get());
    WriteRecordThrough(*FWriter, FOpcodeEOF, nullptr);
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
            FSLError.append(
                QStringLiteral("Opcode %1 underrun %2 bytes").arg(opcode).arg(end - position));
            SeekRelative(position - end);
        } else if (position > end) {
            FSLError.append(
                QStringLiteral("Opcode %1 overrun %2 bytes").arg(opcode).arg(position - end));
            SeekRelative(end - position);
        }
    }
    if (!FSLError.isEmpty())
        throw EReadError(QString::fromLatin1(FileFormatError));
}

// --- The records -----------------------------------------------------------

// Each record class of the library puts its payload in one place,
// PutPayload, and tells its size beforehand with PayloadSize; its Write hands
// those bytes to the writer, and the component's fast path puts them straight
// into its blocks.
namespace {

constexpr qsizetype CellHeaderSize = 7;

void PutCellHeader(const TCell &cell, quint8 *dest)
{
    qToLittleEndian(cell.Row, dest);
    qToLittleEndian(cell.Col, dest + 2);
    std::memcpy(dest + 4, cell.FAtribut.data(), cell.FAtribut.size());
}

constexpr qsizetype PayloadSize(const TBOF &)
{
    return 6;
}
constexpr qsizetype PayloadSize(const TCodePage &)
{
    return 2;
}
constexpr qsizetype PayloadSize(const TDimension &)
{
    return 8;
}
constexpr qsizetype PayloadSize(const TBlankCell &)
{
    return 0;
}
constexpr qsizetype PayloadSize(const TWordCell &)
{
    return CellHeaderSize + 2;
}
constexpr qsizetype PayloadSize(const TDoubleCell &)
{
    return CellHeaderSize + 8;
}
qsizetype PayloadSize(const TStrCell &cell)
{
    return CellHeaderSize + 1 + cell.Value.size();
}

void PutPayload(const TBOF &, quint8 *dest)
{
    qToLittleEndian<quint16>(0, dest);
    qToLittleEndian<quint16>(0x0010, dest + 2); // a worksheet
    qToLittleEndian<quint16>(0, dest + 4);
}

void PutPayload(const TCodePage &, quint8 *dest)
{
    qToLittleEndian<quint16>(1250, dest);
}

void PutPayload(const TDimension &d, quint8 *dest)
{
    qToLittleEndian(d.MinSaveRecs, dest);
    qToLittleEndian(d.MaxSaveRecs, dest + 2);
    qToLittleEndian(d.MinSaveCols, dest + 4);
    qToLittleEndian(d.MaxSaveCols, dest + 6);
}

// A blank cell's record has no payload at all.
void PutPayload(const TBlankCell &, quint8 *) { }

void PutPayload(const TWordCell &cell, quint8 *dest)
{
    PutCellHeader(cell, dest);
    qToLittleEndian(cell.Value, dest + CellHeaderSize);
}

void PutPayload(const TDoubleCell &cell, quint8 *dest)
{
    PutCellHeader(cell, dest);
    qToLittleEndian(std::bit_cast<quint64>(cell.Value), dest + CellHeaderSize);
}

void PutPayload(const TStrCell &cell, quint8 *dest)
{
    PutCellHeader(cell, dest);
    dest[CellHeaderSize] = quint8(cell.Value.size()); // UTF-16 units, modulo 256
    CodePage1250::FromUnicode(cell.Value, reinterpret_cast<char *>(dest + CellHeaderSize + 1));
}

template<class R>
void WritePayload(TMyWriter &writer, const R &record)
{
    QVarLengthArray<quint8, 64> bytes(PayloadSize(record));
    PutPayload(record, bytes.data());
    writer.WriteBuffer(bytes.data(), bytes.size());
}

// The whole record, header included, into the block.
template<class R>
void AppendRecord(TBlockWriter &out, const R &record)
{
    const qsizetype size = PayloadSize(record);
    auto *dest = reinterpret_cast<quint8 *>(out.Append(4 + size));
    qToLittleEndian(record.opCode, dest);
    qToLittleEndian(quint16(size), dest + 2); // kept to 16 bits, as the header holds no more
    PutPayload(record, dest + 4);
}

// Appends object when it is exactly one of the library's record classes: a
// descendant may write anything and goes through its own Write.
bool AppendOwnRecord(TBlockWriter &out, const TMyPersistent &object)
{
    const std::type_info &type = typeid(object);
    const auto append = [&]<class R>(const R *) {
        if (type != typeid(R))
            return false;
        AppendRecord(out, static_cast<const R &>(object));
        return true;
    };
    return append(static_cast<const TWordCell *>(nullptr)) ||
        append(static_cast<const TDoubleCell *>(nullptr)) ||
        append(static_cast<const TStrCell *>(nullptr)) ||
        append(static_cast<const TBlankCell *>(nullptr)) ||
        append(static_cast<const TBOF *>(nullptr)) ||
        append(static_cast<const TCodePage *>(nullptr)) ||
        append(static_cast<const TDimension *>(nullptr));
}

} // namespace

void WriteRecordsInBlocks(TDispatcher &dispatcher, QIODevice &stream,
                          const std::function<bool()> &prepare)
{
    TBlockWriter out(stream);
    out.BeginBackground(prepare);
    const qsizetype count = dispatcher.Count();
    for (qsizetype i = 0; i < count; ++i) {
        // The objects lie all over the heap: fetch the next ones early.
        if (i + qsizetype(PrefetchDistance) < count)
            __builtin_prefetch(dispatcher.Objects(i + qsizetype(PrefetchDistance)));
        TMyPersistent *object = dispatcher.Objects(i);
        if (!AppendOwnRecord(out, *object)) {
            out.FlushBuffer();
            WriteRecordThrough(dispatcher.Writer(), object->opCode, object);
        }
        if (out.Buffered() >= FlushThreshold)
            out.QueueBuffer();
    }
    auto *end = reinterpret_cast<quint8 *>(out.Append(4));
    qToLittleEndian(dispatcher.OpcodeEOF(), end);
    qToLittleEndian<quint16>(0, end + 2);
    out.FlushBuffer();
}

TBOF::TBOF()
{
    opCode = 0x0809;
}

void TBOF::Write(TMyWriter &Writer)
{
    WritePayload(Writer, *this);
}

TCodePage::TCodePage()
{
    opCode = 0x0042;
}

void TCodePage::Write(TMyWriter &Writer)
{
    WritePayload(Writer, *this);
}

TDimension::TDimension()
{
    opCode = 0x0000;
}

void TDimension::Write(TMyWriter &Writer)
{
    WritePayload(Writer, *this);
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

void TCell::Write(TMyWriter &Writer)
{
    quint8 header[CellHeaderSize];
    PutCellHeader(*this, header);
    Writer.WriteBuffer(header, sizeof header);
}

TBlankCell::TBlankCell()
{
    opCode = 0x0001;
}

void TBlankCell::Write(TMyWriter &) { }

TWordCell::TWordCell()
{
    opCode = 0x0002;
}

void TWordCell::Write(TMyWriter &Writer)
{
    WritePayload(Writer, *this);
}

TDoubleCell::TDoubleCell()
{
    opCode = 0x0003;
}

void TDoubleCell::Write(TMyWriter &Writer)
{
    WritePayload(Writer, *this);
}

TStrCell::TStrCell()
{
    opCode = 0x0004;
}

void TStrCell::Write(TMyWriter &Writer)
{
    WritePayload(Writer, *this);
}

void TStrCell::Read(TMyReader &Reader)
{
    TCell::Read(Reader);
}

// --- TXLSfile --------------------------------------------------------------

TXLSfile::TXLSfile(QObject *owner) : QObject(owner), d(std::make_unique<TXLSfilePrivate>())
{
    d->FDispatcher = std::make_unique<TDispatcher>();
    d->FModeOpen = false;
    d->FDispatcher->SetOpcodeEOF(10);
    clear();
}

TXLSfile::~TXLSfile() = default;

QString TXLSfile::FileName() const
{
    return d->FFileName;
}

void TXLSfile::SetFileName(const QString &value)
{
    if (value == d->FFileName)
        return;
    d->FFileName = value;
    Q_EMIT fileNameChanged();
}

bool TXLSfile::ModeOpen() const
{
    return d->FModeOpen;
}

TDispatcher &TXLSfile::Dispatcher() const
{
    return *d->FDispatcher;
}

TBOF *TXLSfile::BOF() const
{
    return d->FBOF;
}

TCodePage *TXLSfile::CodePage() const
{
    return d->FCodePage;
}

TDimension *TXLSfile::Dimension() const
{
    return d->FDimension;
}

void TXLSfile::clear()
{
    d->FDispatcher->Clear();
    d->FBOF = static_cast<TBOF *>(AddData(std::make_unique<TBOF>()));
    d->FCodePage = static_cast<TCodePage *>(AddData(std::make_unique<TCodePage>()));
    d->FDimension = static_cast<TDimension *>(AddData(std::make_unique<TDimension>()));
}

template<class T>
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

TDoubleCell *TXLSfile::AddDoubleCell(quint16 vCol, quint16 vRow, TSetOfAtribut vAtribut,
                                     double aValue)
{
    TDoubleCell *cell = AddTypedCell<TDoubleCell>(vCol, vRow, vAtribut);
    cell->Value = aValue;
    return cell;
}

TStrCell *TXLSfile::AddStrCell(quint16 vCol, quint16 vRow, TSetOfAtribut vAtribut,
                               const QString &aValue)
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
    return static_cast<TData *>(d->FDispatcher->RegisterObj(std::move(Data)));
}

// The file is written without Qt's buffering: the records go to it in large
// blocks, on a thread of their own, so that the disk takes one block while
// the next one is put together. That thread opens the file, too: truncating
// a file written a moment ago waits until its old contents are on the disk,
// and the records are put together meanwhile. The thread has ended, on every
// way out, before the file is looked at again.
void TXLSfile::write()
{
    QFile file(d->FFileName);
    // A file that could not be created is the first fault, whatever the
    // records did meanwhile.
    const auto throwIfNotCreated = [&] {
        if (!file.isOpen()) {
            throw EFCreateError(
                QStringLiteral("Nelze vytvořit soubor „%1“: %2")
                    .arg(QDir::toNativeSeparators(d->FFileName), file.errorString()));
        }
    };
    d->FDispatcher->SetStream(&file);
    try {
        WriteRecordsInBlocks(*d->FDispatcher, file, [&file] {
            return file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered);
        });
    } catch (const EWriteError &) {
        d->FDispatcher->SetStream(nullptr);
        throwIfNotCreated();
        throw EWriteError(QStringLiteral("Chyba zápisu do souboru „%1“: %2")
                              .arg(QDir::toNativeSeparators(d->FFileName), file.errorString()));
    } catch (...) {
        d->FDispatcher->SetStream(nullptr);
        throwIfNotCreated();
        throw;
    }
    d->FDispatcher->SetStream(nullptr);
}

void RegisterXLSfile()
{
    Catalogue::Instance().RegisterComponents({ComponentEntry<TXLSfile>(
        QStringLiteral("Oxa"), QStringLiteral("TXLSfile"), QStringLiteral("XLSfile"),
        QStringLiteral("oxa/spreadsheet/XLSfile.h"))});
}

} // namespace oxa
