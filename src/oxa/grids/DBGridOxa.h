#pragma once

#include "oxa/oxa_export.h"
#include "oxa/toolkit/DBGrid.h"
#include "oxa/toolkit/FocusNavigation.h"

namespace oxa {

// The record grid of the data-entry family: plain arrows move between cells
// and records, Ctrl+arrows move the focus to the neighbours FocUp, FocDown,
// FocLeft and FocRight.
class OXA_EXPORT TDBGridOxa : public TFocusNavigation<TDBGridOxa, TDBGrid>
{
    Q_OBJECT
    Q_PROPERTY(QWidget *FocUp READ FocUp WRITE SetFocUp)
    Q_PROPERTY(QWidget *FocDown READ FocDown WRITE SetFocDown)
    Q_PROPERTY(QWidget *FocLeft READ FocLeft WRITE SetFocLeft)
    Q_PROPERTY(QWidget *FocRight READ FocRight WRITE SetFocRight)

public:
    explicit TDBGridOxa(QWidget *parent = nullptr);
    ~TDBGridOxa() override;
};

// Adds TDBGridOxa to the catalogue, page "Oxa".
OXA_EXPORT void RegisterDBGridOxa();

} // namespace oxa
