#pragma once

#include <memory>

#include "oxa/oxa_export.h"

#include <QLabel>
#include <QList>
#include <QObject>
#include <QPixmap>
#include <QPointer>
#include <QString>

class QTimer;

namespace oxa {

class TErrorProviderPrivate;

class TOwnerFollower;

// The kind of a mark; a lower value is more serious.
enum TErrorType { etError, etWarning, etInformation, etConfirmation };

// Where a mark sits relative to its control.
enum TJustifyType {
    jtTopLeft,
    jtTopRight,
    jtBottomLeft,
    jtBottomRight,
    jtCenterRight,
    jtCenterLeft
};

// One mark: a 16x16 icon placed on the marked control's parent, with the
// message as its tooltip. Double-clicking it emits DblClick.
class OXA_EXPORT TErrorImage : public QLabel
{
    Q_OBJECT

public:
    static constexpr int ImageSize = 16;

    explicit TErrorImage(QWidget *parent = nullptr);

    TErrorType fErrorType = etError;
    // Blink steps still to run.
    int fNumberOfBlick = 0;

    QString Hint() const { return toolTip(); }
    TErrorType ErrorType() const { return fErrorType; }
    // The control the mark stands beside (null once it is gone).
    QWidget *Control() const { return fControl; }
    TJustifyType Justify() const { return fJustify; }

Q_SIGNALS:
    void DblClick(oxa::TErrorImage *sender);

protected:
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    friend class TErrorProvider;

    // Stands beside control from now on: its parent, its place by the
    // justification, shown only while the control is not hidden.
    void Attach(QWidget *control, TJustifyType justify);
    void PlaceBesideControl();
    // The mark's own visibility (the blink phase); the mark is on screen only
    // while its control is not hidden as well.
    void SetShown(bool shown);
    bool Shown() const { return fShown; }
    void ApplyVisibility();

    QPointer<QWidget> fControl;
    // The control's address, kept for recognising it while it is destroyed.
    const QObject *fControlKey = nullptr;
    TJustifyType fJustify = jtTopRight;
    bool fShown = true;
    TOwnerFollower *fFollower = nullptr;
};

// A non-visual component that marks form controls with an error, warning,
// information or confirmation icon beside them. A new mark blinks through six
// phases, in step with the other blinking marks, and then stays. Marks are
// keyed by the control's object name: controls of the same name share one
// mark. A mark follows its control when it moves, resizes, hides or changes
// parent, and goes away with it.
class OXA_EXPORT TErrorProvider : public QObject
{
    Q_OBJECT

public:
    static constexpr int DefaultBlickInterval = 250;
    static constexpr int BlickSteps = 6;

    explicit TErrorProvider(QObject *aOwner = nullptr);
    ~TErrorProvider() override;

    // Sets, replaces or (with an empty text) clears the control's mark. A
    // weaker kind never replaces a stronger mark; that mark blinks again.
    void SetError(QWidget *aControl, const QString &aErrorText, TErrorType aErrorType,
                  TJustifyType aJustify = jtTopRight);
    void ClearError(QWidget *aControl);
    void ClearAllErrors();

    // Brackets a batch of SetError calls: blinking pauses, and the marks
    // created meanwhile start hidden and appear through the blinking after
    // EndUpdate.
    void BeginUpdate();
    void EndUpdate();
    bool Updating() const;

    // The mark of the control (by its name), or null.
    TErrorImage *ErrorImage(const QWidget *aControl) const;
    TErrorImage *ErrorImage(const QString &aName) const;
    int ErrorCount() const;
    int BlickCount() const;

    // The length of one blink phase in milliseconds.
    int BlickInterval() const;
    void SetBlickInterval(int aMilliseconds);

    // The icon of a kind, from the library's resources "ERROR", "WARNING",
    // "INFORMATION" and "CONFIRMATION".
    static QPixmap ErrorBitmap(TErrorType aErrorType);

protected:
private:
    void Blick(TErrorImage *image, const QString &name);
    void OnTimer();
    void OnDblClick(TErrorImage *sender);
    void ControlDestroyed(QObject *control);
    void ImageDestroyed(QObject *image);

    TErrorImage *CreateImage(QWidget *aControl, const QString &aErrorText, TErrorType aErrorType,
                             TJustifyType aJustify);
    void FreeImage(TErrorImage *image);
    bool IsMarked(const QObject *control) const;
    void RestartTimer();

    std::unique_ptr<TErrorProviderPrivate> const d;
};

OXA_EXPORT void RegisterErrorProvider();

} // namespace oxa
