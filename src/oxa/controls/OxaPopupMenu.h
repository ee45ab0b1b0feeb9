#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/WinControl.h"

#include <QChar>
#include <QMenu>
#include <functional>

class QAction;

namespace oxa {

// The kind of an editing command chosen from the edit's context menu.
enum TItemTyp { itUndo, itCut, itCopy, itPaste, itDelete, itSelectAll, itCharMap };

// Reports a chosen command; Key is the character picked from the character
// map for itCharMap and a null character otherwise.
using TOnItemClick = std::function<void(QObject *Sender, TItemTyp Item, QChar Key)>;

// The Czech context menu of the library's edits. It builds its nine items
// itself ("Zpět", "Vyjmout", "Kopírovat", "Vložit", "Odstranit",
// "Vybrat vše", "Mapa znaků..." and two separators) and reports a click as
// one OnItemClick with the kind of the item; the character map is shown by
// the menu, and the picked character travels in Key.
//
// The menu is a non-visual component: it is created in code (by an edit on
// its entry, or by the host) rather than placed on a form.
class OXA_EXPORT TOxaPopUpMenu : public QMenu
{
    Q_OBJECT

public:
    explicit TOxaPopUpMenu(QWidget *owner = nullptr);

    // The item with the object name ("_zpet", "_vyjmout", ...), or nullptr.
    QAction *Item(const QString &name) const;

    TOnItemClick OnItemClick;
    // Run just before the menu opens, so that its owner can enable the items.
    TNotifyEvent OnPopup;

    // Click handlers of the items.
    void PopUpZpet(QObject *Sender);
    void PopUpVyjmout(QObject *Sender);
    void PopUpKopirovat(QObject *Sender);
    void PopUpVlozit(QObject *Sender);
    void PopUpOdstranit(QObject *Sender);
    void PopUpVybratVse(QObject *Sender);
    // Shows the character map; on "Vložit znak do textu" reports itCharMap
    // with the picked character.
    void PopUpMapaZnaku(QObject *Sender);

private:
    QAction *addItem(const QString &name, const QString &caption,
                     void (TOxaPopUpMenu::*handler)(QObject *));
    QAction *addSeparatorItem(const QString &name);
    void reportItem(TItemTyp item, QChar key = QChar());
};

// The top-level item of the menu with the caption (separators aside), or
// nullptr: how items of a menu are found, also in menus of the host's.
OXA_EXPORT QAction *FindMenuItem(const QMenu *menu, const QString &caption);

// Shows the character map as a modal dialog owned by owner. Returns true when
// the user confirmed with "Vložit znak do textu" (modal result 1); znak then
// holds the picked character.
OXA_EXPORT bool VyberZnakZMapy(QWidget *owner, QChar &znak);

// The caption of the character-map item, also the one an edit adds to a
// context menu of the host's.
OXA_EXPORT QString MapaZnakuCaption();

OXA_EXPORT void RegisterOxaPopupMenu();

} // namespace oxa
