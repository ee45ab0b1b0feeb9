#include "support/TestSupport.h"

#include <QApplication>
#include <QEventLoop>
#include <QMenu>
#include <QTest>
#include <QTimer>

namespace oxa::test {

MessageRecorder::MessageRecorder(TModalResult answer) : m_answer(answer)
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

QMenu *RightClick(QWidget *widget, const QString &item)
{
    QWidget *top = widget->window();
    QTest::mouseClick(top->windowHandle(), Qt::RightButton, {},
                      widget->mapTo(top, widget->rect().center()));
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    if (!menu || item.isEmpty())
        return menu;
    for (QAction *action : menu->actions()) {
        if (!action->isSeparator() && action->text().startsWith(item)) {
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
            return menu;
        }
    }
    menu->close();
    return nullptr;
}

bool TestForm::Show(QWidget *focus, Qt::FocusReason reason)
{
    if (!ShowAndActivate(this))
        return false;
    if (focus)
        focus->setFocus(reason);
    return !focus || focus->hasFocus();
}

ApplicationFontScope::ApplicationFontScope(int points) : m_original(QApplication::font())
{
    if (points <= 0)
        return;
    QFont font = m_original;
    font.setPointSize(points);
    QApplication::setFont(font);
}

ApplicationFontScope::~ApplicationFontScope()
{
    QApplication::setFont(m_original);
}

bool WaitFor(const std::function<bool()> &done, int timeoutMs)
{
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (done())
            loop.quit();
    });
    poll.start(1);
    QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
    if (!done())
        loop.exec();
    return done();
}

} // namespace oxa::test
