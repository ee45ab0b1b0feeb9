#include "oxa/controls/OxaPopupMenu.h"

#include "oxa/controls/MapaZnaku.h"
#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/MessageService.h"

#include <QAction>

namespace oxa {

QString MapaZnakuCaption()
{
    return QStringLiteral("Mapa znaků...");
}

bool VyberZnakZMapy(QWidget *owner, QChar &znak)
{
    TMapaZnaku form(owner); // lives for this one display only
    if (MessageService::ExecDialog(&form) != mrOk)
        return false;
    znak = form.GetVybranyZnak();
    return true;
}

TOxaPopUpMenu::TOxaPopUpMenu(QWidget *owner) : QMenu(owner)
{
    addItem(QStringLiteral("_zpet"), QStringLiteral("Zpět"), &TOxaPopUpMenu::PopUpZpet);
    addSeparatorItem(QStringLiteral("_1"));
    addItem(QStringLiteral("_vyjmout"), QStringLiteral("Vyjmout"), &TOxaPopUpMenu::PopUpVyjmout);
    addItem(QStringLiteral("_kopirovat"), QStringLiteral("Kopírovat"),
            &TOxaPopUpMenu::PopUpKopirovat);
    addItem(QStringLiteral("_vlozit"), QStringLiteral("Vložit"), &TOxaPopUpMenu::PopUpVlozit);
    addItem(QStringLiteral("_odstranit"), QStringLiteral("Odstranit"),
            &TOxaPopUpMenu::PopUpOdstranit);
    addSeparatorItem(QStringLiteral("_2"));
    addItem(QStringLiteral("_vybratvse"), QStringLiteral("Vybrat vše"),
            &TOxaPopUpMenu::PopUpVybratVse);
    addItem(QStringLiteral("_popupmapaznaku"), MapaZnakuCaption(), &TOxaPopUpMenu::PopUpMapaZnaku);

    connect(this, &QMenu::aboutToShow, this, [this] {
        if (OnPopup)
            HandleExceptions(parentWidget(), [this] { OnPopup(this); });
    });
}

QAction *TOxaPopUpMenu::addItem(const QString &name, const QString &caption,
                                void (TOxaPopUpMenu::*handler)(QObject *))
{
    QAction *item = addAction(caption);
    item->setObjectName(name);
    connect(item, &QAction::triggered, this, [this, handler] {
        HandleExceptions(parentWidget(), [this, handler] { (this->*handler)(this); });
    });
    return item;
}

QAction *TOxaPopUpMenu::addSeparatorItem(const QString &name)
{
    QAction *item = addSeparator();
    item->setObjectName(name);
    return item;
}

QAction *TOxaPopUpMenu::Item(const QString &name) const
{
    for (QAction *item : actions()) {
        if (item->objectName() == name)
            return item;
    }
    return nullptr;
}

QAction *FindMenuItem(const QMenu *menu, const QString &caption)
{
    for (QAction *item : menu->actions()) {
        if (!item->isSeparator() && item->text() == caption)
            return item;
    }
    return nullptr;
}

void TOxaPopUpMenu::reportItem(TItemTyp item, QChar key)
{
    if (OnItemClick)
        OnItemClick(this, item, key);
}

void TOxaPopUpMenu::PopUpZpet(QObject *)
{
    reportItem(itUndo);
}

void TOxaPopUpMenu::PopUpVyjmout(QObject *)
{
    reportItem(itCut);
}

void TOxaPopUpMenu::PopUpKopirovat(QObject *)
{
    reportItem(itCopy);
}

void TOxaPopUpMenu::PopUpVlozit(QObject *)
{
    reportItem(itPaste);
}

void TOxaPopUpMenu::PopUpOdstranit(QObject *)
{
    reportItem(itDelete);
}

void TOxaPopUpMenu::PopUpVybratVse(QObject *)
{
    reportItem(itSelectAll);
}

void TOxaPopUpMenu::PopUpMapaZnaku(QObject *)
{
    // The dialog is owned by the menu's owner: the menu itself is a popup
    // that has just closed, a poor window to centre a dialog on.
    QWidget *owner = parentWidget() ? parentWidget() : this;
    QChar znak;
    if (VyberZnakZMapy(owner, znak))
        reportItem(itCharMap, znak);
}

void RegisterOxaPopupMenu()
{
    Catalogue::Instance().RegisterComponents({ComponentEntry<TOxaPopUpMenu>(
        QStringLiteral("Oxa"), QStringLiteral("TOxaPopUpMenu"), QStringLiteral("OxaPopupMenu"),
        QStringLiteral("oxa/controls/OxaPopupMenu.h"))});
}

} // namespace oxa
