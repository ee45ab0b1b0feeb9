#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/FocusNavigation.h"

#include <QComboBox>

namespace oxa {

// A combo box with Ctrl+arrow focus navigation and focus colouring. Unlike
// the edits it swallows every Ctrl+arrow, neighbour or not, and in a
// drop-down list (a combo box that is not editable) Space selects the next
// item, wrapping from the last to the first.
class OXA_EXPORT TComboBoxOxa : public TFocusColorNavigation<TComboBoxOxa, QComboBox>
{
    Q_OBJECT
    Q_PROPERTY(uint ActiveColor READ ActiveColor WRITE SetActiveColor NOTIFY activeColorChanged)
    Q_PROPERTY(uint DefaultColor READ DefaultColor WRITE SetDefaultColor NOTIFY defaultColorChanged)
    Q_PROPERTY(bool IsFocused READ IsFocused NOTIFY isFocusedChanged)
    Q_PROPERTY(QWidget *FocUp READ FocUp WRITE SetFocUp NOTIFY focUpChanged)
    Q_PROPERTY(QWidget *FocDown READ FocDown WRITE SetFocDown NOTIFY focDownChanged)
    Q_PROPERTY(QWidget *FocLeft READ FocLeft WRITE SetFocLeft NOTIFY focLeftChanged)
    Q_PROPERTY(QWidget *FocRight READ FocRight WRITE SetFocRight NOTIFY focRightChanged)

    using Base = TFocusColorNavigation<TComboBoxOxa, QComboBox>;

public:
    explicit TComboBoxOxa(QWidget *parent = nullptr);

    // The user changed the selection (mouse, keyboard, wheel, Space) or
    // typed into an editable box.
    TNotifyEvent OnChange;

Q_SIGNALS:
    void activeColorChanged();
    void defaultColorChanged();
    void isFocusedChanged();
    void focUpChanged();
    void focDownChanged();
    void focLeftChanged();
    void focRightChanged();

protected:
    virtual void Change();

    void KeyDown(Word &key, TShiftState shift) override;
    void DoEnter() override;
    void DoExit() override;
    void Loaded() override;

private:
    void selectNextOnSpace(Word &key);
};

OXA_EXPORT void RegisterComboBoxOxa();

} // namespace oxa
