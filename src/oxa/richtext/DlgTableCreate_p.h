#pragma once

// Internals of DlgTableCreate: not part of the installed API.

#include <QLineEdit>
#include <QPointer>
#include <QWidget>

class QToolButton;

namespace oxa {

// The up-down control beside an edit (its associate): the arrows, or the
// Up and Down keys in the edit, step the position by Increment between Min
// and Max and write it into the edit; an integer typed into the edit becomes
// the position, held within the limits.
class TUpDown : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int Min READ Min WRITE SetMin)
    Q_PROPERTY(int Max READ Max WRITE SetMax)
    Q_PROPERTY(int Increment READ Increment WRITE SetIncrement)
    Q_PROPERTY(int Position READ Position WRITE SetPosition NOTIFY positionChanged)

public:
    explicit TUpDown(QWidget *parent = nullptr);

    int Min() const { return m_min; }
    void SetMin(int value);
    int Max() const { return m_max; }
    void SetMax(int value);
    int Increment() const { return m_increment; }
    void SetIncrement(int value) { m_increment = std::max(1, value); }
    int Position() const { return m_position; }
    void SetPosition(int value);
    void SetAssociate(QLineEdit *edit);
    QLineEdit *Associate() const { return m_associate; }
    // One click of an arrow: +1 up, -1 down.
    void Step(int direction);

    QToolButton *UpButton() const { return m_up; }
    QToolButton *DownButton() const { return m_down; }

Q_SIGNALS:
    void positionChanged(int position);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void ReadAssociate();
    int Clamped(int value) const;

    QPointer<QLineEdit> m_associate;
    QToolButton *m_up;
    QToolButton *m_down;
    int m_min = 0;
    int m_max = 100;
    int m_increment = 1;
    int m_position = 0;
};

} // namespace oxa
