#pragma once

#include "oxa/oxa_export.h"

#include "oxa/controls/OxaPopupMenu.h"
#include "oxa/toolkit/FocusNavigation.h"

#include <QLineEdit>
#include <QMenu>
#include <QPointer>

namespace oxa {

// The library's single-line text edit: Ctrl+arrow focus navigation, focus
// colouring, the Czech context menu with the character map, and an optional
// correction of typed diacritic sequences ("a -> ä and the like).
//
// The context menu: on entry (when MapaZnaku is set and the edit is enabled
// and writable) the edit builds a TOxaPopUpMenu of its own, or adds a
// "Mapa znaků..." item to the menu the host gave it through PopupMenu; on
// exit it destroys its own menu, or takes the item out of the host's menu
// again. Right-click shows PopupMenu when there is one; an edit without a
// menu (read-only, MapaZnaku off, not entered yet) shows Qt's standard
// context menu of a line edit, as the platform's edit control does.
class OXA_EXPORT TEditOxa : public TFocusColorNavigation<TEditOxa, QLineEdit>
{
    Q_OBJECT
    Q_PROPERTY(uint ActiveColor READ ActiveColor WRITE SetActiveColor NOTIFY activeColorChanged)
    Q_PROPERTY(uint DefaultColor READ DefaultColor WRITE SetDefaultColor NOTIFY defaultColorChanged)
    Q_PROPERTY(bool IsFocused READ IsFocused NOTIFY isFocusedChanged)
    Q_PROPERTY(QWidget *FocUp READ FocUp WRITE SetFocUp NOTIFY focUpChanged)
    Q_PROPERTY(QWidget *FocDown READ FocDown WRITE SetFocDown NOTIFY focDownChanged)
    Q_PROPERTY(QWidget *FocLeft READ FocLeft WRITE SetFocLeft NOTIFY focLeftChanged)
    Q_PROPERTY(QWidget *FocRight READ FocRight WRITE SetFocRight NOTIFY focRightChanged)
    Q_PROPERTY(bool KorekceTextu READ KorekceTextu WRITE SetKorekceTextu NOTIFY korekceTextuChanged)
    Q_PROPERTY(bool MapaZnaku READ MapaZnaku WRITE SetMapaZnaku NOTIFY mapaZnakuChanged)
    Q_PROPERTY(QMenu *PopupMenu READ PopupMenu WRITE SetPopupMenu NOTIFY popupMenuChanged)

    using Base = TFocusColorNavigation<TEditOxa, QLineEdit>;

public:
    explicit TEditOxa(QWidget *parent = nullptr);

    bool KorekceTextu() const { return FKorekceTextu; }
    void SetKorekceTextu(bool on);
    bool MapaZnaku() const { return fMapaZnaku; }
    void SetMapaZnaku(bool on);

    // The context menu; the host may set a menu of its own (not owned).
    QMenu *PopupMenu() const { return FPopupMenu; }
    void SetPopupMenu(QMenu *menu);

    // Handlers of the edit's TOxaPopUpMenu. A derived edit may take over a
    // command (the numeric edit rewrites what "Vložit" pasted).
    virtual void PopUpOnItemClick(QObject *Sender, TItemTyp Item, QChar Key);
    void PopUpOnPopUp(QObject *Sender);
    // Click handler of the "Mapa znaků..." item added to a host menu.
    void PopUpMapaZnaku(QObject *Sender);

    TNotifyEvent OnChange;
    TNotifyEvent OnClick;

Q_SIGNALS:
    void activeColorChanged();
    void defaultColorChanged();
    void isFocusedChanged();
    void focUpChanged();
    void focDownChanged();
    void focLeftChanged();
    void focRightChanged();
    void korekceTextuChanged();
    void mapaZnakuChanged();
    void popupMenuChanged();

protected:
    // Runs on every change of the text: the correction when KorekceTextu is
    // set, then OnChange.
    virtual void Change();

    void DoEnter() override;
    void DoExit() override;

    void contextMenuEvent(QContextMenuEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    void attachPopupMenu();
    void detachPopupMenu();
    void replaceSelection(QChar key);

    bool FKorekceTextu = false;
    bool fMapaZnaku = true;
    QPointer<QMenu> FPopupMenu;
    QPointer<TOxaPopUpMenu> FOwnMenu; // the menu this edit built on entry
    QPointer<QAction> itemMapaZnaku;  // owned by the edit, lent to a host menu
};

// Replaces the typed sequences "a "e "o "u "A "E "O "U in the edit's text
// with ä ë ö ü Ä Ë Ö Ü (the first occurrence of each per call) and keeps the
// caret beside the text it stood by. Returns whether anything was replaced.
OXA_EXPORT bool ProvedKorekciTextu(QLineEdit *edit);

// The replacement of s when s is exactly one of the typed sequences,
// otherwise s itself; changed tells whether the result differs from s.
OXA_EXPORT QString GetKorigovanySubString(const QString &s, bool &changed);

OXA_EXPORT void RegisterEditOxa();

} // namespace oxa
