#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/Color.h"
#include "oxa/toolkit/Keys.h"
#include "oxa/toolkit/MessageService.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QList>
#include <QMetaObject>
#include <QObject>
#include <QWidget>
#include <functional>
#include <type_traits>

namespace oxa {

enum TOperation { opInsert, opRemove };

// The toolkit's SetFocus: a control that cannot take the focus (disabled or
// not visible, itself or through a parent) raises EInvalidOperation.
OXA_EXPORT void SetFocusTo(QWidget *control);
// The control's own Enabled flag, regardless of its parents.
OXA_EXPORT bool ControlEnabled(const QWidget *control);
// The text of the error for focusing a control that cannot take the focus.
OXA_EXPORT QString CannotFocusMessage();

// Whether a focus change moves the focus between controls of a window (the
// toolkit's entry and exit) rather than activating a window or opening a
// popup, which leave the active control of the form as it was.
OXA_EXPORT bool IsControlFocusChange(const QFocusEvent *event);

// Emits the NOTIFY signal of object's property, when it has one: how code
// shared by several classes (the focus navigation templates) announces a
// change that each class declares as its own signal.
OXA_EXPORT void NotifyPropertyChanged(QObject *object, const char *property);

// The handler types of the toolkit's events.
using TNotifyEvent = std::function<void(QObject *sender)>;
using TKeyEvent = std::function<void(QObject *sender, Word &key, TShiftState shift)>;
using TKeyPressEvent = std::function<void(QObject *sender, QChar &key)>;

// The toolkit's windowed control on top of a Qt widget class. It turns Qt's
// key and focus events into the toolkit's virtual handlers:
//   keyPressEvent   -> KeyDown(key, shift), then KeyPress(ch) for typed text;
//                      a key or character zeroed there is consumed;
//   keyReleaseEvent -> KeyUp(key, shift);
//   focusInEvent    -> DoEnter(), focusOutEvent -> DoExit()
// and keeps the toolkit's Color and its free notifications. An exception that
// escapes a handler is shown through the message service.
template<class QtBase>
class TWinControl : public QtBase
{
public:
    using QtBase::QtBase;
    // Marks classes that already carry the toolkit's event mapping.
    using OxaWinControlTag = void;

    ~TWinControl() override
    {
        for (const QMetaObject::Connection &c : m_freeNotifications)
            QObject::disconnect(c);
    }

    TColor Color() const { return m_color; }
    void SetColor(TColor color)
    {
        m_color = color;
        SetControlColor(this, color);
    }

    bool Enabled() const { return ControlEnabled(this); }
    void SetFocus() { SetFocusTo(this); }
    bool Focused() const { return this->hasFocus(); }
    QString Name() const { return this->objectName(); }

    // Asks the component to call Notification(component, opRemove) on this
    // control when it is destroyed.
    void FreeNotification(QObject *component)
    {
        if (!component || component == this)
            return;
        m_freeNotifications.append(
            QObject::connect(component, &QObject::destroyed, this,
                             [this](QObject *gone) { Notification(gone, opRemove); }));
    }

    TNotifyEvent OnEnter;
    TNotifyEvent OnExit;
    TKeyEvent OnKeyDown;
    TKeyEvent OnKeyUp;
    TKeyPressEvent OnKeyPress;

protected:
    virtual void KeyDown(Word &key, TShiftState shift)
    {
        if (OnKeyDown)
            OnKeyDown(this, key, shift);
    }
    virtual void KeyPress(QChar &key)
    {
        if (OnKeyPress)
            OnKeyPress(this, key);
    }
    virtual void KeyUp(Word &key, TShiftState shift)
    {
        if (OnKeyUp)
            OnKeyUp(this, key, shift);
    }
    virtual void DoEnter()
    {
        if (OnEnter)
            OnEnter(this);
    }
    virtual void DoExit()
    {
        if (OnExit)
            OnExit(this);
    }
    virtual void Notification(QObject *component, TOperation operation)
    {
        Q_UNUSED(component);
        Q_UNUSED(operation);
    }
    // Called once after the control's properties were set by whoever built
    // it (a .ui form, the host's code) and before it is first shown.
    virtual void Loaded() { }

    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::Polish && !m_loaded) {
            m_loaded = true;
            bool failed = false;
            guarded([this] { Loaded(); }, failed);
        }
        return QtBase::event(event);
    }

    // Whether the control counts as entered: between DoEnter and DoExit.
    bool Entered() const { return m_entered; }

    void keyPressEvent(QKeyEvent *event) override
    {
        Word key = 0;
        TShiftState shift;
        KeyFromEvent(event, key, shift);
        const Word original = key;
        bool failed = false;
        if (key != 0)
            guarded([&] { KeyDown(key, shift); }, failed);
        if (failed || (original != 0 && key == 0)) {
            event->accept();
            return;
        }
        if (!event->text().isEmpty()) {
            QChar ch = event->text().at(0);
            const QChar typed = ch;
            guarded([&] { KeyPress(ch); }, failed);
            if (failed || ch.isNull()) {
                event->accept();
                return;
            }
            if (ch != typed) {
                QKeyEvent changed(event->type(), event->key(), event->modifiers(), QString(ch),
                                  event->isAutoRepeat(), ushort(event->count()));
                QtBase::keyPressEvent(&changed);
                event->setAccepted(changed.isAccepted());
                return;
            }
        }
        QtBase::keyPressEvent(event);
    }

    void keyReleaseEvent(QKeyEvent *event) override
    {
        Word key = 0;
        TShiftState shift;
        KeyFromEvent(event, key, shift);
        const Word original = key;
        bool failed = false;
        if (key != 0)
            guarded([&] { KeyUp(key, shift); }, failed);
        if (failed || (original != 0 && key == 0))
            event->accept();
        else
            QtBase::keyReleaseEvent(event);
    }

    void focusInEvent(QFocusEvent *event) override
    {
        QtBase::focusInEvent(event);
        if (!m_entered) {
            m_entered = true;
            bool failed = false;
            guarded([this] { DoEnter(); }, failed);
        }
    }

    void focusOutEvent(QFocusEvent *event) override
    {
        QtBase::focusOutEvent(event);
        if (m_entered && IsControlFocusChange(event)) {
            m_entered = false;
            bool failed = false;
            guarded([this] { DoExit(); }, failed);
        }
    }

    // Runs a handler; an escaping exception is shown to the user.
    template<class Fn>
    void guarded(Fn &&fn, bool &failed)
    {
        try {
            fn();
        } catch (const std::exception &error) {
            failed = true;
            MessageService::ShowException(error, this);
        }
    }

    // Runs a handler of the host; an exception it raises is shown to the
    // user, and a given answer (Allow, Accept) becomes false.
    template<class Fn>
    void Safely(Fn &&fn)
    {
        bool failed = false;
        guarded(std::forward<Fn>(fn), failed);
    }
    template<class Fn>
    void Safely(Fn &&fn, bool &answer)
    {
        bool failed = false;
        guarded(std::forward<Fn>(fn), failed);
        answer = answer && !failed;
    }

    // Lets a DoExit that refuses the exit keep the control entered.
    void SetEntered(bool entered) { m_entered = entered; }

private:
    TColor m_color = clWindow;
    bool m_entered = false;
    bool m_loaded = false;
    QList<QMetaObject::Connection> m_freeNotifications;
};

// TWinControl<T>, unless T already is one (a grid of the toolkit, say).
template<class T, class = void>
struct WinControlOf
{
    using type = TWinControl<T>;
};
template<class T>
struct WinControlOf<T, std::void_t<typename T::OxaWinControlTag>>
{
    using type = T;
};

} // namespace oxa
