#pragma once

#include "oxa/oxa_export.h"
#include "oxa/toolkit/DBControls.h"
#include "oxa/toolkit/FocusNavigation.h"

namespace oxa {

// DBComboBox of the data-entry family: Ctrl+arrow focus navigation and the
// focus colours, painted before the inherited entry and exit run; a colour
// stored with the form gives way to DefaultColor when the form is loaded.
class OXA_EXPORT TDBComboBoxOxa : public TFocusColorNavigation<TDBComboBoxOxa, TDBComboBox>
{
    Q_OBJECT
    Q_PROPERTY(uint ActiveColor READ ActiveColor WRITE SetActiveColor NOTIFY activeColorChanged)
    Q_PROPERTY(uint DefaultColor READ DefaultColor WRITE SetDefaultColor NOTIFY defaultColorChanged)
    Q_PROPERTY(QWidget *FocUp READ FocUp WRITE SetFocUp NOTIFY focUpChanged)
    Q_PROPERTY(QWidget *FocDown READ FocDown WRITE SetFocDown NOTIFY focDownChanged)
    Q_PROPERTY(QWidget *FocLeft READ FocLeft WRITE SetFocLeft NOTIFY focLeftChanged)
    Q_PROPERTY(QWidget *FocRight READ FocRight WRITE SetFocRight NOTIFY focRightChanged)

    using Base = TFocusColorNavigation<TDBComboBoxOxa, TDBComboBox>;

public:
    explicit TDBComboBoxOxa(QWidget *parent = nullptr);
    ~TDBComboBoxOxa() override;

Q_SIGNALS:
    void activeColorChanged();
    void defaultColorChanged();
    void focUpChanged();
    void focDownChanged();
    void focLeftChanged();
    void focRightChanged();

protected:
    void DoEnter() override;
    void DoExit() override;
    void Loaded() override;
};

// Adds TDBComboBoxOxa to the catalogue, page "Oxa".
OXA_EXPORT void RegisterDBComboBoxOxa();

} // namespace oxa
