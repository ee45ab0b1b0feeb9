#pragma once

#include "oxa/oxa_export.h"
#include "oxa/toolkit/WinControl.h"

#include <QTreeWidget>

#include <functional>
#include <memory>

namespace oxa {

// The check state of a node, its state index.
enum TTVStates {
    itvNil = 0, // no check box: the node and its subtree take no part
    itvUnchecked = 1,
    itvGrayChecked = 2, // mixed: some descendants checked, some not
    itvChecked = 3,
};

using TTVStateImageClick = std::function<void(QObject *Sender, QTreeWidgetItem *Node)>;

// A tree whose nodes carry a three-state check box, drawn as the node's
// state image left of its icon and text. Toggling a node carries its state
// down to its whole subtree and recomputes its ancestors: checked,
// unchecked, or grey when their children differ.
//
// The user toggles a node by clicking its state image (anywhere else on the
// node only selects it) or by releasing Space on the current node; releasing
// Enter expands or collapses the current node. With OnStateImageClick
// assigned, clicks and Space call it instead of toggling.
//
// The state index of a node lives in its check state of column 0 (so a host
// may also read it with checkState): no check state is itvNil, Qt::Unchecked
// itvUnchecked, Qt::PartiallyChecked itvGrayChecked, Qt::Checked itvChecked.
// Qt's own toggling of check boxes is off, and nodes should not be
// Qt::ItemIsAutoTristate: the tree computes the mixed states itself.
class OXA_EXPORT TCheckTreeView : public TWinControl<QTreeWidget>
{
    Q_OBJECT

public:
    explicit TCheckTreeView(QWidget *parent = nullptr);
    ~TCheckTreeView() override;

    // The state index of a node (0 to 3); setting 0 or less removes the
    // check box.
    static int StateIndex(const QTreeWidgetItem *Node);
    static void SetStateIndex(QTreeWidgetItem *Node, int StateIndex);

    // The default toggle of a node with a check box: grey and checked become
    // unchecked, unchecked becomes checked; then the parent, the subtree
    // (unless the new state is grey) and all ancestors follow.
    void StateImageClick(QTreeWidgetItem *Node);
    // Sets every node of Node's subtree that has a check box to StateIndex,
    // skipping the subtrees of children without one; Node itself too when it
    // has a check box.
    void CTVSetChild(QTreeWidgetItem *Node, int StateIndex);
    // Recomputes every ancestor of Node from its children that have check
    // boxes: their common state, or grey when they differ. A parent none of
    // whose children has a check box keeps its state.
    void CTVSetParent(QTreeWidgetItem *Node);
    // Recomputes the direct parent only: Node's state, or grey when any
    // child differs from it, children without a check box included.
    void RefreshParent(QTreeWidgetItem *Node);

    // Where the node's state image is drawn, in viewport coordinates; empty
    // when the node has no check box or is not shown.
    QRect StateImageRect(QTreeWidgetItem *Node) const;

    // Kept for the forms that set it; nothing reads it.
    bool DisablePropageCheckClick() const;
    void SetDisablePropageCheckClick(bool Value);

    TTVStateImageClick OnStateImageClick;

Q_SIGNALS:
    // A node was toggled by the default toggle (click, Space or
    // StateImageClick); its subtree and ancestors are already updated.
    void stateImageClicked(QTreeWidgetItem *Node);

protected:
    void KeyUp(Word &Key, TShiftState Shift) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    // A click on the state image or Space: the host's handler, or the toggle.
    void StateImageAction(QTreeWidgetItem *Node);
    bool OnStateImage(const QPoint &Position, QTreeWidgetItem *&Node) const;

    class OXA_NO_EXPORT Private;
    std::unique_ptr<Private> const d;
};

// Adds TCheckTreeView to the catalogue, page "Oxa".
OXA_EXPORT void RegisterCheckTreeView();

} // namespace oxa
