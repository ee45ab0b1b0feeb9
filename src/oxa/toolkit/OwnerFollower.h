#pragma once

#include "oxa/oxa_export.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>

namespace oxa {

// Keeps a companion widget (an edit's label or button, an error mark) with
// the control it belongs to, the owner: on the owner's parent, placed anew
// whenever the owner moves or changes size, shown while the owner is on a
// parent and not hidden by the program (and the host's condition holds),
// and, when asked, enabled with it. It watches the owner through an event
// filter, so the owner's class needs no code of its own for it. A companion
// without a parent would be a window of its own: it is hidden then.
//
// The follower is a child of the companion, so it ends with it; the
// companion itself belongs to whoever made it.
class OXA_EXPORT TOwnerFollower : public QObject
{
    Q_OBJECT

public:
    enum TFollow { FollowGeometry = 0x0, FollowEnabled = 0x1 };

    // place puts the companion beside the owner, in the parent's coordinates.
    TOwnerFollower(QWidget *owner, QWidget *companion, std::function<void()> place,
                   int follow = FollowGeometry);

    // A further condition for the companion to be shown (an error mark's
    // blink phase, say); re-evaluated by UpdateVisibility.
    void SetShowCondition(std::function<bool()> condition);

    // Puts the companion on the owner's parent, in its place, shown or not.
    void Follow();
    void UpdateVisibility();

    QWidget *Owner() const { return m_owner; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<QWidget> m_owner;
    QPointer<QWidget> m_companion;
    std::function<void()> m_place;
    std::function<bool()> m_showCondition;
    int m_follow;
};

} // namespace oxa
