#pragma once

#include "oxa/grids/CheckTreeView.h"
#include "oxa/oxa_export.h"
#include "oxa/toolkit/FocusNavigation.h"

#include <memory>

namespace oxa {

// The check tree of the data-entry family: plain arrows move in the tree,
// Ctrl+arrow moves the focus to the neighbour FocUp, FocDown, FocLeft or
// FocRight (skipping disabled ones along the chain). Without a neighbour in
// that direction the key reaches the tree.
class OXA_EXPORT TCheckTreeViewOxa : public TFocusNavigation<TCheckTreeViewOxa, TCheckTreeView>
{
    Q_OBJECT
    Q_PROPERTY(QWidget *FocUp READ FocUp WRITE SetFocUp NOTIFY focUpChanged)
    Q_PROPERTY(QWidget *FocDown READ FocDown WRITE SetFocDown NOTIFY focDownChanged)
    Q_PROPERTY(QWidget *FocLeft READ FocLeft WRITE SetFocLeft NOTIFY focLeftChanged)
    Q_PROPERTY(QWidget *FocRight READ FocRight WRITE SetFocRight NOTIFY focRightChanged)

public:
    explicit TCheckTreeViewOxa(QWidget *parent = nullptr);
    ~TCheckTreeViewOxa() override;

Q_SIGNALS:
    void focUpChanged();
    void focDownChanged();
    void focLeftChanged();
    void focRightChanged();

private:
    class OXA_NO_EXPORT Private;
    std::unique_ptr<Private> const d;
};

// Adds TCheckTreeViewOxa to the catalogue, page "Oxa".
OXA_EXPORT void RegisterCheckTreeViewOxa();

} // namespace oxa
