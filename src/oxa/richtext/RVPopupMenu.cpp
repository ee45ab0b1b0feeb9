#include "oxa/richtext/RVPopupMenu.h"

#include "oxa/richtext/OxaRichView.h"
#include "oxa/richtext/RVToolBar_p.h"
#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/MessageService.h"

#include <QAbstractScrollArea>
#include <QActionGroup>
#include <QContextMenuEvent>
#include <QPointer>

namespace oxa {

class TRVPopupMenuPrivate
{
public:
    QPointer<TOxaRichView> fEditor;
    QPointer<QWidget> fViewport;
    QMenu *fFormat = nullptr;
    QActionGroup *fAlignGroup = nullptr;
    QList<QAction *> fItems;
    // Added for the last point the menu opened for; replaced at the next.
    QList<QAction *> fSpecific;
    QMetaObject::Connection fEditorGone;
};

TRVPopupMenu::TRVPopupMenu(QWidget *owner)
    : QMenu(owner), d(std::make_unique<TRVPopupMenuPrivate>())
{
    CreateItems();
}

TRVPopupMenu::~TRVPopupMenu()
{
    Init(nullptr);
}

void TRVPopupMenu::Init(QObject *editor)
{
    auto *richView = qobject_cast<TOxaRichView *>(editor);
    if (editor && !richView)
        throw Exception(QStringLiteral("Povolene parametry jsou \"TOxaRichView\" a \"nil\""));
    QObject::disconnect(d->fEditorGone);
    if (d->fEditor)
        d->fEditor->removeEventFilter(this);
    if (d->fViewport)
        d->fViewport->removeEventFilter(this);
    d->fEditor = richView;
    d->fViewport = richView ? richView->viewport() : nullptr;
    if (!richView)
        return;
    // A right click reaches the viewport, the menu key the editor itself.
    richView->installEventFilter(this);
    d->fViewport->installEventFilter(this);
    d->fEditorGone = connect(richView, &QObject::destroyed, this, [this] { d->fEditor.clear(); });
}

TOxaRichView *TRVPopupMenu::Editor() const
{
    return d->fEditor;
}

void TRVPopupMenu::CreateItems()
{
    if (!d->fItems.isEmpty())
        return;
    AddItem(this, QStringLiteral("Vyjmout"), tbtCut);
    AddItem(this, QStringLiteral("Kopírovat"), tbtCopy);
    AddItem(this, QStringLiteral("Vložit"), tbtPaste);
    AddItem(this, QStringLiteral("Vložit jako text"), tbtPasteText);
    addSeparator();
    d->fFormat = addMenu(QStringLiteral("Formát"));
    d->fAlignGroup = new QActionGroup(this);
    AddItem(d->fFormat, QStringLiteral("Tučné"), tbtBold);
    AddItem(d->fFormat, QStringLiteral("Kurzíva"), tbtItalic);
    AddItem(d->fFormat, QStringLiteral("Podtržené"), tbtUnderline);
    AddItem(d->fFormat, QStringLiteral("Preškrtnuté"), tbtStrikeOut); // spelt so on screen
    d->fFormat->addSeparator();
    AddItem(d->fFormat, QStringLiteral("Vlevo"), tbtLeftAlign);
    AddItem(d->fFormat, QStringLiteral("Na střed"), tbtCenterAlign);
    AddItem(d->fFormat, QStringLiteral("Vpravo"), tbtRighAlign);
    AddItem(d->fFormat, QStringLiteral("Do bloku"), tbtJustifyAlign);
}

QAction *TRVPopupMenu::AddItem(QMenu *menu, const QString &caption, TRVToolButtonType typ)
{
    QAction *item = menu->addAction(caption);
    item->setData(int(typ));
    const TRVToolButtonKind kind = TRVToolBar::ButtonsProperties(typ).Kind;
    item->setCheckable(kind == tbkCheck || kind == tbkCheckGrouped);
    if (kind == tbkCheckGrouped)
        d->fAlignGroup->addAction(item);
    connect(item, &QAction::triggered, this, [this, item] { OnClick(item); });
    d->fItems.append(item);
    return item;
}

QAction *TRVPopupMenu::Item(TRVToolButtonType typ) const
{
    for (QAction *item : std::as_const(d->fItems)) {
        if (item->data().toInt() == typ)
            return item;
    }
    return nullptr;
}

bool TRVPopupMenu::isInItems(TRVToolButtonType typ) const
{
    return Item(typ) != nullptr;
}

QMenu *TRVPopupMenu::FormatMenu() const
{
    return d->fFormat;
}

void TRVPopupMenu::DoPopup(const QPoint &editorPos)
{
    TOxaRichView *editor = d->fEditor;
    const bool selection = editor && editor->textCursor().hasSelection();
    const bool writable = editor && !editor->isReadOnly();
    for (QAction *item : std::as_const(d->fItems)) {
        const auto typ = TRVToolButtonType(item->data().toInt());
        if (item->isCheckable())
            item->setChecked(EditorStateOf(editor, typ));
        if (typ == tbtCopy)
            item->setEnabled(selection);
        else if (typ == tbtCut)
            item->setEnabled(selection && writable);
        else
            item->setEnabled(writable);
    }
    for (QAction *action : std::as_const(d->fSpecific)) {
        removeAction(action);
        if (action->parent() == this)
            delete action;
    }
    const QList<QAction *> before = actions();
    addEditorSpecificActions(this, editorPos);
    d->fSpecific.clear();
    for (QAction *action : actions()) {
        if (!before.contains(action))
            d->fSpecific.append(action);
    }
}

void TRVPopupMenu::PopupAt(const QPoint &globalPos, const QPoint &editorPos)
{
    if (TOxaRichView *editor = d->fEditor)
        Q_EMIT editor->OnPopup();
    DoPopup(editorPos);
    popup(globalPos);
}

void TRVPopupMenu::addEditorSpecificActions(QMenu *menu, const QPoint &editorPos)
{
    // The spelling suggestions for the word at editorPos (the editor's
    // viewport coordinates) go to the top of the menu; like every action
    // added here they are removed again before the menu opens the next time.
    if (TOxaRichView *editor = d->fEditor)
        editor->AddSpellingActions(menu, editorPos);
}

void TRVPopupMenu::OnClick(QAction *item)
{
    TOxaRichView *editor = d->fEditor;
    if (!item || !editor)
        return;
    HandleExceptions(editor, [&] {
        RunEditorCommand(editor, TRVToolButtonType(item->data().toInt()), item->isChecked());
    });
    if (d->fEditor)
        d->fEditor->setFocus();
}

bool TRVPopupMenu::eventFilter(QObject *watched, QEvent *event)
{
    TOxaRichView *editor = d->fEditor;
    if (event->type() != QEvent::ContextMenu || !editor ||
        (watched != editor && watched != d->fViewport))
        return QMenu::eventFilter(watched, event);
    auto *menuEvent = static_cast<QContextMenuEvent *>(event);
    QPoint editorPos = menuEvent->pos();
    QPoint globalPos = menuEvent->globalPos();
    if (watched == editor)
        editorPos = editor->viewport()->mapFrom(editor, editorPos);
    if (menuEvent->reason() == QContextMenuEvent::Keyboard) {
        editorPos = editor->cursorRect().center();
        globalPos = editor->viewport()->mapToGlobal(editorPos);
    }
    PopupAt(globalPos, editorPos);
    return true;
}

void RegisterRVPopupMenu()
{
    Catalogue::Instance().RegisterComponents({ComponentEntry<TRVPopupMenu>(
        QStringLiteral("Oxa"), QStringLiteral("TRVPopupMenu"), QStringLiteral("RVPopupMenu"),
        QStringLiteral("oxa/richtext/RVPopupMenu.h"))});
}

} // namespace oxa
