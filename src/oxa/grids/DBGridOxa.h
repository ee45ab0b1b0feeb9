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
    Q_PROPERTY(QWidget *FocUp READ FocUp WRITE SetFocUp NOTIFY focUpChanged)
    Q_PROPERTY(QWidget *FocDown READ FocDown WRITE SetFocDown NOTIFY focDownChanged)
    Q_PROPERTY(QWidget *FocLeft READ FocLeft WRITE SetFocLeft NOTIFY focLeftChanged)
    Q_PROPERTY(QWidget *FocRight READ FocRight WRITE SetFocRight NOTIFY focRightChanged)

public:
    explicit TDBGridOxa(QWidget *parent = nullptr);
    ~TDBGridOxa() override;

Q_SIGNALS:
    void focUpChanged();
    void focDownChanged();
    void focLeftChanged();
    void focRightChanged();
};

// Adds TDBGridOxa to the catalogue, page "Oxa".
OXA_EXPORT void RegisterDBGridOxa();

} // namespace oxa
