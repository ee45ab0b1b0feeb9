#pragma once

// Internals of the spreadsheet file component: not part of the installed API.

#include "oxa/spreadsheet/XLSfile.h"

#include <functional>
#include <memory>
#include <vector>

class QIODevice;

namespace oxa {

// The component's own fast path to a file: the bytes of whole records are
// collected in a buffer and handed to the stream in large blocks, so writing
// a value costs no system call. With BeginBackground the full blocks go to
// the stream on a thread of the writer's own while the next block is being
// filled; the bytes and their order stay the same.
class TBlockWriter
{
public:
    explicit TBlockWriter(QIODevice &stream);
    ~TBlockWriter();
    TBlockWriter(const TBlockWriter &) = delete;
    TBlockWriter &operator=(const TBlockWriter &) = delete;

    // Room for count more bytes at the end of the buffer, which the caller
    // fills, all of them: a record puts its bytes straight there.
    char *Append(qsizetype count)
    {
        if (m_end - m_cur < count)
            Grow(count);
        char *dest = m_cur;
        m_cur += count;
        return dest;
    }

    // Bytes collected and not yet handed on.
    qsizetype Buffered() const { return m_cur - m_buffer.data(); }

    // Hands the collected bytes to the stream, after every block queued
    // before, and returns when all of them are in it; the stream is then the
    // caller's to use until the next QueueBuffer. Throws EWriteError when
    // the stream takes fewer than all of them.
    void FlushBuffer();
    // Like FlushBuffer, but writing in the background it only queues the
    // block and returns at once (or when a buffer comes free); a failed write
    // is thrown by a later call.
    void QueueBuffer();

    // From now on the blocks queued go to the stream on a thread of the
    // writer's own, and nobody else may use the stream until FlushBuffer
    // returns or EndBackground. The thread first runs prepare, when given
    // (opening the file, say), while the writer goes on filling blocks;
    // false from it fails the writing as a failed write does.
    void BeginBackground(const std::function<bool()> &prepare = {});
    // Stops the thread, which writes nothing more, and waits for it. Blocks
    // queued and not yet written are dropped: FlushBuffer first to keep them.
    void EndBackground();

private:
    class TBackground;

    void Grow(qsizetype count);
    void DiscardBuffer() { m_cur = m_buffer.data(); }

    QIODevice &m_stream;
    std::vector<char> m_buffer;
    char *m_cur = nullptr;
    char *m_end = nullptr;
    std::unique_ptr<TBackground> m_background;
};

// Writes the dispatcher's records and its end record to stream as
// TDispatcher::Write does, byte for byte: the library's own record classes
// go through a TBlockWriter in the background (its thread runs prepare
// first); any other record is written by its own Write through the
// dispatcher's writer, once the blocks before it are in the stream.
void WriteRecordsInBlocks(TDispatcher &dispatcher, QIODevice &stream,
                          const std::function<bool()> &prepare = {});

// The state of TXLSfile, kept here so that the public class's layout does not
// change with it.
class TXLSfilePrivate
{
public:
    QString FFileName;
    bool FModeOpen = false;
    std::unique_ptr<TDispatcher> FDispatcher;
    TBOF *FBOF = nullptr;
    TCodePage *FCodePage = nullptr;
    TDimension *FDimension = nullptr;
};

} // namespace oxa
