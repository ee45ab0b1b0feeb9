#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/FocusNavigation.h"

#include <QPushButton>

namespace oxa {

// A push button with Ctrl+arrow focus navigation. It keeps its own colours;
// IsFocused tells whether it holds the focus (followed only while the
// button is enabled).
class OXA_EXPORT TButtonOxa : public TFocusNavigation<TButtonOxa, QPushButton>
{
    Q_OBJECT
    Q_PROPERTY(bool IsFocused READ IsFocused NOTIFY isFocusedChanged)
    Q_PROPERTY(QWidget *FocUp READ FocUp WRITE SetFocUp NOTIFY focUpChanged)
    Q_PROPERTY(QWidget *FocDown READ FocDown WRITE SetFocDown NOTIFY focDownChanged)
    Q_PROPERTY(QWidget *FocLeft READ FocLeft WRITE SetFocLeft NOTIFY focLeftChanged)
    Q_PROPERTY(QWidget *FocRight READ FocRight WRITE SetFocRight NOTIFY focRightChanged)

    using Base = TFocusNavigation<TButtonOxa, QPushButton>;

public:
    explicit TButtonOxa(QWidget *parent = nullptr);
    explicit TButtonOxa(const QString &caption, QWidget *parent = nullptr);

    bool IsFocused() const { return FIsFocused; }

Q_SIGNALS:
    void isFocusedChanged();
    void focUpChanged();
    void focDownChanged();
    void focLeftChanged();
    void focRightChanged();

protected:
    void DoEnter() override;
    void KeyDown(Word &Key, TShiftState Shift) override;
    void DoExit() override;

private:
    void SetIsFocused(bool value);

    bool FIsFocused = false;
};

OXA_EXPORT void RegisterButtonOxa();

} // namespace oxa
