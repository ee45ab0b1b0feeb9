#include "PatientPage.h"

#include "SampleDatabase.h"

#include "oxa/controls/ButtonOxa.h"
#include "oxa/controls/ComboBoxOxa.h"
#include "oxa/controls/DateTimePickerOxa.h"
#include "oxa/controls/EditOxa.h"
#include "oxa/controls/LabeledEditOxa.h"
#include "oxa/controls/MaskEditOxa.h"
#include "oxa/controls/MemoOxa.h"
#include "oxa/toolkit/DateUtils.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/MessageService.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlQueryModel>
#include <QTableView>
#include <QVBoxLayout>

using namespace oxa;

PatientPage::PatientPage(QWidget *parent)
    : QWidget(parent)
{
    BuildForm();
    WireNeighbours();
    LoadInsurers();
    RefreshList();
}

void PatientPage::BuildForm()
{
    auto *box = new QGroupBox(QStringLiteral("Registrace pacienta"), this);
    auto *form = new QFormLayout(box);

    m_prijmeni = new TEditOxa(box);
    m_prijmeni->setObjectName(QStringLiteral("editPrijmeni"));
    m_prijmeni->SetKorekceTextu(true);
    m_jmeno = new TEditOxa(box);
    m_jmeno->setObjectName(QStringLiteral("editJmeno"));
    m_jmeno->SetKorekceTextu(true);
    m_rodneCislo = new TMaskEditOxa(box);
    m_rodneCislo->setObjectName(QStringLiteral("editRodneCislo"));
    m_rodneCislo->SetEditMask(QStringLiteral("999999\\/9999;1;_"));
    m_datumNarozeni = new TMaskEditOxa(box);
    m_datumNarozeni->setObjectName(QStringLiteral("editDatumNarozeni"));
    m_datumNarozeni->SetIsDateFormat(true);
    m_pohlavi = new TComboBoxOxa(box);
    m_pohlavi->setObjectName(QStringLiteral("comboPohlavi"));
    m_pohlavi->addItems({QStringLiteral("muž"), QStringLiteral("žena")});
    m_pojistovna = new TComboBoxOxa(box);
    m_pojistovna->setObjectName(QStringLiteral("comboPojistovna"));
    // The labeled edit keeps its label above itself, inside this holder.
    auto *telefonHolder = new QWidget(box);
    m_telefon = new TLabeledEditOxa(telefonHolder);
    m_telefon->setObjectName(QStringLiteral("editTelefon"));
    m_telefon->SetLabelCaption(QStringLiteral("mobil nebo pevná linka:"));
    auto *telefonLayout = new QVBoxLayout(telefonHolder);
    telefonLayout->setContentsMargins(0, m_telefon->fontMetrics().height() + 4, 0, 0);
    telefonLayout->addWidget(m_telefon);
    telefonHolder->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    m_navsteva = new TDateTimePickerOxa(box);
    m_navsteva->setObjectName(QStringLiteral("pickerNavsteva"));
    m_poznamka = new TMemoOxa(box);
    m_poznamka->setObjectName(QStringLiteral("memoPoznamka"));
    m_poznamka->setFixedHeight(70);
    m_ulozit = new TButtonOxa(box);
    m_ulozit->setObjectName(QStringLiteral("buttonUlozit"));
    m_ulozit->setText(QStringLiteral("Uložit"));
    m_status = new QLabel(box);

    form->addRow(QStringLiteral("Příjmení:"), m_prijmeni);
    form->addRow(QStringLiteral("Jméno:"), m_jmeno);
    form->addRow(QStringLiteral("Rodné číslo:"), m_rodneCislo);
    form->addRow(QStringLiteral("Datum narození:"), m_datumNarozeni);
    form->addRow(QStringLiteral("Pohlaví:"), m_pohlavi);
    form->addRow(QStringLiteral("Pojišťovna:"), m_pojistovna);
    form->addRow(QStringLiteral("Telefon:"), telefonHolder);
    form->addRow(QStringLiteral("Datum návštěvy:"), m_navsteva);
    form->addRow(QStringLiteral("Poznámka:"), m_poznamka);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_ulozit);
    buttons->addWidget(m_status, 1);
    form->addRow(buttons);
    connect(m_ulozit, &QPushButton::clicked, this, &PatientPage::Save);

    m_model = new QSqlQueryModel(this);
    m_list = new QTableView(this);
    m_list->setModel(m_model);
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->horizontalHeader()->setStretchLastSection(true);
    m_list->verticalHeader()->hide();

    auto *layout = new QHBoxLayout(this);
    layout->addWidget(box, 0);
    auto *right = new QVBoxLayout;
    right->addWidget(new QLabel(QStringLiteral("Registrovaní pacienti:"), this));
    right->addWidget(m_list, 1);
    layout->addLayout(right, 1);
}

// The form is filled top to bottom: Ctrl+Down and Ctrl+Up walk the fields.
void PatientPage::WireNeighbours()
{
    m_prijmeni->SetFocDown(m_jmeno);
    m_prijmeni->SetFocRight(m_jmeno);
    m_jmeno->SetFocUp(m_prijmeni);
    m_jmeno->SetFocLeft(m_prijmeni);
    m_jmeno->SetFocDown(m_rodneCislo);
    m_rodneCislo->SetFocUp(m_jmeno);
    m_rodneCislo->SetFocDown(m_datumNarozeni);
    m_datumNarozeni->SetFocUp(m_rodneCislo);
    m_datumNarozeni->SetFocDown(m_pohlavi);
    m_pohlavi->SetFocUp(m_datumNarozeni);
    m_pohlavi->SetFocDown(m_pojistovna);
    m_pojistovna->SetFocUp(m_pohlavi);
    m_pojistovna->SetFocDown(m_telefon);
    m_telefon->SetFocUp(m_pojistovna);
    m_telefon->SetFocDown(m_navsteva);
    m_navsteva->SetFocUp(m_telefon);
    m_navsteva->SetFocDown(m_poznamka);
    m_poznamka->SetFocUp(m_navsteva);
    m_poznamka->SetFocDown(m_ulozit);
    m_ulozit->SetFocUp(m_poznamka);
}

void PatientPage::LoadInsurers()
{
    QSqlQuery q(SampleDatabase::Database());
    q.exec(QStringLiteral("SELECT kod, nazev FROM pojistovna ORDER BY kod"));
    while (q.next())
        m_pojistovna->addItem(q.value(0).toString() + QStringLiteral(" – ") + q.value(1).toString(),
                              q.value(0).toString());
}

void PatientPage::Save()
{
    if (m_prijmeni->text().trimmed().isEmpty()) {
        MessageService::ShowWarning(QStringLiteral("Vyplňte příjmení pacienta."), this);
        m_prijmeni->setFocus();
        return;
    }
    QString born;
    const QString bornText = m_datumNarozeni->text();
    if (!bornText.trimmed().remove(QLatin1Char('.')).isEmpty()) {
        try {
            born = DateToStr(FormatStrToDate(bornText));
        } catch (const EConvertError &e) {
            MessageService::ShowError(e.Message(), this);
            m_datumNarozeni->setFocus();
            return;
        }
    }
    QSqlQuery q(SampleDatabase::Database());
    q.prepare(QStringLiteral("INSERT INTO pacient (prijmeni, jmeno, rodne_cislo, datum_narozeni, pohlavi,"
                             " pojistovna, telefon, poznamka, navsteva) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    q.addBindValue(m_prijmeni->text().trimmed());
    q.addBindValue(m_jmeno->text().trimmed());
    q.addBindValue(m_rodneCislo->text());
    q.addBindValue(born);
    q.addBindValue(m_pohlavi->currentText());
    q.addBindValue(m_pojistovna->currentData().toString());
    q.addBindValue(m_telefon->text().trimmed());
    q.addBindValue(m_poznamka->toPlainText());
    q.addBindValue(m_navsteva->EmptyDate() ? QString() : DateToStr(m_navsteva->Date()));
    if (!q.exec()) {
        MessageService::ShowError(QStringLiteral("Pacienta nelze uložit: ") + q.lastError().text(), this);
        return;
    }
    m_status->setText(QStringLiteral("Pacient %1 uložen.").arg(m_prijmeni->text().trimmed()));
    ClearForm();
    RefreshList();
}

void PatientPage::ClearForm()
{
    m_prijmeni->clear();
    m_jmeno->clear();
    m_rodneCislo->clear();
    m_datumNarozeni->clear();
    m_telefon->clear();
    m_poznamka->clear();
    m_navsteva->SetDate(m_navsteva->MinDate());
    m_prijmeni->setFocus();
}

void PatientPage::RefreshList()
{
    m_model->setQuery(QStringLiteral("SELECT prijmeni AS \"Příjmení\", jmeno AS \"Jméno\","
                                     " rodne_cislo AS \"Rodné číslo\", datum_narozeni AS \"Narozen\","
                                     " pojistovna AS \"Pojišťovna\", navsteva AS \"Návštěva\""
                                     " FROM pacient ORDER BY id DESC"),
                      SampleDatabase::Database());
    m_list->resizeColumnsToContents();
}
