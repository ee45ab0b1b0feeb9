#include "oxa/toolkit/Grid.h"
#include "oxa/toolkit/Grid_p.h"

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#include <vector>

namespace oxa {

namespace {

using GridBase = TWinControl<QAbstractScrollArea>;

constexpr int kWheelStep = 120;

TMouseButton MouseButtonOf(Qt::MouseButton button)
{
    switch (button) {
    case Qt::RightButton:
        return mbRight;
    case Qt::MiddleButton:
        return mbMiddle;
    default:
        return mbLeft;
    }
}

// Where an index lands when one line moves from FromIndex to ToIndex.
int MovedIndex(int index, int from, int to)
{
    if (index == from)
        return to;
    if (from < to && index > from && index <= to)
        return index - 1;
    if (to < from && index >= to && index < from)
        return index + 1;
    return index;
}

} // namespace

TGridRect GridRect(TGridCoord a, TGridCoord b)
{
    return {std::min(a.X, b.X), std::min(a.Y, b.Y), std::max(a.X, b.X), std::max(a.Y, b.Y)};
}

// --- construction ------------------------------------------------------------

TCustomGrid::TCustomGrid(QWidget *parent)
    : GridBase(parent), d(std::make_unique<TCustomGridPrivate>(this))
{
    setFocusPolicy(Qt::StrongFocus);
    setFrameStyle(QFrame::WinPanel | QFrame::Sunken);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setAutoFillBackground(false);
    viewport()->setMouseTracking(true);
    ApplyScrollBarPolicies();
    d->updateScrollBars();
}

TCustomGrid::~TCustomGrid()
{
    if (d->editor)
        d->editor->removeEventFilter(this);
}

// --- size --------------------------------------------------------------------

int TCustomGrid::ColCount() const
{
    return d->cols.count;
}
int TCustomGrid::RowCount() const
{
    return d->rows.count;
}
int TCustomGrid::FixedCols() const
{
    return d->cols.fixed;
}
int TCustomGrid::FixedRows() const
{
    return d->rows.fixed;
}

void TCustomGrid::SetColCount(int Value)
{
    Value = std::max(1, Value);
    if (Value == d->cols.count)
        return;
    if (Value <= d->cols.fixed)
        SetFixedCols(Value - 1);
    const int oldCols = d->cols.count;
    const auto before = d->position();
    HideEditor();
    d->cols.resize(Value);
    d->tabStops.resize(Value, true);
    d->clampCellsToSize();
    SizeChanged(oldCols, d->rows.count);
    d->updateScrollBars();
    InvalidateGrid();
    Q_EMIT colCountChanged();
    d->notifyMoved(before);
}

void TCustomGrid::SetRowCount(int Value)
{
    Value = std::max(1, Value);
    if (Value == d->rows.count)
        return;
    if (Value <= d->rows.fixed)
        SetFixedRows(Value - 1);
    const int oldRows = d->rows.count;
    const auto before = d->position();
    HideEditor();
    d->rows.resize(Value);
    d->clampCellsToSize();
    SizeChanged(d->cols.count, oldRows);
    d->updateScrollBars();
    InvalidateGrid();
    Q_EMIT rowCountChanged();
    d->notifyMoved(before);
}

void TCustomGrid::SetFixedCols(int Value)
{
    if (Value < 0 || Value >= d->cols.count)
        throw EInvalidGridOperation(
            QStringLiteral("Počet pevných sloupců musí být menší než počet sloupců"));
    const auto before = d->position();
    const bool changed = Value != d->cols.fixed;
    HideEditor();
    d->cols.fixed = Value;
    d->resetCurrent();
    d->updateScrollBars();
    InvalidateGrid();
    if (changed)
        Q_EMIT fixedColsChanged();
    d->notifyMoved(before);
}

void TCustomGrid::SetFixedRows(int Value)
{
    if (Value < 0 || Value >= d->rows.count)
        throw EInvalidGridOperation(
            QStringLiteral("Počet pevných řádků musí být menší než počet řádků"));
    const auto before = d->position();
    const bool changed = Value != d->rows.fixed;
    HideEditor();
    d->rows.fixed = Value;
    d->resetCurrent();
    d->updateScrollBars();
    InvalidateGrid();
    if (changed)
        Q_EMIT fixedRowsChanged();
    d->notifyMoved(before);
}

int TCustomGrid::DefaultColWidth() const
{
    return d->cols.defaultSize;
}
int TCustomGrid::DefaultRowHeight() const
{
    return d->rows.defaultSize;
}

void TCustomGrid::SetDefaultColWidth(int Value)
{
    const bool changed = std::max(0, Value) != d->cols.defaultSize;
    d->cols.defaultSize = std::max(0, Value);
    d->cols.sizes.fill(d->cols.defaultSize);
    ColWidthsChanged();
    if (changed)
        Q_EMIT defaultColWidthChanged();
}

void TCustomGrid::SetDefaultRowHeight(int Value)
{
    const bool changed = std::max(0, Value) != d->rows.defaultSize;
    d->rows.defaultSize = std::max(0, Value);
    d->rows.sizes.fill(d->rows.defaultSize);
    RowHeightsChanged();
    if (changed)
        Q_EMIT defaultRowHeightChanged();
}

int TCustomGrid::ColWidths(int ACol) const
{
    if (ACol < 0 || ACol >= d->cols.count)
        throw EInvalidGridOperation(IndexOutOfRangeMessage());
    return d->cols.sizes.at(ACol);
}

void TCustomGrid::SetColWidths(int ACol, int Width)
{
    if (ACol < 0 || ACol >= d->cols.count)
        throw EInvalidGridOperation(IndexOutOfRangeMessage());
    Width = std::max(0, Width);
    if (d->cols.sizes.at(ACol) == Width)
        return;
    d->cols.sizes[ACol] = Width;
    ColWidthsChanged();
}

int TCustomGrid::RowHeights(int ARow) const
{
    if (ARow < 0 || ARow >= d->rows.count)
        throw EInvalidGridOperation(IndexOutOfRangeMessage());
    return d->rows.sizes.at(ARow);
}

void TCustomGrid::SetRowHeights(int ARow, int Height)
{
    if (ARow < 0 || ARow >= d->rows.count)
        throw EInvalidGridOperation(IndexOutOfRangeMessage());
    Height = std::max(0, Height);
    if (d->rows.sizes.at(ARow) == Height)
        return;
    d->rows.sizes[ARow] = Height;
    RowHeightsChanged();
}

bool TCustomGrid::TabStops(int ACol) const
{
    if (ACol < 0 || ACol >= d->cols.count)
        throw EInvalidGridOperation(IndexOutOfRangeMessage());
    return d->tabStops.at(ACol);
}

void TCustomGrid::SetTabStops(int ACol, bool Value)
{
    if (ACol < 0 || ACol >= d->cols.count)
        throw EInvalidGridOperation(IndexOutOfRangeMessage());
    d->tabStops[ACol] = Value;
}

// --- appearance --------------------------------------------------------------

int TCustomGrid::GridLineWidth() const
{
    return d->gridLineWidth;
}

void TCustomGrid::SetGridLineWidth(int Value)
{
    Value = std::max(0, Value);
    if (Value == d->gridLineWidth)
        return;
    d->gridLineWidth = Value;
    d->applyLineWidths();
    ColWidthsChanged();
    Q_EMIT gridLineWidthChanged();
}

TColor TCustomGrid::FixedColor() const
{
    return d->fixedColor;
}

void TCustomGrid::SetFixedColor(TColor Value)
{
    if (Value == d->fixedColor)
        return;
    d->fixedColor = Value;
    InvalidateGrid();
    Q_EMIT fixedColorChanged();
}

TGridOptions TCustomGrid::Options() const
{
    return d->options;
}

void TCustomGrid::SetOptions(TGridOptions Value)
{
    if (Value == d->options)
        return;
    if (!Value.testFlag(goEditing) || Value.testFlag(goRowSelect))
        HideEditor();
    const TGridRect oldSel = d->selection();
    d->options = Value;
    if (!Value.testFlag(goRangeSelect))
        d->anchor = d->current;
    d->applyLineWidths();
    d->updateScrollBars();
    SelectionMoved(oldSel, d->current);
    InvalidateGrid();
    if (Value.testFlag(goEditing) && Value.testFlag(goAlwaysShowEditor) && Entered())
        ShowEditor();
    Q_EMIT optionsChanged();
}

TScrollStyle TCustomGrid::ScrollBars() const
{
    return d->scrollBars;
}

void TCustomGrid::SetScrollBars(TScrollStyle Value)
{
    if (Value == d->scrollBars)
        return;
    d->scrollBars = Value;
    ApplyScrollBarPolicies();
    d->updateScrollBars();
    Q_EMIT scrollBarsChanged();
}

void TCustomGrid::ApplyScrollBarPolicies()
{
    const bool horz = d->scrollBars == ssHorizontal || d->scrollBars == ssBoth;
    const bool vert = d->scrollBars == ssVertical || d->scrollBars == ssBoth;
    setHorizontalScrollBarPolicy(horz ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(vert ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
}

bool TCustomGrid::DefaultDrawing() const
{
    return d->defaultDrawing;
}

void TCustomGrid::SetDefaultDrawing(bool Value)
{
    if (Value == d->defaultDrawing)
        return;
    d->defaultDrawing = Value;
    InvalidateGrid();
    Q_EMIT defaultDrawingChanged();
}

// --- current cell, scrolling, selection ---------------------------------------

int TCustomGrid::Col() const
{
    return d->current.X;
}
int TCustomGrid::Row() const
{
    return d->current.Y;
}

void TCustomGrid::SetCol(int Value)
{
    if (Value != d->current.X)
        FocusCell(Value, d->current.Y, true);
}

void TCustomGrid::SetRow(int Value)
{
    if (Value != d->current.Y)
        FocusCell(d->current.X, Value, true);
}

int TCustomGrid::LeftCol() const
{
    return d->cols.first;
}
int TCustomGrid::TopRow() const
{
    return d->rows.first;
}

void TCustomGrid::SetLeftCol(int Value)
{
    MoveTopLeft(Value, d->rows.first);
}
void TCustomGrid::SetTopRow(int Value)
{
    MoveTopLeft(d->cols.first, Value);
}

int TCustomGrid::VisibleColCount() const
{
    return std::max(0,
                    d->cols.lastFullVisible(d->viewportWidth(), d->cols.first) - d->cols.first + 1);
}

int TCustomGrid::VisibleRowCount() const
{
    return std::max(
        0, d->rows.lastFullVisible(d->viewportHeight(), d->rows.first) - d->rows.first + 1);
}

TGridRect TCustomGrid::Selection() const
{
    return d->selection();
}

void TCustomGrid::SetSelection(const TGridRect &Value)
{
    TGridRect sel = GridRect(Value.TopLeft(), Value.BottomRight());
    sel.Left = std::clamp(sel.Left, d->cols.fixed, d->cols.count - 1);
    sel.Right = std::clamp(sel.Right, d->cols.fixed, d->cols.count - 1);
    sel.Top = std::clamp(sel.Top, d->rows.fixed, d->rows.count - 1);
    sel.Bottom = std::clamp(sel.Bottom, d->rows.fixed, d->rows.count - 1);
    const TGridRect oldSel = d->selection();
    const auto before = d->position();
    if (sel.BottomRight() != before.current)
        HideEditor();
    d->anchor = sel.TopLeft();
    d->current = sel.BottomRight();
    SelectionMoved(oldSel, before.current);
    d->notifyMoved(before);
}

void TCustomGrid::MoveColRow(int ACol, int ARow, bool MoveAnchor, bool Show)
{
    d->checkScrollable(ACol, ARow);
    if (!SelectCell(ACol, ARow))
        return;
    const TGridRect oldSel = d->selection();
    const auto before = d->position();
    if (!d->options.testFlag(goAlwaysShowEditor) || TGridCoord{ACol, ARow} != before.current)
        HideEditor();
    d->current = {ACol, ARow};
    if (MoveAnchor || !d->options.testFlag(goRangeSelect))
        d->anchor = d->current;
    if (Show)
        ClampInView(ACol, ARow);
    SelectionMoved(oldSel, before.current);
    d->notifyMoved({before.current, d->cols.first, d->rows.first}); // the view notified itself
    if (d->options.testFlag(goAlwaysShowEditor) && !d->editorMode && Entered())
        ShowEditor();
}

void TCustomGrid::FocusCell(int ACol, int ARow, bool MoveAnchor)
{
    MoveColRow(ACol, ARow, MoveAnchor, true);
    Click();
}

void TCustomGrid::ClampInView(int ACol, int ARow)
{
    int left = d->cols.first;
    int top = d->rows.first;
    if (ACol >= d->cols.fixed && ACol < d->cols.count) {
        if (ACol < left)
            left = ACol;
        else if (ACol > d->cols.lastFullVisible(d->viewportWidth(), left))
            left = d->cols.firstShowing(ACol, d->viewportWidth());
    }
    if (ARow >= d->rows.fixed && ARow < d->rows.count) {
        if (ARow < top)
            top = ARow;
        else if (ARow > d->rows.lastFullVisible(d->viewportHeight(), top))
            top = d->rows.firstShowing(ARow, d->viewportHeight());
    }
    MoveTopLeft(left, top);
}

void TCustomGrid::MoveTopLeft(int ALeft, int ATop)
{
    ALeft = std::clamp(ALeft, d->cols.fixed, d->cols.count - 1);
    ATop = std::clamp(ATop, d->rows.fixed, d->rows.count - 1);
    if (ALeft == d->cols.first && ATop == d->rows.first)
        return;
    const auto before = d->position();
    d->cols.first = ALeft;
    d->rows.first = ATop;
    d->updateScrollBars();
    d->placeEditor();
    viewport()->update();
    TopLeftChanged();
    d->notifyMoved(before);
}

void TCustomGrid::SelectionMoved(const TGridRect &OldSel, TGridCoord OldCurrent)
{
    const TGridRect sel = d->selection();
    if (sel != OldSel) {
        InvalidateRect(OldSel);
        InvalidateRect(sel);
    }
    if (OldCurrent != d->current) {
        InvalidateCell(OldCurrent.X, OldCurrent.Y);
        InvalidateCell(d->current.X, d->current.Y);
    }
}

// --- geometry ----------------------------------------------------------------

QRect TCustomGrid::CellRect(int ACol, int ARow) const
{
    if (!d->inRange(ACol, ARow))
        return {};
    const int x = d->cols.start(ACol);
    const int y = d->rows.start(ARow);
    if (x < 0 || y < 0 || x >= d->viewportWidth() || y >= d->viewportHeight())
        return {};
    return {x, y, d->cols.sizes.at(ACol), d->rows.sizes.at(ARow)};
}

QRect TCustomGrid::BoxRect(int ALeft, int ATop, int ARight, int ABottom) const
{
    const TGridRect box = GridRect({ALeft, ATop}, {ARight, ABottom});
    int left = 0, right = 0, top = 0, bottom = 0;
    if (!TCustomGridPrivate::spanOf(d->cols, d->viewportWidth(), box.Left, box.Right, left,
                                    right) ||
        !TCustomGridPrivate::spanOf(d->rows, d->viewportHeight(), box.Top, box.Bottom, top, bottom))
        return {};
    return QRect(QPoint(left, top), QPoint(right - 1, bottom - 1));
}

void TCustomGrid::MouseToCell(int X, int Y, int &ACol, int &ARow) const
{
    const TGridCoord cell = MouseCoord(X, Y);
    ACol = cell.X;
    ARow = cell.Y;
}

TGridCoord TCustomGrid::MouseCoord(int X, int Y) const
{
    const int col = d->cols.indexAt(X, d->viewportWidth());
    const int row = d->rows.indexAt(Y, d->viewportHeight());
    if (col < 0 || row < 0)
        return {-1, -1};
    return {col, row};
}

int TCustomGrid::GridWidth() const
{
    std::vector<ShownLine> shown;
    TCustomGridPrivate::collectShown(d->cols, d->viewportWidth(), shown);
    return std::min(TCustomGridPrivate::shownExtent(d->cols, shown), d->viewportWidth());
}

int TCustomGrid::GridHeight() const
{
    std::vector<ShownLine> shown;
    TCustomGridPrivate::collectShown(d->rows, d->viewportHeight(), shown);
    return std::min(TCustomGridPrivate::shownExtent(d->rows, shown), d->viewportHeight());
}

// Invalidation covers the cells with their trailing grid lines, which the
// cells paint.
void TCustomGrid::InvalidateCell(int ACol, int ARow)
{
    InvalidateRect({ACol, ARow, ACol, ARow});
}

void TCustomGrid::InvalidateCol(int ACol)
{
    InvalidateRect({ACol, 0, ACol, d->rows.count - 1});
}

void TCustomGrid::InvalidateRow(int ARow)
{
    InvalidateRect({0, ARow, d->cols.count - 1, ARow});
}

void TCustomGrid::InvalidateRect(const TGridRect &ARect)
{
    const QRect r = BoxRect(ARect.Left, ARect.Top, ARect.Right, ARect.Bottom);
    if (!r.isEmpty())
        viewport()->update(r);
}

void TCustomGrid::InvalidateGrid()
{
    viewport()->update();
}

void TCustomGrid::ColWidthsChanged()
{
    d->updateScrollBars();
    d->placeEditor();
    InvalidateGrid();
}

void TCustomGrid::RowHeightsChanged()
{
    d->updateScrollBars();
    d->placeEditor();
    InvalidateGrid();
}

void TCustomGrid::SizeChanged(int OldColCount, int OldRowCount)
{
    Q_UNUSED(OldColCount);
    Q_UNUSED(OldRowCount);
}

// --- moving lines --------------------------------------------------------------

void TCustomGrid::MoveColumn(int FromIndex, int ToIndex)
{
    if (FromIndex < 0 || ToIndex < 0 || FromIndex >= d->cols.count || ToIndex >= d->cols.count)
        throw EInvalidGridOperation(IndexOutOfRangeMessage());
    if (FromIndex == ToIndex)
        return;
    HideEditor();
    d->cols.sizes.move(FromIndex, ToIndex);
    d->tabStops.move(FromIndex, ToIndex);
    const auto before = d->position();
    d->current.X = std::max(d->cols.fixed, MovedIndex(d->current.X, FromIndex, ToIndex));
    d->anchor.X = std::max(d->cols.fixed, MovedIndex(d->anchor.X, FromIndex, ToIndex));
    ColumnMoved(FromIndex, ToIndex);
    ColWidthsChanged();
    d->notifyMoved(before);
}

void TCustomGrid::MoveRow(int FromIndex, int ToIndex)
{
    if (FromIndex < 0 || ToIndex < 0 || FromIndex >= d->rows.count || ToIndex >= d->rows.count)
        throw EInvalidGridOperation(IndexOutOfRangeMessage());
    if (FromIndex == ToIndex)
        return;
    HideEditor();
    d->rows.sizes.move(FromIndex, ToIndex);
    const auto before = d->position();
    d->current.Y = std::max(d->rows.fixed, MovedIndex(d->current.Y, FromIndex, ToIndex));
    d->anchor.Y = std::max(d->rows.fixed, MovedIndex(d->anchor.Y, FromIndex, ToIndex));
    RowMoved(FromIndex, ToIndex);
    RowHeightsChanged();
    d->notifyMoved(before);
}

void TCustomGrid::ColumnMoved(int FromIndex, int ToIndex)
{
    if (OnColumnMoved)
        OnColumnMoved(this, FromIndex, ToIndex);
}

void TCustomGrid::RowMoved(int FromIndex, int ToIndex)
{
    if (OnRowMoved)
        OnRowMoved(this, FromIndex, ToIndex);
}

TGridState TCustomGrid::GridState() const
{
    return d->gridState;
}

// --- virtual handlers ------------------------------------------------------------

void TCustomGrid::DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State)
{
    if (OnDrawCell)
        OnDrawCell(this, ACol, ARow, Rect, State);
}

bool TCustomGrid::SelectCell(int ACol, int ARow)
{
    bool canSelect = true;
    if (OnSelectCell)
        OnSelectCell(this, ACol, ARow, canSelect);
    return canSelect;
}

void TCustomGrid::Click()
{
    if (OnClick)
        OnClick(this);
    Q_EMIT clicked();
}

void TCustomGrid::DblClick()
{
    if (OnDblClick)
        OnDblClick(this);
    Q_EMIT doubleClicked();
}

void TCustomGrid::TopLeftChanged()
{
    if (OnTopLeftChanged)
        OnTopLeftChanged(this);
    Q_EMIT topLeftChanged();
}

QString TCustomGrid::GetEditText(int ACol, int ARow)
{
    QString value;
    if (OnGetEditText)
        OnGetEditText(this, ACol, ARow, value);
    return value;
}

void TCustomGrid::SetEditText(int ACol, int ARow, const QString &Value)
{
    if (OnSetEditText)
        OnSetEditText(this, ACol, ARow, Value);
}

bool TCustomGrid::CanEditShow() const
{
    return d->options.testFlag(goEditing) && !d->options.testFlag(goRowSelect) && isVisible() &&
        !d->isFixed(d->current.X, d->current.Y);
}

// --- keyboard ------------------------------------------------------------------

void TCustomGrid::KeyDown(Word &Key, TShiftState Shift)
{
    GridBase::KeyDown(Key, Shift);
    if (Key == 0)
        return;
    const bool rowSelect = d->options.testFlag(goRowSelect);
    const int pageWidth = std::max(1, VisibleColCount());
    const int pageHeight = std::max(1, VisibleRowCount());
    TGridCoord cell = d->current;
    TGridCoord topLeft{d->cols.first, d->rows.first};
    bool moveAnchor = !Shift.testFlag(ssShift);

    if (Shift.testFlag(ssCtrl)) {
        switch (Key) {
        case VK_UP:
            --topLeft.Y;
            break;
        case VK_DOWN:
            ++topLeft.Y;
            break;
        case VK_LEFT:
            if (!rowSelect) {
                cell.X -= pageWidth;
                topLeft.X -= pageWidth;
            }
            break;
        case VK_RIGHT:
            if (!rowSelect) {
                cell.X += pageWidth;
                topLeft.X += pageWidth;
            }
            break;
        case VK_PRIOR:
            cell.Y = d->rows.first;
            break;
        case VK_NEXT:
            cell.Y = d->rows.lastFullVisible(d->viewportHeight(), d->rows.first);
            break;
        case VK_HOME:
            cell = {d->cols.fixed, d->rows.fixed};
            break;
        case VK_END:
            cell = {d->cols.count - 1, d->rows.count - 1};
            break;
        default:
            return;
        }
    } else {
        switch (Key) {
        case VK_UP:
            --cell.Y;
            break;
        case VK_DOWN:
            ++cell.Y;
            break;
        case VK_LEFT:
            if (rowSelect)
                --topLeft.X;
            else
                --cell.X;
            break;
        case VK_RIGHT:
            if (rowSelect)
                ++topLeft.X;
            else
                ++cell.X;
            break;
        case VK_NEXT:
            cell.Y += pageHeight;
            topLeft.Y += pageHeight;
            break;
        case VK_PRIOR:
            cell.Y -= pageHeight;
            topLeft.Y -= pageHeight;
            break;
        case VK_HOME:
            if (rowSelect)
                cell.Y = d->rows.fixed;
            else
                cell.X = d->cols.fixed;
            break;
        case VK_END:
            if (rowSelect)
                cell.Y = d->rows.count - 1;
            else
                cell.X = d->cols.count - 1;
            break;
        case VK_TAB:
            if (!d->options.testFlag(goTabs) || Shift.testFlag(ssAlt))
                return;
            cell = NextTabStop(Shift.testFlag(ssShift));
            moveAnchor = true;
            break;
        case VK_F2:
            SetEditorMode(true);
            break;
        default:
            return;
        }
    }
    Key = 0;

    if (topLeft != TGridCoord{d->cols.first, d->rows.first}) {
        topLeft.X = std::clamp(topLeft.X, d->cols.fixed,
                               std::max(d->cols.fixed, d->cols.maxFirst(d->viewportWidth())));
        topLeft.Y = std::clamp(topLeft.Y, d->rows.fixed,
                               std::max(d->rows.fixed, d->rows.maxFirst(d->viewportHeight())));
        MoveTopLeft(topLeft.X, topLeft.Y);
    }
    cell.X = std::clamp(cell.X, d->cols.fixed, d->cols.count - 1);
    cell.Y = std::clamp(cell.Y, d->rows.fixed, d->rows.count - 1);
    if (cell != d->current)
        FocusCell(cell.X, cell.Y, moveAnchor);
}

TGridCoord TCustomGrid::NextTabStop(bool Backward) const
{
    TGridCoord cell = d->current;
    do {
        if (Backward) {
            if (--cell.X < d->cols.fixed) {
                cell.X = d->cols.count - 1;
                if (--cell.Y < d->rows.fixed)
                    cell.Y = d->rows.count - 1;
            }
        } else if (++cell.X >= d->cols.count) {
            cell.X = d->cols.fixed;
            if (++cell.Y >= d->rows.count)
                cell.Y = d->rows.fixed;
        }
    } while (!d->tabStops.at(cell.X) && cell.X != d->current.X);
    return cell;
}

void TCustomGrid::KeyPress(QChar &Key)
{
    GridBase::KeyPress(Key);
    if (Key.isNull())
        return;
    if (Key == QChar(u'\r')) {
        if (!d->options.testFlag(goAlwaysShowEditor)) {
            SetEditorMode(!d->editorMode);
            Key = QChar();
        }
        return;
    }
    const bool typed = Key.isPrint() || Key == QChar(u'\b');
    if (typed && !d->editorMode && d->options.testFlag(goEditing) && CanEditShow()) {
        ShowEditorChar(Key);
        Key = QChar();
    }
}

bool TCustomGrid::event(QEvent *event)
{
    // With goTabs the grid keeps Tab and Shift+Tab instead of passing the
    // focus on.
    if (event->type() == QEvent::KeyPress && d->options.testFlag(goTabs)) {
        auto *key = static_cast<QKeyEvent *>(event);
        const bool tab = key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab;
        if (tab && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
            keyPressEvent(key);
            return true;
        }
    }
    return GridBase::event(event);
}

// --- focus -----------------------------------------------------------------------

void TCustomGrid::DoEnter()
{
    InvalidateRect(d->selection());
    InvalidateCell(d->current.X, d->current.Y);
    GridBase::DoEnter();
    if (d->options.testFlag(goEditing) && d->options.testFlag(goAlwaysShowEditor))
        ShowEditor();
}

void TCustomGrid::DoExit()
{
    InvalidateRect(d->selection());
    InvalidateCell(d->current.X, d->current.Y);
    GridBase::DoExit();
}

void TCustomGrid::focusOutEvent(QFocusEvent *event)
{
    // The focus passing to the in-place editor does not leave the grid.
    if (d->editor && QApplication::focusWidget() == d->editor) {
        QAbstractScrollArea::focusOutEvent(event);
        return;
    }
    GridBase::focusOutEvent(event);
}

// --- in-place editor -----------------------------------------------------------------

bool TCustomGrid::EditorMode() const
{
    return d->editorMode;
}

void TCustomGrid::SetEditorMode(bool Value)
{
    if (Value)
        ShowEditor();
    else
        HideEditor();
}

QLineEdit *TCustomGrid::InplaceEditor() const
{
    return d->editor;
}

void TCustomGrid::ShowEditor()
{
    if (d->editorMode || !CanEditShow() || !Entered())
        return;
    QLineEdit *editor = d->ensureEditor();
    d->editCell = d->current;
    editor->setFont(font());
    editor->setText(GetEditText(d->editCell.X, d->editCell.Y));
    editor->selectAll();
    d->editorMode = true;
    d->placeEditor();
    editor->show();
    editor->setFocus(Qt::OtherFocusReason);
}

void TCustomGrid::ShowEditorChar(QChar Ch)
{
    ShowEditor();
    if (!d->editorMode)
        return;
    d->editor->setText(Ch == QChar(u'\b') ? QString() : QString(Ch));
    d->editor->end(false);
}

void TCustomGrid::HideEditor(bool Commit)
{
    if (!d->editorMode)
        return;
    d->editorMode = false;
    QLineEdit *editor = d->editor;
    // The grid takes the focus back before the editor hides, so that hiding
    // does not pass the focus on to the next control.
    if (editor->hasFocus())
        setFocus(Qt::OtherFocusReason);
    editor->hide();
    InvalidateCell(d->editCell.X, d->editCell.Y);
    if (Commit)
        SetEditText(d->editCell.X, d->editCell.Y, editor->text());
}

bool TCustomGrid::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != d->editor || !d->editorMode)
        return GridBase::eventFilter(watched, event);
    if (event->type() == QEvent::KeyPress)
        return EditorKeyPress(static_cast<QKeyEvent *>(event));
    if (event->type() == QEvent::FocusOut)
        EditorFocusOut(static_cast<QFocusEvent *>(event));
    return GridBase::eventFilter(watched, event);
}

bool TCustomGrid::EditorKeyPress(QKeyEvent *event)
{
    bool failed = false;
    const bool alwaysShow = d->options.testFlag(goAlwaysShowEditor);
    switch (event->key()) {
    case Qt::Key_Escape:
        if (alwaysShow)
            d->editor->setText(GetEditText(d->editCell.X, d->editCell.Y));
        else
            guarded([this] { HideEditor(false); }, failed);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        guarded(
            [this, alwaysShow] {
                if (alwaysShow)
                    SetEditText(d->editCell.X, d->editCell.Y, d->editor->text());
                else
                    HideEditor(true);
            },
            failed);
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        // Moving keys belong to the grid, which commits the edit as it moves.
        QApplication::sendEvent(this, event);
        return true;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        if (!d->options.testFlag(goTabs))
            return false;
        QApplication::sendEvent(this, event);
        return true;
    default:
        return false;
    }
}

void TCustomGrid::EditorFocusOut(QFocusEvent *event)
{
    if (!IsControlFocusChange(event))
        return;
    QWidget *next = QApplication::focusWidget();
    if (next == this)
        return;
    // The focus left the grid through its editor: commit, then leave the grid.
    bool failed = false;
    guarded([this] { HideEditor(true); }, failed);
    if (Entered()) {
        SetEntered(false);
        guarded([this] { DoExit(); }, failed);
    }
}

// --- mouse -----------------------------------------------------------------------

void TCustomGrid::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y)
{
    HideEditor();
    if (Button == mbLeft) {
        if (Shift.testFlag(ssDouble))
            DoubleClickAt(X, Y);
        else
            StartMouseAction(Shift, X, Y);
    }
    if (OnMouseDown)
        OnMouseDown(this, Button, Shift, X, Y);
}

// The double click acts on the cell under the mouse; normally the first
// click already made it current, a lone double-click event selects it here.
void TCustomGrid::DoubleClickAt(int X, int Y)
{
    const TGridCoord cell = MouseCoord(X, Y);
    if (cell.X >= 0 && !d->isFixed(cell.X, cell.Y) && cell != d->current) {
        MoveColRow(cell.X, cell.Y, true, true);
        Click();
    }
    DblClick();
}

void TCustomGrid::StartMouseAction(TShiftState Shift, int X, int Y)
{
    const bool inFixedRows = Y < d->rows.fixedExtent();
    const bool inFixedCols = X < d->cols.fixedExtent();
    if (d->options.testFlag(goColSizing) && inFixedRows) {
        const int col = TCustomGridPrivate::sizingLineAt(d->cols, d->viewportWidth(), X);
        if (col >= 0) {
            d->gridState = gsColSizing;
            d->dragIndex = col;
            d->dragStart = d->cols.start(col);
            return;
        }
    }
    if (d->options.testFlag(goRowSizing) && inFixedCols) {
        const int row = TCustomGridPrivate::sizingLineAt(d->rows, d->viewportHeight(), Y);
        if (row >= 0) {
            d->gridState = gsRowSizing;
            d->dragIndex = row;
            d->dragStart = d->rows.start(row);
            return;
        }
    }
    const TGridCoord cell = MouseCoord(X, Y);
    if (cell.X < 0)
        return;
    if (d->isFixed(cell.X, cell.Y)) {
        if (d->options.testFlag(goColMoving) && cell.Y < d->rows.fixed && cell.X >= d->cols.fixed) {
            d->gridState = gsColMoving;
            d->dragIndex = cell.X;
        } else if (d->options.testFlag(goRowMoving) && cell.X < d->cols.fixed &&
                   cell.Y >= d->rows.fixed) {
            d->gridState = gsRowMoving;
            d->dragIndex = cell.Y;
        }
        return;
    }
    d->gridState = gsSelecting;
    if (cell == d->current && d->options.testFlag(goEditing)) {
        ShowEditor();
        return;
    }
    const bool extend = Shift.testFlag(ssShift) && d->options.testFlag(goRangeSelect);
    MoveColRow(cell.X, cell.Y, !extend, true);
}

void TCustomGrid::MouseMove(TShiftState Shift, int X, int Y)
{
    switch (d->gridState) {
    case gsSelecting: {
        const TGridCoord cell{d->dragTarget(d->cols, X, d->viewportWidth(), d->current.X),
                              d->dragTarget(d->rows, Y, d->viewportHeight(), d->current.Y)};
        if (cell != d->current)
            MoveColRow(cell.X, cell.Y, !d->options.testFlag(goRangeSelect), true);
        break;
    }
    case gsColSizing:
        d->cols.sizes[d->dragIndex] = std::max(0, X - d->dragStart);
        d->updateScrollBars();
        InvalidateGrid();
        break;
    case gsRowSizing:
        d->rows.sizes[d->dragIndex] = std::max(0, Y - d->dragStart);
        d->updateScrollBars();
        InvalidateGrid();
        break;
    default:
        UpdateSizingCursor(X, Y);
        break;
    }
    if (OnMouseMove)
        OnMouseMove(this, Shift, X, Y);
}

void TCustomGrid::UpdateSizingCursor(int X, int Y)
{
    if (!d->options.testAnyFlags(goColSizing | goRowSizing))
        return;
    Qt::CursorShape shape = Qt::ArrowCursor;
    if (d->options.testFlag(goColSizing) && Y < d->rows.fixedExtent() &&
        TCustomGridPrivate::sizingLineAt(d->cols, d->viewportWidth(), X) >= 0)
        shape = Qt::SplitHCursor;
    else if (d->options.testFlag(goRowSizing) && X < d->cols.fixedExtent() &&
             TCustomGridPrivate::sizingLineAt(d->rows, d->viewportHeight(), Y) >= 0)
        shape = Qt::SplitVCursor;
    if (shape == Qt::ArrowCursor)
        viewport()->unsetCursor();
    else
        viewport()->setCursor(shape);
}

void TCustomGrid::MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y)
{
    const TGridState state = d->gridState;
    if (state == gsSelecting)
        MouseMove(Shift, X, Y);
    d->gridState = gsNormal;
    switch (state) {
    case gsSelecting:
        Click();
        break;
    case gsColSizing:
        ColWidthsChanged();
        break;
    case gsRowSizing:
        RowHeightsChanged();
        break;
    case gsColMoving: {
        const int to =
            d->cols.indexAt(std::clamp(X, 0, d->viewportWidth() - 1), d->viewportWidth());
        if (to >= d->cols.fixed)
            MoveColumn(d->dragIndex, to);
        break;
    }
    case gsRowMoving: {
        const int to =
            d->rows.indexAt(std::clamp(Y, 0, d->viewportHeight() - 1), d->viewportHeight());
        if (to >= d->rows.fixed)
            MoveRow(d->dragIndex, to);
        break;
    }
    case gsNormal:
        break;
    }
    if (OnMouseUp)
        OnMouseUp(this, Button, Shift, X, Y);
}

void TCustomGrid::MouseLeave()
{
    if (OnMouseLeave)
        OnMouseLeave(this);
}

void TCustomGrid::mousePressEvent(QMouseEvent *event)
{
    const QPoint p = event->position().toPoint();
    const TShiftState shift = ShiftStateFromMouse(event->modifiers(), event->buttons());
    bool failed = false;
    guarded([&] { MouseDown(MouseButtonOf(event->button()), shift, p.x(), p.y()); }, failed);
    event->accept();
}

void TCustomGrid::mouseDoubleClickEvent(QMouseEvent *event)
{
    const QPoint p = event->position().toPoint();
    const TShiftState shift = ShiftStateFromMouse(event->modifiers(), event->buttons(), true);
    bool failed = false;
    guarded([&] { MouseDown(MouseButtonOf(event->button()), shift, p.x(), p.y()); }, failed);
    event->accept();
}

void TCustomGrid::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint p = event->position().toPoint();
    const TShiftState shift = ShiftStateFromMouse(event->modifiers(), event->buttons());
    bool failed = false;
    guarded([&] { MouseMove(shift, p.x(), p.y()); }, failed);
    event->accept();
}

void TCustomGrid::mouseReleaseEvent(QMouseEvent *event)
{
    const QPoint p = event->position().toPoint();
    const TShiftState shift = ShiftStateFromMouse(event->modifiers(), event->buttons());
    bool failed = false;
    guarded([&] { MouseUp(MouseButtonOf(event->button()), shift, p.x(), p.y()); }, failed);
    if (failed)
        d->gridState = gsNormal;
    event->accept();
}

// The wheel moves the current row, one row per notch.
void TCustomGrid::wheelEvent(QWheelEvent *event)
{
    const int delta = event->angleDelta().y();
    if (delta == 0) {
        GridBase::wheelEvent(event);
        return;
    }
    d->wheelDelta += delta;
    bool failed = false;
    while (!failed && std::abs(d->wheelDelta) >= kWheelStep) {
        const int step = d->wheelDelta > 0 ? -1 : 1;
        d->wheelDelta += step * kWheelStep;
        const int row = d->current.Y + step;
        if (row >= d->rows.fixed && row < d->rows.count)
            guarded([this, row] { SetRow(row); }, failed);
    }
    event->accept();
}

bool TCustomGrid::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::Leave) {
        bool failed = false;
        guarded([this] { MouseLeave(); }, failed);
    }
    return GridBase::viewportEvent(event);
}

void TCustomGrid::scrollContentsBy(int dx, int dy)
{
    Q_UNUSED(dx);
    Q_UNUSED(dy);
    if (d->syncingScrollBars)
        return;
    bool failed = false;
    guarded([this] { MoveTopLeft(horizontalScrollBar()->value(), verticalScrollBar()->value()); },
            failed);
}

void TCustomGrid::resizeEvent(QResizeEvent *event)
{
    GridBase::resizeEvent(event);
    // A grown viewport may show the end of the grid with an earlier first line.
    const int left =
        std::min(d->cols.first, std::max(d->cols.fixed, d->cols.maxFirst(d->viewportWidth())));
    const int top =
        std::min(d->rows.first, std::max(d->rows.fixed, d->rows.maxFirst(d->viewportHeight())));
    bool failed = false;
    guarded([this, left, top] { MoveTopLeft(left, top); }, failed);
    d->updateScrollBars();
    d->placeEditor();
}

void TCustomGrid::changeEvent(QEvent *event)
{
    GridBase::changeEvent(event);
    switch (event->type()) {
    case QEvent::FontChange:
        if (d->editor)
            d->editor->setFont(font());
        InvalidateGrid();
        break;
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
    case QEvent::EnabledChange:
        InvalidateGrid();
        break;
    default:
        break;
    }
}

// --- painting ------------------------------------------------------------------------

QPainter *TCustomGrid::Canvas() const
{
    return d->canvas;
}

QColor TCustomGrid::BackgroundColor() const
{
    return ColorToQColor(Color(), QApplication::palette(this));
}

QColor TCustomGrid::TextColor() const
{
    return palette().color(QPalette::Text);
}

QColor TCustomGrid::FixedBackgroundColor() const
{
    return ColorToQColor(d->fixedColor, QApplication::palette(this));
}

void TCustomGrid::SetCanvasColors(const QColor &Background, const QColor &Text)
{
    QPainter *p = d->canvas;
    if (!p)
        return;
    // The painter lets go of the cached brush and pen first, so that
    // recolouring them does not copy their data.
    if (p->brush().color() != Background || p->brush().style() != Qt::SolidPattern) {
        p->setBrush(Qt::NoBrush);
        d->cellBrush.setColor(Background);
        p->setBrush(d->cellBrush);
    }
    if (p->pen().color() != Text || p->pen().style() != Qt::SolidLine) {
        p->setPen(Qt::NoPen);
        d->cellPen.setColor(Text);
        p->setPen(d->cellPen);
    }
}

// The colours of one paint, resolved once.
struct TCustomGrid::PaintColors
{
    QColor background, text, fixedBackground, highlight, highlightText;
    QColor line, fixedLine, edgeLight, edgeDark;
};

namespace {

enum CellKind { ckNormal, ckFixed, ckHighlight, ckKindCount };

} // namespace

// The grid lines, drawn after the cells as one strip per line and kind:
// lines in the fixed area take the fixed style.
void TCustomGrid::PaintGridLines(QPainter &painter, const PaintColors &colors, int gridRight,
                                 int gridBottom)
{
    const int fixedRight = std::min(d->cols.fixedExtent(), gridRight);
    const int fixedBottom = std::min(d->rows.fixedExtent(), gridBottom);
    const QColor fixedVert =
        d->options.testFlag(goFixedVertLine) ? colors.fixedLine : colors.fixedBackground;
    const QColor fixedHorz =
        d->options.testFlag(goFixedHorzLine) ? colors.fixedLine : colors.fixedBackground;
    for (const ShownLine &col : d->shownCols) {
        const int width = d->cols.lineAfter(col.index);
        if (width == 0)
            continue;
        const int x = col.pos + d->cols.sizes.at(col.index);
        const bool fixedCol = col.index < d->cols.fixed;
        painter.fillRect(x, 0, width, fixedBottom, fixedVert);
        painter.fillRect(x, fixedBottom, width, gridBottom - fixedBottom,
                         fixedCol ? fixedVert : colors.line);
    }
    for (const ShownLine &row : d->shownRows) {
        const int height = d->rows.lineAfter(row.index);
        if (height == 0)
            continue;
        const int y = row.pos + d->rows.sizes.at(row.index);
        const bool fixedRow = row.index < d->rows.fixed;
        painter.fillRect(0, y, fixedRight, height, fixedHorz);
        painter.fillRect(fixedRight, y, gridRight - fixedRight, height,
                         fixedRow ? fixedHorz : colors.line);
    }
}

void TCustomGrid::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    const QPalette appPalette = QApplication::palette(this);
    PaintColors colors;
    colors.background = BackgroundColor();
    colors.text = TextColor();
    colors.fixedBackground = FixedBackgroundColor();
    colors.highlight = appPalette.color(QPalette::Highlight);
    colors.highlightText = appPalette.color(QPalette::HighlightedText);
    colors.line =
        colors.background == QColor(Qt::lightGray) ? QColor(Qt::gray) : QColor(0xC0, 0xC0, 0xC0);
    colors.fixedLine = Qt::black;
    colors.edgeLight = appPalette.color(QPalette::Light);
    colors.edgeDark = appPalette.color(QPalette::Dark);

    const QBrush brushes[ckKindCount] = {QBrush(colors.background), QBrush(colors.fixedBackground),
                                         QBrush(colors.highlight)};
    const QPen pens[ckKindCount] = {QPen(colors.text), QPen(colors.text),
                                    QPen(colors.highlightText)};
    QPen focusPen(colors.text, 1, Qt::DotLine);

    painter.setFont(font());
    const QFont cellFont = painter.font();
    const QRect dirty = event->rect();
    const int width = d->viewportWidth();
    const int height = d->viewportHeight();
    TCustomGridPrivate::collectShown(d->cols, width, d->shownCols);
    TCustomGridPrivate::collectShown(d->rows, height, d->shownRows);

    const TGridRect sel = d->selection();
    const bool active = Entered();
    const bool rowSelect = d->options.testFlag(goRowSelect);
    const bool drawFocusSelected = d->options.testAnyFlags(goDrawFocusSelected | goRowSelect);
    const bool fullEditor =
        d->options.testFlag(goEditing) && d->options.testFlag(goAlwaysShowEditor);

    d->canvas = &painter;
    try {
        for (const ShownLine &row : d->shownRows) {
            const int rowHeight = d->rows.sizes.at(row.index);
            const int rowLine = d->rows.lineAfter(row.index);
            if (row.pos > dirty.bottom() || row.pos + rowHeight + rowLine <= dirty.top())
                continue;
            for (const ShownLine &col : d->shownCols) {
                const int colWidth = d->cols.sizes.at(col.index);
                const int colLine = d->cols.lineAfter(col.index);
                if (col.pos > dirty.right() || col.pos + colWidth + colLine <= dirty.left())
                    continue;
                const QRect rect(col.pos, row.pos, colWidth, rowHeight);
                const bool fixed = d->isFixed(col.index, row.index);

                TGridDrawState state;
                CellKind kind = ckNormal;
                if (fixed) {
                    state |= gdFixed;
                    kind = ckFixed;
                } else {
                    if (sel.Contains(col.index, row.index))
                        state |= gdSelected;
                    if (active && row.index == d->current.Y &&
                        (rowSelect || col.index == d->current.X))
                        state |= gdFocused;
                    if (state.testFlag(gdSelected) &&
                        (!state.testFlag(gdFocused) || drawFocusSelected))
                        kind = ckHighlight;
                }
                if (painter.brush() != brushes[kind])
                    painter.setBrush(brushes[kind]);
                if (painter.pen() != pens[kind])
                    painter.setPen(pens[kind]);
                if (d->defaultDrawing)
                    painter.fillRect(rect,
                                     kind == ckNormal      ? colors.background
                                         : kind == ckFixed ? colors.fixedBackground
                                                           : colors.highlight);

                DrawCell(col.index, row.index, rect, state);

                if (painter.font() != cellFont)
                    painter.setFont(cellFont);
                if (d->defaultDrawing && fixed) {
                    if (d->options.testFlag(goFixedVertLine)) {
                        painter.fillRect(rect.left(), rect.top(), 1, rect.height(),
                                         colors.edgeLight);
                        painter.fillRect(rect.right(), rect.top(), 1, rect.height(),
                                         colors.edgeDark);
                    }
                    if (d->options.testFlag(goFixedHorzLine)) {
                        painter.fillRect(rect.left(), rect.top(), rect.width(), 1,
                                         colors.edgeLight);
                        painter.fillRect(rect.left(), rect.bottom(), rect.width(), 1,
                                         colors.edgeDark);
                    }
                }
                if (d->defaultDrawing && state.testFlag(gdFocused) && !rowSelect && !fullEditor) {
                    painter.setPen(focusPen);
                    painter.setBrush(Qt::NoBrush);
                    painter.drawRect(rect.adjusted(0, 0, -1, -1));
                }
            }
        }
    } catch (const std::exception &error) {
        d->canvas = nullptr;
        // Reported after painting: a message box must not open inside a paint.
        const QString message = QString::fromUtf8(error.what());
        QTimer::singleShot(
            0, this, [this, message] { MessageService::ShowException(Exception(message), this); });
        return;
    }
    d->canvas = nullptr;

    const int gridRight = TCustomGridPrivate::shownExtent(d->cols, d->shownCols);
    const int gridBottom = TCustomGridPrivate::shownExtent(d->rows, d->shownRows);
    PaintGridLines(painter, colors, gridRight, gridBottom);

    // The area beyond the last column and row.
    if (gridRight < width)
        painter.fillRect(gridRight, 0, width - gridRight, height, colors.background);
    if (gridBottom < height)
        painter.fillRect(0, gridBottom, std::min(gridRight, width), height - gridBottom,
                         colors.background);
}

} // namespace oxa
