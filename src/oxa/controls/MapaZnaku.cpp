#include "oxa/controls/MapaZnaku.h"

// Temporary stub: the dialog is being built; this keeps the interface linkable.

namespace oxa {

namespace Ui {
class TMapaZnaku
{
};
} // namespace Ui

TMapaZnaku::TMapaZnaku(QWidget *owner)
    : QDialog(owner)
{
}

TMapaZnaku::~TMapaZnaku() = default;

QChar TMapaZnaku::GetVybranyZnak() const { return vybranyZnak; }

QString TMapaZnaku::Znaky()
{
    return QStringLiteral("äëöüŕźśĺćńľÄËÖÜŔŹŚĹĆŃĽ@#$%‰§&€Ł×°<>«»+-*/=:^{}[]|\\;?!_~");
}

QLabel *TMapaZnaku::Label1() const { return nullptr; }
TStringGrid *TMapaZnaku::StrGdMapa() const { return nullptr; }
QPushButton *TMapaZnaku::btnVlozit() const { return nullptr; }
QPushButton *TMapaZnaku::btnZavrit() const { return nullptr; }

void TMapaZnaku::FormShow() {}
void TMapaZnaku::StrGdMapaClick() {}
void TMapaZnaku::StrGdMapaDblClick() {}
void TMapaZnaku::StrGdMapaKeyPress(QChar &) {}
void TMapaZnaku::btnVlozitClick() {}

void TMapaZnaku::showEvent(QShowEvent *event) { QDialog::showEvent(event); }

} // namespace oxa
