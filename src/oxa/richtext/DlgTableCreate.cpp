#include "oxa/richtext/DlgTableCreate.h"

#include "oxa/richtext/DlgTableCreate_p.h"
#include "oxa/richtext/StrToIntDef_p.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/MessageService.h"
#include "oxa/utilities/ColorDlg.h"

#include "ui_DlgTableCreate.h"

#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QToolButton>
#include <QVBoxLayout>

namespace oxa {

namespace {

constexpr int kArrowWidth = 16;

// The toolkit's StrToInt: the integer syntax of StrToIntDef, and the
// conversion error for anything else.
int StrToInt(const QString &text)
{
    const int value = StrToIntDef(text, 0);
    if (value == 0 && StrToIntDef(text, 1) != 0)
        throw EConvertError(QStringLiteral("'%1' není platné celé číslo").arg(text));
    return value;
}

QIcon ColourSwatch(TColor color)
{
    QPixmap swatch(14, 14);
    swatch.fill(ColorToQColor(color));
    QPainter painter(&swatch);
    painter.setPen(Qt::darkGray);
    painter.drawRect(0, 0, 13, 13);
    return QIcon(swatch);
}

// A colour combo: the picker's sixteen named colours; a colour outside them
// is added as an item of its own when it is chosen.
void FillColours(QComboBox *combo)
{
    for (const TButtonsProperties &entry : TColorForm::ButtonsProperties())
        combo->addItem(ColourSwatch(entry.Color), entry.Hint, QVariant::fromValue(entry.Color));
}

TColor ChosenColour(const QComboBox *combo)
{
    return combo->currentData().value<TColor>();
}

void ChooseColour(QComboBox *combo, TColor color)
{
    int index = combo->findData(QVariant::fromValue(color));
    if (index < 0) {
        combo->addItem(ColourSwatch(color), ColorToString(color), QVariant::fromValue(color));
        index = combo->count() - 1;
    }
    combo->setCurrentIndex(index);
}

// A bold title over controls in the normal weight.
void BoldTitle(QGroupBox *box)
{
    QFont bold = box->font();
    bold.setBold(true);
    box->setFont(bold);
    for (QWidget *child : box->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
        QFont normal = child->font();
        normal.setBold(false);
        child->setFont(normal);
    }
}

TFontInfo PreviewFont(const char *name, TFontStyles style, TColor color, bool jump = false)
{
    TFontInfo info;
    info.StyleName = QString::fromLatin1(name);
    info.FontName = QStringLiteral("Arial");
    info.Style = style;
    info.Color = color;
    info.Jump = jump;
    info.Standard = true;
    return info;
}

} // namespace

// ---- the up-down ----

TUpDown::TUpDown(QWidget *parent)
    : QWidget(parent), m_up(new QToolButton(this)), m_down(new QToolButton(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (QToolButton *arrow : {m_up, m_down}) {
        arrow->setArrowType(arrow == m_up ? Qt::UpArrow : Qt::DownArrow);
        arrow->setFixedSize(kArrowWidth, 11);
        arrow->setAutoRepeat(true);
        arrow->setFocusPolicy(Qt::NoFocus);
        layout->addWidget(arrow);
    }
    m_up->setObjectName(QStringLiteral("up"));
    m_down->setObjectName(QStringLiteral("down"));
    connect(m_up, &QToolButton::clicked, this, [this] { Step(+1); });
    connect(m_down, &QToolButton::clicked, this, [this] { Step(-1); });
    setFixedWidth(kArrowWidth);
}

int TUpDown::Clamped(int value) const
{
    return std::clamp(value, m_min, std::max(m_min, m_max));
}

void TUpDown::SetMin(int value)
{
    m_min = value;
    SetPosition(m_position);
}

void TUpDown::SetMax(int value)
{
    m_max = value;
    SetPosition(m_position);
}

void TUpDown::SetPosition(int value)
{
    const int position = Clamped(value);
    const bool changed = position != m_position;
    m_position = position;
    if (m_associate && m_associate->text() != QString::number(position))
        m_associate->setText(QString::number(position));
    if (changed)
        Q_EMIT positionChanged(position);
}

void TUpDown::Step(int direction)
{
    ReadAssociate();
    SetPosition(m_position + direction * m_increment);
}

void TUpDown::SetAssociate(QLineEdit *edit)
{
    if (m_associate)
        m_associate->removeEventFilter(this);
    m_associate = edit;
    if (!edit)
        return;
    edit->installEventFilter(this);
    edit->setText(QString::number(m_position));
    connect(edit, &QLineEdit::textChanged, this, [this] { ReadAssociate(); });
}

void TUpDown::ReadAssociate()
{
    if (!m_associate)
        return;
    bool ok = false;
    const int value = m_associate->text().trimmed().toInt(&ok);
    if (!ok)
        return;
    const int position = Clamped(value);
    if (position != m_position) {
        m_position = position;
        Q_EMIT positionChanged(position);
    }
}

bool TUpDown::eventFilter(QObject *watched, QEvent *event)
{
    // The type first: a dying edit still sends events, and is no QLineEdit any more.
    if (event->type() == QEvent::KeyPress && watched == m_associate) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down) {
            Step(key == Qt::Key_Up ? +1 : -1);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

// ---- the dialog ----

TTableCreateDlg::TTableCreateDlg(QWidget *owner)
    : QDialog(owner), ui(std::make_unique<Ui::TTableCreateDlg>())
{
    ui->setupUi(this);
    setWindowFlags(windowFlags() | Qt::WindowSystemMenuHint | Qt::WindowMaximizeButtonHint);
    for (QGroupBox *box : {ui->GroupBox_Nahled, ui->GroupBox_rozmery, ui->GroupBox_table})
        BoldTitle(box);
    ui->Label5->hide();
    ui->RVColorCombo_Bunka->hide();
    FillColours(ui->RVColorCombo_Border);
    FillColours(ui->RVColorCombo_Bunka);
    ChooseColour(ui->RVColorCombo_Border, clBlack);
    ChooseColour(ui->RVColorCombo_Bunka, clWhite);
    FormCreate();

    ui->udCols->SetAssociate(ui->eCols);
    ui->udRows->SetAssociate(ui->eRows);
    ui->udWidth->SetAssociate(ui->eWidth);
    ui->UpDown_BorderWidth->SetAssociate(ui->Edit_BorderWidth);
    // Every handler runs as an event handler does: a failure is shown and the dialog stays.
    const auto handle = [this](void (TTableCreateDlg::*handler)()) {
        return [this, handler] { HandleExceptions(this, [&] { (this->*handler)(); }); };
    };
    connect(ui->eCols, &QLineEdit::textChanged, this, handle(&TTableCreateDlg::eColsChange));
    connect(ui->eRows, &QLineEdit::textChanged, this, handle(&TTableCreateDlg::eColsChange));
    connect(ui->eWidth, &QLineEdit::textChanged, this, handle(&TTableCreateDlg::eWidthChange));
    connect(ui->Edit_BorderWidth, &QLineEdit::textChanged, this,
            handle(&TTableCreateDlg::Edit_BorderWidthChange));
    connect(ui->RVColorCombo_Border, &QComboBox::currentIndexChanged, this,
            handle(&TTableCreateDlg::RVColorCombo_BorderColorChange));
    connect(ui->RVColorCombo_Bunka, &QComboBox::currentIndexChanged, this,
            handle(&TTableCreateDlg::RVColorCombo_BunkaColorChange));

    HandleExceptions(this, [this] { DoNahled(); });
    ui->eCols->setFocus();
}

TTableCreateDlg::~TTableCreateDlg() = default;

void TTableCreateDlg::FormCreate()
{
    FPreview = new TOxaRichView(ui->Panel_RV);
    FPreview->setObjectName(QStringLiteral("RichViewNahled"));
    auto *layout = new QVBoxLayout(ui->Panel_RV);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(FPreview);
    FPreview->SetStyle(PreviewStyle());
    FPreview->setFocusPolicy(Qt::ClickFocus);
    FPreview->Clear();
}

TRVStyle TTableCreateDlg::PreviewStyle()
{
    TRVStyle style;
    style.TextStyles = {
        PreviewFont("Normal text", {}, clWindowText),
        PreviewFont("Heading", fsBold, clBlue),
        PreviewFont("Subheading", fsBold, clNavy),
        PreviewFont("Keywords", fsItalic, clMaroon),
        PreviewFont("Jump 1", fsUnderline, clGreen, true),
        PreviewFont("Jump 2", fsUnderline, clGreen, true),
    };
    TParaInfo normal;
    normal.StyleName = QStringLiteral("Paragraph Style");
    normal.Standard = true;
    TParaInfo centered = normal;
    centered.StyleName = QStringLiteral("Centered");
    centered.Alignment = rvaCenter;
    style.ParaStyles = {normal, centered};
    return style;
}

TOxaRichView *TTableCreateDlg::Preview() const
{
    return FPreview;
}

template<class Fn>
void TTableCreateDlg::WithPreviewSuspended(Fn fn)
{
    // The display comes back even when the operation fails.
    struct Resume
    {
        QWidget *w;
        ~Resume() { w->setUpdatesEnabled(true); }
    } resume{FPreview};
    FPreview->setUpdatesEnabled(false);
    fn();
}

void TTableCreateDlg::DoNahled()
{
    WithPreviewSuspended([this] {
        FPreview->Clear();
        TTableCreateInfo info;
        info.Cols = ui->udCols->Position();
        info.Rows = ui->udRows->Position();
        info.Width = ui->udWidth->Position();
        info.CellBorderColor = ChosenColour(ui->RVColorCombo_Border);
        info.CellBorderWidth = StrToInt(ui->Edit_BorderWidth->text());
        FPreview->InsTable(info);
    });
}

void TTableCreateDlg::eColsChange()
{
    DoNahled();
}

void TTableCreateDlg::eWidthChange()
{
    ui->lAuto->setText(ui->udWidth->Position() == 0 ? QStringLiteral("automaticky")
                                                    : QStringLiteral("px"));
    DoNahled();
}

void TTableCreateDlg::RVColorCombo_BorderColorChange()
{
    WithPreviewSuspended(
        [this] { FPreview->SetTableBorderColor(ChosenColour(ui->RVColorCombo_Border)); });
}

void TTableCreateDlg::RVColorCombo_BunkaColorChange()
{
    WithPreviewSuspended([this] { FPreview->SetTableColor(ChosenColour(ui->RVColorCombo_Bunka)); });
}

void TTableCreateDlg::Edit_BorderWidthChange()
{
    WithPreviewSuspended(
        [this] { FPreview->SetCellBorderWidth(StrToInt(ui->Edit_BorderWidth->text())); });
}

void TTableCreateDlg::SetInfo(const TTableCreateInfo &info)
{
    ui->udCols->SetPosition(info.Cols);
    ui->udRows->SetPosition(info.Rows);
    ui->udWidth->SetPosition(info.Width);
    ui->UpDown_BorderWidth->SetPosition(info.CellBorderWidth);
    ChooseColour(ui->RVColorCombo_Border, info.CellBorderColor);
}

TTableCreateInfo TTableCreateDlg::Info() const
{
    TTableCreateInfo info;
    info.Cols = ui->udCols->Position();
    info.Rows = ui->udRows->Position();
    info.Width = ui->udWidth->Position();
    info.CellBorderWidth = ui->UpDown_BorderWidth->Position();
    info.CellBorderColor = ChosenColour(ui->RVColorCombo_Border);
    return info;
}

bool ShowDlgTableCreate(TTableCreateInfo &info, QWidget *owner)
{
    TTableCreateDlg dialog(owner ? owner->window() : nullptr);
    dialog.SetInfo(info);
    const bool confirmed = MessageService::ExecDialog(&dialog) == mrOk;
    if (confirmed)
        info = dialog.Info();
    return confirmed;
}

// The editor's table insertion through the dialog lives with the dialog.
bool TOxaRichView::InsTableDlg()
{
    TTableCreateInfo info;
    if (!ShowDlgTableCreate(info, this))
        return false;
    return InsTable(info);
}

} // namespace oxa
