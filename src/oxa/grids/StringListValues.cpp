#include "oxa/grids/StringListValues.h"

#include "oxa/grids/CheckDBGrid.h"
#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/GeometryScale.h"
#include "oxa/toolkit/MessageService.h"
#include "oxa/toolkit/StringGrid.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace oxa {

struct TStringListValuesForm::Private
{
    TStringGrid *grid = nullptr;
    QWidget *panel = nullptr;
    QPushButton *ok = nullptr;
    QPushButton *cancel = nullptr;
    int level = 0;
};

TStringListValuesForm::TStringListValuesForm(QWidget *parent) : QDialog(parent), d(new Private)
{
    setWindowTitle(QStringLiteral("Hodnoty výčtu"));
    d->grid = new TStringGrid(this);
    d->grid->setObjectName(QStringLiteral("ValueStringGrid"));
    d->grid->SetColCount(2);
    d->grid->SetRowCount(2);
    d->grid->SetFixedCols(1);
    d->grid->SetFixedRows(1);
    d->grid->SetOptions(d->grid->Options() | goEditing | goAlwaysShowEditor | goTabs);
    d->panel = new QWidget(this);
    d->panel->setObjectName(QStringLiteral("Panel1"));
    d->ok = new QPushButton(QStringLiteral("OK"), d->panel);
    d->ok->setObjectName(QStringLiteral("BitBtn1"));
    d->ok->setDefault(true);
    d->cancel = new QPushButton(QStringLiteral("Storno"), d->panel);
    d->cancel->setObjectName(QStringLiteral("BitBtn2"));
    auto *buttons = new QHBoxLayout(d->panel);
    buttons->addStretch();
    buttons->addWidget(d->ok);
    buttons->addWidget(d->cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(d->grid);
    layout->addWidget(d->panel);
    connect(d->ok, &QPushButton::clicked, this, [this] {
        d->grid->SetEditorMode(false); // the text being typed counts
        done(mrOk);
    });
    connect(d->cancel, &QPushButton::clicked, this, [this] { done(mrCancel); });
    resize(ScalePixels(320), ScalePixels(260));
    connect(TGeometryScale::Instance(), &TGeometryScale::factorChanged, this,
            [this] { RecountColWidths(); });
    SetHeaders();
}

TStringListValuesForm::~TStringListValuesForm() = default;

TStringGrid *TStringListValuesForm::ValueStringGrid() const
{
    return d->grid;
}
QWidget *TStringListValuesForm::Panel1() const
{
    return d->panel;
}
QPushButton *TStringListValuesForm::BitBtn1() const
{
    return d->ok;
}
QPushButton *TStringListValuesForm::BitBtn2() const
{
    return d->cancel;
}

void TStringListValuesForm::RecountColWidths()
{
    const int indexWidth = ScalePixels(40);
    d->grid->SetColWidths(0, indexWidth);
    const int rest = d->grid->viewport()->width() - indexWidth - 2 * d->grid->GridLineWidth();
    d->grid->SetColWidths(1, std::max(10, rest));
}

void TStringListValuesForm::SetHeaders()
{
    d->grid->SetCells(0, 0, QStringLiteral("Index"));
    d->grid->SetCells(1, 0, QStringLiteral("Hodnota"));
}

void TStringListValuesForm::LoadStrings(const QStringList &aList, int Level)
{
    RecountColWidths();
    SetHeaders();
    // The grid keeps one row below its title even when there are no values.
    d->level = std::max(0, Level);
    d->grid->SetRowCount(std::max(2, d->level + 1));
    for (int i = 0; i < Level; ++i) {
        d->grid->SetCells(0, i + 1, QString::number(i));
        d->grid->SetCells(1, i + 1, i < aList.size() ? aList.at(i) : QString());
    }
}

int TStringListValuesForm::CountStrings() const
{
    return d->level;
}

QString TStringListValuesForm::GetString(int i) const
{
    if (i < 0 || i >= CountStrings())
        return QString();
    return d->grid->Cells(1, i + 1);
}

void TStringListValuesForm::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    RecountColWidths();
}

QString TStringValuesProperty::GetValue()
{
    return QStringLiteral("(%1)").arg(QStringLiteral("TParams"));
}

bool TStringValuesProperty::Edit(TCheckValueColumn *Column, QWidget *Parent)
{
    if (!Column)
        return false;
    TStringListValuesForm form(Parent);
    form.LoadStrings(Column->StringValues(), Column->CheckLevel());
    if (MessageService::ExecDialog(&form) != mrOk)
        return false;
    QStringList values;
    for (int i = 0; i < form.CountStrings(); ++i)
        values << form.GetString(i);
    Column->SetStringValues(values);
    return true;
}

void RegisterStringListValues()
{
    Catalogue::Instance().RegisterPropertyEditor({QStringLiteral("TCheckValueColumn"),
                                                  QStringLiteral("StringValues"),
                                                  QStringLiteral("TStringValuesProperty")});
}

} // namespace oxa
