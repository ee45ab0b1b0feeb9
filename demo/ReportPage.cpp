#include "ReportPage.h"

#include "SampleDatabase.h"

#include "oxa/richtext/OxaRichView.h"
#include "oxa/richtext/RVPopupMenu.h"
#include "oxa/richtext/SpellChecker.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/MessageService.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSplitter>
#include <QSqlError>
#include <QSqlQuery>
#include <QVBoxLayout>

using namespace oxa;

ReportPage::ReportPage(QWidget *parent) : QWidget(parent)
{
    setProperty("statusHint",
                QStringLiteral("Panel nástrojů formátuje a vkládá z databáze vzory, trvalé léky, "
                               "anamnézy, diagnózy a bloky; zpráva se ukládá k vybranému "
                               "pacientovi."));
    QString error;
    QSqlDatabase db = SampleDatabase::Database();
    if (db.isOpen() &&
        (!SampleDatabase::EnsureReportSchema(db, &error) ||
         !SampleDatabase::EnsureReportInsertions(db, &error) ||
         !SampleDatabase::EnsurePersonalWords(db, &error)))
        MessageService::ShowError(error, this);

    m_patients = new QListWidget(this);
    m_templates = new QListWidget(this);
    m_editor = new TOxaRichView(this);
    m_editor->setObjectName(QStringLiteral("zprava"));
    m_toolbar = new TRVToolBar(this);
    m_toolbar->AddObjectGroups(
        {tbgFontStyle, tbgAlign, tbgClipboard, tbgUndoRedo, tbgColors, tbgInclude, tbgFont}, true);
    m_toolbar->Init(m_editor);
    m_toolbar->OnButtonClick = [this](QObject *button, TRVToolButtonType typ, bool &Handled) {
        Handled = InsertFromDatabase(button, typ);
    };
    m_menu = new TRVPopupMenu(this);
    m_menu->Init(m_editor);
    // The spell check knows the clinic's words; a word the user adds is kept.
    m_editor->SetPersonalWords(SampleDatabase::PersonalWords());
    connect(m_editor, &TOxaRichView::personalWordAdded, this, [this](const QString &word) {
        QString why;
        if (!SampleDatabase::AddPersonalWord(word, &why))
            MessageService::ShowError(why, this);
    });
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
    rightLayout->addWidget(m_toolbar);
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
    // Replaced as delete and insert in one transaction: SQLite and PostgreSQL alike.
    QSqlDatabase db = SampleDatabase::Database();
    QSqlQuery q(db);
    const bool began = db.transaction();
    q.prepare(QStringLiteral("DELETE FROM zprava WHERE pacient = ?"));
    q.addBindValue(m_patientId);
    bool ok = q.exec();
    if (ok) {
        q.prepare(QStringLiteral("INSERT INTO zprava (pacient, obsah) VALUES (?, ?)"));
        q.addBindValue(m_patientId);
        q.addBindValue(m_editor->SaveOxaRVFToString());
        ok = q.exec();
    }
    if (!ok || (began && !db.commit())) {
        const QString reason = q.lastError().text();
        if (began)
            db.rollback();
        MessageService::ShowError(QStringLiteral("Zprávu nelze uložit: ") + reason, this);
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

bool ReportPage::InsertFromDatabase(QObject *button, TRVToolButtonType typ)
{
    QList<QPair<QString, QString>> choices;
    QSqlQuery q(SampleDatabase::Database());
    switch (typ) {
    case tbtInTextoveVzory:
        q.exec(QStringLiteral("SELECT nazev, text FROM textovy_vzor ORDER BY id"));
        break;
    case tbtInBloky:
        q.exec(QStringLiteral("SELECT nazev, text FROM textovy_blok ORDER BY id"));
        break;
    case tbtInTrvaleLeky:
        Insert(QStringLiteral("<b>Trvalá medikace:</b>\r\n") +
               PatientTexts(QStringLiteral("trvaly_lek")).join(QString()));
        return true;
    case tbtInAnamnezy:
        Insert(QStringLiteral("<b>Anamnéza:</b>\r\n") +
               PatientTexts(QStringLiteral("anamneza")).join(QString()));
        return true;
    case tbtInTrvaleDiagnozy: {
        const QStringList diagnoses = PatientTexts(QStringLiteral("trvala_diagnoza"));
        choices << qMakePair(QStringLiteral("Všechny"), diagnoses.join(QString()));
        for (const QString &diagnosis : diagnoses)
            choices << qMakePair(
                diagnosis.section(QStringLiteral("</b>"), 0, 0).remove(QStringLiteral("<b>")),
                diagnosis);
        OfferChoices(button, choices);
        return true;
    }
    case tbtInclude:
    case tbtIncludeSmall: {
        // Both offer the five kinds the other buttons insert.
        auto *menu = new QMenu(this);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        for (TRVToolButtonType kind :
             {tbtInTextoveVzory, tbtInTrvaleLeky, tbtInAnamnezy, tbtInTrvaleDiagnozy, tbtInBloky})
            connect(menu->addAction(TRVToolBar::ButtonsProperties(kind).Hint), &QAction::triggered,
                    this, [this, button, kind] { InsertFromDatabase(button, kind); });
        auto *widget = qobject_cast<QWidget *>(button);
        menu->popup(widget->mapToGlobal(QPoint(0, widget->height())));
        return true;
    }
    default:
        return false; // the toolbar formats by itself
    }
    while (q.next())
        choices << qMakePair(q.value(0).toString(), q.value(1).toString());
    OfferChoices(button, choices);
    return true;
}

QStringList ReportPage::PatientTexts(const QString &table) const
{
    QStringList texts;
    QSqlQuery q(SampleDatabase::Database());
    q.prepare(QStringLiteral("SELECT text FROM %1 WHERE pacient = ? ORDER BY poradi").arg(table));
    q.addBindValue(m_patientId);
    q.exec();
    while (q.next())
        texts << q.value(0).toString() + QStringLiteral("\r\n");
    return texts;
}

void ReportPage::OfferChoices(QObject *button, const QList<QPair<QString, QString>> &choices)
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const auto &[name, text] : choices)
        connect(menu->addAction(name), &QAction::triggered, this, [this, text] { Insert(text); });
    if (choices.isEmpty())
        menu->addAction(QStringLiteral("(nic k vložení)"))->setEnabled(false);
    auto *widget = qobject_cast<QWidget *>(button);
    menu->popup(widget->mapToGlobal(QPoint(0, widget->height())));
}

void ReportPage::PrepareScreenshot()
{
    if (!m_editor->IsEmpty())
        return;
    Insert(QStringLiteral("<b><fs=12>Ambulantní zpráva</fs></b>\r\n"
                          "Pacient přichází pro bolesit hlavy trvající tři dny.\r\n"));
    InsertFromDatabase(nullptr, tbtInAnamnezy);
    InsertFromDatabase(nullptr, tbtInTrvaleLeky);
    // Read the dictionary now; the check then runs while the window waits.
    SpellChecker::Shared()->EnsureLoaded();
}

void ReportPage::Insert(const QString &taggedText)
{
    m_editor->InsertFormatText(taggedText);
    m_editor->setFocus();
}
