#include "oxa/toolkit/MessageService.h"

#include "oxa/toolkit/Exceptions.h"

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPushButton>

namespace oxa {

namespace {

MessageService::MessageAnswerer &messageAnswerer()
{
    static MessageService::MessageAnswerer answerer;
    return answerer;
}

MessageService::DialogAnswerer &dialogAnswerer()
{
    static MessageService::DialogAnswerer answerer;
    return answerer;
}

// A modal loop on a platform without a screen would wait for ever; fail loudly
// instead, so that a missing answer shows up as an error.
void refuseModalLoopWithoutScreen(const QString &what)
{
    if (QGuiApplication::platformName() == QLatin1String("offscreen"))
        qFatal("Unanswered modal UI on the offscreen platform: %s", qPrintable(what));
}

QString defaultCaption(TMsgDlgType type)
{
    switch (type) {
    case mtWarning:
        return QStringLiteral("Upozornění");
    case mtError:
        return QStringLiteral("Chyba");
    case mtInformation:
        return QStringLiteral("Informace");
    case mtConfirmation:
        return QStringLiteral("Potvrzení");
    case mtCustom:
        break;
    }
    return QApplication::applicationDisplayName();
}

QMessageBox::Icon iconOf(TMsgDlgType type)
{
    switch (type) {
    case mtWarning:
        return QMessageBox::Warning;
    case mtError:
        return QMessageBox::Critical;
    case mtInformation:
        return QMessageBox::Information;
    case mtConfirmation:
        return QMessageBox::Question;
    case mtCustom:
        break;
    }
    return QMessageBox::NoIcon;
}

TModalResult execMessageBox(const TMessageRequest &request)
{
    refuseModalLoopWithoutScreen(request.Text);
    QMessageBox box(iconOf(request.Type), request.Caption, request.Text, QMessageBox::NoButton,
                    request.Parent);
    struct ButtonDef
    {
        TMsgDlgBtnFlag flag;
        const char *text;
        QMessageBox::ButtonRole role;
        TModalResult result;
    };
    static const ButtonDef defs[] = {
        {mbYes, "&Ano", QMessageBox::YesRole, mrYes},
        {mbNo, "&Ne", QMessageBox::NoRole, mrNo},
        {mbOK, "OK", QMessageBox::AcceptRole, mrOk},
        {mbCancel, "Storno", QMessageBox::RejectRole, mrCancel},
        {mbAbort, "&Přerušit", QMessageBox::RejectRole, mrAbort},
        {mbRetry, "&Opakovat", QMessageBox::AcceptRole, mrRetry},
        {mbIgnore, "&Ignorovat", QMessageBox::AcceptRole, mrIgnore},
    };
    QList<QPair<QAbstractButton *, TModalResult>> buttons;
    for (const ButtonDef &def : defs) {
        if (!(request.Buttons & def.flag))
            continue;
        QPushButton *button = box.addButton(QString::fromUtf8(def.text), def.role);
        if (request.DefaultButton & def.flag)
            box.setDefaultButton(button);
        buttons.append({button, def.result});
    }
    box.exec();
    for (const auto &[button, result] : buttons) {
        if (box.clickedButton() == button)
            return result;
    }
    return request.Buttons & mbCancel ? mrCancel : mrNone;
}

} // namespace

TModalResult MessageService::MessageDlg(const QString &text, TMsgDlgType type,
                                        TMsgDlgButtons buttons, QWidget *parent,
                                        const QString &caption, TMsgDlgButtons defaultButton)
{
    TMessageRequest request;
    request.Type = type;
    request.Caption = caption.isEmpty() ? defaultCaption(type) : caption;
    request.Text = text;
    request.Buttons = buttons;
    request.DefaultButton = defaultButton;
    request.Parent = parent;
    if (messageAnswerer())
        return messageAnswerer()(request);
    return execMessageBox(request);
}

void MessageService::ShowMessage(const QString &text, QWidget *parent)
{
    MessageDlg(text, mtCustom, mbOK, parent);
}

void MessageService::ShowError(const QString &text, QWidget *parent)
{
    MessageDlg(text, mtError, mbOK, parent);
}

void MessageService::ShowWarning(const QString &text, QWidget *parent)
{
    MessageDlg(text, mtWarning, mbOK, parent);
}

bool MessageService::Confirm(const QString &text, QWidget *parent, TMsgDlgButtons defaultButton)
{
    return MessageDlg(text, mtConfirmation, mbYesNo, parent, QString(), defaultButton) == mrYes;
}

TModalResult MessageService::MessageBox(QWidget *parent, const QString &text,
                                        const QString &caption, TMsgDlgType type,
                                        TMsgDlgButtons buttons)
{
    return MessageDlg(text, type, buttons, parent,
                      caption.isEmpty() ? QStringLiteral(" ") : caption);
}

void MessageService::ShowException(const std::exception &error, QWidget *parent)
{
    const auto *own = dynamic_cast<const Exception *>(&error);
    const QString text = own ? own->Message() : QString::fromLocal8Bit(error.what());
    MessageDlg(text, mtError, mbOK, parent);
}

TModalResult MessageService::ExecDialog(QDialog *dialog)
{
    if (!dialog)
        return mrNone;
    if (dialogAnswerer())
        return dialogAnswerer()(dialog);
    refuseModalLoopWithoutScreen(dialog->windowTitle());
    return dialog->exec();
}

void MessageService::SetMessageAnswerer(MessageAnswerer answerer)
{
    messageAnswerer() = std::move(answerer);
}

void MessageService::SetDialogAnswerer(DialogAnswerer answerer)
{
    dialogAnswerer() = std::move(answerer);
}

bool MessageService::HasMessageAnswerer()
{
    return bool(messageAnswerer());
}

bool MessageService::HasDialogAnswerer()
{
    return bool(dialogAnswerer());
}

void HandleExceptions(QWidget *context, const std::function<void()> &fn)
{
    try {
        fn();
    } catch (const std::exception &error) {
        MessageService::ShowException(error, context);
    }
}

} // namespace oxa
