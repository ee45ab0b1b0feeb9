#pragma once

#include "oxa/controls/StringGridOxa.h"
#include "oxa/oxa_export.h"

#include <functional>
#include <memory>

namespace oxa {

// The order of the last header click; Sort sorts in it.
enum TSortOrder { soDescending, soNone, soAscending };

// Compares two cell texts: negative, zero or positive as a text comparison.
using TStringGridSortCompare = std::function<int(const QString &Item1, const QString &Item2)>;
// Asks the host to sort by a column.
using TOnSortEvent = std::function<void(QObject *Sender, int Col)>;

// A string grid of the data-entry family (cell colours, Ctrl+arrow focus
// moves) with a column of check boxes and sorting by a header click.
//
// Check boxes: with CheckBox on, every data row shows a check box in column
// ASloupec, drawn with the widget style's check-box primitive (the style's
// flat item-view check box when FlatCheckBox is set). Enter and Space in that
// column invert the current row's mark; a click does not. The marks are kept
// per row in Oznacene.
//
// Sorting: with Sorting on, a click (press and release on the same cell) on a
// header cell of the last fixed row moves the order none -> ascending ->
// descending -> ascending and asks the host through OnSort; the grid does not
// sort by itself. The host's handler calls Sort with its comparison and the
// column; the rows (texts, objects and marks) are reordered, and the header
// cell of the column last pressed shows an arrow.
class OXA_EXPORT TStringGridCheck : public TStringGridOxa
{
    Q_OBJECT
    Q_PROPERTY(int CheckboxRow READ CheckboxRow WRITE SetCheckboxRow NOTIFY checkboxRowChanged)
    Q_PROPERTY(bool FlatCheckBox READ FlatCheckBox WRITE SetFlatCheckBox NOTIFY FlatCheckBoxChanged)
    Q_PROPERTY(int ASloupec READ ASloupec WRITE SetASloupec NOTIFY ASloupecChanged)
    Q_PROPERTY(bool Sorting READ Sorting WRITE SetSorting NOTIFY SortingChanged)
    Q_PROPERTY(bool CheckBox READ CheckBox WRITE SetCheckBox NOTIFY CheckBoxChanged)

public:
    explicit TStringGridCheck(QWidget *parent = nullptr);
    ~TStringGridCheck() override;

    // Declared for the forms that set it; nothing reads it.
    int CheckboxRow() const;
    void SetCheckboxRow(int Value);
    bool FlatCheckBox() const;
    void SetFlatCheckBox(bool Value);
    int ASloupec() const;
    void SetASloupec(int Value);
    bool Sorting() const;
    void SetSorting(bool Value);
    bool CheckBox() const;
    void SetCheckBox(bool Value);

    // The mark of a row. Reading a row the marks do not reach gives false and
    // grows nothing; writing grows the marks to the row (new rows unmarked).
    bool Oznacene(int Row) const;
    void SetOznacene(int Row, bool Value);

    // The order the next Sort uses, set by the header clicks.
    TSortOrder SortOrder() const;

    // Sorts the data rows by the texts of SortCol with Compare, ascending or
    // descending as SortOrder says (anything but soAscending sorts
    // descending). Rows keep their texts, objects and marks together; equal
    // keys may change their order. Afterwards the header shows the arrow.
    void Sort(const TStringGridSortCompare &Compare, int SortCol);

    // The first data row whose text in LocateCol begins with Value (case
    // sensitive); LocRow is the current row when there is none. Compare is
    // accepted for the callers that pass one and is not used.
    bool Locate(const TStringGridSortCompare &Compare, const QString &Value, int LocateCol,
                int &LocRow) const;
    // The same, giving the found row or the current row.
    int Locate(const TStringGridSortCompare &Compare, const QString &Value, int LocateCol) const;

    TOnSortEvent OnSort;

Q_SIGNALS:
    void checkboxRowChanged();
    void FlatCheckBoxChanged(bool Value);
    void ASloupecChanged(int Value);
    void SortingChanged(bool Value);
    void CheckBoxChanged(bool Value);
    // A mark changed through SetOznacene or the keyboard (not by Sort).
    void OznaceneChanged(int Row, bool Value);
    // The same request as OnSort, after it.
    void sortRequested(int Col);

protected:
    void DrawCell(int ACol, int ARow, const QRect &Rect, TGridDrawState State) override;
    void KeyDown(Word &Key, TShiftState Shift) override;
    void MouseDown(TMouseButton Button, TShiftState Shift, int X, int Y) override;
    void MouseUp(TMouseButton Button, TShiftState Shift, int X, int Y) override;

private:
    void DrawCheckBox(int ARow, const QRect &Rect);
    void DrawOrderMark(const QRect &Rect);
    bool IsCheckCell(int ACol, int ARow) const;

    class OXA_NO_EXPORT Private;
    std::unique_ptr<Private> const d;
};

// Adds TStringGridCheck to the catalogue, page "Oxa".
OXA_EXPORT void RegisterStringGridCheck();

} // namespace oxa
