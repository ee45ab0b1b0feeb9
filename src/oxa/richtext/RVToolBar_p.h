#pragma once

// Internals of RVToolBar: not part of the installed API.

#include "oxa/richtext/RVToolBar.h"

#include <QHash>
#include <QMetaObject>
#include <QPointer>

class QAction;
class QButtonGroup;
class QComboBox;
class QToolButton;

namespace oxa {

class TOxaRichView;

// Carries out the editor operation of a button type that has one of its own
// (font styles by the new check state, alignment, clipboard, undo and redo,
// the table dialog); false for the types that only the host handles. The
// toolbar and the context menu share it, so that an item and a button of
// the same name do the same.
bool RunEditorCommand(TOxaRichView *editor, TRVToolButtonType typ, bool checked);

// The check state a font-style or alignment type has at the editor's caret.
bool EditorStateOf(const TOxaRichView *editor, TRVToolButtonType typ);

class TRVToolBarPrivate
{
public:
    explicit TRVToolBarPrivate(TRVToolBar *q) : q(q) { }

    QObject *CreateControl(TRVToolButtonType typ, QMenu *ppmenu);
    QToolButton *CreateButton(TRVToolButtonType typ, QMenu *ppmenu);
    QComboBox *CreateComboBox(TRVToolButtonType typ);
    TRVToolButtonType TypeOf(const QObject *control) const;
    QToolButton *Button(TRVToolButtonType typ) const;
    QComboBox *Combo(TRVToolButtonType typ) const;
    void UpdateStepButton(TRVToolButtonType typ, int undoType, const QString &customName,
                          const QString &idleHint, const QString &prefix);
    void OpenColorDialog(QToolButton *button, TColorChangeType type);
    void ApplyCombo(TRVToolButtonType typ, const QString &text, int index);
    void SyncCombo(TRVToolButtonType typ, const QString &text);
    // The colour buttons show the text's colour and background at the caret.
    void ShowColour(TRVToolButtonType typ, TColor color);
    void DisconnectEditor();

    TRVToolBar *q;
    QPointer<TOxaRichView> fEditor;
    QPointer<TColorForm> fColorDialog;
    TColorChangeType fColorChangeType = cctNone;
    QList<TObjectProp> fObjects;
    QList<QAction *> fActions; // the toolbar's action of each object, by index
    QButtonGroup *fAlignGroup = nullptr;
    QList<QMetaObject::Connection> fEditorConnections;
    bool fEnabled = true;
    QHash<int, TColor> fShownColours; // by button type
};

} // namespace oxa
