#pragma once

#include "oxa/oxa_export.h"
#include "oxa/richtext/OxaRichView.h"

#include <QDialog>
#include <memory>

namespace oxa {

namespace Ui {
class TTableCreateDlg;
}

// The dialog in which the user designs a table before it is inserted:
// columns and rows (1 to 50), width (0 for automatic, steps of 50 pixels),
// border colour and border width, with a live preview in an editor of its
// own. Columns, rows and width rebuild the preview's table; the border colour
// and width change the table that is there. A border width that is not an
// integer fails with the conversion error, shown as an event handler's
// failure is; the dialog stays open.
//
// Show it with ShowDlgTableCreate; the controls carry the names the form
// gives them (eCols, udCols, eRows, udRows, eWidth, udWidth, lAuto,
// RVColorCombo_Border, Edit_BorderWidth, UpDown_BorderWidth, ...).
class OXA_EXPORT TTableCreateDlg : public QDialog
{
    Q_OBJECT

public:
    explicit TTableCreateDlg(QWidget *owner = nullptr);
    ~TTableCreateDlg() override;

    // Sets the up-downs' positions and the border colour from the record.
    void SetInfo(const TTableCreateInfo &info);
    // The up-downs' positions and the chosen border colour.
    TTableCreateInfo Info() const;
    // The preview editor.
    TOxaRichView *Preview() const;

    // The preview's style sheet: "Normal text", "Heading", "Subheading",
    // "Keywords", "Jump 1", "Jump 2"; "Paragraph Style" and "Centered".
    static TRVStyle PreviewStyle();

private:
    void FormCreate();
    // Rebuilds the preview's table from the controls.
    void DoNahled();
    void eColsChange();
    void eWidthChange();
    void RVColorCombo_BorderColorChange();
    void RVColorCombo_BunkaColorChange();
    void Edit_BorderWidthChange();
    // Runs an operation on the preview with its display suspended.
    template<class Fn>
    void WithPreviewSuspended(Fn fn);

    std::unique_ptr<Ui::TTableCreateDlg> const ui;
    TOxaRichView *FPreview = nullptr;
};

// Shows the dialog preset from info; when the user confirms it, the record
// takes the columns, rows, width, border width and colour. True on OK.
OXA_EXPORT bool ShowDlgTableCreate(TTableCreateInfo &info, QWidget *owner = nullptr);

} // namespace oxa
