#pragma once

#include "oxa/oxa_export.h"
#include "oxa/toolkit/DataSource.h"
#include "oxa/toolkit/Grid.h"

#include <QFlags>
#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

#include <QMenu>

namespace oxa {

enum TDBGridOption {
    dgEditing = 0x0001,          // fields are edited in place
    dgAlwaysShowEditor = 0x0002, // with dgEditing: the editor stays open
    dgTitles = 0x0004,           // a title row with the columns' captions
    dgIndicator = 0x0008,        // a first column with the record-state mark
    dgColumnResize = 0x0010,
    dgColLines = 0x0020,
    dgRowLines = 0x0040,
    dgTabs = 0x0080,      // Tab and Shift+Tab move between fields
    dgRowSelect = 0x0100, // the whole current row is selected
    dgAlwaysShowSelection = 0x0200,
    dgConfirmDelete = 0x0400, // Ctrl+Delete asks before deleting
    dgCancelOnExit = 0x0800,  // leaving the grid drops an untouched new record
};
Q_DECLARE_FLAGS(TDBGridOptions, TDBGridOption)
Q_DECLARE_OPERATORS_FOR_FLAGS(TDBGridOptions)

inline constexpr TDBGridOptions DefaultDBGridOptions =
    TDBGridOptions(dgEditing | dgTitles | dgIndicator | dgColumnResize | dgColLines | dgRowLines |
                   dgTabs | dgConfirmDelete | dgCancelOnExit);

class TCustomDBGrid;

// One column of a record grid: which field it shows and how.
class OXA_EXPORT TColumn : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString FieldName READ FieldName WRITE SetFieldName NOTIFY fieldNameChanged)
    Q_PROPERTY(QString Title READ Title WRITE SetTitle NOTIFY titleChanged)
    Q_PROPERTY(int Width READ Width WRITE SetWidth NOTIFY widthChanged)
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE SetReadOnly NOTIFY readOnlyChanged)
    Q_PROPERTY(bool Visible READ Visible WRITE SetVisible NOTIFY visibleChanged)

public:
    explicit TColumn(TCustomDBGrid *Grid);
    ~TColumn() override;

    TCustomDBGrid *Grid() const { return m_grid; }
    int Index() const;
    QString FieldName() const { return m_fieldName; }
    void SetFieldName(const QString &Value);
    // The field of the grid's data set, or null.
    TField *Field() const;
    // The title caption; the field's label when none was set.
    QString Title() const;
    void SetTitle(const QString &Value);
    int Width() const;
    void SetWidth(int Value);
    bool ReadOnly() const { return m_readOnly; }
    void SetReadOnly(bool Value)
    {
        if (Value == m_readOnly)
            return;
        m_readOnly = Value;
        Q_EMIT readOnlyChanged();
    }
    bool Visible() const { return m_visible; }
    void SetVisible(bool Value);
    // The field's alignment unless one was set.
    Qt::Alignment Alignment() const;
    void SetAlignment(Qt::Alignment Value);
    // A menu of the column's own (the grid does not own it).
    QMenu *PopupMenu() const { return m_popupMenu; }
    void SetPopupMenu(QMenu *Value) { m_popupMenu = Value; }

Q_SIGNALS:
    void fieldNameChanged();
    void titleChanged();
    void widthChanged();
    void readOnlyChanged();
    void visibleChanged();

protected:
    // Lays the grid out again after a change of the column.
    void Changed();

private:
    friend class TDBGridColumns;
    friend class TCustomDBGrid;
    TCustomDBGrid *m_grid;
    QString m_fieldName;
    QString m_title;
    int m_width = -1;
    bool m_readOnly = false;
    bool m_visible = true;
    Qt::Alignment m_alignment;
    bool m_alignmentSet = false;
    QPointer<QMenu> m_popupMenu;
};

// The columns of a grid; every column is made by the grid's own factory,
// so a grid's columns are all of its column class.
class OXA_EXPORT TDBGridColumns
{
public:
    using Factory = std::function<TColumn *(TCustomDBGrid *)>;
    TDBGridColumns(TCustomDBGrid *Grid, Factory MakeColumn);
    ~TDBGridColumns();
    TDBGridColumns(const TDBGridColumns &) = delete;
    TDBGridColumns &operator=(const TDBGridColumns &) = delete;

    TColumn *Add();
    int Count() const { return int(m_items.size()); }
    TColumn *Items(int Index) const { return m_items.value(Index); }
    TColumn *operator[](int Index) const { return Items(Index); }
    int IndexOf(const TColumn *Column) const;
    void Clear();
    void Delete(int Index);
    // Columns made from the data set's fields rather than by the host.
    bool IsDefault() const { return m_default; }
    // Replaces the columns by one per field of the data set.
    void RebuildDefault();

private:
    friend class TCustomDBGrid;
    TCustomDBGrid *m_grid;
    Factory m_make;
    QList<TColumn *> m_items;
    bool m_default = true;
};

using TDrawColumnCellEvent = std::function<void(QObject *Sender, const QRect &Rect, int DataCol,
                                                TColumn *Column, TGridDrawState State)>;
using TDBGridClickEvent = std::function<void(TColumn *Column)>;

class TCustomDBGridPrivate;

// The toolkit's record grid on the draw grid: one row per record of the
// data source, one grid column per TColumn after an optional indicator
// column, and a title row. It asks the data set only for the records it
// shows; its own scroll bar stands for the cursor's place among all records
// (a dragged thumb jumps by record number).
//
// Keys: Up/Down move a record (Down on the last record appends when editing
// is allowed; a new record left untouched is dropped again on moving away),
// PgUp/PgDn a page, Ctrl+Home/End to the first/last record, Tab/Shift+Tab
// through the fields and on to the next/previous record, Insert inserts,
// Ctrl+Delete deletes after a confirmation, Escape cancels the edit, Enter
// and F2 open the in-place editor.
class OXA_EXPORT TCustomDBGrid : public TCustomGrid
{
    Q_OBJECT

public:
    explicit TCustomDBGrid(QWidget *parent = nullptr);
    ~TCustomDBGrid() override;

    TDataSource *DataSource() const;
    void SetDataSource(TDataSource *Value);
    TDBGridColumns *Columns();
    TDBGridOptions DBOptions() const;
    void SetDBOptions(TDBGridOptions Value);
    bool ReadOnly() const;
    void SetReadOnly(bool Value);
    // The column of the current cell (index into Columns) and its field.
    int SelectedIndex() const;
    void SetSelectedIndex(int Value);
    TField *SelectedField() const;
    // 1 with the indicator column, else 0.
    int IndicatorOffset() const;
    // Rows of records that fit the grid.
    int VisibleRecordRows() const;
    // The record offset from the current record shown in a grid row; the
    // grid row of the current record.
    int CurrentRecordRow() const;

    TDrawColumnCellEvent OnDrawColumnCell;
    TDBGridClickEvent OnCellClick;
    TNotifyEvent OnColEnter;

    // Lays the grid out again from its columns and data set.
    void LayoutChanged();

protected:
    // Makes the grid's column collection; a grid with a column class of
    // its own overrides it.
    virtual TDBGridColumns *CreateColumns();
    // Called after the default drawing of a data cell; the default calls
    // OnDrawColumnCell.
    virtual void DrawColumnCell(const QRect &Rect, int DataCol, TColumn *Column,
                                TGridDrawState State);
    // The default text of a data cell.
    void DefaultDrawColumnCell(const QRect &Rect, int DataCol, TColumn *Column,
                               TGridDrawState State);
    // A click released on a data cell.
    virtual void CellClick(TColumn *Column);
    virtual void ColEnter();
    // While set, DrawCell paints no default text for data cells.
    void SetDefaultTextSuppressed(bool Value);

    void DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State) override;
    bool SelectCell(int ACol, int ARow) override;
    QString GetEditText(int ACol, int ARow) override;
    void SetEditText(int ACol, int ARow, const QString &Value) override;
    bool CanEditShow() const override;
    void KeyDown(Word &Key, TShiftState Shift) override;
    void DoExit() override;
    void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void ColWidthsChanged() override;
    void wheelEvent(QWheelEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    friend class TCustomDBGridPrivate;
    friend class TDBGridColumns;
    friend class TColumn;
    std::unique_ptr<TCustomDBGridPrivate> const d;
};

// The record grid with nothing added.
class OXA_EXPORT TDBGrid : public TCustomDBGrid
{
    Q_OBJECT
public:
    using TCustomDBGrid::TCustomDBGrid;
};

} // namespace oxa
