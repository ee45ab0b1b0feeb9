#include "oxa/richtext/SpellHighlighter_p.h"

#include <QTextDocument>
#include <algorithm>
#include <ctime>

namespace oxa {

SpellHighlighter::SpellHighlighter(QTextDocument *document, SpellChecker *checker, QObject *parent)
    : QObject(parent), m_document(document), m_checker(checker)
{
    m_underline.setUnderlineStyle(QTextCharFormat::SpellCheckUnderline);
    m_underline.setUnderlineColor(Qt::red);
    m_slice.setSingleShot(true);
    m_slice.setInterval(0);
    connect(&m_slice, &QTimer::timeout, this, &SpellHighlighter::RunSlice);
    connect(m_document, &QTextDocument::contentsChange, this, &SpellHighlighter::OnContentsChange);
    connect(m_checker, &SpellChecker::Loaded, this, [this] {
        if (m_waitingForDictionary) {
            m_waitingForDictionary = false;
            ScheduleSlice();
        }
    });
    connect(m_checker, &SpellChecker::PersonalWordsChanged, this, &SpellHighlighter::RecheckAll);
    m_enabled = m_checker->IsAvailable();
    if (m_enabled)
        RecheckAll();
}

SpellHighlighter::~SpellHighlighter() = default;

void SpellHighlighter::SetEnabled(bool on)
{
    on = on && m_checker && m_checker->IsAvailable();
    if (on == m_enabled)
        return;
    m_enabled = on;
    if (on) {
        RecheckAll();
    } else {
        m_pending.clear();
        m_slice.stop();
        m_waitingForDictionary = false;
        m_held = QTextCursor();
        ClearAll();
    }
}

void SpellHighlighter::RecheckAll()
{
    // An empty document has nothing to check and need not read the dictionary.
    if (m_enabled && !m_document->isEmpty())
        Queue(0, m_document->characterCount() - 1);
}

void SpellHighlighter::OnContentsChange(int from, int removed, int added)
{
    if (!m_enabled || !m_checker)
        return;
    ShiftPending(from, removed, added);
    const QTextBlock first = m_document->findBlock(from);
    QTextBlock last = m_document->findBlock(from + added);
    if (!last.isValid())
        last = m_document->lastBlock();
    const bool small = last.blockNumber() - first.blockNumber() < ImmediateBlocks;
    if (m_interactive > 0 && small && m_checker->IsReady()) {
        QElapsedTimer timer;
        timer.start();
        // A typed or erased character leaves the caret in a word that may be
        // unfinished; an undo or a chosen correction does not.
        const bool typing = added == 1 || (added == 0 && removed == 1);
        const int caret = typing ? from + added : -1;
        for (QTextBlock b = first; b.isValid(); b = b.next()) {
            CheckBlock(b, caret);
            if (b == last)
                break;
        }
        const qint64 ns = timer.nsecsElapsed();
        ++m_stats.Immediate;
        m_stats.ImmediateNs += ns;
        m_stats.LongestImmediateNs = std::max(m_stats.LongestImmediateNs, ns);
        return;
    }
    // The underlines of the ends would stand on moved text until the slice
    // comes to them; they go now.
    SetBlockFormats(first, {});
    SetBlockFormats(last, {});
    Queue(from, from + added);
}

// Moves the queued ranges with an edit: what lies after the edit moves by the
// change of length, a range reaching into it ends behind the inserted text.
void SpellHighlighter::ShiftPending(int from, int removed, int added)
{
    const int delta = added - removed;
    for (Range &r : m_pending) {
        if (r.From >= from + removed) {
            r.From += delta;
            r.To += delta;
            continue;
        }
        if (r.From > from)
            r.From = from;
        if (r.To >= from)
            r.To = std::max(from + added, r.To + delta);
    }
}

void SpellHighlighter::Queue(int from, int to)
{
    if (m_pending.empty())
        m_pass.start();
    const Range range{from, std::max(from, to)};
    if (!m_pending.empty() && range.From >= m_pending.back().From &&
        range.From <= m_pending.back().To + 1) {
        // The usual case of a load or an insertion: the text grows at the end.
        m_pending.back().To = std::max(m_pending.back().To, range.To);
        ScheduleSlice();
        return;
    }
    m_pending.insert(
        std::upper_bound(m_pending.begin(), m_pending.end(), range,
                         [](const Range &a, const Range &b) { return a.From < b.From; }),
        range);
    // Joins ranges that meet, so that a load of many pieces stays one range.
    std::vector<Range> joined;
    joined.reserve(m_pending.size());
    for (const Range &r : m_pending) {
        if (!joined.empty() && r.From <= joined.back().To + 1)
            joined.back().To = std::max(joined.back().To, r.To);
        else
            joined.push_back(r);
    }
    m_pending.swap(joined);
    ScheduleSlice();
}

void SpellHighlighter::ScheduleSlice()
{
    if (m_pending.empty() || m_slice.isActive() || !m_checker)
        return;
    if (!m_checker->IsReady()) {
        m_waitingForDictionary = true;
        return;
    }
    m_slice.start();
}

void SpellHighlighter::RunSlice()
{
    if (!m_checker) {
        m_pending.clear();
        return;
    }
    QElapsedTimer slice;
    slice.start();
    const std::clock_t cpuStart = std::clock();
    bool first = true;
    while (!m_pending.empty()) {
        Range &r = m_pending.front();
        QTextBlock block = m_document->findBlock(r.From);
        if (!block.isValid()) {
            m_pending.erase(m_pending.begin());
            continue;
        }
        // Every slice makes progress by one paragraph at least.
        const qint64 before = slice.nsecsElapsed();
        if (!first && before + qint64(m_nsPerChar * block.length()) > m_sliceBudgetNs)
            break;
        first = false;
        CheckBlock(block);
        const double cost = double(slice.nsecsElapsed() - before) / block.length();
        m_nsPerChar = m_nsPerChar == 0 ? cost : 0.8 * m_nsPerChar + 0.2 * cost;
        r.From = block.position() + block.length();
        if (r.From > r.To)
            m_pending.erase(m_pending.begin());
    }
    ++m_stats.Slices;
    m_stats.LongestSliceNs = std::max(m_stats.LongestSliceNs, slice.nsecsElapsed());
    m_stats.LongestSliceCpuNs =
        std::max(m_stats.LongestSliceCpuNs,
                 qint64(std::clock() - cpuStart) * (1'000'000'000 / CLOCKS_PER_SEC));
    if (!m_pending.empty()) {
        m_slice.start();
        return;
    }
    m_stats.LastPassNs = m_pass.nsecsElapsed();
    Q_EMIT Idle();
}

void SpellHighlighter::CheckBlock(const QTextBlock &block, int holdAt)
{
    ++m_stats.BlocksChecked;
    if (!m_held.isNull() && m_held.block() == block)
        m_held = QTextCursor();
    QList<QTextLayout::FormatRange> formats;
    const QString text = block.text();
    if (!text.isEmpty()) {
        const QList<SpellRange> words = m_checker->Misspelled(text);
        formats.reserve(words.size());
        const int caret = holdAt - block.position();
        for (const SpellRange &w : words) {
            if (caret > w.Start && caret <= w.Start + w.Length) {
                m_held = QTextCursor(m_document);
                m_held.setPosition(holdAt);
                continue;
            }
            formats.append({w.Start, w.Length, m_underline});
        }
    }
    SetBlockFormats(block, formats);
}

void SpellHighlighter::CaretMoved(int position)
{
    if (m_held.isNull() || m_held.position() == position)
        return;
    const QTextBlock block = m_held.block();
    m_held = QTextCursor();
    if (m_enabled && block.isValid())
        CheckBlock(block, position);
}

void SpellHighlighter::SetBlockFormats(const QTextBlock &block,
                                       const QList<QTextLayout::FormatRange> &formats)
{
    QTextLayout *layout = block.isValid() ? block.layout() : nullptr;
    if (!layout)
        return;
    const QList<QTextLayout::FormatRange> old = layout->formats();
    const bool same = std::equal(
        old.begin(), old.end(), formats.begin(), formats.end(),
        [](const auto &a, const auto &b) { return a.start == b.start && a.length == b.length; });
    if (same)
        return;
    layout->setFormats(formats);
    // Lays the block out and paints it again; the document itself does not change.
    m_document->markContentsDirty(block.position(), block.length());
}

void SpellHighlighter::ClearAll()
{
    for (QTextBlock b = m_document->begin(); b.isValid(); b = b.next())
        SetBlockFormats(b, {});
}

bool SpellHighlighter::MisspelledAt(int position, int &start, int &length)
{
    const QTextBlock block = m_document->findBlock(position);
    if (!m_enabled || !block.isValid() || !block.layout())
        return false;
    CheckBlock(block);
    const int inBlock = position - block.position();
    for (const auto &f : block.layout()->formats()) {
        if (inBlock >= f.start && inBlock <= f.start + f.length) {
            start = block.position() + f.start;
            length = f.length;
            return true;
        }
    }
    return false;
}

} // namespace oxa
