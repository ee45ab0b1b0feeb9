#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/FocusNavigation.h"

#include <QPlainTextEdit>

namespace oxa {

// A multi-line text with Ctrl+arrow focus navigation and focus colouring.
// Plain arrows keep moving the caret inside the text; only Ctrl+arrow
// leaves for a neighbour.
class OXA_EXPORT TMemoOxa : public TFocusColorNavigation<TMemoOxa, QPlainTextEdit>
{
    Q_OBJECT
    Q_PROPERTY(uint ActiveColor READ ActiveColor WRITE SetActiveColor NOTIFY activeColorChanged)
    Q_PROPERTY(uint DefaultColor READ DefaultColor WRITE SetDefaultColor NOTIFY defaultColorChanged)
    Q_PROPERTY(bool IsFocused READ IsFocused NOTIFY isFocusedChanged)
    Q_PROPERTY(QWidget *FocUp READ FocUp WRITE SetFocUp NOTIFY focUpChanged)
    Q_PROPERTY(QWidget *FocDown READ FocDown WRITE SetFocDown NOTIFY focDownChanged)
    Q_PROPERTY(QWidget *FocLeft READ FocLeft WRITE SetFocLeft NOTIFY focLeftChanged)
    Q_PROPERTY(QWidget *FocRight READ FocRight WRITE SetFocRight NOTIFY focRightChanged)
    Q_PROPERTY(bool WantTabs READ WantTabs WRITE SetWantTabs NOTIFY wantTabsChanged)

    using Base = TFocusColorNavigation<TMemoOxa, QPlainTextEdit>;

public:
    explicit TMemoOxa(QWidget *parent = nullptr);

    // Off unless set: Tab and Shift+Tab move the focus on, Ctrl+Tab types a
    // tab. On: Tab types a tab.
    bool WantTabs() const { return !tabChangesFocus(); }
    void SetWantTabs(bool value);

Q_SIGNALS:
    void activeColorChanged();
    void defaultColorChanged();
    void isFocusedChanged();
    void focUpChanged();
    void focDownChanged();
    void focLeftChanged();
    void focRightChanged();
    void wantTabsChanged();

protected:
    void DoEnter() override;
    void DoExit() override;
    void Loaded() override;
    void KeyDown(Word &Key, TShiftState Shift) override;
};

OXA_EXPORT void RegisterMemoOxa();

} // namespace oxa
