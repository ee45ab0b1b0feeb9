#pragma once

#include <QSqlDatabase>
#include <QString>

// The diary tables of the demo clinic:
//   partner    - outside parties (laboratories, suppliers)
//   prac_doba  - the doctor's working hours per weekday, for odd (tyden 1)
//                and even (tyden 0) ISO weeks, two intervals a day
//   objednani  - hours in which patients book with the doctor, per weekday
//   dovolena   - leave
//   diar       - the appointments; datum is "yyyy-MM-dd", times "HH:mm"
bool CreateDiarySchema(QSqlDatabase &db, QString *error);

// A doctor's week, booking hours, two leaves and some six hundred
// appointments from September 2026 to February 2027 with the patients of
// the pacient table and the partners; the week of 21 November 2026, the
// clinic's "today", is the busiest. Call after the patients were inserted.
bool FillDiarySampleData(QSqlDatabase &db, QString *error);
