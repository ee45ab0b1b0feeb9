#include "SampleDatabase.h"

#include "DiaryData.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QStringList>
#include <QVariant>

namespace {

const char *const kConnection = "oxa-demo";

bool exec(QSqlQuery &q, const QString &sql, QString *error)
{
    if (q.exec(sql))
        return true;
    if (error)
        *error = q.lastError().text() + QStringLiteral(" (") + sql + QLatin1Char(')');
    return false;
}

} // namespace

QString SampleDatabase::DefaultPath()
{
    const QString dir = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    return QDir(dir).filePath(QStringLiteral("ambulance.sqlite"));
}

QSqlDatabase SampleDatabase::Database()
{
    return QSqlDatabase::database(QLatin1String(kConnection));
}

void SampleDatabase::Close()
{
    {
        QSqlDatabase db = Database();
        if (db.isOpen())
            db.close();
    }
    QSqlDatabase::removeDatabase(QLatin1String(kConnection));
}

bool SampleDatabase::Open(const QString &path, QString *error)
{
    const QString file = path.isEmpty() ? DefaultPath() : path;
    QDir().mkpath(QFileInfo(file).absolutePath());
    const bool existed = QFileInfo::exists(file);
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QLatin1String(kConnection));
    db.setDatabaseName(file);
    if (!db.open()) {
        if (error)
            *error = db.lastError().text();
        return false;
    }
    if (existed)
        return true;
    if (!db.transaction() || !CreateSchema(db, error) || !FillSampleData(db, error)
        || !CreateDiarySchema(db, error) || !FillDiarySampleData(db, error)) {
        db.rollback();
        return false;
    }
    return db.commit();
}

bool SampleDatabase::CreateSchema(QSqlDatabase &db, QString *error)
{
    QSqlQuery q(db);
    const QStringList statements = {
        QStringLiteral("CREATE TABLE pojistovna (kod TEXT PRIMARY KEY, nazev TEXT NOT NULL)"),
        QStringLiteral("CREATE TABLE pacient (id INTEGER PRIMARY KEY AUTOINCREMENT,"
                       " prijmeni TEXT NOT NULL, jmeno TEXT, rodne_cislo TEXT,"
                       " datum_narozeni TEXT, pohlavi TEXT, pojistovna TEXT REFERENCES pojistovna(kod),"
                       " telefon TEXT, poznamka TEXT, navsteva TEXT, vaha REAL, deti INTEGER)"),
    };
    for (const QString &sql : statements) {
        if (!exec(q, sql, error))
            return false;
    }
    return true;
}

bool SampleDatabase::FillSampleData(QSqlDatabase &db, QString *error)
{
    QSqlQuery q(db);
    const QList<QPair<QString, QString>> insurers = {
        {QStringLiteral("111"), QStringLiteral("Všeobecná zdravotní pojišťovna")},
        {QStringLiteral("201"), QStringLiteral("Vojenská zdravotní pojišťovna")},
        {QStringLiteral("205"), QStringLiteral("Česká průmyslová zdravotní pojišťovna")},
        {QStringLiteral("207"), QStringLiteral("Oborová zdravotní pojišťovna")},
        {QStringLiteral("209"), QStringLiteral("Zaměstnanecká pojišťovna Škoda")},
        {QStringLiteral("211"), QStringLiteral("Zdravotní pojišťovna ministerstva vnitra")},
        {QStringLiteral("213"), QStringLiteral("Revírní bratrská pokladna")},
    };
    q.prepare(QStringLiteral("INSERT INTO pojistovna (kod, nazev) VALUES (?, ?)"));
    for (const auto &[code, name] : insurers) {
        q.addBindValue(code);
        q.addBindValue(name);
        if (!q.exec()) {
            if (error)
                *error = q.lastError().text();
            return false;
        }
    }

    const QStringList surnamesM = {QStringLiteral("Novák"), QStringLiteral("Svoboda"), QStringLiteral("Novotný"),
                                   QStringLiteral("Dvořák"), QStringLiteral("Černý"), QStringLiteral("Procházka"),
                                   QStringLiteral("Kučera"), QStringLiteral("Veselý"), QStringLiteral("Horák"),
                                   QStringLiteral("Němec"), QStringLiteral("Marek"), QStringLiteral("Pokorný")};
    const QStringList surnamesF = {QStringLiteral("Nováková"), QStringLiteral("Svobodová"), QStringLiteral("Novotná"),
                                   QStringLiteral("Dvořáková"), QStringLiteral("Černá"), QStringLiteral("Procházková"),
                                   QStringLiteral("Kučerová"), QStringLiteral("Veselá"), QStringLiteral("Horáková"),
                                   QStringLiteral("Němcová"), QStringLiteral("Marková"), QStringLiteral("Pokorná")};
    const QStringList namesM = {QStringLiteral("Jan"), QStringLiteral("Petr"), QStringLiteral("Josef"),
                                QStringLiteral("Pavel"), QStringLiteral("Martin"), QStringLiteral("Tomáš"),
                                QStringLiteral("Jiří"), QStringLiteral("Lukáš")};
    const QStringList namesF = {QStringLiteral("Jana"), QStringLiteral("Marie"), QStringLiteral("Eva"),
                                QStringLiteral("Hana"), QStringLiteral("Anna"), QStringLiteral("Lenka"),
                                QStringLiteral("Kateřina"), QStringLiteral("Věra")};
    QRandomGenerator rng(20261121); // the same clinic on every machine
    q.prepare(QStringLiteral("INSERT INTO pacient (prijmeni, jmeno, rodne_cislo, datum_narozeni, pohlavi,"
                             " pojistovna, telefon, poznamka, navsteva, vaha, deti)"
                             " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    for (int i = 0; i < 240; ++i) {
        const bool female = rng.bounded(2) == 1;
        const QDate born = QDate(1935, 1, 1).addDays(rng.bounded(365 * 85));
        const int month = born.month() + (female ? 50 : 0);
        const QString rc = QStringLiteral("%1%2%3/%4")
                               .arg(born.year() % 100, 2, 10, QLatin1Char('0'))
                               .arg(month, 2, 10, QLatin1Char('0'))
                               .arg(born.day(), 2, 10, QLatin1Char('0'))
                               .arg(rng.bounded(10000), 4, 10, QLatin1Char('0'));
        q.addBindValue(female ? surnamesF[rng.bounded(surnamesF.size())] : surnamesM[rng.bounded(surnamesM.size())]);
        q.addBindValue(female ? namesF[rng.bounded(namesF.size())] : namesM[rng.bounded(namesM.size())]);
        q.addBindValue(rc);
        q.addBindValue(born.toString(QStringLiteral("dd.MM.yyyy")));
        q.addBindValue(female ? QStringLiteral("žena") : QStringLiteral("muž"));
        q.addBindValue(insurers[rng.bounded(insurers.size())].first);
        q.addBindValue(QStringLiteral("+420 6%1").arg(rng.bounded(10000000, 99999999)));
        q.addBindValue(QString());
        q.addBindValue(QDate(2026, 1, 5).addDays(rng.bounded(320)).toString(QStringLiteral("dd.MM.yyyy")));
        q.addBindValue(double(45 + rng.bounded(60)) + rng.bounded(100) / 100.0);
        q.addBindValue(rng.bounded(5));
        if (!q.exec()) {
            if (error)
                *error = q.lastError().text();
            return false;
        }
    }
    return true;
}

bool SampleDatabase::EnsureReportSchema(QSqlDatabase &db, QString *error)
{
    QSqlQuery q(db);
    if (!exec(q, QStringLiteral("CREATE TABLE IF NOT EXISTS zprava (pacient INTEGER PRIMARY KEY"
                                " REFERENCES pacient(id), obsah BLOB NOT NULL)"), error)
        || !exec(q, QStringLiteral("CREATE TABLE IF NOT EXISTS textovy_vzor (id INTEGER PRIMARY KEY"
                                   " AUTOINCREMENT, nazev TEXT NOT NULL, text TEXT NOT NULL)"), error)
        || !exec(q, QStringLiteral("SELECT COUNT(*) FROM textovy_vzor"), error))
        return false;
    if (q.next() && q.value(0).toInt() > 0)
        return true;
    const QList<QPair<QString, QString>> templates = {
        {QStringLiteral("Objektivní nález"),
         QStringLiteral("<b>Objektivní nález:</b> při vědomí, orientován, eupnoický, bez ikteru a cyanózy.\r\n")},
        {QStringLiteral("Doporučení"),
         QStringLiteral("<p=c><fs=12><b>Doporučení</b></fs>\r\n<p>Klidový režim, dostatek tekutin, "
                        "kontrola za <u>7 dní</u>.\r\n")},
        {QStringLiteral("Medikace"),
         QStringLiteral("<i>Medikace:</i> Paralen 500 mg <c=255>max. 4 tbl. denně</c>\r\n")},
    };
    q.prepare(QStringLiteral("INSERT INTO textovy_vzor (nazev, text) VALUES (?, ?)"));
    for (const auto &[name, text] : templates) {
        q.addBindValue(name);
        q.addBindValue(text);
        if (!q.exec()) {
            if (error)
                *error = q.lastError().text();
            return false;
        }
    }
    return true;
}
