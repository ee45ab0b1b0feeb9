#include "support/TestSupport.h"

#include <QApplication>
#include <QTest>

namespace oxa::test {

MessageRecorder::MessageRecorder(TModalResult answer)
    : m_answer(answer)
{
    MessageService::SetMessageAnswerer([this](const TMessageRequest &request) {
        m_shown.append(request);
        return m_answer;
    });
}

MessageRecorder::~MessageRecorder()
{
    MessageService::SetMessageAnswerer({});
}

QStringList MessageRecorder::Texts() const
{
    QStringList texts;
    for (const TMessageRequest &r : m_shown)
        texts.append(r.Text);
    return texts;
}

DialogAnswerer::DialogAnswerer(std::function<TModalResult(QDialog *)> answer)
{
    MessageService::SetDialogAnswerer([this, answer = std::move(answer)](QDialog *dialog) {
        ++m_count;
        return answer(dialog);
    });
}

DialogAnswerer::~DialogAnswerer()
{
    MessageService::SetDialogAnswerer({});
}

bool ShowAndActivate(QWidget *window)
{
    window->show();
    QApplication::setActiveWindow(window);
    window->activateWindow();
    return QTest::qWaitForWindowActive(window);
}

} // namespace oxa::test
