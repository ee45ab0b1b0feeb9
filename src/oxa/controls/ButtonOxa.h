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
    Q_PROPERTY(bool IsFocused READ IsFocused)
    Q_PROPERTY(QWidget *FocUp READ FocUp WRITE SetFocUp)
    Q_PROPERTY(QWidget *FocDown READ FocDown WRITE SetFocDown)
    Q_PROPERTY(QWidget *FocLeft READ FocLeft WRITE SetFocLeft)
    Q_PROPERTY(QWidget *FocRight READ FocRight WRITE SetFocRight)

    using Base = TFocusNavigation<TButtonOxa, QPushButton>;

public:
    explicit TButtonOxa(QWidget *parent = nullptr);
    explicit TButtonOxa(const QString &caption, QWidget *parent = nullptr);

    bool IsFocused() const { return FIsFocused; }

protected:
    void DoEnter() override;
    void DoExit() override;

private:
    bool FIsFocused = false;
};

OXA_EXPORT void RegisterButtonOxa();

} // namespace oxa
