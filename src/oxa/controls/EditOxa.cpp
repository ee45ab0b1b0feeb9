#include "oxa/controls/EditOxa.h"

#include "oxa/toolkit/Catalogue.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QMouseEvent>

namespace oxa {

namespace {

// A typed sequence and the character that replaces it.
struct TKorekce
{
    QStringView typed;
    QChar replacement;
};

// The order matters: each call replaces the first occurrence of each
// sequence, in this order.
constexpr TKorekce korekce[] = {
    {u"\"a", QChar(0x00E4)}, {u"\"e", QChar(0x00EB)}, {u"\"o", QChar(0x00F6)},
    {u"\"u", QChar(0x00FC)}, {u"\"A", QChar(0x00C4)}, {u"\"E", QChar(0x00CB)},
    {u"\"O", QChar(0x00D6)}, {u"\"U", QChar(0x00DC)},
};

// The caret as the toolkit's SelStart reports it: the start of the
// selection, or the cursor when nothing is selected.
int selStart(const QLineEdit *edit)
{
    return edit->hasSelectedText() ? edit->selectionStart() : edit->cursorPosition();
}

void enableItem(const QMenu *menu, const QString &caption, bool enabled)
{
    if (QAction *item = FindMenuItem(menu, caption))
        item->setEnabled(enabled);
}

} // namespace

bool ProvedKorekciTextu(QLineEdit *edit)
{
    if (!edit)
        return false;
    QString text = edit->text();
    int caret = selStart(edit);
    bool changed = false;
    for (const TKorekce &k : korekce) {
        const int p = int(text.indexOf(k.typed)) + 1; // 1-based, 0 when absent
        if (p == 0)
            continue;
        text.replace(p - 1, k.typed.size(), k.replacement);
        // The 1-based position is compared with the 0-based caret on
        // purpose: a pair that starts just before the caret moves it too.
        if (p <= caret)
            --caret;
        changed = true;
    }
    // Writing the same text again would only wipe the undo history; a
    // different text changes the edit, whose own change handler then gets
    // to replace further occurrences.
    if (edit->text() != text)
        edit->setText(text);
    edit->deselect();
    const int length = int(edit->text().length());
    edit->setCursorPosition(length > caret ? caret : length);
    return changed;
}

QString GetKorigovanySubString(const QString &s, bool &changed)
{
    QString result = s;
    for (const TKorekce &k : korekce) {
        if (s == k.typed) {
            result = k.replacement;
            break;
        }
    }
    changed = result != s;
    return result;
}

TEditOxa::TEditOxa(QWidget *parent) : Base(parent)
{
    connect(this, &QLineEdit::textChanged, this,
            [this] { HandleExceptions(this, [this] { Change(); }); });
}

void TEditOxa::Change()
{
    if (FKorekceTextu)
        ProvedKorekciTextu(this);
    if (OnChange)
        OnChange(this);
}

void TEditOxa::DoEnter()
{
    attachPopupMenu();
    if (Enabled()) {
        ShowActiveColor();
    }
    Base::DoEnter();
}

void TEditOxa::DoExit()
{
    detachPopupMenu();
    if (Enabled()) {
        ShowDefaultColor();
    }
    Base::DoExit();
}

void TEditOxa::SetKorekceTextu(bool on)
{
    if (on == FKorekceTextu)
        return;
    FKorekceTextu = on;
    Q_EMIT korekceTextuChanged();
}

void TEditOxa::SetMapaZnaku(bool on)
{
    if (on == fMapaZnaku)
        return;
    fMapaZnaku = on;
    Q_EMIT mapaZnakuChanged();
}

void TEditOxa::SetPopupMenu(QMenu *menu)
{
    if (menu == FPopupMenu)
        return;
    if (FPopupMenu && itemMapaZnaku)
        FPopupMenu->removeAction(itemMapaZnaku);
    if (FOwnMenu && FOwnMenu != menu) {
        FOwnMenu->deleteLater();
        FOwnMenu = nullptr;
    }
    FPopupMenu = menu;
    Q_EMIT popupMenuChanged();
}

void TEditOxa::attachPopupMenu()
{
    if (!fMapaZnaku || !Enabled() || isReadOnly())
        return;
    if (!FPopupMenu) {
        auto *menu = new TOxaPopUpMenu(this);
        menu->OnItemClick = [this](QObject *sender, TItemTyp item, QChar key) {
            PopUpOnItemClick(sender, item, key);
        };
        menu->OnPopup = [this](QObject *sender) { PopUpOnPopUp(sender); };
        FOwnMenu = menu;
        FPopupMenu = menu;
        Q_EMIT popupMenuChanged();
        return;
    }
    if (qobject_cast<TOxaPopUpMenu *>(FPopupMenu) || FindMenuItem(FPopupMenu, MapaZnakuCaption()))
        return;
    if (!itemMapaZnaku) {
        itemMapaZnaku = new QAction(MapaZnakuCaption(), this);
        itemMapaZnaku->setObjectName(QStringLiteral("_mapaZnaku"));
        connect(itemMapaZnaku, &QAction::triggered, this,
                [this] { HandleExceptions(this, [this] { PopUpMapaZnaku(this); }); });
    }
    FPopupMenu->addAction(itemMapaZnaku);
}

void TEditOxa::detachPopupMenu()
{
    if (!FPopupMenu)
        return;
    if (qobject_cast<TOxaPopUpMenu *>(FPopupMenu)) {
        // Only the menu built on entry is destroyed; a TOxaPopUpMenu the
        // host handed in stays the host's. Destroyed later, not here: the
        // exit may come while the menu is still delivering a click.
        if (FPopupMenu == FOwnMenu) {
            FOwnMenu->hide();
            FOwnMenu->deleteLater();
            FOwnMenu = nullptr;
            FPopupMenu = nullptr;
        }
        return;
    }
    if (QAction *item = FindMenuItem(FPopupMenu, MapaZnakuCaption()))
        FPopupMenu->removeAction(item);
}

void TEditOxa::PopUpOnPopUp(QObject *Sender)
{
    const auto *menu = qobject_cast<const QMenu *>(Sender);
    if (!menu)
        return;
    const bool hasSelection = !selectedText().isEmpty();
    enableItem(menu, QStringLiteral("Zpět"), isUndoAvailable());
    enableItem(menu, QStringLiteral("Vyjmout"), hasSelection);
    enableItem(menu, QStringLiteral("Kopírovat"), hasSelection);
    enableItem(menu, QStringLiteral("Odstranit"), hasSelection);
    enableItem(menu, QStringLiteral("Vybrat vše"), selectedText().length() != text().length());
}

void TEditOxa::PopUpOnItemClick(QObject *, TItemTyp Item, QChar Key)
{
    switch (Item) {
    case itUndo:
        undo();
        break;
    case itCut:
        cut();
        break;
    case itCopy:
        copy();
        break;
    case itPaste:
        paste();
        break;
    case itDelete:
        if (hasSelectedText())
            del();
        break;
    case itSelectAll:
        selectAll();
        break;
    case itCharMap:
        replaceSelection(Key);
        break;
    }
}

void TEditOxa::PopUpMapaZnaku(QObject *)
{
    QChar znak;
    if (VyberZnakZMapy(this, znak))
        replaceSelection(znak);
}

void TEditOxa::replaceSelection(QChar key)
{
    if (!key.isNull())
        insert(QString(key));
}

void TEditOxa::contextMenuEvent(QContextMenuEvent *event)
{
    if (!FPopupMenu) {
        Base::contextMenuEvent(event);
        return;
    }
    FPopupMenu->popup(event->globalPos());
    event->accept();
}

void TEditOxa::mouseReleaseEvent(QMouseEvent *event)
{
    Base::mouseReleaseEvent(event);
    if (OnClick && event->button() == Qt::LeftButton &&
        rect().contains(event->position().toPoint()))
        HandleExceptions(this, [this] { OnClick(this); });
}

void RegisterEditOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TEditOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TEditOxa"), QStringLiteral("EditOxa"),
        QStringLiteral("oxa/controls/EditOxa.h"))});
}

} // namespace oxa
