#include "oxa/utilities/ColorDlg.h"

#include "oxa/toolkit/GeometryScale.h"
#include "oxa/toolkit/MessageService.h"

#include <QButtonGroup>
#include <QCloseEvent>
#include <QColorDialog>
#include <QFrame>
#include <QIcon>
#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QToolButton>

namespace oxa {

namespace {

// The glyphs are framed in this colour, the red one in white.
constexpr TColor kGlyphFrameColor = 255;

// The form's geometry in designed pixels, laid out at the geometry scale.
int Margin()
{
    return ScalePixels(4);
}
int ButtonSize()
{
    return ScalePixels(22);
}
int Spacing()
{
    return ScalePixels(2);
}
int RowWidth()
{
    return TColorForm::ButtonsPerRow * ButtonSize() + (TColorForm::ButtonsPerRow - 1) * Spacing();
}
int ScaledGlyphSize()
{
    return ScalePixels(TColorForm::GlyphSize);
}

const char *const kTagProperty = "Tag";

} // namespace

const std::array<TButtonsProperties, TColorForm::PaletteSize> &TColorForm::ButtonsProperties()
{
    static const std::array<TButtonsProperties, PaletteSize> palette = {{
        {QStringLiteral("černá"), clBlack},
        {QStringLiteral("kaštanová"), clMaroon},
        {QStringLiteral("zelená"), clGreen},
        {QStringLiteral("olivová"), clOlive},
        {QStringLiteral("námořnická modř"), clNavy},
        {QStringLiteral("fialová"), clPurple},
        {QStringLiteral("šedozelená"), clTeal},
        {QStringLiteral("šedá"), clGray},
        {QStringLiteral("stříbrná"), clSilver},
        {QStringLiteral("červená"), clRed},
        {QStringLiteral("žlutozenená"), clLime}, // spelt so on screen; kept as it is
        {QStringLiteral("žlutá"), clYellow},
        {QStringLiteral("modrá"), clBlue},
        {QStringLiteral("fuchsiová"), clFuchsia},
        {QStringLiteral("akvamarínová"), clAqua},
        {QStringLiteral("bílá"), clWhite},
    }};
    return palette;
}

const TOthersButtonsProperties &TColorForm::OthersButtons(int number)
{
    static const std::array<TOthersButtonsProperties, 3> others = {{
        {QStringLiteral("Průhledná"), QString(), clNone},
        {QStringLiteral("Automatická"), QString(), clWindowText},
        {QStringLiteral("Další barvy..."), QString(), clNone},
    }};
    Q_ASSERT(number >= TransparentButton && number <= MoreColorsButton);
    return others.at(std::size_t(qBound(TransparentButton, number, MoreColorsButton) - 1));
}

TColorForm::TColorForm(QWidget *owner)
    : QWidget(owner, Qt::Tool | Qt::FramelessWindowHint), bvlCenter(new QFrame(this)),
      FButtonGroup(new QButtonGroup(this))
{
    setObjectName(QStringLiteral("ColorForm"));
    setWindowTitle(QStringLiteral("ColorForm"));
    setAttribute(Qt::WA_DeleteOnClose);
    SetControlColor(this, clBtnFace);
    bvlCenter->setObjectName(QStringLiteral("bvlCenter"));
    bvlCenter->setFrameStyle(QFrame::Panel | QFrame::Raised);
    // Any button may be up; none is pressed when the colour is not in the palette.
    FButtonGroup->setExclusive(false);
    connect(TGeometryScale::Instance(), &TGeometryScale::factorChanged, this, [this] {
        if (FOthersButton) // laid out already
            CreateButtons();
    });
}

TColorForm::~TColorForm() = default;

void TColorForm::Init(int Top, int Left, TColorDlgMode Mode)
{
    FMode = Mode;
    move(Left, Top);
    CreateButtons();
}

void TColorForm::SetColor(TColor color)
{
    FColor = color;
    UpdatePressedButtons();
}

void TColorForm::CreateButtons()
{
    DeleteButtons();
    int top = Margin();
    if (FMode != cdmNone) {
        const int number = FMode == cdmTransparent ? TransparentButton : AutomaticButton;
        const TOthersButtonsProperties &special = OthersButtons(number);
        FSpecialButton = CreateButton(-1, special.Caption, special.Hint, special.Color, true, true,
                                      Margin(), top);
        connect(FSpecialButton, &QToolButton::clicked, this,
                [this] { BtnNoneClick(FSpecialButton); });
        top += ButtonSize() + Spacing();
    }
    for (int i = 0; i < PaletteSize; ++i) {
        const TButtonsProperties &entry = ButtonsProperties().at(std::size_t(i));
        const int left = Margin() + (i % ButtonsPerRow) * (ButtonSize() + Spacing());
        const int rowTop = top + (i / ButtonsPerRow) * (ButtonSize() + Spacing());
        QToolButton *button =
            CreateButton(i, QString(), entry.Hint, entry.Color, false, true, left, rowTop);
        connect(button, &QToolButton::clicked, this, [this, button] { BtnClick(button); });
        FPaletteButtons.append(button);
    }
    top += (PaletteSize / ButtonsPerRow) * (ButtonSize() + Spacing());
    const TOthersButtonsProperties &more = OthersButtons(MoreColorsButton);
    FOthersButton =
        CreateButton(-1, more.Caption, more.Hint, more.Color, true, false, Margin(), top);
    connect(FOthersButton, &QToolButton::clicked, this, [this] { BtnOthersClick(FOthersButton); });
    top += ButtonSize();

    setFixedSize(2 * Margin() + RowWidth(), top + Margin());
    bvlCenter->setGeometry(rect());
    bvlCenter->lower();
    UpdatePressedButtons();
}

void TColorForm::DeleteButtons()
{
    qDeleteAll(FPaletteButtons);
    FPaletteButtons.clear();
    delete FSpecialButton;
    FSpecialButton = nullptr;
    delete FOthersButton;
    FOthersButton = nullptr;
}

QToolButton *TColorForm::CreateButton(int tag, const QString &caption, const QString &hint,
                                      TColor color, bool wide, bool pressable, int left, int top)
{
    auto *button = new QToolButton(this);
    button->setProperty(kTagProperty, tag);
    button->setAutoRaise(true);
    button->setToolTip(hint);
    button->setCheckable(pressable);
    button->setFocusPolicy(Qt::NoFocus);
    button->setGeometry(left, top, wide ? RowWidth() : ButtonSize(), ButtonSize());
    button->show(); // also when the form is laid out again while shown
    button->setIconSize(QSize(ScaledGlyphSize(), ScaledGlyphSize()));
    if (color != clNone)
        button->setIcon(ColorGlyph(color));
    if (wide) {
        button->setText(caption);
        button->setToolButtonStyle(color != clNone ? Qt::ToolButtonTextBesideIcon
                                                   : Qt::ToolButtonTextOnly);
    }
    if (pressable)
        FButtonGroup->addButton(button);
    return button;
}

QIcon TColorForm::ColorGlyph(TColor color) const
{
    const int size = ScaledGlyphSize();
    QPixmap glyph(size, size);
    glyph.fill(ColorToQColor(color, this));
    QPainter painter(&glyph);
    painter.setPen(ColorToQColor(color == kGlyphFrameColor ? clWhite : kGlyphFrameColor));
    painter.drawRect(0, 0, size - 1, size - 1);
    painter.end();
    return QIcon(glyph);
}

void TColorForm::UpdatePressedButtons()
{
    for (int i = 0; i < FPaletteButtons.size(); ++i)
        FPaletteButtons.at(i)->setChecked(ButtonsProperties().at(std::size_t(i)).Color == FColor);
    if (FSpecialButton) {
        const int number = FMode == cdmTransparent ? TransparentButton : AutomaticButton;
        FSpecialButton->setChecked(OthersButtons(number).Color == FColor);
    }
}

void TColorForm::ChooseColor(TColor color)
{
    FColor = color;
    FColorChosen = true;
}

void TColorForm::BtnClick(QObject *Sender)
{
    if (auto *button = qobject_cast<QToolButton *>(Sender)) {
        bool isNumber = false;
        const int tag = button->property(kTagProperty).toInt(&isNumber);
        if (isNumber && tag >= 0 && tag < PaletteSize)
            ChooseColor(ButtonsProperties().at(std::size_t(tag)).Color);
    }
    close();
}

void TColorForm::BtnNoneClick(QObject *)
{
    if (FMode == cdmTransparent)
        ChooseColor(OthersButtons(TransparentButton).Color);
    else if (FMode == cdmAutomatic)
        ChooseColor(OthersButtons(AutomaticButton).Color);
    close();
}

void TColorForm::BtnOthersClick(QObject *)
{
    QPointer<TColorForm> self(this);
    QPointer<QColorDialog> dialog(new QColorDialog(this));
    dialog->setWindowTitle(QStringLiteral("Barvy"));
    const QColor preset = ColorToQColor(FColor, this);
    if (preset.isValid())
        dialog->setCurrentColor(preset);

    // The colour dialog takes the activation; that must not dismiss the picker.
    FRunningColorDialog = true;
    const TModalResult result = MessageService::ExecDialog(dialog);
    if (!self)
        return; // the owner went away meanwhile, and the dialog with it
    FRunningColorDialog = false;

    QColor picked;
    if (dialog) {
        picked =
            dialog->selectedColor().isValid() ? dialog->selectedColor() : dialog->currentColor();
        delete dialog.data();
    }
    if (result == mrOk && picked.isValid()) {
        ChooseColor(QColorToColor(picked));
        close();
    } else {
        activateWindow(); // so that a click outside dismisses the picker again
    }
}

void TColorForm::FormDeactivate(QObject *)
{
    if (FRunningColorDialog)
        return;
    close(); // WA_DeleteOnClose frees the form once the current event is done
}

bool TColorForm::event(QEvent *event)
{
    if (event->type() == QEvent::WindowDeactivate)
        FormDeactivate(this);
    return QWidget::event(event);
}

void TColorForm::closeEvent(QCloseEvent *event)
{
    event->accept();
    if (FClosed)
        return;
    FClosed = true;
    if (FColorChosen)
        Q_EMIT ColorSelected(FColor);
    Q_EMIT Closed(FColorChosen, FColor);
}

void TColorForm::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace oxa
