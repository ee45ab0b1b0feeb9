#pragma once

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

// The demo clinic's SQLite database. It is created with sample data on first
// use: patients, insurance companies, a doctor's working hours and diary.
class SampleDatabase
{
public:
    // Opens (and on first use creates) the database file; an empty path
    // means the default file in the user's data directory. A
    // postgresql://user@host[:port]/dbname address (the host may be a socket
    // directory, written percent-encoded or as ?host=/dir) opens a server
    // database instead, creating the sample tables when it has none.
    static bool Open(const QString &path, QString *error = nullptr);
    static QString DefaultPath();
    static QSqlDatabase Database();
    static void Close();
    // The sample schema's SQLite statement as the connected server takes it
    // (PostgreSQL: serial keys, double precision).
    static QString Portable(const QString &sql);

    // The code lists: diagnoses (diagnoza), examination groups and
    // examinations (vysetreni_skupina, vysetreni) and the diagnoses carried
    // over to patients (pacient_diagnoza). Created and filled when missing,
    // so a database from an earlier demo gains them too.
    static bool EnsureCodeLists(QSqlDatabase &db, QString *error);

    // The reports (rich-text streams) and text templates (tagged text);
    // created with their sample templates when missing.
    static bool EnsureReportSchema(QSqlDatabase &db, QString *error);

    // What the report's toolbar inserts, as tagged text: each patient's
    // long-term medication (trvaly_lek), medical history (anamneza) and
    // long-term diagnoses (trvala_diagnoza), and the shared text blocks
    // (textovy_blok). Created and filled when missing.
    static bool EnsureReportInsertions(QSqlDatabase &db, QString *error);
    // The clinic's own words for the spell check (drug names, medical terms),
    // filled with those of the sample texts the first time.
    static bool EnsurePersonalWords(QSqlDatabase &db, QString *error);
    static QStringList PersonalWords();
    static bool AddPersonalWord(const QString &word, QString *error);

private:
    static bool CreateSchema(QSqlDatabase &db, QString *error);
    static bool FillSampleData(QSqlDatabase &db, QString *error);
};
