#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/Color.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/Keys.h"
#include "oxa/toolkit/WinControl.h"

#include <QAbstractScrollArea>
#include <QFlags>
#include <QRect>
#include <QString>

#include <functional>
#include <memory>

class QLineEdit;
class QPainter;

namespace oxa {

// A failed operation on a grid: a cell or line index out of range, more
// fixed lines than lines.
class OXA_EXPORT EInvalidGridOperation : public EInvalidOperation
{
    using EInvalidOperation::EInvalidOperation;
};

// A cell: X is the column, Y the row.
struct OXA_EXPORT TGridCoord
{
    int X = 0;
    int Y = 0;
    friend bool operator==(const TGridCoord &, const TGridCoord &) = default;
};

// A rectangle of cells, all four sides inclusive.
struct OXA_EXPORT TGridRect
{
    int Left = 0;
    int Top = 0;
    int Right = 0;
    int Bottom = 0;

    TGridCoord TopLeft() const { return {Left, Top}; }
    TGridCoord BottomRight() const { return {Right, Bottom}; }
    bool Contains(int ACol, int ARow) const
    {
        return ACol >= Left && ACol <= Right && ARow >= Top && ARow <= Bottom;
    }
    friend bool operator==(const TGridRect &, const TGridRect &) = default;
};

// The rectangle spanned by two cells, whichever order they come in.
OXA_EXPORT TGridRect GridRect(TGridCoord a, TGridCoord b);

enum TGridDrawStateFlag {
    gdSelected = 0x1, // inside the selection
    gdFocused = 0x2,  // the current cell of a grid that holds the focus
    gdFixed = 0x4,    // a fixed (header) cell
};
Q_DECLARE_FLAGS(TGridDrawState, TGridDrawStateFlag)
Q_DECLARE_OPERATORS_FOR_FLAGS(TGridDrawState)

enum TGridOption {
    goFixedVertLine = 0x0001,
    goFixedHorzLine = 0x0002,
    goVertLine = 0x0004,
    goHorzLine = 0x0008,
    goRangeSelect = 0x0010,       // Shift+keys and mouse drags select a range
    goDrawFocusSelected = 0x0020, // the focused cell is drawn as selected
    goRowSizing = 0x0040,         // row heights are dragged in the fixed columns
    goColSizing = 0x0080,         // column widths are dragged in the fixed rows
    goRowMoving = 0x0100,         // rows are dragged by their fixed cell
    goColMoving = 0x0200,         // columns are dragged by their fixed cell
    goEditing = 0x0400,           // cells are edited in place
    goTabs = 0x0800,              // Tab and Shift+Tab move between cells
    goRowSelect = 0x1000,         // whole rows are selected
    goAlwaysShowEditor = 0x2000,  // with goEditing: the editor stays open
    goThumbTracking = 0x4000,     // the grid follows a dragged scroll-bar thumb
};
Q_DECLARE_FLAGS(TGridOptions, TGridOption)
Q_DECLARE_OPERATORS_FOR_FLAGS(TGridOptions)

inline constexpr TGridOptions DefaultGridOptions =
    TGridOptions(goFixedVertLine | goFixedHorzLine | goVertLine | goHorzLine | goRangeSelect);

enum TScrollStyle { ssNone, ssHorizontal, ssVertical, ssBoth };

// What a mouse drag in the grid is doing.
enum TGridState { gsNormal, gsSelecting, gsRowSizing, gsColSizing, gsRowMoving, gsColMoving };

enum TMouseButton { mbLeft, mbRight, mbMiddle };

using TDrawCellEvent = std::function<void(QObject *Sender, int ACol, int ARow, const QRect &Rect,
                                          TGridDrawState State)>;
using TSelectCellEvent = std::function<void(QObject *Sender, int ACol, int ARow, bool &CanSelect)>;
using TGetEditEvent = std::function<void(QObject *Sender, int ACol, int ARow, QString &Value)>;
using TSetEditEvent =
    std::function<void(QObject *Sender, int ACol, int ARow, const QString &Value)>;
using TMovedEvent = std::function<void(QObject *Sender, int FromIndex, int ToIndex)>;
using TMouseEvent =
    std::function<void(QObject *Sender, TMouseButton Button, TShiftState Shift, int X, int Y)>;
using TMouseMoveEvent = std::function<void(QObject *Sender, TShiftState Shift, int X, int Y)>;

class TCustomGridPrivate;

// The toolkit's drawing grid: a table of cells of variable widths and
// heights with fixed (header) rows and columns, a current cell, a selection,
// keyboard and mouse movement, scrolling by whole cells and in-place editing.
// The grid stores no data; DrawCell paints every cell.
//
// Coordinates: cells are addressed (ACol, ARow) from 0, fixed cells included
// (row 0 is the first header row when FixedRows > 0). Pixel positions (X, Y,
// CellRect) are in the viewport, the area inside the frame and scroll bars.
// Fixed rows and columns never scroll; LeftCol and TopRow are the first
// scrollable column and row shown.
//
// Keys: arrows move one cell (with Shift and goRangeSelect they extend the
// selection), Home/End go to the first/last column, Ctrl+Home/End to the
// first/last cell, PgUp/PgDn move a page, Ctrl+PgUp/PgDn to the top/bottom
// row shown, Ctrl+Up/Down scroll a row, Ctrl+Left/Right a page sideways, and
// with goTabs Tab/Shift+Tab go through the cells row by row. With goRowSelect
// Left/Right scroll and Home/End go to the first/last row. The current cell
// is always scrolled into view.
//
// Painting: only the cells that intersect the repainted area are drawn. For
// each, the grid prepares Canvas() - the painter of the viewport, valid only
// while the grid paints - with the cell's background as the brush, its text
// colour as the pen and the grid's font; with DefaultDrawing it has also
// filled the cell with the brush. DrawCell may change the pen, brush and
// font (the grid resets them before the next cell); anything else it changes
// on the painter (clipping, transformation) it restores itself.
class OXA_EXPORT TCustomGrid : public TWinControl<QAbstractScrollArea>
{
    Q_OBJECT
    Q_PROPERTY(int ColCount READ ColCount WRITE SetColCount NOTIFY colCountChanged)
    Q_PROPERTY(int RowCount READ RowCount WRITE SetRowCount NOTIFY rowCountChanged)
    Q_PROPERTY(int FixedCols READ FixedCols WRITE SetFixedCols NOTIFY fixedColsChanged)
    Q_PROPERTY(int FixedRows READ FixedRows WRITE SetFixedRows NOTIFY fixedRowsChanged)
    Q_PROPERTY(int DefaultColWidth READ DefaultColWidth WRITE SetDefaultColWidth NOTIFY
                   defaultColWidthChanged)
    Q_PROPERTY(int DefaultRowHeight READ DefaultRowHeight WRITE SetDefaultRowHeight NOTIFY
                   defaultRowHeightChanged)
    Q_PROPERTY(
        int GridLineWidth READ GridLineWidth WRITE SetGridLineWidth NOTIFY gridLineWidthChanged)
    Q_PROPERTY(uint FixedColor READ FixedColor WRITE SetFixedColor NOTIFY fixedColorChanged)
    Q_PROPERTY(oxa::TGridOptions Options READ Options WRITE SetOptions NOTIFY optionsChanged)
    Q_PROPERTY(
        oxa::TScrollStyle ScrollBars READ ScrollBars WRITE SetScrollBars NOTIFY scrollBarsChanged)
    Q_PROPERTY(bool DefaultDrawing READ DefaultDrawing WRITE SetDefaultDrawing NOTIFY
                   defaultDrawingChanged)
    Q_PROPERTY(int Col READ Col WRITE SetCol NOTIFY colChanged DESIGNABLE false STORED false)
    Q_PROPERTY(int Row READ Row WRITE SetRow NOTIFY rowChanged DESIGNABLE false STORED false)
    Q_PROPERTY(int LeftCol READ LeftCol WRITE SetLeftCol NOTIFY leftColChanged
                   DESIGNABLE false STORED false)
    Q_PROPERTY(
        int TopRow READ TopRow WRITE SetTopRow NOTIFY topRowChanged DESIGNABLE false STORED false)

public:
    explicit TCustomGrid(QWidget *parent = nullptr);
    ~TCustomGrid() override;

    // Size. ColCount and RowCount are at least 1; lowering one below the
    // fixed count lowers the fixed count. Fixed counts must stay below the
    // counts (EInvalidGridOperation otherwise); changing one puts the
    // current cell on the first scrollable cell.
    int ColCount() const;
    void SetColCount(int Value);
    int RowCount() const;
    void SetRowCount(int Value);
    int FixedCols() const;
    void SetFixedCols(int Value);
    int FixedRows() const;
    void SetFixedRows(int Value);

    // Cell sizes in pixels, without the grid lines. Setting a default size
    // resets every column (row) to it.
    int DefaultColWidth() const;
    void SetDefaultColWidth(int Value);
    int DefaultRowHeight() const;
    void SetDefaultRowHeight(int Value);
    int ColWidths(int ACol) const;
    void SetColWidths(int ACol, int Width);
    int RowHeights(int ARow) const;
    void SetRowHeights(int ARow, int Height);
    // Whether Tab stops in the column (goTabs); all columns do initially.
    bool TabStops(int ACol) const;
    void SetTabStops(int ACol, bool Value);

    int GridLineWidth() const;
    void SetGridLineWidth(int Value);
    TColor FixedColor() const;
    void SetFixedColor(TColor Value);
    TGridOptions Options() const;
    void SetOptions(TGridOptions Value);
    TScrollStyle ScrollBars() const;
    void SetScrollBars(TScrollStyle Value);
    // Whether the grid paints backgrounds, the focus rectangle and the
    // edges of fixed cells itself around DrawCell.
    bool DefaultDrawing() const;
    void SetDefaultDrawing(bool Value);

    // The current cell. Setting Col or Row asks SelectCell, scrolls the
    // cell into view and reports Click, as a keyboard move does.
    int Col() const;
    void SetCol(int Value);
    int Row() const;
    void SetRow(int Value);

    // Scroll position: the first scrollable column and row shown.
    int LeftCol() const;
    void SetLeftCol(int Value);
    int TopRow() const;
    void SetTopRow(int Value);
    // Scrollable columns (rows) shown whole from LeftCol (TopRow).
    int VisibleColCount() const;
    int VisibleRowCount() const;

    // The selected cells; without goRangeSelect the current cell alone.
    // Setting it makes its top-left corner the anchor and its bottom-right
    // corner the current cell, without SelectCell or Click.
    TGridRect Selection() const;
    void SetSelection(const TGridRect &Value);

    // Cell geometry in viewport pixels. CellRect is the cell without its
    // grid lines, empty for a cell that is not shown; a partly shown cell
    // gets its whole rectangle. BoxRect covers the shown part of a range of
    // cells, their grid lines included.
    QRect CellRect(int ACol, int ARow) const;
    QRect BoxRect(int ALeft, int ATop, int ARight, int ABottom) const;
    // The cell at a viewport point; -1 where there is no cell.
    void MouseToCell(int X, int Y, int &ACol, int &ARow) const;
    TGridCoord MouseCoord(int X, int Y) const;
    // Width and height of all cells shown, lines included, at most the
    // viewport's.
    int GridWidth() const;
    int GridHeight() const;

    void InvalidateCell(int ACol, int ARow);
    void InvalidateCol(int ACol);
    void InvalidateRow(int ARow);
    void InvalidateRect(const TGridRect &ARect);
    void InvalidateGrid();

    // Moves a column (row) with its width (height) to another index; the
    // current cell moves along. ColumnMoved (RowMoved) follows.
    void MoveColumn(int FromIndex, int ToIndex);
    void MoveRow(int FromIndex, int ToIndex);

    TGridState GridState() const;

    // In-place editing (goEditing) in the grid that holds the focus: F2,
    // Enter, typing or a click on the current cell open the editor over the
    // current cell; Enter, moving to another cell or leaving the grid commit
    // the text through SetEditText, Escape drops it. Setting EditorMode to
    // false commits.
    bool EditorMode() const;
    void SetEditorMode(bool Value);
    // The editor widget; nullptr until editing first starts.
    QLineEdit *InplaceEditor() const;

    // The painter of the cell being drawn; nullptr outside painting (see
    // the class comment).
    QPainter *Canvas() const;

    TDrawCellEvent OnDrawCell;
    TSelectCellEvent OnSelectCell;
    TNotifyEvent OnClick;
    TNotifyEvent OnDblClick;
    TNotifyEvent OnTopLeftChanged;
    TGetEditEvent OnGetEditText;
    TSetEditEvent OnSetEditText;
    TMovedEvent OnColumnMoved;
    TMovedEvent OnRowMoved;
    TMouseEvent OnMouseDown;
    TMouseEvent OnMouseUp;
    TMouseMoveEvent OnMouseMove;
    TNotifyEvent OnMouseLeave;

Q_SIGNALS:
    void colCountChanged();
    void rowCountChanged();
    void fixedColsChanged();
    void fixedRowsChanged();
    void defaultColWidthChanged();
    void defaultRowHeightChanged();
    void gridLineWidthChanged();
    void fixedColorChanged();
    void optionsChanged();
    void scrollBarsChanged();
    void defaultDrawingChanged();
    void colChanged();
    void rowChanged();
    void leftColChanged();
    void topRowChanged();
    // The same notifications as OnClick, OnDblClick and OnTopLeftChanged.
    void clicked();
    void doubleClicked();
    void topLeftChanged();

protected:
    // Paints one cell; the default calls OnDrawCell.
    virtual void DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State);
    // Whether the cell may become current; the default asks OnSelectCell.
    virtual bool SelectCell(int ACol, int ARow);
    // Click follows every move of the current cell made by the user or by
    // Col/Row (on the mouse's release for a mouse selection); the default
    // calls OnClick and emits clicked(). DblClick acts on the cell under the
    // mouse.
    virtual void Click();
    virtual void DblClick();
    virtual void TopLeftChanged();
    // The editor's text for a cell, and the edited text coming back.
    virtual QString GetEditText(int ACol, int ARow);
    virtual void SetEditText(int ACol, int ARow, const QString &Value);
    // Whether the current cell may be edited now.
    virtual bool CanEditShow() const;
    virtual void ColumnMoved(int FromIndex, int ToIndex);
    virtual void RowMoved(int FromIndex, int ToIndex);
    virtual void ColWidthsChanged();
    virtual void RowHeightsChanged();
    // After ColCount or RowCount changed.
    virtual void SizeChanged(int OldColCount, int OldRowCount);
    // After the selection or the current cell moved; invalidates what
    // changed. Override to repaint more (a whole row, say).
    virtual void SelectionMoved(const TGridRect &OldSel, TGridCoord OldCurrent);

    // Mouse handlers in the toolkit's terms; the grid's own selecting,
    // sizing and moving happen in them, then the On... events.
    // The wheel moves the current row by one per notch.
    virtual void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y);
    virtual void MouseMove(TShiftState Shift, int X, int Y);
    virtual void MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y);
    virtual void MouseLeave();

    void KeyDown(Word &Key, TShiftState Shift) override;
    void KeyPress(QChar &Key) override;
    void DoEnter() override;
    void DoExit() override;

    // Makes the cell current when SelectCell allows it; MoveAnchor false
    // extends a range selection; Show scrolls the cell into view.
    void MoveColRow(int ACol, int ARow, bool MoveAnchor, bool Show);
    // MoveColRow with scrolling, then Click: a move made by the user.
    void FocusCell(int ACol, int ARow, bool MoveAnchor);
    // Scrolls so that the cell is shown whole (as far as it fits).
    void ClampInView(int ACol, int ARow);
    void MoveTopLeft(int ALeft, int ATop);

    void ShowEditor();
    void HideEditor(bool Commit = true);
    // Opens the editor with the typed character as its only text.
    void ShowEditorChar(QChar Ch);

    // Sets the canvas colours of the cell being drawn without allocating.
    void SetCanvasColors(const QColor &Background, const QColor &Text);
    // The grid's colours as the painter uses them.
    QColor BackgroundColor() const;
    QColor TextColor() const;
    QColor FixedBackgroundColor() const;

    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    TGridCoord NextTabStop(bool Backward) const;
    bool EditorKeyPress(QKeyEvent *event);
    void EditorFocusOut(QFocusEvent *event);
    void StartMouseAction(TShiftState Shift, int X, int Y);
    void DoubleClickAt(int X, int Y);
    void UpdateSizingCursor(int X, int Y);
    void ApplyScrollBarPolicies();
    struct PaintColors;
    void PaintGridLines(QPainter &painter, const PaintColors &colors, int gridRight,
                        int gridBottom);

    friend class TCustomGridPrivate;
    std::unique_ptr<TCustomGridPrivate> d;
};

// The drawing grid with nothing added: cells are painted by OnDrawCell (or
// an override of DrawCell).
class OXA_EXPORT TDrawGrid : public TCustomGrid
{
    Q_OBJECT
public:
    using TCustomGrid::TCustomGrid;
};

} // namespace oxa
