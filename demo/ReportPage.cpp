#include "ReportPage.h"

#include "SampleDatabase.h"

#include "oxa/richtext/OxaRichView.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/MessageService.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSplitter>
#include <QSqlError>
#include <QSqlQuery>
#include <QVBoxLayout>

using namespace oxa;

ReportPage::ReportPage(QWidget *parent) : QWidget(parent)
{
    setProperty("statusHint",
                QStringLiteral("Ctrl+B, Ctrl+I a Ctrl+U formátují, Insert přepíná "
                               "přepisování; zpráva se ukládá k vybranému pacientovi."));
    QString error;
    QSqlDatabase db = SampleDatabase::Database();
    if (db.isOpen() && !SampleDatabase::EnsureReportSchema(db, &error))
        MessageService::ShowError(error, this);

    m_patients = new QListWidget(this);
    m_templates = new QListWidget(this);
    m_editor = new TOxaRichView(this);
    m_editor->setObjectName(QStringLiteral("zprava"));
    m_status = new QLabel(this);
    m_save = new QPushButton(QStringLiteral("Uložit zprávu"), this);
    auto *insert = new QPushButton(QStringLiteral("Vložit vzor"), this);

    auto *left = new QWidget(this);
    auto *leftLayout = new QVBoxLayout(left);
    leftLayout->addWidget(new QLabel(QStringLiteral("Pacienti"), left));
    leftLayout->addWidget(m_patients);
    leftLayout->addWidget(new QLabel(QStringLiteral("Textové vzory"), left));
    leftLayout->addWidget(m_templates);
    leftLayout->addWidget(insert);

    auto *right = new QWidget(this);
    auto *rightLayout = new QVBoxLayout(right);
    rightLayout->addWidget(new QLabel(QStringLiteral("Zpráva (Ctrl+B tučně, Ctrl+I kurzíva, "
                                                     "Ctrl+E na střed, Ctrl+Z zpět)"),
                                      right));
    rightLayout->addWidget(m_editor, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_status, 1);
    buttons->addWidget(m_save);
    rightLayout->addLayout(buttons);

    auto *splitter = new QSplitter(this);
    splitter->addWidget(left);
    splitter->addWidget(right);
    splitter->setStretchFactor(1, 3);
    (new QHBoxLayout(this))->addWidget(splitter);

    connect(m_patients, &QListWidget::currentRowChanged, this, &ReportPage::SelectPatient);
    connect(m_save, &QPushButton::clicked, this, &ReportPage::SaveReport);
    connect(insert, &QPushButton::clicked, this, &ReportPage::InsertTemplate);
    connect(m_templates, &QListWidget::itemDoubleClicked, this, &ReportPage::InsertTemplate);

    LoadTemplates();
    LoadPatients();
}

void ReportPage::LoadPatients()
{
    QSqlQuery q(SampleDatabase::Database());
    q.exec(QStringLiteral("SELECT id, prijmeni, jmeno FROM pacient ORDER BY prijmeni, jmeno"));
    while (q.next()) {
        auto *item = new QListWidgetItem(q.value(1).toString() + QStringLiteral(" ") +
                                         q.value(2).toString());
        item->setData(Qt::UserRole, q.value(0));
        m_patients->addItem(item);
    }
    if (m_patients->count() > 0)
        m_patients->setCurrentRow(0);
}

void ReportPage::LoadTemplates()
{
    QSqlQuery q(SampleDatabase::Database());
    q.exec(QStringLiteral("SELECT nazev, text FROM textovy_vzor ORDER BY id"));
    while (q.next()) {
        auto *item = new QListWidgetItem(q.value(0).toString());
        item->setData(Qt::UserRole, q.value(1));
        m_templates->addItem(item);
    }
}

void ReportPage::SelectPatient(int row)
{
    if (m_patientId >= 0 && m_editor->document()->isModified())
        SaveReport();
    QListWidgetItem *item = m_patients->item(row);
    m_patientId = item ? item->data(Qt::UserRole).toInt() : -1;
    m_editor->Clear();
    QSqlQuery q(SampleDatabase::Database());
    q.prepare(QStringLiteral("SELECT obsah FROM zprava WHERE pacient = ?"));
    q.addBindValue(m_patientId);
    if (q.exec() && q.next()) {
        try {
            m_editor->LoadOxaRVFFromString(q.value(0).toByteArray());
        } catch (const Exception &e) {
            MessageService::ShowError(e.Message(), this);
        }
    }
    m_editor->document()->setModified(false);
    m_status->setText(item ? item->text() : QString());
}

bool ReportPage::SaveReport()
{
    if (m_patientId < 0)
        return false;
    QSqlQuery q(SampleDatabase::Database());
    q.prepare(QStringLiteral("INSERT OR REPLACE INTO zprava (pacient, obsah) VALUES (?, ?)"));
    q.addBindValue(m_patientId);
    q.addBindValue(m_editor->SaveOxaRVFToString());
    if (!q.exec()) {
        MessageService::ShowError(QStringLiteral("Zprávu nelze uložit: ") + q.lastError().text(),
                                  this);
        return false;
    }
    m_editor->document()->setModified(false);
    m_status->setText(QStringLiteral("Zpráva uložena."));
    return true;
}

void ReportPage::InsertTemplate()
{
    if (QListWidgetItem *item = m_templates->currentItem()) {
        m_editor->InsertFormatText(item->data(Qt::UserRole).toString());
        m_editor->setFocus();
    }
}
