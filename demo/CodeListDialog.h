#pragma once

#include <QDialog>

class QSqlQueryModel;
class QTableView;

// A code list of the clinic's database shown as a table to pick one row
// from: the code in the first column, its name in the second.
class CodeListDialog : public QDialog
{
    Q_OBJECT

public:
    CodeListDialog(const QString &title, const QString &query, QWidget *parent = nullptr);

    // Selects the row whose code is code, if there is one.
    void SelectCode(const QString &code);
    QString Code() const;
    QString Name() const;
    QTableView *View() const { return m_view; }

private:
    QString Column(int column) const;

    QSqlQueryModel *m_model = nullptr;
    QTableView *m_view = nullptr;
};
