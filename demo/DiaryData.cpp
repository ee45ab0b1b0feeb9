#include "DiaryData.h"

#include "SampleDatabase.h"

#include <QDate>
#include <QList>
#include <QRandomGenerator>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QTime>
#include <QVariant>

namespace {

bool Fail(const QSqlQuery &q, QString *error)
{
    if (error)
        *error = q.lastError().text() + QStringLiteral(" (") + q.lastQuery() + QLatin1Char(')');
    return false;
}

bool Exec(QSqlQuery &q, const QString &sql, QString *error)
{
    return q.exec(SampleDatabase::Portable(sql)) || Fail(q, error);
}

bool ExecBound(QSqlQuery &q, const QVariantList &values, QString *error)
{
    for (const QVariant &value : values)
        q.addBindValue(value);
    return q.exec() || Fail(q, error);
}

QString TimeText(int minutes)
{
    return QTime(0, 0).addSecs(minutes * 60).toString(QStringLiteral("HH:mm"));
}

// A working interval in minutes from midnight.
struct Interval
{
    int from;
    int to;
};

// The doctor's week: odd weeks have an afternoon surgery on Monday and
// Wednesday and the Saturday emergency service, even weeks a long Tuesday
// and Thursday. Index 1 = Monday.
QList<Interval> WorkingHours(bool oddWeek, int weekday)
{
    const Interval morning{7 * 60, 11 * 60 + 30};
    if (oddWeek) {
        switch (weekday) {
        case 1:
        case 3:
            return {morning, {12 * 60 + 30, 17 * 60}};
        case 2:
        case 4:
        case 5:
            return {morning, {12 * 60, 14 * 60}};
        case 6:
            return {{8 * 60, 11 * 60}, {0, 0}};
        default:
            return {{0, 0}, {0, 0}};
        }
    }
    switch (weekday) {
    case 2:
    case 4:
        return {morning, {12 * 60 + 30, 18 * 60}};
    case 1:
    case 3:
    case 5:
        return {morning, {12 * 60, 14 * 60}};
    default:
        return {{0, 0}, {0, 0}};
    }
}

// Booking hours: patients may book Tuesday and Thursday afternoons and
// Friday mornings.
QList<Interval> BookingHours(int weekday)
{
    switch (weekday) {
    case 2:
    case 4:
        return {{13 * 60, 15 * 60}};
    case 5:
        return {{8 * 60, 10 * 60}};
    default:
        return {};
    }
}

bool IsHoliday(const QDate &d)
{
    static const QList<QPair<int, int>> fixed{{1, 1},   {1, 5},   {8, 5},   {5, 7},
                                              {6, 7},   {28, 9},  {28, 10}, {17, 11},
                                              {24, 12}, {25, 12}, {26, 12}};
    return fixed.contains({d.day(), d.month()});
}

// The clinic's diary is filled around the day the sample database is made:
// three months either side, a busy fortnight around it, a leave and a
// seminar.
const QDate kToday = QDate::currentDate();
const QDate kLeaveFrom = kToday.addDays(30);
const QDate kLeaveTo = kToday.addDays(40);
const QDate kSeminar = kToday.addDays(-36); // leave from noon

struct Contact
{
    int id = 0;
    QString name;
    QString rc;
    int source = 0; // 0 free, 1 patient, 2 partner (TZdrojKontaktu)
};

const QStringList kPatientVisits{
    QStringLiteral("Kontrola"),     QStringLiteral("Preventivní prohlídka"),
    QStringLiteral("Odběr krve"),   QStringLiteral("Očkování"),
    QStringLiteral("Převaz"),       QStringLiteral("Výsledky vyšetření"),
    QStringLiteral("EKG"),          QStringLiteral("Vstupní prohlídka"),
    QStringLiteral("Předpis léků"), QStringLiteral("Kontrola tlaku"),
    QStringLiteral("Konzultace"),   QStringLiteral("Vyšetření před operací")};
const QStringList kPartnerMeetings{QStringLiteral("Svoz vzorků"),
                                   QStringLiteral("Dodávka materiálu"), QStringLiteral("Porada"),
                                   QStringLiteral("Servis přístroje")};
const QStringList kDetails{QString(),
                           QString(),
                           QStringLiteral("nalačno"),
                           QStringLiteral("přinést výsledky z odborného vyšetření"),
                           QStringLiteral("objednán telefonicky"),
                           QStringLiteral("doprovod rodiny")};

class Generator
{
public:
    Generator(QSqlQuery &insert, QList<Contact> patients, QList<Contact> partners)
        : m_insert(insert), m_patients(std::move(patients)), m_partners(std::move(partners))
    { }

    bool Day(const QDate &date, QString *error)
    {
        const bool odd = date.weekNumber() % 2 == 1;
        QList<Interval> hours = WorkingHours(odd, date.dayOfWeek());
        if (IsHoliday(date) || (date >= kLeaveFrom && date <= kLeaveTo))
            return true;
        if (date == kSeminar)
            hours[1] = {0, 0};
        const bool busy = date >= kToday.addDays(-5) && date <= kToday.addDays(6);
        for (const Interval &interval : hours) {
            if (interval.to <= interval.from)
                continue;
            // Appointments one after another with the odd free slot.
            int start = interval.from + 15 * int(m_rng.bounded(busy ? 1 : 4));
            while (start < interval.to - 15) {
                const int length = 15 * (1 + int(m_rng.bounded(busy ? 2 : 3)));
                const int end = std::min(start + length, interval.to);
                if (!Entry(date, start, end, error))
                    return false;
                start = end + 15 * int(m_rng.bounded(busy ? 2 : 5));
            }
        }
        if (hours[0].to <= hours[0].from)
            return true;
        // A phone call over a running appointment, and private errands.
        if (busy || m_rng.bounded(4) == 0) {
            if (!Insert(date, hours[0].from + 60, hours[0].from + 60, QStringLiteral("Telefonát"),
                        Contact{0, QStringLiteral("Sestra"), QString(), 0}, false, error))
                return false;
        }
        if (m_rng.bounded(8) == 0)
            return Insert(date, 15 * 60 + 30, 16 * 60 + 30, QStringLiteral("Osobní"), {}, true,
                          error);
        return true;
    }

private:
    bool Entry(const QDate &date, int start, int end, QString *error)
    {
        const bool partner = !m_partners.isEmpty() && m_rng.bounded(10) == 0;
        if (partner) {
            const Contact &c = m_partners.at(int(m_rng.bounded(m_partners.size())));
            return Insert(date, start, end,
                          kPartnerMeetings.at(int(m_rng.bounded(kPartnerMeetings.size()))), c,
                          false, error);
        }
        Contact c{0, QStringLiteral("Nový pacient"), QString(), 0};
        if (!m_patients.isEmpty())
            c = m_patients.at(int(m_rng.bounded(m_patients.size())));
        return Insert(date, start, end,
                      kPatientVisits.at(int(m_rng.bounded(kPatientVisits.size()))), c, false,
                      error);
    }

    bool Insert(const QDate &date, int start, int end, const QString &popis, const Contact &c,
                bool soukrome, QString *error)
    {
        int splneno = 0;
        if (date < kToday || (date == kToday && start < 9 * 60))
            splneno = 100;
        const bool nurse = m_rng.bounded(3) == 0;
        return ExecBound(m_insert,
                         {nurse ? 2 : 1, nurse ? QStringLiteral("JS") : QStringLiteral("MN"),
                          int(soukrome), date.toString(Qt::ISODate), TimeText(start), TimeText(end),
                          popis, int(m_rng.bounded(6)), c.id, c.name, c.rc, c.source,
                          kDetails.at(int(m_rng.bounded(kDetails.size()))), splneno,
                          m_rng.bounded(4) == 0 ? 15 : 0, 0,
                          popis == QStringLiteral("EKG") ? 2 : 0},
                         error);
    }

    QSqlQuery &m_insert;
    QList<Contact> m_patients;
    QList<Contact> m_partners;
    QRandomGenerator m_rng{20261121};
};

bool FillHours(QSqlDatabase &db, QString *error)
{
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO prac_doba (tyden, den, cas_od, cas_do, cas_od1, cas_do1)"
                             " VALUES (?, ?, ?, ?, ?, ?)"));
    for (int tyden : {1, 0}) {
        for (int den = 1; den <= 7; ++den) {
            const QList<Interval> h = WorkingHours(tyden == 1, den);
            if (!ExecBound(q,
                           {tyden, den, TimeText(h[0].from), TimeText(h[0].to), TimeText(h[1].from),
                            TimeText(h[1].to)},
                           error))
                return false;
        }
    }
    q.prepare(QStringLiteral("INSERT INTO objednani (den, cas_od, cas_do) VALUES (?, ?, ?)"));
    for (int den = 1; den <= 7; ++den) {
        for (const Interval &i : BookingHours(den)) {
            if (!ExecBound(q, {den, TimeText(i.from), TimeText(i.to)}, error))
                return false;
        }
    }
    q.prepare(
        QStringLiteral("INSERT INTO dovolena (datum_od, datum_do, cas_od, cas_do, poznamka, barva)"
                       " VALUES (?, ?, ?, ?, ?, ?)"));
    return ExecBound(q,
                     {kLeaveFrom.toString(Qt::ISODate), kLeaveTo.toString(Qt::ISODate),
                      QStringLiteral("00:00"), QStringLiteral("23:59"),
                      QStringLiteral("Vánoční dovolená"), QVariant()},
                     error) &&
        ExecBound(q,
                  {kSeminar.toString(Qt::ISODate), kSeminar.toString(Qt::ISODate),
                   QStringLiteral("12:00"), QStringLiteral("23:59"),
                   QStringLiteral("Odborný seminář"), 0xB0E0FF},
                  error);
}

bool ReadContacts(QSqlDatabase &db, QList<Contact> &patients, QList<Contact> &partners,
                  QString *error)
{
    QSqlQuery q(db);
    if (!Exec(q, QStringLiteral("SELECT id, prijmeni, jmeno, rodne_cislo FROM pacient ORDER BY id"),
              error))
        return false;
    while (q.next()) {
        const QString name =
            (q.value(1).toString() + QLatin1Char(' ') + q.value(2).toString()).trimmed();
        patients.append({q.value(0).toInt(), name, q.value(3).toString(), 1});
    }
    if (!Exec(q, QStringLiteral("SELECT id, nazev FROM partner ORDER BY id"), error))
        return false;
    while (q.next())
        partners.append({q.value(0).toInt(), q.value(1).toString(), QString(), 2});
    return true;
}

} // namespace

bool CreateDiarySchema(QSqlDatabase &db, QString *error)
{
    QSqlQuery q(db);
    const QStringList statements{
        QStringLiteral(
            "CREATE TABLE partner (id INTEGER PRIMARY KEY AUTOINCREMENT, nazev TEXT NOT NULL,"
            " telefon TEXT)"),
        QStringLiteral(
            "CREATE TABLE prac_doba (tyden INTEGER NOT NULL, den INTEGER NOT NULL,"
            " cas_od TEXT, cas_do TEXT, cas_od1 TEXT, cas_do1 TEXT, PRIMARY KEY (tyden, den))"),
        QStringLiteral(
            "CREATE TABLE objednani (id INTEGER PRIMARY KEY AUTOINCREMENT, den INTEGER NOT NULL,"
            " cas_od TEXT NOT NULL, cas_do TEXT NOT NULL)"),
        QStringLiteral(
            "CREATE TABLE dovolena (id INTEGER PRIMARY KEY AUTOINCREMENT, datum_od TEXT NOT NULL,"
            " datum_do TEXT NOT NULL, cas_od TEXT, cas_do TEXT, poznamka TEXT, barva INTEGER)"),
        QStringLiteral(
            "CREATE TABLE diar (id INTEGER PRIMARY KEY AUTOINCREMENT, id_porizovaci INTEGER,"
            " parafa TEXT, soukrome INTEGER NOT NULL DEFAULT 0, datum TEXT NOT NULL,"
            " cas_od TEXT NOT NULL, cas_do TEXT NOT NULL, popis TEXT, id_barvy INTEGER,"
            " id_kontakt INTEGER, kontakt TEXT, rc TEXT, tabulka_reference INTEGER,"
            " podrobnosti TEXT, splneno INTEGER DEFAULT 0, upozornit INTEGER DEFAULT 0,"
            " jedn_upozorneni INTEGER DEFAULT 0, id_diar_pristroj INTEGER DEFAULT 0)"),
        QStringLiteral("CREATE INDEX diar_datum ON diar (datum)"),
    };
    for (const QString &sql : statements) {
        if (!Exec(q, sql, error))
            return false;
    }
    return true;
}

bool FillDiarySampleData(QSqlDatabase &db, QString *error)
{
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO partner (nazev, telefon) VALUES (?, ?)"));
    const QList<QPair<QString, QString>> partners{
        {QStringLiteral("Laboratoř Na Výsluní"), QStringLiteral("+420 511 204 300")},
        {QStringLiteral("Zdravotnické potřeby Lípa"), QStringLiteral("+420 602 118 540")},
        {QStringLiteral("Rehabilitace U Parku"), QStringLiteral("+420 545 221 907")},
        {QStringLiteral("Servis lékařských přístrojů Brázda"), QStringLiteral("+420 731 650 012")}};
    for (const auto &[nazev, telefon] : partners) {
        if (!ExecBound(q, {nazev, telefon}, error))
            return false;
    }
    if (!FillHours(db, error))
        return false;

    QList<Contact> patientContacts, partnerContacts;
    if (!ReadContacts(db, patientContacts, partnerContacts, error))
        return false;
    QSqlQuery insert(db);
    insert.prepare(QStringLiteral(
        "INSERT INTO diar (id_porizovaci, parafa, soukrome, datum, cas_od, cas_do, popis, id_barvy,"
        " id_kontakt, kontakt, rc, tabulka_reference, podrobnosti, splneno, upozornit,"
        " jedn_upozorneni, id_diar_pristroj) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
        "?, ?)"));
    Generator generator(insert, patientContacts, partnerContacts);
    const QDate first = kToday.addMonths(-3);
    const QDate last = kToday.addMonths(3);
    for (QDate date(first.year(), first.month(), 1);
         date <= QDate(last.year(), last.month(), last.daysInMonth()); date = date.addDays(1)) {
        if (!generator.Day(date, error))
            return false;
    }
    return true;
}
