#pragma once

#include "oxa/oxa_export.h"
#include "oxa/toolkit/DBGrid.h"
#include "oxa/toolkit/Keys.h"

#include <QStringList>

#include <functional>
#include <memory>

class QLineEdit;

namespace oxa {

// ---------------------------------------------------------------------------
// Key classification shared by the record grids.

// Tab, Right or Down with no modifier at all.
OXA_EXPORT bool MoveRight(Word Key, TShiftState Shift);
// Left or Up with no modifier, or Tab with Shift (other modifiers allowed).
OXA_EXPORT bool MoveLeft(Word Key, TShiftState Shift);
// The direction a cycling value steps: plus and Space forward, reversed by
// Shift; any other key counts as forward exactly when Shift is held (so
// minus alone steps back and Shift+minus forward).
OXA_EXPORT bool UrciSmerNastaveni(Word Key, TShiftState Shift);
// Sideways moves: wraps ColumnIndex for Shift+Tab on the first and Tab on
// the last column, tells whether the key moves left or right, and with Ctrl
// puts ColumnIndex on the second or the next-to-last column.
OXA_EXPORT void JeStranovyPohyb(Word Key, TShiftState Shift, int &ColumnIndex, bool &MovesLeft,
                                bool &MovesRight, int ColumnCount);
// Whether Value names one of the ";"-separated names of ValueList
// (case-insensitively).
OXA_EXPORT bool ValueMatch(const QString &ValueList, const QString &Value);

// ---------------------------------------------------------------------------
// Columns

// A column that can show its field as a check box.
class OXA_EXPORT TCheckColumn : public TColumn
{
    Q_OBJECT
    Q_PROPERTY(bool Check READ Check WRITE SetCheck NOTIFY checkChanged)
    Q_PROPERTY(bool Flat READ Flat WRITE SetFlat NOTIFY flatChanged)

public:
    using TColumn::TColumn;
    bool Check() const { return FChecking; }
    void SetCheck(bool Value);
    // Draws the box in the monochrome style.
    bool Flat() const { return IsFlat; }
    void SetFlat(bool Value);

Q_SIGNALS:
    void checkChanged();
    void flatChanged();

private:
    bool FChecking = false;
    bool FChecked = false; // kept as the column always had it; nothing reads it
    bool IsFlat = false;
};

// A column whose field holds a small number 0..CheckLevel-1 shown as the
// matching text of StringValues.
class OXA_EXPORT TCheckValueColumn : public TColumn
{
    Q_OBJECT
    Q_PROPERTY(int CheckLevel READ CheckLevel WRITE SetCheckLevel NOTIFY checkLevelChanged)
    Q_PROPERTY(
        QStringList StringValues READ StringValues WRITE SetStringValues NOTIFY stringValuesChanged)

public:
    using TColumn::TColumn;
    int CheckLevel() const { return FCheckLevel; }
    virtual void SetCheckLevel(int Value);
    QStringList StringValues() const { return FStringValues; }
    void SetStringValues(const QStringList &Value);

Q_SIGNALS:
    void checkLevelChanged();
    void stringValuesChanged();

protected:
    void StoreCheckLevel(int Value);

private:
    QStringList FStringValues;
    int FCheckLevel = 0;
};

// Either a text enumeration or a check box, never both: switching one on
// while the other is on asks first.
class OXA_EXPORT TEnhancedCheckValueColumn : public TCheckValueColumn
{
    Q_OBJECT
    Q_PROPERTY(bool Check READ Check WRITE SetChecking NOTIFY checkChanged)
    Q_PROPERTY(bool Flat READ Flat WRITE SetFlat NOTIFY flatChanged)

public:
    using TCheckValueColumn::TCheckValueColumn;
    bool Check() const { return FChecking; }
    void SetChecking(bool Value);
    void SetCheckLevel(int Value) override;
    bool Flat() const { return IsFlat; }
    void SetFlat(bool Value);

Q_SIGNALS:
    void checkChanged();
    void flatChanged();

private:
    bool FChecking = false;
    bool FChecked = false; // kept as the column always had it; nothing reads it
    bool IsFlat = false;
};

// ---------------------------------------------------------------------------
// Grids

// The common ancestor of the check-box record grids: AllowAppend, the
// record-advance probe, the wheel as Up/Down keys, and no default text
// under a text-enumeration column while editing is off.
class OXA_EXPORT TOxaBaseDBGrid : public TDBGrid
{
    Q_OBJECT
    Q_PROPERTY(bool AllowAppend READ AllowAppend WRITE SetAllowAppend NOTIFY allowAppendChanged)

public:
    explicit TOxaBaseDBGrid(QWidget *parent = nullptr);
    ~TOxaBaseDBGrid() override;

    bool AllowAppend() const { return FAllowAppend; }
    void SetAllowAppend(bool Value)
    {
        if (Value == FAllowAppend)
            return;
        FAllowAppend = Value;
        Q_EMIT allowAppendChanged();
    }

    // Before a key reaches the grid: with AllowAppend off, Tab past the last
    // tab stop and Down on the last record are swallowed (Key := 0) and a
    // pending change of the last record is cancelled; the data set is
    // probed without its scroll handlers. True when Down at the end may
    // append.
    bool OverNasledujiciZaznam(Word &Key, TShiftState Shift);

    // Switches the grid's own editor off for a check or enumeration cell.
    virtual void LockCell() { }
    virtual void UnlockCell() { }

Q_SIGNALS:
    void allowAppendChanged();

protected:
    void DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State) override;
    void DoEnter() override;
    // Every wheel turn becomes one Up or Down key press.
    void wheelEvent(QWheelEvent *event) override;

private:
    bool FAllowAppend = false;
};

// Check-box columns: Space or a click toggles the field.
class OXA_EXPORT TCheckDBGrid : public TOxaBaseDBGrid
{
    Q_OBJECT

public:
    explicit TCheckDBGrid(QWidget *parent = nullptr);
    ~TCheckDBGrid() override;

    void LockCell() override;
    void UnlockCell() override;
    // Toggles the check-box field of the selected cell.
    virtual void SaveValue();

protected:
    TDBGridColumns *CreateColumns() override;
    void CellClick(TColumn *Column) override;
    void KeyDown(Word &Key, TShiftState Shift) override;
    void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void DrawColumnCell(const QRect &Rect, int DataCol, TColumn *Column,
                        TGridDrawState State) override;

private:
    TCheckColumn *CheckColumn(int Index);
    bool Editing = false;
    bool ShowEditor = false;
};

class TEnhancedDBGridPrivate;

// Text-enumeration columns stepped by Space, plus/minus or clicks (the
// first request on a row only arms it), Left/Right as Tab moves, and an
// extra edit box the host can open over the current cell.
class OXA_EXPORT TEnhancedDBGrid : public TOxaBaseDBGrid
{
    Q_OBJECT
    Q_PROPERTY(bool ArrowToTabs READ ArrowToTabs WRITE SetArrowToTabs NOTIFY arrowToTabsChanged)
    Q_PROPERTY(QString NedefText READ NedefText WRITE SetNedefText NOTIFY nedefTextChanged)
    Q_PROPERTY(bool EnableRightButton READ EnableRightButton WRITE SetEnableRightButton NOTIFY
                   enableRightButtonChanged)
    Q_PROPERTY(
        QString ExtraEditText READ GetFEditText WRITE SetFEditText NOTIFY extraEditTextChanged)
    Q_PROPERTY(int DefaultRowHeight READ DefaultRowHeight WRITE SetDefaultRowHeight NOTIFY
                   defaultRowHeightChanged)

public:
    using TExtraEditExitEvent =
        std::function<void(QObject *Sender, const QString &Value, bool Canceled)>;

    explicit TEnhancedDBGrid(QWidget *parent = nullptr);
    ~TEnhancedDBGrid() override;

    bool ArrowToTabs() const;
    void SetArrowToTabs(bool Value);
    QString NedefText() const;
    void SetNedefText(const QString &Value);
    bool EnableRightButton() const;
    void SetEnableRightButton(bool Value);
    QString GetFEditText() const;
    void SetFEditText(const QString &Value);
    // The row the last step request came from; -10 when none.
    int OnFirstClickRow() const;
    QLineEdit *ExtraEdit() const;

    void LockCell() override;
    void UnlockCell() override;
    // Steps the enumeration value of the selected cell, on the second
    // request from the same row.
    void SaveValue(bool Forward);
    // Shows the extra editor over the current cell and focuses it.
    void AktivujExtraEdit();
    QRect ActualBoxRect(int aCol, int aRow) const;

    TExtraEditExitEvent OnExtraEditExit;

Q_SIGNALS:
    void arrowToTabsChanged();
    void nedefTextChanged();
    void enableRightButtonChanged();
    void extraEditTextChanged();

protected:
    TDBGridColumns *CreateColumns() override;
    virtual void CellClick_Event(TColumn *Column);
    virtual void MouseDown_event();
    // Whether the column is a check-box or enumeration column.
    virtual bool IsSpecialColumn(int Index) const;
    bool CheckDBForward() const;
    void SetCheckDBForward(bool Value);
    TCheckValueColumn *ValueColumn(int Index) const;

    void CellClick(TColumn *Column) override;
    void KeyDown(Word &Key, TShiftState Shift) override;
    void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void DrawColumnCell(const QRect &Rect, int DataCol, TColumn *Column,
                        TGridDrawState State) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    // The column index under the last mouse press.
    int LastMouseColumn() const;

private:
    void FEdit_Exit();
    friend class TEnhancedDBGridPrivate;
    std::unique_ptr<TEnhancedDBGridPrivate> const d;
};

// Columns that are either enumerations or check boxes.
class OXA_EXPORT TEnhancedCheckDBGrid : public TEnhancedDBGrid
{
    Q_OBJECT

public:
    explicit TEnhancedCheckDBGrid(QWidget *parent = nullptr);
    ~TEnhancedCheckDBGrid() override;

    using TEnhancedDBGrid::SaveValue;
    // Toggles the check-box field of the selected cell.
    void SaveValue();

protected:
    TDBGridColumns *CreateColumns() override;
    void CellClick_Event(TColumn *Column) override;
    bool IsSpecialColumn(int Index) const override;
    void CellClick(TColumn *Column) override;
    void KeyDown(Word &Key, TShiftState Shift) override;
    void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void DrawColumnCell(const QRect &Rect, int DataCol, TColumn *Column,
                        TGridDrawState State) override;

private:
    TEnhancedCheckValueColumn *CheckColumn(int Index) const;
};

// Rebuilds the grid's columns from a ";"-separated list of field names, in
// that order; does nothing unless the grid's data set is open.
OXA_EXPORT void PreradeniSloupcuGridu(TEnhancedCheckDBGrid *Grid, QString Order);

// Draws a platform check box centred in the rectangle; Flat gives the
// monochrome look.
OXA_EXPORT void DrawCheckBox(QPainter *Painter, QWidget *Widget, const QRect &Rect, bool Checked,
                             bool Flat);

// Adds the record grids to the catalogue, page "Oxa".
OXA_EXPORT void RegisterCheckDBGrid();

} // namespace oxa
