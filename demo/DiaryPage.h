#pragma once

#include "oxa/diary/DiarShared.h"

#include <QDate>
#include <QList>
#include <QWidget>

class QLabel;
class QPushButton;
class QSqlQuery;

namespace oxa {
class TDiarPanel;
class TEnhancedMonthCalendar;
} // namespace oxa

// The doctor's diary: the diary panel over the diar table, the month
// calendar beside it with the days that have appointments in bold. The page
// is the host of the panel: it loads each month the panel moves to, and
// stores every entry the user edits, adds, moves or deletes.
class DiaryPage : public QWidget
{
    Q_OBJECT

public:
    explicit DiaryPage(QWidget *parent = nullptr);

    oxa::TDiarPanel *Panel() const { return m_panel; }
    oxa::TEnhancedMonthCalendar *Calendar() const { return m_calendar; }

    // Puts the last moved entry back on its day ("Vrátit přesun", Ctrl+Z).
    void UndoMove();

private:
    void BuildLayout();
    void WirePanel();
    void LoadSettings();
    void LoadEntries();
    void GoTo(const QDate &date);

    // The host's side of the panel's events.
    void EditEntry(const oxa::TDayRecord &zaznam);
    void NewEntry(double datum);
    bool ConfirmDelete(const oxa::TDayRecord &zaznam);
    bool AllowMove(const oxa::TDayRecord &nove);
    void StoreMove(const oxa::TDayRecord &stary, const oxa::TDayRecord &nove);
    // Writes the entry's day into the database through q; false when it failed.
    bool StoreEntryDate(const oxa::TDayRecord &zaznam, QSqlQuery &q);
    void ShowEntry(const oxa::TDayRecord *zaznam);
    quint32 BoldDays(int month, int year) const;
    // The public holidays of the months the calendar shows, in the diary's
    // holiday colour, their names as tooltips.
    void MarkHolidays();
    void FollowCalendarPage(int year, int month);

    // The booked entries the entry would overlap, one line each.
    QStringList Overlaps(const oxa::TDayRecord &zaznam) const;
    // Runs the entry dialog until the user stores an entry that overlaps
    // nothing or agrees to the overlap; false when the dialog was cancelled.
    bool AskEntry(oxa::TDayRecord &zaznam);

    bool StoreEntry(oxa::TDayRecord &zaznam, bool isNew);
    void ReportError(const QString &action, const QSqlQuery &query);

    oxa::TDiarPanel *m_panel = nullptr;
    oxa::TEnhancedMonthCalendar *m_calendar = nullptr;
    QLabel *m_detail = nullptr;
    QPushButton *m_undo = nullptr;
    // The entries as they were before each move, the last move last.
    QList<oxa::TDayRecord> m_moves;
    bool m_syncing = false;
};
