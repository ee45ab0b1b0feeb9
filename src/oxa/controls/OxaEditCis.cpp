#include "oxa/controls/OxaEditCis.h"

#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/OwnerFollower.h"

#include <QEvent>
#include <QMetaProperty>
#include <QMouseEvent>
#include <QToolButton>

namespace oxa {

namespace {

bool hasWritableText(const QWidget *control)
{
    const QMetaObject *meta = control->metaObject();
    const int index = meta->indexOfProperty("text");
    return index >= 0 && meta->property(index).isWritable();
}

} // namespace

TOxaEditCis::TOxaEditCis(QWidget *parent)
    : TEditOxa(parent), FButton(new QToolButton(parent)),
      FBtnHint(QStringLiteral("Otevřít číselník"))
{
    FButton->setObjectName(QStringLiteral("SubButton"));
    FButton->setText(QStringLiteral("..."));
    // A speed button: clicking it leaves the focus where it is.
    FButton->setFocusPolicy(Qt::NoFocus);
    connect(FButton, &QToolButton::clicked, this,
            [this] { HandleExceptions(this, [this] { BtnClick(FButton); }); });
    SetBtnHint(FBtnHint);
    new TOwnerFollower(
        this, FButton, [this] { placeButton(); }, TOwnerFollower::FollowEnabled);
}

TOxaEditCis::~TOxaEditCis()
{
    delete FButton; // may already be gone with the parent
}

void TOxaEditCis::SetShortCut(TShortCut value)
{
    const bool changed = value != FShortCut;
    FShortCut = value;
    SetBtnHint(FBtnHint);
    if (changed)
        Q_EMIT shortCutChanged();
}

void TOxaEditCis::SetBtnHint(const QString &hint)
{
    const bool changed = hint != FBtnHint;
    FBtnHint = hint;
    if (FButton)
        FButton->setToolTip(hint + QLatin1Char(' ') + ShortCutToText(FShortCut));
    if (changed)
        Q_EMIT btnHintChanged();
}

void TOxaEditCis::SetSecondEdit(QWidget *edit)
{
    if (edit && !hasWritableText(edit))
        throw EInvalidOperation(QStringLiteral("Ovládací prvek %1 nemá text, který by šlo nastavit")
                                    .arg(QString::fromLatin1(edit->metaObject()->className())));
    const bool changed = edit != FSecondEdit;
    FSecondEdit = edit;
    if (edit)
        FreeNotification(edit);
    if (changed)
        Q_EMIT secondEditChanged();
}

void TOxaEditCis::Notification(QObject *component, TOperation operation)
{
    TEditOxa::Notification(component, operation);
    if (operation == opRemove && component == FSecondEdit) {
        FSecondEdit = nullptr;
        Q_EMIT secondEditChanged();
    }
}

void TOxaEditCis::DoClick()
{
    BtnClick(this);
}

void TOxaEditCis::BtnClick(QObject *)
{
    if (!hasFocus() && isVisible() && isEnabled())
        setFocus(Qt::OtherFocusReason);
    if (!OnBtnClick && !OnBtnClick2)
        return;
    const int start = SelStart();
    const int length = int(selectedText().length());
    QString newText = text();
    if (!FSecondEdit) {
        if (OnBtnClick)
            OnBtnClick(this, newText);
    } else {
        // The second edit is written also without OnBtnClick2, and is then
        // cleared: the toolkit always did so.
        QString second;
        if (OnBtnClick2)
            OnBtnClick2(this, newText, second);
        if (FSecondEdit) // the handler may have freed it
            FSecondEdit->setProperty("text", second);
    }
    setText(newText);
    RestoreSelection(start, length);
}

int TOxaEditCis::SelStart() const
{
    return hasSelectedText() ? selectionStart() : cursorPosition();
}

// Only as far as the new text reaches.
void TOxaEditCis::RestoreSelection(int start, int length)
{
    const int textLength = int(text().length());
    if (textLength > start)
        setCursorPosition(start);
    if (length > 0 && textLength > start + length)
        setSelection(start, length);
}

void TOxaEditCis::KeyDown(Word &Key, TShiftState Shift)
{
    TEditOxa::KeyDown(Key, Shift);
    if (FShortCut != 0 && oxa::ShortCut(Key, Shift) == FShortCut)
        DoClick();
}

void TOxaEditCis::mouseDoubleClickEvent(QMouseEvent *event)
{
    TEditOxa::mouseDoubleClickEvent(event);
    const TShiftState shift = ShiftStateFromMouse(event->modifiers(), event->buttons(), true);
    if (shift == TShiftState(ssLeft | ssDouble))
        HandleExceptions(this, [this] { DoClick(); });
}

// A square as high as the edit, touching its right edge.
void TOxaEditCis::placeButton()
{
    if (FButton)
        FButton->setGeometry(x() + width(), y(), height(), height());
}

void RegisterOxaEditCis()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TOxaEditCis>(
        QStringLiteral("Oxa"), QStringLiteral("TOxaEditCis"), QStringLiteral("OxaEditCis"),
        QStringLiteral("oxa/controls/OxaEditCis.h"))});
}

} // namespace oxa
