#include "oxa/controls/MapaZnaku.h"

#include "ui_MapaZnaku.h"

#include "oxa/toolkit/MessageService.h"
#include "oxa/toolkit/StringGrid.h"

#include <QScreen>
#include <QShowEvent>

namespace oxa {

TMapaZnaku::TMapaZnaku(QWidget *owner) : QDialog(owner), ui(std::make_unique<Ui::TMapaZnaku>())
{
    ui->setupUi(this);
    setFixedSize(size());

    // Pixel font heights, which the form description cannot hold.
    QFont labelFont = ui->Label1->font();
    labelFont.setPixelSize(13);
    ui->Label1->setFont(labelFont);
    QFont gridFont = ui->StrGdMapa->font();
    gridFont.setPixelSize(20);
    ui->StrGdMapa->setFont(gridFont);

    TStringGrid *grid = ui->StrGdMapa;
    grid->SetOptions(TGridOptions(goFixedVertLine | goFixedHorzLine | goVertLine | goHorzLine |
                                  goDrawFocusSelected));
    grid->SetScrollBars(ssNone);
    grid->OnClick = [this](QObject *) { StrGdMapaClick(); };
    grid->OnDblClick = [this](QObject *) { StrGdMapaDblClick(); };
    grid->OnKeyPress = [this](QObject *, QChar &key) { StrGdMapaKeyPress(key); };

    connect(ui->btnVlozit, &QPushButton::clicked, this, &TMapaZnaku::PressVlozit);
    connect(ui->btnZavrit, &QPushButton::clicked, this, [this] { done(mrCancel); });
}

TMapaZnaku::~TMapaZnaku() = default;

QChar TMapaZnaku::GetVybranyZnak() const
{
    return vybranyZnak;
}

QString TMapaZnaku::Znaky()
{
    return QStringLiteral("äëöüŕźśĺćńľÄËÖÜŔŹŚĹĆŃĽ@#$%‰§&€Ł×°<>«»+-*/=:^{}[]|\\;?!_~");
}

QLabel *TMapaZnaku::Label1() const
{
    return ui->Label1;
}
TStringGrid *TMapaZnaku::StrGdMapa() const
{
    return ui->StrGdMapa;
}
QPushButton *TMapaZnaku::btnVlozit() const
{
    return ui->btnVlozit;
}
QPushButton *TMapaZnaku::btnZavrit() const
{
    return ui->btnZavrit;
}

void TMapaZnaku::FormShow()
{
    TStringGrid *grid = ui->StrGdMapa;
    const QString znaky = Znaky();
    int index = 0;
    for (int row = 0; row < grid->RowCount() && index < znaky.size(); ++row) {
        for (int col = 0; col < grid->ColCount() && index < znaky.size(); ++col)
            grid->SetCells(col, row, QString(znaky.at(index++)));
    }
    grid->SetRow(0);
    grid->SetCol(0);
    StrGdMapaClick();
}

void TMapaZnaku::StrGdMapaClick()
{
    const TStringGrid *grid = ui->StrGdMapa;
    const QString text = grid->Cells(grid->Col(), grid->Row());
    ui->btnVlozit->setEnabled(!text.isEmpty());
    vybranyZnak = text.isEmpty() ? QChar() : text.at(0);
}

void TMapaZnaku::StrGdMapaDblClick()
{
    PressVlozit();
}

void TMapaZnaku::StrGdMapaKeyPress(QChar &Key)
{
    TStringGrid *grid = ui->StrGdMapa;
    if (Key == QChar(13) && grid->OnDblClick)
        grid->OnDblClick(grid);
}

void TMapaZnaku::btnVlozitClick()
{
    if (vybranyZnak.isNull())
        MessageService::ShowMessage(QStringLiteral("Nebyl vybrán znak !!!"), this);
}

void TMapaZnaku::PressVlozit()
{
    btnVlozitClick();
    if (!vybranyZnak.isNull())
        done(mrOk);
}

void TMapaZnaku::reject()
{
    done(mrCancel);
}

void TMapaZnaku::showEvent(QShowEvent *event)
{
    if (!event->spontaneous()) {
        if (const QScreen *s = screen())
            move(s->availableGeometry().center() - rect().center());
        FormShow();
        ui->StrGdMapa->setFocus(Qt::OtherFocusReason);
    }
    QDialog::showEvent(event);
}

} // namespace oxa
