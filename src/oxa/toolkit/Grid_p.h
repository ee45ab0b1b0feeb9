#pragma once

// Internals of the draw grid: not part of the installed API.

#include "oxa/toolkit/Grid.h"

#include <QLineEdit>
#include <QPointer>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>
#include <vector>

namespace oxa {

inline QString IndexOutOfRangeMessage()
{
    return QStringLiteral("Index mřížky je mimo rozsah");
}

// How close to a grid line the mouse must be to start sizing.
inline constexpr int kSizingMargin = 2;

// One direction of the grid: the columns or the rows.
struct GridAxis
{
    int count = 5;
    int fixed = 1;
    int defaultSize = 0;
    QList<int> sizes;
    int first = 1;     // first scrollable line shown: LeftCol or TopRow
    int fixedLine = 1; // width of the line after a fixed line
    int line = 1;      // width of the line after a scrollable line

    int lineAfter(int i) const { return i < fixed ? fixedLine : line; }
    int extent(int i) const { return sizes.at(i) + lineAfter(i); }

    int fixedExtent() const
    {
        int total = 0;
        for (int i = 0; i < fixed; ++i)
            total += extent(i);
        return total;
    }

    // Viewport position of line i; -1 when it is scrolled away.
    int start(int i) const
    {
        if (i < 0 || i >= count)
            return -1;
        int pos = 0;
        if (i < fixed) {
            for (int j = 0; j < i; ++j)
                pos += extent(j);
            return pos;
        }
        if (i < first)
            return -1;
        pos = fixedExtent();
        for (int j = first; j < i; ++j)
            pos += extent(j);
        return pos;
    }

    // The line under a viewport position; its trailing grid line belongs to it.
    int indexAt(int pos, int viewportSize) const
    {
        if (pos < 0 || pos >= viewportSize)
            return -1;
        int edge = 0;
        for (int i = 0; i < fixed; ++i) {
            edge += extent(i);
            if (pos < edge)
                return i;
        }
        for (int i = first; i < count && edge < viewportSize; ++i) {
            edge += extent(i);
            if (pos < edge)
                return i;
        }
        return -1;
    }

    // The last scrollable line shown whole when `from` is the first one.
    int lastFullVisible(int viewportSize, int from) const
    {
        int pos = fixedExtent();
        int last = from - 1;
        for (int i = from; i < count; ++i) {
            if (pos + sizes.at(i) > viewportSize)
                break;
            last = i;
            pos += extent(i);
        }
        return last;
    }

    // The smallest first line that still shows `last` whole (or `last`
    // itself when it does not fit at all).
    int firstShowing(int last, int viewportSize) const
    {
        const int available = viewportSize - fixedExtent();
        int total = sizes.at(last);
        int i = last;
        while (i - 1 >= fixed && total + extent(i - 1) <= available) {
            total += extent(i - 1);
            --i;
        }
        return i;
    }

    int maxFirst(int viewportSize) const { return firstShowing(count - 1, viewportSize); }

    void resize(int newCount)
    {
        count = newCount;
        sizes.resize(newCount, defaultSize);
    }
};

// A line shown in the viewport during one paint.
struct ShownLine
{
    int index;
    int pos;
};

class TCustomGridPrivate
{
public:
    explicit TCustomGridPrivate(TCustomGrid *grid) : q(grid)
    {
        cols.defaultSize = 64;
        rows.defaultSize = 24;
        cols.resize(5);
        rows.resize(5);
        tabStops.fill(true, 5);
        applyLineWidths();
    }

    TCustomGrid *q;
    GridAxis cols;
    GridAxis rows;
    QList<bool> tabStops;
    int gridLineWidth = 1;
    TColor fixedColor = clBtnFace;
    TGridOptions options = DefaultGridOptions;
    TScrollStyle scrollBars = ssBoth;
    bool defaultDrawing = true;
    TGridCoord current{1, 1};
    TGridCoord anchor{1, 1};
    TGridState gridState = gsNormal;
    bool syncingScrollBars = false;
    int wheelDelta = 0;

    // Mouse sizing and moving.
    int dragIndex = -1;
    int dragStart = 0;

    // Painting.
    QPainter *canvas = nullptr;
    QBrush cellBrush{Qt::SolidPattern};
    QPen cellPen;
    std::vector<ShownLine> shownCols;
    std::vector<ShownLine> shownRows;

    // Editing.
    QLineEdit *editor = nullptr;
    bool editorMode = false;
    TGridCoord editCell;

    int viewportWidth() const { return q->viewport()->width(); }
    int viewportHeight() const { return q->viewport()->height(); }

    void applyLineWidths()
    {
        cols.fixedLine = options.testFlag(goFixedVertLine) ? gridLineWidth : 0;
        cols.line = options.testFlag(goVertLine) ? gridLineWidth : 0;
        rows.fixedLine = options.testFlag(goFixedHorzLine) ? gridLineWidth : 0;
        rows.line = options.testFlag(goHorzLine) ? gridLineWidth : 0;
    }

    bool isFixed(int col, int row) const { return col < cols.fixed || row < rows.fixed; }

    bool inRange(int col, int row) const
    {
        return col >= 0 && row >= 0 && col < cols.count && row < rows.count;
    }

    void checkScrollable(int col, int row) const
    {
        if (col < cols.fixed || row < rows.fixed || col >= cols.count || row >= rows.count)
            throw EInvalidGridOperation(IndexOutOfRangeMessage());
    }

    TGridRect selection() const
    {
        TGridRect sel = GridRect(anchor, current);
        if (options.testFlag(goRowSelect)) {
            sel.Left = cols.fixed;
            sel.Right = cols.count - 1;
        }
        return sel;
    }

    static void collectShown(const GridAxis &axis, int viewportSize, std::vector<ShownLine> &out)
    {
        out.clear();
        int pos = 0;
        for (int i = 0; i < axis.fixed && pos < viewportSize; ++i) {
            out.push_back({i, pos});
            pos += axis.extent(i);
        }
        for (int i = axis.first; i < axis.count && pos < viewportSize; ++i) {
            out.push_back({i, pos});
            pos += axis.extent(i);
        }
    }

    static int shownExtent(const GridAxis &axis, const std::vector<ShownLine> &shown)
    {
        if (shown.empty())
            return 0;
        return shown.back().pos + axis.extent(shown.back().index);
    }

    // The first and last viewport pixel of lines from..to that are shown.
    static bool spanOf(const GridAxis &axis, int viewportSize, int from, int to, int &begin,
                       int &end)
    {
        std::vector<ShownLine> shown;
        collectShown(axis, viewportSize, shown);
        bool any = false;
        for (const ShownLine &l : shown) {
            if (l.index < from || l.index > to)
                continue;
            if (!any)
                begin = l.pos;
            end = l.pos + axis.extent(l.index);
            any = true;
        }
        return any;
    }

    // The line whose trailing grid line lies at pos in the fixed band, for
    // sizing; -1 when none.
    static int sizingLineAt(const GridAxis &axis, int viewportSize, int pos)
    {
        std::vector<ShownLine> shown;
        collectShown(axis, viewportSize, shown);
        for (const ShownLine &l : shown) {
            const int edge = l.pos + axis.sizes.at(l.index);
            if (pos >= edge - kSizingMargin &&
                pos <= edge + axis.lineAfter(l.index) + kSizingMargin)
                return l.index;
        }
        return -1;
    }

    // The cell a selecting drag points at: outside the viewport it is the
    // next cell beyond the edge, so that dragging out scrolls.
    int dragTarget(const GridAxis &axis, int pos, int viewportSize, int current) const
    {
        if (pos < axis.fixedExtent())
            return std::max(axis.fixed, std::min(current, axis.first) - 1);
        if (pos >= viewportSize)
            return std::min(axis.count - 1, axis.lastFullVisible(viewportSize, axis.first) + 1);
        const int i = axis.indexAt(pos, viewportSize);
        return i < 0 ? axis.count - 1 : std::max(i, axis.fixed);
    }

    void updateScrollBars()
    {
        syncingScrollBars = true;
        syncScrollBar(q->horizontalScrollBar(), cols, viewportWidth());
        syncScrollBar(q->verticalScrollBar(), rows, viewportHeight());
        syncingScrollBars = false;
    }

    void syncScrollBar(QScrollBar *bar, const GridAxis &axis, int viewportSize)
    {
        const int maximum = std::max(axis.maxFirst(viewportSize), axis.first);
        const int page = axis.lastFullVisible(viewportSize, axis.first) - axis.first + 1;
        bar->setRange(axis.fixed, maximum);
        bar->setPageStep(std::max(1, page));
        bar->setSingleStep(1);
        bar->setValue(axis.first);
        bar->setTracking(options.testFlag(goThumbTracking));
    }

    // The current cell and the top-left cell shown, to tell afterwards
    // which of Col, Row, LeftCol and TopRow changed.
    struct Position
    {
        TGridCoord current;
        int left;
        int top;
    };
    Position position() const { return {current, cols.first, rows.first}; }
    void notifyMoved(const Position &before)
    {
        if (current.X != before.current.X)
            Q_EMIT q->colChanged();
        if (current.Y != before.current.Y)
            Q_EMIT q->rowChanged();
        if (cols.first != before.left)
            Q_EMIT q->leftColChanged();
        if (rows.first != before.top)
            Q_EMIT q->topRowChanged();
    }

    void resetCurrent()
    {
        cols.first = cols.fixed;
        rows.first = rows.fixed;
        current = {cols.fixed, rows.fixed};
        anchor = current;
    }

    void clampCellsToSize()
    {
        auto clampCoord = [this](TGridCoord &c) {
            c.X = std::clamp(c.X, cols.fixed, cols.count - 1);
            c.Y = std::clamp(c.Y, rows.fixed, rows.count - 1);
        };
        clampCoord(current);
        clampCoord(anchor);
        cols.first = std::clamp(cols.first, cols.fixed, cols.count - 1);
        rows.first = std::clamp(rows.first, rows.fixed, rows.count - 1);
    }

    QLineEdit *ensureEditor()
    {
        if (!editor) {
            editor = new QLineEdit(q->viewport());
            editor->setObjectName(QStringLiteral("InplaceEdit"));
            editor->setFrame(false);
            editor->hide();
            editor->installEventFilter(q);
        }
        return editor;
    }

    void placeEditor()
    {
        if (!editorMode || !editor)
            return;
        // A cell scrolled out of view leaves the editor without a size.
        editor->setGeometry(q->CellRect(editCell.X, editCell.Y));
    }
};

} // namespace oxa
