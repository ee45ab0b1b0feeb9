#pragma once

#include "oxa/richtext/OxaRichView.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QMenu>
#include <QTest>

namespace oxa::test {

// A shown editor in a window of its own, with the focus.
struct EditorWindow
{
    TestForm form;
    TOxaRichView *editor;
    EditorWindow(int width = 400, int height = 200) : editor(form.Add<TOxaRichView>(height))
    {
        form.resize(width + 20, height + 20);
        editor->resize(width, height);
        form.Show(editor);
    }
};

inline QStringList Captions(const QMenu *menu)
{
    QStringList captions;
    for (const QAction *action : menu->actions())
        captions << (action->isSeparator() ? QStringLiteral("-") : action->text());
    return captions;
}

// Clicks the menu's enabled item of that caption; false when there is none.
inline bool ClickItem(QMenu *menu, const QString &caption)
{
    QAction *item = menu ? menu->actions().value(Captions(menu).indexOf(caption)) : nullptr;
    if (!item || !item->isEnabled())
        return false;
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
    return true;
}

// The point in the viewport over the middle of the first occurrence of a word.
inline QPoint PointOfWord(TOxaRichView *e, const QString &word)
{
    QTextCursor c(e->document());
    c.setPosition(int(e->document()->toPlainText().indexOf(word) + word.size() / 2));
    return e->cursorRect(c).center();
}

// Right-clicks the word as the user does; the menu that opened.
inline QMenu *RightClickOn(TOxaRichView *e, const QString &word)
{
    QWidget *top = e->window();
    QTest::mouseClick(top->windowHandle(), Qt::RightButton, {},
                      e->viewport()->mapTo(top, PointOfWord(e, word)));
    return qobject_cast<QMenu *>(QApplication::activePopupWidget());
}

} // namespace oxa::test
