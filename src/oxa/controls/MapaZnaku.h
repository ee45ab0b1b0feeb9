#pragma once

#include "oxa/oxa_export.h"

#include <QChar>
#include <QDialog>
#include <QString>

#include <memory>

class QLabel;
class QPushButton;

namespace oxa {

class TStringGrid;

namespace Ui {
class TMapaZnaku;
}

// The character map: a small modal dialog offering, in a grid, the 55
// characters a Czech keyboard lacks. Show it with
// MessageService::ExecDialog(&form); a result of 1 (mrOk) means that
// GetVybranyZnak() holds the chosen character, 2 (mrCancel) that the user
// closed it ("Zavřít", Escape or the window's close button).
//
// A click or keyboard move in the grid selects the character of the current
// cell; a double click or Enter inserts it ("Vložit znak do textu").
class OXA_EXPORT TMapaZnaku : public QDialog
{
    Q_OBJECT

public:
    explicit TMapaZnaku(QWidget *owner = nullptr);
    ~TMapaZnaku() override;

    // The selected character; a null QChar when none is selected.
    QChar GetVybranyZnak() const;

    // The offered characters in grid order, 11 to a row.
    static QString Znaky();

    // The form's components, named as in the form description.
    QLabel *Label1() const;
    TStringGrid *StrGdMapa() const;
    QPushButton *btnVlozit() const;
    QPushButton *btnZavrit() const;

    // The form's event handlers.
    // OnShow: fills the grid and selects its first cell.
    void FormShow();
    // Selects the character of the current cell; an empty cell disables
    // the insert button.
    void StrGdMapaClick();
    // Presses the insert button.
    void StrGdMapaDblClick();
    // Enter runs the grid's OnDblClick.
    void StrGdMapaKeyPress(QChar &Key);
    // Complains when no character is selected.
    void btnVlozitClick();

    // Closing without a choice is "Zavřít": modal result 2.
    void reject() override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    // Lays the form out at the geometry scale: the designed pixels, cell
    // sizes and font heights scaled.
    void ApplyGeometryScale();
    // The insert button's click: its handler, then closing with result 1
    // when a character is selected. Without one the dialog stays open
    // after the message, so that no empty character is ever inserted.
    void PressVlozit();

    std::unique_ptr<Ui::TMapaZnaku> ui;
    QChar vybranyZnak;
};

} // namespace oxa
