#pragma once

#include "oxa/oxa_export.h"

#include <QDialog>
#include <QStringList>

#include <memory>

class QPushButton;
class QWidget;

namespace oxa {

class TStringGrid;
class TCheckValueColumn;

// The dialog that edits a text-enumeration column's StringValues: one row
// per value 0..CheckLevel-1, the value's number in "Index" and its text in
// "Hodnota".
class OXA_EXPORT TStringListValuesForm : public QDialog
{
    Q_OBJECT

public:
    explicit TStringListValuesForm(QWidget *parent = nullptr);
    ~TStringListValuesForm() override;

    // Shows exactly Level rows, with the texts aList has for them.
    void LoadStrings(const QStringList &aList, int Level);
    // The number of value rows, and the text of row i (empty out of range).
    int CountStrings() const;
    QString GetString(int i) const;

    TStringGrid *ValueStringGrid() const;
    QWidget *Panel1() const;
    QPushButton *BitBtn1() const;
    QPushButton *BitBtn2() const;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    // Column 0 is 40 pixels wide, column 1 takes the rest.
    void RecountColWidths();
    void SetHeaders();

    struct OXA_NO_EXPORT Private;
    std::unique_ptr<Private> const d;
};

// The design-time editor of StringValues: the value the designer shows for
// the property, and the editing through TStringListValuesForm.
class OXA_EXPORT TStringValuesProperty
{
public:
    // Always "(TParams)": the editor has shown the name of the parameter
    // collection class since it was written.
    static QString GetValue();
    // Runs the dialog for the column; on OK the column takes its texts.
    // Returns whether the column was changed.
    static bool Edit(TCheckValueColumn *Column, QWidget *Parent = nullptr);
};

// Registers the StringValues editor for TCheckValueColumn in the catalogue.
OXA_EXPORT void RegisterStringListValues();

} // namespace oxa
