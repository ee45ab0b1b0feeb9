#include "oxa/toolkit/OwnerFollower.h"

#include <QEvent>

namespace oxa {

TOwnerFollower::TOwnerFollower(QWidget *owner, QWidget *companion, std::function<void()> place,
                               int follow)
    : QObject(companion), m_owner(owner), m_companion(companion), m_place(std::move(place)),
      m_follow(follow)
{
    owner->installEventFilter(this);
    Follow();
}

void TOwnerFollower::SetShowCondition(std::function<bool()> condition)
{
    m_showCondition = std::move(condition);
    UpdateVisibility();
}

void TOwnerFollower::Follow()
{
    if (!m_owner || !m_companion)
        return;
    QWidget *parent = m_owner->parentWidget();
    if (m_companion->parentWidget() != parent)
        m_companion->setParent(parent); // hides it; UpdateVisibility shows it again
    if (m_follow & FollowEnabled)
        m_companion->setEnabled(m_owner->isEnabled());
    if (m_place)
        m_place();
    UpdateVisibility();
}

// Shown unless the owner was hidden by the program: an owner not shown yet
// (its window is not) takes the companion along when it appears.
void TOwnerFollower::UpdateVisibility()
{
    if (!m_owner || !m_companion)
        return;
    const bool hiddenByProgram =
        m_owner->isHidden() && m_owner->testAttribute(Qt::WA_WState_ExplicitShowHide);
    const bool shown =
        m_companion->parentWidget() && !hiddenByProgram && (!m_showCondition || m_showCondition());
    m_companion->setVisible(shown);
}

bool TOwnerFollower::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_owner) {
        switch (event->type()) {
        case QEvent::ParentChange:
            Follow();
            break;
        case QEvent::Move:
        case QEvent::Resize:
            if (m_place)
                m_place();
            break;
        case QEvent::ShowToParent:
        case QEvent::HideToParent:
            UpdateVisibility();
            break;
        case QEvent::EnabledChange:
            if ((m_follow & FollowEnabled) && m_companion)
                m_companion->setEnabled(m_owner->isEnabled());
            break;
        default:
            break;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace oxa
