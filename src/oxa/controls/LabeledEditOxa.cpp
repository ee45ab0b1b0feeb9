#include "oxa/controls/LabeledEditOxa.h"

#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/OwnerFollower.h"

namespace oxa {

TLabeledEditOxa::TLabeledEditOxa(QWidget *parent) : Base(parent), FEditLabel(new QLabel(parent))
{
    FEditLabel->setObjectName(QStringLiteral("SubEditLabel"));
    FEditLabel->setBuddy(this);
    new TOwnerFollower(
        this, FEditLabel, [this] { placeLabel(); }, TOwnerFollower::FollowEnabled);
}

TLabeledEditOxa::~TLabeledEditOxa()
{
    delete FEditLabel; // may already be gone with the parent
}

QString TLabeledEditOxa::LabelCaption() const
{
    return FEditLabel ? FEditLabel->text() : QString();
}

void TLabeledEditOxa::SetLabelCaption(const QString &caption)
{
    if (!FEditLabel)
        return;
    if (FEditLabel->text() == caption)
        return;
    FEditLabel->setText(caption);
    placeLabel();
    Q_EMIT labelCaptionChanged();
}

void TLabeledEditOxa::SetLabelPosition(TLabelPosition position)
{
    if (position == FLabelPosition)
        return;
    FLabelPosition = position;
    placeLabel();
    Q_EMIT labelPositionChanged();
}

void TLabeledEditOxa::SetLabelSpacing(int spacing)
{
    if (spacing == FLabelSpacing)
        return;
    FLabelSpacing = spacing;
    placeLabel();
    Q_EMIT labelSpacingChanged();
}

void TLabeledEditOxa::placeLabel()
{
    if (!FEditLabel)
        return;
    FEditLabel->adjustSize();
    const QSize label = FEditLabel->size();
    const int middle = y() + (height() - label.height()) / 2;
    QPoint at;
    switch (FLabelPosition) {
    case lpAbove:
        at = {x(), y() - label.height() - FLabelSpacing};
        break;
    case lpBelow:
        at = {x(), y() + height() + FLabelSpacing};
        break;
    case lpLeft:
        at = {x() - label.width() - FLabelSpacing, middle};
        break;
    case lpRight:
        at = {x() + width() + FLabelSpacing, middle};
        break;
    }
    FEditLabel->move(at);
}

void TLabeledEditOxa::DoEnter()
{
    ShowActiveColor();
    Base::DoEnter();
}

void TLabeledEditOxa::DoExit()
{
    ShowDefaultColor();
    Base::DoExit();
}

void RegisterLabeledEditOxa()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TLabeledEditOxa>(
        QStringLiteral("Oxa"), QStringLiteral("TLabeledEditOxa"), QStringLiteral("LabeledEditOxa"),
        QStringLiteral("oxa/controls/LabeledEditOxa.h"))});
}

} // namespace oxa
