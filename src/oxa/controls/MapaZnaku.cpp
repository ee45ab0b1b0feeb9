#include "oxa/controls/MapaZnaku.h"

#include "ui_MapaZnaku.h"

#include "oxa/toolkit/GeometryScale.h"
#include "oxa/toolkit/MessageService.h"
#include "oxa/toolkit/StringGrid.h"

#include <QApplication>
#include <QScreen>
#include <QShowEvent>

#include <algorithm>

namespace oxa {

TMapaZnaku::TMapaZnaku(QWidget *owner) : QDialog(owner), ui(std::make_unique<Ui::TMapaZnaku>())
{
    ui->setupUi(this);
    setFixedSize(size());
    ApplyGeometryScale();
    connect(TGeometryScale::Instance(), &TGeometryScale::factorChanged, this,
            [this] { ApplyGeometryScale(); });

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

namespace {

// The designed sizes, in pixels at the reference font.
constexpr int LabelFontHeight = 13;
constexpr int CellFontHeight = 20;
constexpr int CellSize = 25;

// The largest font of the designed height, or smaller, in which every
// character of the map fits a cell whole: a font's glyphs may be wider
// than the reference font's for the same height ("‰" mostly).
QFont CellFont(const QFont &base, int cell)
{
    QFont font = FontOfHeight(base, ScalePixels(CellFontHeight));
    const QString znaky = TMapaZnaku::Znaky();
    auto fits = [&znaky, cell](const QFont &candidate) {
        const QFontMetrics metrics(candidate);
        if (TStringGrid::TextOffset + metrics.height() > cell)
            return false;
        return std::all_of(znaky.begin(), znaky.end(), [&](QChar znak) {
            return TStringGrid::TextOffset + metrics.horizontalAdvance(znak) <= cell;
        });
    };
    while (font.pixelSize() > 1 && !fits(font))
        font.setPixelSize(font.pixelSize() - 1);
    return font;
}

} // namespace

void TMapaZnaku::ApplyGeometryScale()
{
    ScaleFormGeometry(this);
    // The application's font stands for the form's 8-point font.
    const QFont base = QApplication::font(this);
    ui->Label1->setFont(FontOfHeight(base, ScalePixels(LabelFontHeight)));

    TStringGrid *grid = ui->StrGdMapa;
    const int cell = ScalePixels(CellSize);
    grid->setFont(CellFont(base, cell));
    grid->SetDefaultColWidth(cell);
    grid->SetDefaultRowHeight(cell);
    // Rounding must not cut off the last column or row.
    const int frame = 2 * grid->frameWidth();
    const int line = grid->GridLineWidth();
    grid->resize(std::max(grid->width(), grid->ColCount() * (cell + line) + frame),
                 std::max(grid->height(), grid->RowCount() * (cell + line) + frame));
}

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
