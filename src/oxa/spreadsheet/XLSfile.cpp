#include "oxa/spreadsheet/XLSfile.h"

#include "oxa/toolkit/CodePage1250.h"
#include "oxa/toolkit/Catalogue.h"

#include <QDir>
#include <QFile>
#include <QIODevice>
#include <QWidget>
#include <QtEndian>

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <functional>
#include <mutex>
#include <system_error>
#include <thread>
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

// --- TMyWriter::TBackground -----------------------------------------------

// The thread that writes the writer's full blocks to the stream, in the order
// queued, while the writer fills the next one. Before the first block it
// runs the preparation it was given (opening the file), and the writer fills
// blocks meanwhile. The two sides pass whole buffers to each other, only
// under the mutex: a queued block belongs to the thread until it comes back
// as a spare, so neither side copies or touches the other's bytes, and the
// thread alone uses the stream while it has work. After a failed
// preparation or write it writes nothing more; the writer learns of the
// failure on its next call.
class TMyWriter::TBackground
{
public:
    // Takes spare buffers of an earlier writing: fresh memory costs more
    // than filling it.
    TBackground(QIODevice &stream, std::vector<std::vector<char>> spare, std::function<bool()> prepare)
        : m_stream(stream), m_prepare(std::move(prepare)), m_spare(std::move(spare)),
          m_blocks(1 + int(m_spare.size())), m_busy(bool(m_prepare)), m_thread([this] { Run(); })
    {
    }

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
                const bool written =
                    Attempt([&] { return m_stream.write(block.bytes.data(), block.count) == block.count; });
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
    template <class F>
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

TMyWriter::TMyWriter(QIODevice *stream) : TMyFiler(stream) {}

TMyWriter::~TMyWriter() = default;

// Doubles the buffer from InitialBuffer up to a full block and the record
// that crosses its end; only a larger record grows it further.
void TMyWriter::Grow(qsizetype count)
{
    const qsizetype used = Buffered();
    size_t size = std::max(m_buffer.size() * 2, InitialBuffer);
    if (m_buffer.size() < BlockCapacity)
        size = std::min(size, BlockCapacity);
    m_buffer.resize(std::max(size, size_t(used + count)));
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
    EndBackground();
    TMyFiler::SetStream(stream);
    DiscardBuffer();
    m_flushed = 0;
}

// A thread that cannot be started leaves the writing in the caller's thread,
// and the preparation, too.
void TMyWriter::BeginBackground(const std::function<bool()> &prepare)
{
    EndBackground();
    if (!FStream)
        return;
    try {
        m_background = std::make_unique<TBackground>(*FStream, std::move(m_spare), prepare);
        return;
    } catch (const std::system_error &) {
    }
    if (prepare && !prepare())
        throw EWriteError(StreamWriteError(*FStream));
}

// One spare buffer is kept besides the writer's own: as much memory as a
// writer without the thread keeps for its buffer.
void TMyWriter::EndBackground()
{
    if (!m_background)
        return;
    m_spare = m_background->Stop();
    m_background.reset();
    m_spare.resize(std::min<size_t>(m_spare.size(), 1));
}

// The bytes in the stream are patched there, so the blocks still queued must
// reach it first.
void TMyWriter::PatchFlushed(qint64 position, quint16 Value)
{
    if (m_background)
        m_background->Drain();
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
        throw EWriteError(StreamWriteError(*FStream));
}

// The buffer goes to the thread whole, and a free one takes its place. The
// writer is left empty and valid first, should the queueing throw.
void TMyWriter::QueueBuffer()
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
    m_flushed += count;
}

// Writing in the background, the blocks queued before go first, and the
// rest is written here: handing it to the thread would only add the wait
// for the thread to wake up.
void TMyWriter::FlushBuffer()
{
    if (m_background)
        m_background->Drain();
    const qint64 count = Buffered();
    if (count == 0)
        return;
    DiscardBuffer();
    if (!FStream)
        throw EWriteError(QStringLiteral("Chyba zápisu: není určen proud, do kterého se zapisuje."));
    if (FStream->write(m_buffer.data(), count) != count)
        throw EWriteError(StreamWriteError(*FStream));
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
// then its payload; the length is then put into the header. The buffer is
// queued for the stream in large blocks between records, so the stream sees
// no seeking unless a record flushes the writer itself; the closing
// FlushBuffer returns when every block is in the stream.
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
        writer.QueueBuffer();
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
    PutHeader(reinterpret_cast<quint8 *>(Writer.Append(HeaderSize)));
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

// The header and the value go straight into the writer's buffer: put
// together elsewhere and copied, they cost the copy and a stall on reading
// back the bytes just stored.
void TWordCell::Write(TMyWriter &Writer)
{
    auto *record = reinterpret_cast<quint8 *>(Writer.Append(HeaderSize + sizeof Value));
    PutHeader(record);
    qToLittleEndian(Value, record + HeaderSize);
}

TDoubleCell::TDoubleCell()
{
    opCode = 0x0003;
}

void TDoubleCell::Write(TMyWriter &Writer)
{
    auto *record = reinterpret_cast<quint8 *>(Writer.Append(HeaderSize + sizeof Value));
    PutHeader(record);
    quint64 bits;
    std::memcpy(&bits, &Value, sizeof bits);
    qToLittleEndian(bits, record + HeaderSize);
}

TStrCell::TStrCell()
{
    opCode = 0x0004;
}

void TStrCell::Write(TMyWriter &Writer)
{
    auto *record = reinterpret_cast<quint8 *>(Writer.Append(HeaderSize + 1 + Value.size()));
    PutHeader(record);
    record[HeaderSize] = quint8(Value.size()); // UTF-16 units, modulo 256
    CodePage1250::FromUnicode(Value, reinterpret_cast<char *>(record + HeaderSize + 1));
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

// The file is written without Qt's buffering: the dispatcher's writer hands
// it the records in large blocks, on a thread of its own, so that the disk
// takes one block while the next one is put together. That thread opens the
// file, too: truncating a file written a moment ago waits until its old
// contents are on the disk, and the records are put together meanwhile.
// Unbinding the stream ends the thread, on every way out, before the file is
// looked at again.
void TXLSfile::write()
{
    QFile file(FFileName);
    // A file that could not be created is the first fault, whatever the
    // records did meanwhile.
    const auto throwIfNotCreated = [&] {
        if (!file.isOpen()) {
            throw EFCreateError(QStringLiteral("Nelze vytvořit soubor „%1“: %2")
                                    .arg(QDir::toNativeSeparators(FFileName), file.errorString()));
        }
    };
    FDispatcher->SetStream(&file);
    try {
        FDispatcher->Writer().BeginBackground([&file] {
            return file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered);
        });
        FDispatcher->Write();
    } catch (const EWriteError &) {
        FDispatcher->SetStream(nullptr);
        throwIfNotCreated();
        throw EWriteError(QStringLiteral("Chyba zápisu do souboru „%1“: %2")
                              .arg(QDir::toNativeSeparators(FFileName), file.errorString()));
    } catch (...) {
        FDispatcher->SetStream(nullptr);
        throwIfNotCreated();
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
