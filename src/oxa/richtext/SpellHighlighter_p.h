#pragma once

#include "oxa/richtext/SpellChecker.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextLayout>
#include <QTimer>
#include <vector>

class QTextDocument;

namespace oxa {

// The red wavy underline of misspelt words in an editor's document.
//
// It is a display layer: the underlines are the blocks' additional layout
// formats (QTextLayout::setFormats), which the document's text, formats,
// undo stack and modified flag know nothing of; a block so marked is only
// laid out and painted again.
//
// What the user types is checked at once, but only the paragraphs the key
// touched. Everything else (a loaded or pasted document, text the host
// inserts, the whole document after the word list changes) waits in a list
// of ranges that the event loop works off in slices of at most SliceBudgetNs,
// so that typing never waits for it.
class SpellHighlighter : public QObject
{
    Q_OBJECT

public:
    SpellHighlighter(QTextDocument *document, SpellChecker *checker, QObject *parent);
    ~SpellHighlighter() override;

    static constexpr qint64 SliceBudgetNs = 5'000'000;
    // A typed change that spans more paragraphs than this is left to the slices.
    static constexpr int ImmediateBlocks = 3;

    // The tests shorten the slices to see them.
    void SetSliceBudgetNs(qint64 ns) { m_sliceBudgetNs = ns; }

    bool IsEnabled() const { return m_enabled; }
    // Off removes every underline; on checks the whole document again.
    void SetEnabled(bool on);
    // Queues the whole document.
    void RecheckAll();
    // Whether some of the document still waits to be checked.
    bool IsPending() const { return !m_pending.empty() || m_waitingForDictionary; }

    // While an Interactive lives, changes are the user's keys and are checked at once.
    class Interactive
    {
    public:
        explicit Interactive(SpellHighlighter *h) : m_h(h) { ++m_h->m_interactive; }
        ~Interactive() { --m_h->m_interactive; }
        Interactive(const Interactive &) = delete;
        Interactive &operator=(const Interactive &) = delete;

    private:
        SpellHighlighter *m_h;
    };

    // The caret moved. A word held back while it was being typed is checked
    // once the caret has left it.
    void CaretMoved(int position);

    // The misspelt word at a document position: its start (a document
    // position) and length; false when the position is in no misspelt word.
    // The paragraph is checked first, as the background may not have come
    // to it yet.
    bool MisspelledAt(int position, int &start, int &length);

    // What the checking cost, for the benchmarks and the tests.
    struct Stats
    {
        int BlocksChecked = 0;
        int Slices = 0;
        qint64 LongestSliceNs = 0;    // wall time
        qint64 LongestSliceCpuNs = 0; // processor time of the process
        qint64 LastPassNs = 0;        // from queueing to an empty queue
        int Immediate = 0;            // checks of typed changes
        qint64 ImmediateNs = 0;
        qint64 LongestImmediateNs = 0;
    };
    const Stats &Statistics() const { return m_stats; }
    void ResetStatistics() { m_stats = {}; }

Q_SIGNALS:
    // The queue has been worked off.
    void Idle();

private:
    struct Range
    {
        int From;
        int To; // inclusive
    };

    void OnContentsChange(int from, int removed, int added);
    void ShiftPending(int from, int removed, int added);
    void Queue(int from, int to);
    void ScheduleSlice();
    void RunSlice();
    // holdAt: the caret of a typed change; a word it stands in or at the end
    // of is still being typed and is not underlined yet.
    void CheckBlock(const QTextBlock &block, int holdAt = -1);
    void SetBlockFormats(const QTextBlock &block, const QList<QTextLayout::FormatRange> &formats);
    void ClearAll();

    QTextDocument *m_document;
    QPointer<SpellChecker> m_checker;
    QTextCharFormat m_underline;
    bool m_enabled = true;
    bool m_waitingForDictionary = false;
    int m_interactive = 0;
    // The caret at the word held back, moving with edits; null when none is.
    QTextCursor m_held;
    std::vector<Range> m_pending;
    QTimer m_slice;
    QElapsedTimer m_pass;
    // What checking a character costs lately, to end a slice before a
    // paragraph that would not fit into it.
    double m_nsPerChar = 0;
    qint64 m_sliceBudgetNs = SliceBudgetNs;
    Stats m_stats;
};

} // namespace oxa
