#pragma once

#include "oxa/oxa_export.h"

#include "oxa/controls/EditOxa.h"

#include <QPointer>
#include <QString>
#include <QToolButton>
#include <functional>

namespace oxa {

// Asked for the new text of the edit; Text comes in as the edit's text.
using TOxaEditBtnClick = std::function<void(QObject *Sender, QString &Text)>;
// The same with the text of the second edit, which comes in empty.
using TOxaEditBtnClick2 = std::function<void(QObject *Sender, QString &Text, QString &SecondText)>;

// A TEditOxa for values of a code list kept by the host. A square "..."
// button stands right of the edit on the edit's parent; the button, the
// ShortCut (Ctrl+F1 unless set otherwise) and a double click in the edit
// hand the text to the host, which opens its code list and hands back the
// new text (OnBtnClick), or the new text and the text of SecondEdit
// (OnBtnClick2, used when SecondEdit is set). The selection is restored as
// far as the new text reaches.
//
// The button follows the edit: its position and height (it is as high as
// wide), its parent, its visibility and enabled state; it is destroyed with
// the edit. Its hint reads BtnHint, a space and the shortcut's text
// ("Otevřít číselník Ctrl+F1"). Meant for forms with placed controls, like
// the designer's.
class OXA_EXPORT TOxaEditCis : public TEditOxa
{
    Q_OBJECT
    Q_PROPERTY(ushort ShortCut READ ShortCut WRITE SetShortCut NOTIFY shortCutChanged)
    Q_PROPERTY(QString BtnHint READ BtnHint WRITE SetBtnHint NOTIFY btnHintChanged)
    Q_PROPERTY(QWidget *SecondEdit READ SecondEdit WRITE SetSecondEdit NOTIFY secondEditChanged)

public:
    explicit TOxaEditCis(QWidget *parent = nullptr);
    ~TOxaEditCis() override;

    // The toolkit's shortcut (key code and scShift/scCtrl/scAlt); 0 is none.
    TShortCut ShortCut() const { return FShortCut; }
    void SetShortCut(TShortCut value);
    QString BtnHint() const { return FBtnHint; }
    void SetBtnHint(const QString &hint);

    // A control with a writable "text" property (a QLineEdit, a QLabel...),
    // not owned; EInvalidOperation for any other.
    QWidget *SecondEdit() const { return FSecondEdit; }
    void SetSecondEdit(QWidget *edit);

    // The "..." button.
    QToolButton *Button() const { return FButton; }

    // Acts as a click on the button. Exceptions of the host's handlers
    // reach the caller.
    void DoClick();

    TOxaEditBtnClick OnBtnClick;
    TOxaEditBtnClick2 OnBtnClick2;

Q_SIGNALS:
    void shortCutChanged();
    void btnHintChanged();
    void secondEditChanged();

protected:
    // The click handler of the button.
    void BtnClick(QObject *Sender);

    void KeyDown(Word &Key, TShiftState Shift) override;
    void Notification(QObject *component, TOperation operation) override;

    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    void placeButton();
    int SelStart() const;
    void RestoreSelection(int start, int length);

    QPointer<QToolButton> FButton;
    TShortCut FShortCut = scCtrl | VK_F1;
    QString FBtnHint;
    QWidget *FSecondEdit = nullptr;
};

OXA_EXPORT void RegisterOxaEditCis();

} // namespace oxa
