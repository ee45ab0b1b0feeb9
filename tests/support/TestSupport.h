#pragma once

#include "oxa/toolkit/MessageService.h"

#include <QFont>
#include <QList>
#include <QMenu>
#include <QString>
#include <QWidget>
#include <functional>

namespace oxa::test {

// Answers every message box the library shows while it lives, records what
// was shown, and restores the previous state when destroyed.
class MessageRecorder
{
public:
    explicit MessageRecorder(TModalResult answer = mrOk);
    ~MessageRecorder();

    void SetAnswer(TModalResult answer) { m_answer = answer; }
    const QList<TMessageRequest> &Shown() const { return m_shown; }
    QStringList Texts() const;
    void Clear() { m_shown.clear(); }

private:
    TModalResult m_answer;
    QList<TMessageRequest> m_shown;
};

// Answers modal dialogs with a function of the test while it lives.
class DialogAnswerer
{
public:
    explicit DialogAnswerer(std::function<TModalResult(QDialog *)> answer);
    ~DialogAnswerer();
    int Count() const { return m_count; }

private:
    int m_count = 0;
};

// Runs the event loop until done() holds, polling every millisecond
// (QTest::qWaitFor sleeps 10 ms between rounds, too long for the thousands
// of rounds of a stress run); false when timeoutMs passed first.
bool WaitFor(const std::function<bool()> &done, int timeoutMs = 20000);

// Shows a top-level window and waits until it is active, so that focus and
// key events reach its widgets as they would on a screen.
bool ShowAndActivate(QWidget *window);

// Right-clicks the widget as the user does and returns the context menu that
// opened. When an item is named, also clicks the menu's first item whose text
// starts with it, and returns null when there is none.
QMenu *RightClick(QWidget *widget, const QString &item = QString());

// The application's font at a point size (0 keeps it) until the object
// goes; widgets made meanwhile take it, as they would in a host.
class ApplicationFontScope
{
public:
    explicit ApplicationFontScope(int points);
    ~ApplicationFontScope();
    ApplicationFontScope(const ApplicationFontScope &) = delete;
    ApplicationFontScope &operator=(const ApplicationFontScope &) = delete;

private:
    QFont m_original;
};

// A top-level window for the widgets of a test. Add places each new widget
// below the previous one (200 pixels wide); Show shows and activates the
// window and gives the focus to a widget.
class TestForm : public QWidget
{
public:
    TestForm() { resize(320, 240); }

    template<class T>
    T *Add(int height = 24)
    {
        auto *widget = new T(this);
        widget->setGeometry(10, m_nextTop, 200, height);
        if (isVisible())
            widget->show();
        m_nextTop += height + 8;
        return widget;
    }
    // True when the window is active and focus (if given) holds the focus.
    bool Show(QWidget *focus = nullptr, Qt::FocusReason reason = Qt::OtherFocusReason);

private:
    int m_nextTop = 10;
};

} // namespace oxa::test

// Something the machine may lack (a server, a dictionary): a failure where
// the full test command requires it (the environment variable is set), a
// skip with the reason elsewhere.
#define OXA_REQUIRE_OR_SKIP(present, requireVariable, reason) \
    do { \
        if (!(present)) { \
            if (qEnvironmentVariableIsSet(requireVariable)) \
                QFAIL(qPrintable(reason)); \
            QSKIP(qPrintable(reason)); \
        } \
    } while (false)
