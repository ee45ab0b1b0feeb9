#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/Color.h"

#include <QList>
#include <QString>
#include <QWidget>

#include <array>

class QButtonGroup;
class QFrame;
class QToolButton;

namespace oxa {

// What the special button above the palette stands for.
enum TColorDlgMode { cdmNone, cdmTransparent, cdmAutomatic };

struct OXA_EXPORT TButtonsProperties
{
    QString Hint;
    TColor Color;
};

struct OXA_EXPORT TOthersButtonsProperties
{
    QString Caption;
    QString Hint;
    TColor Color;
};

// The colour picker: a borderless pop-up with sixteen named colours in rows
// of eight, the special button of the mode above them and "Další barvy..."
// below, which opens the full colour dialog.
//
// The caller creates the form, presets Color(), calls Init() and shows it.
// The form closes when a colour is chosen, on Escape, or as soon as it loses
// activation (a click anywhere outside), and then frees itself. Closing emits
// ColorSelected(color) when a colour was chosen, then Closed(chosen, color);
// read the result there.
class OXA_EXPORT TColorForm : public QWidget
{
    Q_OBJECT

public:
    static constexpr int PaletteSize = 16;
    static constexpr int ButtonsPerRow = 8;
    static constexpr int GlyphSize = 14;

    // Numbers of the wide buttons in OthersButtons().
    static constexpr int TransparentButton = 1;
    static constexpr int AutomaticButton = 2;
    static constexpr int MoreColorsButton = 3;

    explicit TColorForm(QWidget *owner = nullptr);
    ~TColorForm() override;

    // Stores the mode, places the form's top-left corner at the screen
    // position (top first) and creates the buttons.
    void Init(int Top, int Left, TColorDlgMode Mode);

    TColorDlgMode Mode() const { return FMode; }
    // The chosen colour; preset by the caller, it marks the pressed button.
    TColor Color() const { return FColor; }
    void SetColor(TColor color);
    // Whether the user chose a colour (the form may still be open).
    bool ColorChosen() const { return FColorChosen; }

    static const std::array<TButtonsProperties, PaletteSize> &ButtonsProperties();
    // The wide buttons, numbered from 1 (TransparentButton .. MoreColorsButton).
    static const TOthersButtonsProperties &OthersButtons(int number);

    // The form's buttons (valid after Init).
    QList<QToolButton *> PaletteButtons() const { return FPaletteButtons; }
    // The special button of the mode; null in cdmNone.
    QToolButton *SpecialButton() const { return FSpecialButton; }
    QToolButton *OthersButton() const { return FOthersButton; }

    // The form's event handlers.
    void BtnClick(QObject *Sender);
    void BtnNoneClick(QObject *Sender);
    void BtnOthersClick(QObject *Sender);
    void FormDeactivate(QObject *Sender);

Q_SIGNALS:
    // The user chose a colour; emitted as the form closes.
    void ColorSelected(oxa::TColor color);
    // The form has closed, with or without a choice; it frees itself afterwards.
    void Closed(bool chosen, oxa::TColor color);

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void CreateButtons();
    void DeleteButtons();
    QToolButton *CreateButton(int tag, const QString &caption, const QString &hint, TColor color,
                              bool wide, bool pressable, int left, int top);
    QIcon ColorGlyph(TColor color) const;
    void ChooseColor(TColor color);
    void UpdatePressedButtons();

    QFrame *bvlCenter;
    QButtonGroup *FButtonGroup;
    QList<QToolButton *> FPaletteButtons;
    QToolButton *FSpecialButton = nullptr;
    QToolButton *FOthersButton = nullptr;
    TColorDlgMode FMode = cdmNone;
    TColor FColor = clBlack;
    bool FColorChosen = false;
    bool FRunningColorDialog = false;
    bool FClosed = false;
};

} // namespace oxa
