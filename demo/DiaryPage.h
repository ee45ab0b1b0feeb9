#pragma once

#include <QDate>
#include <QWidget>

class QLabel;
class QSqlQuery;

namespace oxa {
class TDiarPanel;
class TEnhancedMonthCalendar;
struct TDayRecord;
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
    void StoreMove(const oxa::TDayRecord &nove);
    void ShowEntry(const oxa::TDayRecord *zaznam);
    quint32 BoldDays(int month, int year) const;

    bool StoreEntry(oxa::TDayRecord &zaznam, bool isNew);
    void ReportError(const QString &action, const QSqlQuery &query);

    oxa::TDiarPanel *m_panel = nullptr;
    oxa::TEnhancedMonthCalendar *m_calendar = nullptr;
    QLabel *m_detail = nullptr;
    bool m_syncing = false;
};
