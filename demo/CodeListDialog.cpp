#include "CodeListDialog.h"

#include "SampleDatabase.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPushButton>
#include <QSqlQueryModel>
#include <QTableView>
#include <QVBoxLayout>

CodeListDialog::CodeListDialog(const QString &title, const QString &query, QWidget *parent)
    : QDialog(parent), m_model(new QSqlQueryModel(this)), m_view(new QTableView(this))
{
    setWindowTitle(title);
    m_model->setQuery(query, SampleDatabase::Database());
    m_view->setModel(m_model);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(QAbstractItemView::SingleSelection);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->verticalHeader()->hide();
    m_view->horizontalHeader()->setStretchLastSection(true);
    m_view->resizeColumnsToContents();
    if (m_model->rowCount() > 0)
        m_view->selectRow(0);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Vybrat"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Storno"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_view, &QTableView::doubleClicked, this, &QDialog::accept);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_view);
    layout->addWidget(buttons);
    resize(460, 300);
}

void CodeListDialog::SelectCode(const QString &code)
{
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (m_model->index(row, 0).data().toString() == code) {
            m_view->selectRow(row);
            return;
        }
    }
}

QString CodeListDialog::Column(int column) const
{
    const QModelIndexList rows = m_view->selectionModel()->selectedRows(column);
    return rows.isEmpty() ? QString() : rows.first().data().toString();
}

QString CodeListDialog::Code() const
{
    return Column(0);
}

QString CodeListDialog::Name() const
{
    return Column(1);
}
