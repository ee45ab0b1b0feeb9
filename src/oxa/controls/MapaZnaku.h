#pragma once

#include <QChar>
#include <QDialog>
#include <QString>

#include <memory>

class QPushButton;
class QLabel;

namespace oxa {

class TStringGrid;

namespace Ui {
class TMapaZnaku;
}

// The character map: a small modal dialog offering the characters a Czech
// keyboard lacks. Show it with MessageService::ExecDialog(&form); a result of
// 1 (mrOk) means GetVybranyZnak() holds the chosen character, 2 (mrCancel)
// that the user closed it with "Zavřít".
class TMapaZnaku : public QDialog
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
    void FormShow();
    void StrGdMapaClick();
    void StrGdMapaDblClick();
    void StrGdMapaKeyPress(QChar &Key);
    void btnVlozitClick();

protected:
    void showEvent(QShowEvent *event) override;

private:
    std::unique_ptr<Ui::TMapaZnaku> ui;
    QChar vybranyZnak;
};

} // namespace oxa
