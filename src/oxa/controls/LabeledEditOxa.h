#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/FocusNavigation.h"

#include <QLabel>
#include <QLineEdit>
#include <QPointer>

namespace oxa {

// A single-line edit with a caption label, Ctrl+arrow focus navigation and
// focus colouring. The label (EditLabel) is created on the edit's parent and
// kept beside the edit, LabelSpacing pixels away on the LabelPosition side;
// it follows the edit's visibility, enabled state and parent, and is
// destroyed with the edit. Meant for forms with placed (not laid-out)
// controls, like the designer's.
//
// Unlike the library's other controls, Loaded keeps the colour the control
// was given.
class OXA_EXPORT TLabeledEditOxa : public TFocusColorNavigation<TLabeledEditOxa, QLineEdit>
{
    Q_OBJECT
    Q_PROPERTY(uint ActiveColor READ ActiveColor WRITE SetActiveColor NOTIFY activeColorChanged)
    Q_PROPERTY(uint DefaultColor READ DefaultColor WRITE SetDefaultColor NOTIFY defaultColorChanged)
    Q_PROPERTY(bool IsFocused READ IsFocused NOTIFY isFocusedChanged)
    Q_PROPERTY(QWidget *FocUp READ FocUp WRITE SetFocUp NOTIFY focUpChanged)
    Q_PROPERTY(QWidget *FocDown READ FocDown WRITE SetFocDown NOTIFY focDownChanged)
    Q_PROPERTY(QWidget *FocLeft READ FocLeft WRITE SetFocLeft NOTIFY focLeftChanged)
    Q_PROPERTY(QWidget *FocRight READ FocRight WRITE SetFocRight NOTIFY focRightChanged)
    Q_PROPERTY(QLabel *EditLabel READ EditLabel CONSTANT)
    Q_PROPERTY(
        QString LabelCaption READ LabelCaption WRITE SetLabelCaption NOTIFY labelCaptionChanged)
    Q_PROPERTY(TLabelPosition LabelPosition READ LabelPosition WRITE SetLabelPosition NOTIFY
                   labelPositionChanged)
    Q_PROPERTY(int LabelSpacing READ LabelSpacing WRITE SetLabelSpacing NOTIFY labelSpacingChanged)

    using Base = TFocusColorNavigation<TLabeledEditOxa, QLineEdit>;

public:
    enum TLabelPosition { lpAbove, lpBelow, lpLeft, lpRight };
    Q_ENUM(TLabelPosition)

    explicit TLabeledEditOxa(QWidget *parent = nullptr);
    ~TLabeledEditOxa() override;

    QLabel *EditLabel() const { return FEditLabel; }
    QString LabelCaption() const;
    // Sets the label's text and sizes the label to it.
    void SetLabelCaption(const QString &caption);
    TLabelPosition LabelPosition() const { return FLabelPosition; }
    void SetLabelPosition(TLabelPosition position);
    int LabelSpacing() const { return FLabelSpacing; }
    void SetLabelSpacing(int spacing);

Q_SIGNALS:
    void activeColorChanged();
    void defaultColorChanged();
    void isFocusedChanged();
    void focUpChanged();
    void focDownChanged();
    void focLeftChanged();
    void focRightChanged();
    void labelCaptionChanged();
    void labelPositionChanged();
    void labelSpacingChanged();

protected:
    void DoEnter() override;
    void DoExit() override;

private:
    void placeLabel();

    QPointer<QLabel> FEditLabel;
    TLabelPosition FLabelPosition = lpAbove;
    int FLabelSpacing = 3;
};

OXA_EXPORT void RegisterLabeledEditOxa();

} // namespace oxa
