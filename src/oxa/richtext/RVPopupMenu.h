#pragma once

#include "oxa/oxa_export.h"
#include "oxa/richtext/RVToolBar.h"

#include <QMenu>
#include <memory>

namespace oxa {

class TOxaRichView;
class TRVPopupMenuPrivate;

// The context menu of a TOxaRichView: "Vyjmout", "Kopírovat", "Vložit",
// "Vložit jako text" and the submenu "Formát" with the font styles
// ("Tučné", "Kurzíva", "Podtržené", "Preškrtnuté") and the alignments
// ("Vlevo", "Na střed", "Vpravo", "Do bloku"). An item does what the
// toolbar's button of the same name does.
//
// Init binds the editor: from then on a right click in the editor (or the
// menu key) opens this menu instead of the standard one, after the editor's
// OnPopup. The menu is a non-visual component, created in code.
class OXA_EXPORT TRVPopupMenu : public QMenu
{
    Q_OBJECT

public:
    explicit TRVPopupMenu(QWidget *owner = nullptr);
    ~TRVPopupMenu() override;

    // Binds a TOxaRichView, or unbinds with null; any other object fails
    // with an exception and leaves the menu as it was.
    void Init(QObject *editor);
    TOxaRichView *Editor() const;

    // Builds the items (once; a second call does nothing).
    void CreateItems();
    QAction *AddItem(QMenu *menu, const QString &caption, TRVToolButtonType typ);
    // The item of a type, or null.
    QAction *Item(TRVToolButtonType typ) const;
    bool isInItems(TRVToolButtonType typ) const;
    QMenu *FormatMenu() const;

    // Sets the items from the editor's state (checks, what can be cut or
    // copied) and adds what belongs to the clicked point of the editor
    // (in the editor's viewport coordinates).
    void DoPopup(const QPoint &editorPos);
    // Opens the menu for the editor's point at a screen position.
    void PopupAt(const QPoint &globalPos, const QPoint &editorPos);
    // The click of an item.
    void OnClick(QAction *item);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // Actions that depend on the point of the editor the menu opens for.
    void addEditorSpecificActions(QMenu *menu, const QPoint &editorPos);

    std::unique_ptr<TRVPopupMenuPrivate> const d;
};

OXA_EXPORT void RegisterRVPopupMenu();

} // namespace oxa
