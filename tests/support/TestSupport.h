#pragma once

#include "oxa/toolkit/MessageService.h"

#include <QList>
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

// Shows a top-level window and waits until it is active, so that focus and
// key events reach its widgets as they would on a screen.
bool ShowAndActivate(QWidget *window);

} // namespace oxa::test
