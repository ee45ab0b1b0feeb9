#pragma once

#include "oxa/oxa_export.h"

#include <QFlags>
#include <QString>
#include <exception>
#include <functional>

class QDialog;
class QWidget;

namespace oxa {

enum TMsgDlgType { mtWarning, mtError, mtInformation, mtConfirmation, mtCustom };

enum TMsgDlgBtnFlag {
    mbYes = 0x001,
    mbNo = 0x002,
    mbOK = 0x004,
    mbCancel = 0x008,
    mbAbort = 0x010,
    mbRetry = 0x020,
    mbIgnore = 0x040,
};
Q_DECLARE_FLAGS(TMsgDlgButtons, TMsgDlgBtnFlag)
Q_DECLARE_OPERATORS_FOR_FLAGS(TMsgDlgButtons)

inline constexpr TMsgDlgButtons mbOKCancel = TMsgDlgButtons(mbOK | mbCancel);
inline constexpr TMsgDlgButtons mbYesNo = TMsgDlgButtons(mbYes | mbNo);
inline constexpr TMsgDlgButtons mbYesNoCancel = TMsgDlgButtons(mbYes | mbNo | mbCancel);

// Modal results, numbered as the toolkit numbers them.
using TModalResult = int;
inline constexpr TModalResult mrNone = 0;
inline constexpr TModalResult mrOk = 1;
inline constexpr TModalResult mrCancel = 2;
inline constexpr TModalResult mrAbort = 3;
inline constexpr TModalResult mrRetry = 4;
inline constexpr TModalResult mrIgnore = 5;
inline constexpr TModalResult mrYes = 6;
inline constexpr TModalResult mrNo = 7;

// One message box as the library asks for it.
struct OXA_EXPORT TMessageRequest
{
    TMsgDlgType Type = mtInformation;
    QString Caption;
    QString Text;
    TMsgDlgButtons Buttons = mbOK;
    // The button Enter presses; none: the box's own choice.
    TMsgDlgButtons DefaultButton;
    QWidget *Parent = nullptr;
};

// The one place through which the library shows modal UI: message boxes and
// modal dialogs. An answerer installed by a test (or a host that wants its own
// presentation) answers instead of a real modal loop.
class OXA_EXPORT MessageService
{
public:
    using MessageAnswerer = std::function<TModalResult(const TMessageRequest &)>;
    // Receives the dialog that would run modally; it may show and drive the
    // dialog and returns the modal result.
    using DialogAnswerer = std::function<TModalResult(QDialog *)>;

    // Shows a message box and returns the button the user pressed.
    static TModalResult MessageDlg(const QString &text, TMsgDlgType type, TMsgDlgButtons buttons,
                                   QWidget *parent = nullptr, const QString &caption = QString(),
                                   TMsgDlgButtons defaultButton = {});
    static void ShowMessage(const QString &text, QWidget *parent = nullptr);
    static void ShowError(const QString &text, QWidget *parent = nullptr);
    static void ShowWarning(const QString &text, QWidget *parent = nullptr);
    // Yes or No; defaultButton mbNo makes Enter keep things as they are
    // (before deleting, say).
    static bool Confirm(const QString &text, QWidget *parent = nullptr,
                        TMsgDlgButtons defaultButton = {});
    // A box with a caption of its own, as the platform's message box shows it.
    static TModalResult MessageBox(QWidget *parent, const QString &text, const QString &caption,
                                   TMsgDlgType type = mtInformation, TMsgDlgButtons buttons = mbOK);
    // Reports an exception that escaped an event handler, as the
    // application's default handler does.
    static void ShowException(const std::exception &error, QWidget *parent = nullptr);

    // Runs the dialog modally and returns its result.
    static TModalResult ExecDialog(QDialog *dialog);

    static void SetMessageAnswerer(MessageAnswerer answerer);
    static void SetDialogAnswerer(DialogAnswerer answerer);
    static bool HasMessageAnswerer();
    static bool HasDialogAnswerer();
};

// Runs fn and reports an exception that escapes it through ShowException;
// this is where an event handler's failure reaches the user.
OXA_EXPORT void HandleExceptions(QWidget *context, const std::function<void()> &fn);

} // namespace oxa
