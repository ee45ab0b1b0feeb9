#pragma once

#include <memory>

#include "oxa/oxa_export.h"

#include "oxa/toolkit/Color.h"
#include "oxa/toolkit/DateUtils.h"
#include "oxa/toolkit/FocusNavigation.h"

#include <QDateEdit>
#include <QString>

namespace oxa {

class TDateTimePickerOxaPrivate;

// The drop-down date picker of the data-entry forms: a QDateEdit with a
// calendar popup, the focus neighbours and focus colours of the edits, and
//  - an empty date: the date equal to MinDate (initially 0, 30.12.1899),
//    shown as a blank field while the picker does not hold the focus;
//  - a section (day, month, year) chosen by Left/Right and by clicks, which
//    Up/Down and keypad plus/minus step with IncDay/IncMonth/IncYear;
//    typing a digit that changes the date moves on to the next section;
//  - quick keys: keypad star today, Delete the empty date; F4 and Alt+Down
//    open the calendar. A read-only picker ignores the date keys.
// Format takes the display formats "dd.MM.yyyy" (also what an empty Format
// shows) and "MMMM.yyyy"; a Format of a single space shows the blank field.
// Month names are those of the Czech locale. Qt's own stepping (wheel,
// PageUp/PageDown) is off: the section rules alone change the date.
class OXA_EXPORT TDateTimePickerOxa : public TFocusColorNavigation<TDateTimePickerOxa, QDateEdit>
{
    Q_OBJECT
    Q_PROPERTY(uint ActiveColor READ ActiveColor WRITE SetActiveColor NOTIFY activeColorChanged)
    Q_PROPERTY(uint DefaultColor READ DefaultColor WRITE SetDefaultColor NOTIFY defaultColorChanged)
    Q_PROPERTY(double Date READ Date WRITE SetDate NOTIFY valueChanged USER true)
    Q_PROPERTY(double DateTime READ DateTime WRITE SetDateTime NOTIFY valueChanged)
    Q_PROPERTY(double MinDate READ MinDate WRITE SetMinDate NOTIFY minDateChanged)
    Q_PROPERTY(QString Format READ Format WRITE SetFormat NOTIFY formatChanged)
    Q_PROPERTY(QWidget *FocUp READ FocUp WRITE SetFocUp NOTIFY focUpChanged)
    Q_PROPERTY(QWidget *FocDown READ FocDown WRITE SetFocDown NOTIFY focDownChanged)
    Q_PROPERTY(QWidget *FocLeft READ FocLeft WRITE SetFocLeft NOTIFY focLeftChanged)
    Q_PROPERTY(QWidget *FocRight READ FocRight WRITE SetFocRight NOTIFY focRightChanged)

    using Base = TFocusColorNavigation<TDateTimePickerOxa, QDateEdit>;

public:
    explicit TDateTimePickerOxa(QWidget *owner = nullptr);
    ~TDateTimePickerOxa() override;

    // The date with its time of day; a date outside MinDate and the last
    // day of 9999 is refused (see MsgSetDateTime) and the old one stays.
    TDateTime DateTime() const;
    void SetDateTime(TDateTime value);
    // The whole days; setting keeps the time of day.
    TDateTime Date() const;
    void SetDate(TDateTime value);

    // The earliest date, which is also the empty date. A later MinDate moves
    // an earlier date up to it.
    TDateTime MinDate() const;
    void SetMinDate(TDateTime value);

    QString Format() const;
    void SetFormat(const QString &format);

    // Whether the date's day is MinDate's day.
    bool EmptyDate() const;

    // The section (0 day, 1 month, 2 year) that a click at x, in the
    // picker's coordinates, hits. Throws oxa::Exception when the picker
    // stands in no window.
    int VyhodnotStisk(int x);
    // The window whose font metrics measure the picker's text.
    QWidget *FindCanvas() const;

    TNotifyEvent OnChange;
    TNotifyEvent OnCloseUp;

Q_SIGNALS:
    void activeColorChanged();
    void defaultColorChanged();
    // The date (and time) changed, by the user or by the host.
    void valueChanged();
    void minDateChanged();
    void formatChanged();
    void focUpChanged();
    void focDownChanged();
    void focLeftChanged();
    void focRightChanged();
    void changed();
    void closedUp();

protected:
    // Sets the date in the control; a date the control refuses shows a
    // message box captioned "Chyba nastaveni" with the picker's name.
    virtual bool MsgSetDateTime(TDateTime value);

    void KeyDown(Word &Key, TShiftState Shift) override;
    void DoEnter() override;
    void DoExit() override;
    void Loaded() override;

    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void stepBy(int steps) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool IsMonthYearFormat() const;
    bool HoldsFocus() const;
    void WMKeyDown(Word key, TShiftState shift);
    void PlatformKeyDown(Word &Key, TShiftState Shift);
    void ClickAt(int x);
    void DateTimeChanged();
    void DroppedDown();
    void ClosedUp();
    void AfterNotification();
    bool StepDate(int direction);
    bool TypeDigit(int digit);
    void FireChange();
    void SetFormatField(const QString &format);
    void ApplyFormat();
    void SetFocusRule();
    void KillFocusRule();
    void PaintRule();
    void RequestSectionSync();
    void SyncSection();
    void OpenCalendar();

    std::unique_ptr<TDateTimePickerOxaPrivate> const d;
};

OXA_EXPORT void RegisterDateTimePickerOxa();

} // namespace oxa
