#include "oxa/toolkit/DBGrid.h"

#include "oxa/toolkit/MessageService.h"

#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace oxa {

namespace {

constexpr int kIndicatorWidth = 12;
constexpr int kWheelStep = 120;

// While a row is painted, the fields read that row's record.
class ActiveRecordScope
{
public:
    ActiveRecordScope(TDataSet *dataSet, int offset) : m_dataSet(dataSet)
    {
        if (m_dataSet)
            m_dataSet->SetActiveOffset(offset);
    }
    ~ActiveRecordScope()
    {
        if (m_dataSet)
            m_dataSet->SetActiveOffset(0);
    }
    ActiveRecordScope(const ActiveRecordScope &) = delete;
    ActiveRecordScope &operator=(const ActiveRecordScope &) = delete;

private:
    TDataSet *m_dataSet;
};

} // namespace

// ---------------------------------------------------------------------------
// TColumn

TColumn::TColumn(TCustomDBGrid *Grid) : QObject(nullptr), m_grid(Grid) { }

TColumn::~TColumn() = default;

int TColumn::Index() const
{
    return m_grid ? m_grid->Columns()->IndexOf(this) : -1;
}

void TColumn::SetFieldName(const QString &Value)
{
    const auto before = FieldName();
    m_fieldName = Value;
    Changed();
    if (FieldName() != before)
        Q_EMIT fieldNameChanged();
}

TField *TColumn::Field() const
{
    TDataSet *dataSet = m_grid && m_grid->DataSource() ? m_grid->DataSource()->DataSet() : nullptr;
    return dataSet && dataSet->Active() ? dataSet->FindField(m_fieldName) : nullptr;
}

QString TColumn::Title() const
{
    if (!m_title.isEmpty())
        return m_title;
    TField *field = Field();
    return field ? field->DisplayLabel() : m_fieldName;
}

void TColumn::SetTitle(const QString &Value)
{
    const auto before = Title();
    m_title = Value;
    Changed();
    if (Title() != before)
        Q_EMIT titleChanged();
}

int TColumn::Width() const
{
    if (m_width >= 0)
        return m_width;
    TField *field = Field();
    return field && field->DataType() == ftString ? 120 : 80;
}

void TColumn::SetWidth(int Value)
{
    const auto before = Width();
    m_width = Value;
    Changed();
    if (Width() != before)
        Q_EMIT widthChanged();
}

void TColumn::SetVisible(bool Value)
{
    const auto before = Visible();
    m_visible = Value;
    Changed();
    if (Visible() != before)
        Q_EMIT visibleChanged();
}

Qt::Alignment TColumn::Alignment() const
{
    if (m_alignmentSet)
        return m_alignment;
    TField *field = Field();
    return field ? field->Alignment() : Qt::AlignLeft;
}

void TColumn::SetAlignment(Qt::Alignment Value)
{
    m_alignment = Value;
    m_alignmentSet = true;
    Changed();
}

void TColumn::Changed()
{
    if (m_grid && m_grid->Columns()->IndexOf(this) >= 0)
        m_grid->LayoutChanged();
}

// ---------------------------------------------------------------------------
// TDBGridColumns

TDBGridColumns::TDBGridColumns(TCustomDBGrid *Grid, Factory MakeColumn)
    : m_grid(Grid), m_make(std::move(MakeColumn))
{ }

TDBGridColumns::~TDBGridColumns()
{
    qDeleteAll(m_items);
}

TColumn *TDBGridColumns::Add()
{
    if (m_default) {
        // The host takes the columns over: the default ones go.
        qDeleteAll(m_items);
        m_items.clear();
        m_default = false;
    }
    TColumn *column = m_make(m_grid);
    m_items.append(column);
    m_grid->LayoutChanged();
    return column;
}

int TDBGridColumns::IndexOf(const TColumn *Column) const
{
    return int(m_items.indexOf(const_cast<TColumn *>(Column)));
}

void TDBGridColumns::Clear()
{
    qDeleteAll(m_items);
    m_items.clear();
    m_default = false;
    m_grid->LayoutChanged();
}

void TDBGridColumns::Delete(int Index)
{
    if (Index < 0 || Index >= m_items.size())
        return;
    delete m_items.takeAt(Index);
    m_grid->LayoutChanged();
}

void TDBGridColumns::RebuildDefault()
{
    qDeleteAll(m_items);
    m_items.clear();
    m_default = true;
    TDataSet *dataSet = m_grid->DataSource() ? m_grid->DataSource()->DataSet() : nullptr;
    if (!dataSet || !dataSet->Active())
        return;
    for (TField *field : dataSet->Fields()) {
        TColumn *column = m_make(m_grid);
        column->m_fieldName = field->FieldName();
        m_items.append(column);
    }
}

// ---------------------------------------------------------------------------
// TCustomDBGridPrivate

class TCustomDBGridPrivate : public TDataLink
{
public:
    explicit TCustomDBGridPrivate(TCustomDBGrid *grid) : q(grid) { }

    TCustomDBGrid *q;
    std::unique_ptr<TDBGridColumns> columns;
    TDBGridOptions options = DefaultDBGridOptions;
    bool readOnly = false;
    int curRow = 0; // the data row of the current record
    bool layingOut = false;
    bool syncing = false;
    bool suppressText = false;
    QScrollBar *bar = nullptr;
    QMetaObject::Connection countConnection;
    TGridCoord pressed{-1, -1};
    int wheelDelta = 0;

    TDataSet *dataSet() const { return Active() ? DataSet() : nullptr; }
    int fixedRows() const { return options.testFlag(dgTitles) ? 1 : 0; }
    int offset() const { return options.testFlag(dgIndicator) ? 1 : 0; }
    bool canAppend() const
    {
        TDataSet *ds = dataSet();
        return ds && options.testFlag(dgEditing) && !readOnly && ds->CanModify();
    }

    void syncRows();
    void updateBar();
    void scrollBarAction(int action);
    void thumbReleased();
    void commitEditor();

protected:
    void ActiveChanged() override
    {
        QObject::disconnect(countConnection);
        if (TDataSet *ds = dataSet())
            countConnection = QObject::connect(ds, &TDataSet::RecordCountChanged, q,
                                               [this](int) { updateBar(); });
        curRow = 0;
        if (!columns || columns->IsDefault())
            q->Columns()->RebuildDefault();
        q->LayoutChanged();
    }
    void DataSetChanged() override { syncRows(); }
    void DataSetScrolled(int Distance) override
    {
        curRow += Distance;
        syncRows();
    }
    void RecordChanged(TField *) override { q->InvalidateRow(q->Row()); }
    void EditingChanged() override
    {
        q->InvalidateRow(q->Row());
        if (offset())
            q->InvalidateCol(0);
    }
    void UpdateData() override { commitEditor(); }
};

// Writes what the user typed in the in-place editor into the field.
void TCustomDBGridPrivate::commitEditor()
{
    if (!q->EditorMode() || !q->InplaceEditor())
        return;
    q->SetEditText(q->Col(), q->Row(), q->InplaceEditor()->text());
}

void TCustomDBGridPrivate::syncRows()
{
    if (layingOut || syncing)
        return;
    syncing = true;
    const int fixed = fixedRows();
    const int capacity = q->VisibleRecordRows();
    TDataSet *ds = dataSet();
    int shown = 1;
    if (!ds || ds->IsEmpty()) {
        curRow = 0;
    } else {
        try {
            ds->EnsureRecords(capacity - 1, capacity - 1);
        } catch (...) {
            syncing = false;
            throw;
        }
        const int before = ds->RecordsBefore();
        const int after = ds->RecordsAfter();
        int row = std::clamp(curRow, 0, capacity - 1);
        row = std::min(row, before);
        // Show as many records as fit: near the end, more of those before.
        row = std::max(row, std::min(before, capacity - 1 - after));
        curRow = row;
        shown = std::min(capacity, row + 1 + after);
    }
    if (q->RowCount() != fixed + shown)
        q->SetRowCount(fixed + shown);
    if (q->Row() != fixed + curRow)
        q->MoveColRow(q->Col(), fixed + curRow, true, false);
    syncing = false;
    q->InvalidateGrid();
    updateBar();
}

void TCustomDBGridPrivate::updateBar()
{
    if (!bar)
        return;
    const QSignalBlocker blocker(bar);
    TDataSet *ds = dataSet();
    const int count = ds ? ds->RecordCount() : -1;
    const int recNo = ds ? ds->RecNo() : -1;
    if (!ds || ds->IsEmpty()) {
        bar->setRange(0, 0);
    } else if (count >= 0 && recNo > 0) {
        bar->setRange(0, std::max(0, count - 1));
        bar->setPageStep(std::max(1, q->VisibleRecordRows()));
        bar->setSliderPosition(recNo - 1);
        bar->setValue(recNo - 1);
    } else {
        // Until the records are counted: the start, the middle or the end.
        bar->setRange(0, 2);
        bar->setPageStep(1);
        const int position = ds->Bof() ? 0 : ds->Eof() ? 2 : 1;
        bar->setSliderPosition(position);
        bar->setValue(position);
    }
}

void TCustomDBGridPrivate::scrollBarAction(int action)
{
    TDataSet *ds = dataSet();
    if (!ds)
        return;
    HandleExceptions(q, [&] {
        const int page = std::max(1, q->VisibleRecordRows());
        switch (action) {
        case QAbstractSlider::SliderSingleStepAdd:
            ds->MoveBy(1);
            break;
        case QAbstractSlider::SliderSingleStepSub:
            ds->MoveBy(-1);
            break;
        case QAbstractSlider::SliderPageStepAdd:
            ds->MoveBy(page);
            break;
        case QAbstractSlider::SliderPageStepSub:
            ds->MoveBy(-page);
            break;
        case QAbstractSlider::SliderToMinimum:
            ds->First();
            break;
        case QAbstractSlider::SliderToMaximum:
            ds->Last();
            break;
        default:
            return;
        }
    });
    updateBar();
}

// A dragged thumb: the one place that jumps by record number.
void TCustomDBGridPrivate::thumbReleased()
{
    TDataSet *ds = dataSet();
    if (!ds)
        return;
    const int position = bar->sliderPosition();
    HandleExceptions(q, [&] {
        if (ds->RecordCount() >= 0)
            ds->SetRecNo(position + 1);
        else if (position == 0)
            ds->First();
        else if (position == bar->maximum())
            ds->Last();
    });
    updateBar();
}

// ---------------------------------------------------------------------------
// TCustomDBGrid

TCustomDBGrid::TCustomDBGrid(QWidget *parent)
    : TCustomGrid(parent), d(new TCustomDBGridPrivate(this))
{
    SetScrollBars(ssHorizontal);
    d->bar = new QScrollBar(Qt::Vertical, this);
    d->bar->setTracking(false);
    d->bar->setFocusPolicy(Qt::NoFocus);
    setViewportMargins(0, 0, d->bar->sizeHint().width(), 0);
    connect(d->bar, &QScrollBar::actionTriggered, this,
            [this](int action) { d->scrollBarAction(action); });
    connect(d->bar, &QScrollBar::sliderReleased, this, [this] { d->thumbReleased(); });
    LayoutChanged();
}

TCustomDBGrid::~TCustomDBGrid()
{
    QObject::disconnect(d->countConnection);
    d->SetDataSource(nullptr);
}

TDataSource *TCustomDBGrid::DataSource() const
{
    return d->DataSource();
}

void TCustomDBGrid::SetDataSource(TDataSource *Value)
{
    d->SetDataSource(Value);
}

TDBGridColumns *TCustomDBGrid::CreateColumns()
{
    return new TDBGridColumns(this, [](TCustomDBGrid *grid) { return new TColumn(grid); });
}

TDBGridColumns *TCustomDBGrid::Columns()
{
    if (!d->columns)
        d->columns.reset(CreateColumns());
    return d->columns.get();
}

TDBGridOptions TCustomDBGrid::DBOptions() const
{
    return d->options;
}

void TCustomDBGrid::SetDBOptions(TDBGridOptions Value)
{
    if (d->options == Value)
        return;
    d->options = Value;
    LayoutChanged();
}

bool TCustomDBGrid::ReadOnly() const
{
    return d->readOnly;
}

void TCustomDBGrid::SetReadOnly(bool Value)
{
    d->readOnly = Value;
}

int TCustomDBGrid::IndicatorOffset() const
{
    return d->offset();
}

int TCustomDBGrid::SelectedIndex() const
{
    return Col() - d->offset();
}

void TCustomDBGrid::SetSelectedIndex(int Value)
{
    SetCol(Value + d->offset());
}

TField *TCustomDBGrid::SelectedField() const
{
    TColumn *column = d->columns ? d->columns->Items(SelectedIndex()) : nullptr;
    return column ? column->Field() : nullptr;
}

int TCustomDBGrid::VisibleRecordRows() const
{
    const int title = d->fixedRows() ? RowHeights(0) + GridLineWidth() : 0;
    const int rowHeight = DefaultRowHeight() + GridLineWidth();
    return std::max(1, (viewport()->height() - title) / std::max(1, rowHeight));
}

int TCustomDBGrid::CurrentRecordRow() const
{
    return d->curRow;
}

void TCustomDBGrid::SetDefaultTextSuppressed(bool Value)
{
    d->suppressText = Value;
}

void TCustomDBGrid::LayoutChanged()
{
    if (d->layingOut)
        return;
    d->layingOut = true;
    // Not Columns(): the constructor lays out before a derived grid could
    // make its own column class.
    TDBGridColumns *columns = d->columns.get();
    const int columnCount = columns ? columns->Count() : 0;
    const int offset = d->offset();
    const int fixedRows = d->fixedRows();
    TGridOptions options = Options();
    options.setFlag(goEditing, d->options.testFlag(dgEditing));
    options.setFlag(goAlwaysShowEditor, d->options.testFlag(dgAlwaysShowEditor));
    options.setFlag(goTabs, d->options.testFlag(dgTabs));
    options.setFlag(goRowSelect, d->options.testFlag(dgRowSelect));
    options.setFlag(goColSizing, d->options.testFlag(dgColumnResize));
    options.setFlag(goVertLine, d->options.testFlag(dgColLines));
    options.setFlag(goHorzLine, d->options.testFlag(dgRowLines));
    options.setFlag(goRangeSelect, false);
    SetOptions(options);
    SetColCount(offset + std::max(1, columnCount));
    SetRowCount(std::max(RowCount(), fixedRows + 1));
    if (FixedCols() != offset)
        SetFixedCols(offset);
    if (FixedRows() != fixedRows)
        SetFixedRows(fixedRows);
    if (offset)
        SetColWidths(0, kIndicatorWidth);
    for (int i = 0; i < columnCount; ++i) {
        TColumn *column = columns->Items(i);
        SetColWidths(offset + i, column->Visible() ? column->Width() : 0);
        SetTabStops(offset + i, column->Visible());
    }
    d->layingOut = false;
    d->syncRows();
    InvalidateGrid();
}

void TCustomDBGrid::ColWidthsChanged()
{
    TCustomGrid::ColWidthsChanged();
    if (d->layingOut || !d->columns)
        return;
    // The user dragged a column's edge.
    for (int i = 0; i < d->columns->Count(); ++i) {
        TColumn *column = d->columns->Items(i);
        if (column->Visible() && i + d->offset() < ColCount())
            column->m_width = ColWidths(i + d->offset());
    }
}

// ---- painting

void TCustomDBGrid::DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State)
{
    QPainter *canvas = Canvas();
    const int offset = d->offset();
    TColumn *column = d->columns ? d->columns->Items(ACol - offset) : nullptr;
    if (ARow < d->fixedRows()) {
        if (column && canvas) {
            const QRect text = Rect.adjusted(2, 0, -2, 0);
            canvas->drawText(
                text, Qt::AlignVCenter | Qt::AlignLeft,
                canvas->fontMetrics().elidedText(column->Title(), Qt::ElideRight, text.width()));
        }
        return;
    }
    TDataSet *ds = d->dataSet();
    const int recordOffset = ARow - d->fixedRows() - d->curRow;
    if (ACol < offset) {
        if (recordOffset == 0 && ds && !ds->IsEmpty() && canvas) {
            const QPoint c = Rect.center();
            if (ds->State() == dsBrowse) {
                QPainterPath mark;
                mark.moveTo(c.x() - 2, c.y() - 4);
                mark.lineTo(c.x() + 2, c.y());
                mark.lineTo(c.x() - 2, c.y() + 4);
                mark.closeSubpath();
                canvas->fillPath(mark, canvas->pen().color());
            } else {
                canvas->drawText(Rect, Qt::AlignCenter,
                                 ds->State() == dsInsert ? QStringLiteral("*")
                                                         : QStringLiteral("I"));
            }
        }
        return;
    }
    if (!column || !ds || ds->IsEmpty())
        return;
    const ActiveRecordScope scope(ds, recordOffset);
    if (DefaultDrawing() && !d->suppressText)
        DefaultDrawColumnCell(Rect, ACol - offset, column, State);
    DrawColumnCell(Rect, ACol - offset, column, State);
}

void TCustomDBGrid::DefaultDrawColumnCell(const QRect &Rect, int DataCol, TColumn *Column,
                                          TGridDrawState State)
{
    Q_UNUSED(DataCol)
    Q_UNUSED(State)
    QPainter *canvas = Canvas();
    TField *field = Column ? Column->Field() : nullptr;
    if (!canvas || !field)
        return;
    const QRect text = Rect.adjusted(2, 0, -2, 0);
    canvas->drawText(
        text, Column->Alignment() | Qt::AlignVCenter,
        canvas->fontMetrics().elidedText(field->DisplayText(), Qt::ElideRight, text.width()));
}

void TCustomDBGrid::DrawColumnCell(const QRect &Rect, int DataCol, TColumn *Column,
                                   TGridDrawState State)
{
    if (OnDrawColumnCell)
        OnDrawColumnCell(this, Rect, DataCol, Column, State);
}

// ---- moving

bool TCustomDBGrid::SelectCell(int ACol, int ARow)
{
    if (!TCustomGrid::SelectCell(ACol, ARow))
        return false;
    TDataSet *ds = d->dataSet();
    if (d->syncing || !ds || ARow == Row() || ARow < d->fixedRows())
        return true;
    // A click on another row moves the data set there.
    ds->MoveBy(ARow - Row());
    return Row() == ARow;
}

void TCustomDBGrid::ColEnter()
{
    if (OnColEnter)
        OnColEnter(this);
}

void TCustomDBGrid::CellClick(TColumn *Column)
{
    if (OnCellClick)
        OnCellClick(Column);
}

void TCustomDBGrid::KeyDown(Word &Key, TShiftState Shift)
{
    TDataSet *ds = d->dataSet();
    const int oldCol = Col();
    const TShiftState mods = Shift & TShiftState(ssShift | ssCtrl | ssAlt);
    if (!ds) {
        TCustomGrid::KeyDown(Key, Shift);
        return;
    }
    const int page = std::max(1, VisibleRecordRows());
    auto down = [&] {
        // A new record the user has not touched stays the last one.
        if (ds->State() == dsInsert && !ds->Modified() && ds->RecordsAfter() == 0)
            return;
        ds->Next();
        if (ds->Eof() && d->canAppend() && ds->State() != dsInsert)
            ds->Append();
    };
    auto firstTabStop = [this] {
        for (int c = FixedCols(); c < ColCount(); ++c) {
            if (TabStops(c))
                return c;
        }
        return FixedCols();
    };
    auto lastTabStop = [this] {
        for (int c = ColCount() - 1; c >= FixedCols(); --c) {
            if (TabStops(c))
                return c;
        }
        return ColCount() - 1;
    };
    bool handled = true;
    if (mods == TShiftState() || mods == TShiftState(ssShift)) {
        switch (Key) {
        case VK_UP:
            d->commitEditor();
            // Leaving an untouched new record upwards just drops it.
            if (ds->State() == dsInsert && !ds->Modified())
                ds->Cancel();
            else
                ds->Prior();
            break;
        case VK_DOWN:
            d->commitEditor();
            down();
            break;
        case VK_PRIOR:
            d->commitEditor();
            ds->MoveBy(-page);
            break;
        case VK_NEXT:
            d->commitEditor();
            ds->MoveBy(page);
            break;
        case VK_INSERT:
            if (d->canAppend())
                ds->Insert();
            break;
        case VK_ESCAPE:
            if (ds->State() == dsEdit || ds->State() == dsInsert)
                ds->Cancel();
            else
                handled = false;
            break;
        case VK_TAB:
            if (!d->options.testFlag(dgTabs)) {
                handled = false;
            } else if (mods.testFlag(ssShift) && Col() <= firstTabStop()) {
                d->commitEditor();
                if (!ds->Bof()) {
                    ds->Prior();
                    if (!ds->Bof() || Row() >= FixedRows())
                        SetCol(lastTabStop());
                }
            } else if (!mods.testFlag(ssShift) && Col() >= lastTabStop()) {
                d->commitEditor();
                down();
                SetCol(firstTabStop());
            } else {
                handled = false;
            }
            break;
        default:
            handled = false;
            break;
        }
    } else if (mods == TShiftState(ssCtrl)) {
        switch (Key) {
        case VK_HOME:
            d->commitEditor();
            ds->First();
            break;
        case VK_END:
            d->commitEditor();
            ds->Last();
            break;
        case VK_DELETE:
            if (d->canAppend() && !ds->IsEmpty() &&
                (!d->options.testFlag(dgConfirmDelete) ||
                 MessageService::MessageDlg(QStringLiteral("Smazat záznam?"), mtConfirmation,
                                            mbOKCancel, this) == mrOk))
                ds->Delete();
            break;
        default:
            handled = false;
            break;
        }
    } else {
        handled = false;
    }
    if (handled)
        Key = 0;
    else
        TCustomGrid::KeyDown(Key, Shift);
    if (Col() != oldCol)
        ColEnter();
}

void TCustomDBGrid::DoExit()
{
    TDataSet *ds = d->dataSet();
    if (ds && d->options.testFlag(dgCancelOnExit) && ds->State() == dsInsert && !ds->Modified())
        ds->Cancel();
    TCustomGrid::DoExit();
}

void TCustomDBGrid::MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y)
{
    d->pressed = MouseCoord(X, Y);
    const int oldCol = Col();
    TCustomGrid::MouseDown(Button, Shift, X, Y);
    if (Col() != oldCol)
        ColEnter();
}

void TCustomDBGrid::MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y)
{
    TCustomGrid::MouseUp(Button, Shift, X, Y);
    const TGridCoord cell = MouseCoord(X, Y);
    const TGridCoord pressed = d->pressed;
    d->pressed = {-1, -1};
    if (cell != pressed || cell.Y < d->fixedRows() || cell.X < d->offset())
        return;
    TColumn *column = Columns()->Items(cell.X - d->offset());
    if (!column)
        return;
    if (Button == mbLeft)
        CellClick(column);
    else if (Button == mbRight && column->PopupMenu())
        column->PopupMenu()->popup(viewport()->mapToGlobal(QPoint(X, Y)));
}

void TCustomDBGrid::wheelEvent(QWheelEvent *event)
{
    TDataSet *ds = d->dataSet();
    if (!ds) {
        TCustomGrid::wheelEvent(event);
        return;
    }
    d->wheelDelta += event->angleDelta().y();
    HandleExceptions(this, [&] {
        while (std::abs(d->wheelDelta) >= kWheelStep) {
            const int step = d->wheelDelta > 0 ? -1 : 1;
            d->wheelDelta += step * kWheelStep;
            ds->MoveBy(step);
        }
    });
    event->accept();
}

void TCustomDBGrid::resizeEvent(QResizeEvent *event)
{
    TCustomGrid::resizeEvent(event);
    const QRect area = contentsRect();
    const int width = d->bar->sizeHint().width();
    const int bottom = horizontalScrollBar()->isVisible() ? horizontalScrollBar()->height() : 0;
    d->bar->setGeometry(area.right() - width + 1, area.top(), width, area.height() - bottom);
    HandleExceptions(this, [this] { d->syncRows(); });
}

// ---- editing

QString TCustomDBGrid::GetEditText(int ACol, int ARow)
{
    Q_UNUSED(ARow)
    TColumn *column = Columns()->Items(ACol - d->offset());
    TField *field = column ? column->Field() : nullptr;
    return field ? field->DisplayText() : QString();
}

void TCustomDBGrid::SetEditText(int ACol, int ARow, const QString &Value)
{
    Q_UNUSED(ARow)
    TColumn *column = Columns()->Items(ACol - d->offset());
    TField *field = column ? column->Field() : nullptr;
    if (!field || field->DisplayText() == Value)
        return;
    if (d->Edit())
        field->SetAsString(Value);
}

bool TCustomDBGrid::CanEditShow() const
{
    if (!d->options.testFlag(dgEditing) || d->readOnly || !TCustomGrid::CanEditShow())
        return false;
    TDataSet *ds = d->dataSet();
    TColumn *column = d->columns ? d->columns->Items(SelectedIndex()) : nullptr;
    TField *field = column ? column->Field() : nullptr;
    return ds && ds->CanModify() && field && !field->ReadOnly() && !column->ReadOnly();
}

} // namespace oxa
