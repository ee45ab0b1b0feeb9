#pragma once

#include <QSqlDatabase>
#include <QString>

// The demo clinic's SQLite database. It is created with sample data on first
// use: patients, insurance companies, a doctor's working hours and diary.
class SampleDatabase
{
public:
    // Opens (and on first use creates) the database file; an empty path
    // means the default file in the user's data directory.
    static bool Open(const QString &path, QString *error = nullptr);
    static QString DefaultPath();
    static QSqlDatabase Database();
    static void Close();
    // The reports (rich-text streams) and text templates (tagged text);
    // created with their sample templates when missing.
    static bool EnsureReportSchema(QSqlDatabase &db, QString *error);

private:
    static bool CreateSchema(QSqlDatabase &db, QString *error);
    static bool FillSampleData(QSqlDatabase &db, QString *error);
};
