#include "PatientPage.h"

#include "CodeListDialog.h"
#include "SampleDatabase.h"

#include "oxa/controls/ButtonOxa.h"
#include "oxa/controls/ComboBoxOxa.h"
#include "oxa/controls/DateTimePickerOxa.h"
#include "oxa/controls/EditOxa.h"
#include "oxa/controls/ErrorProvider.h"
#include "oxa/controls/LabeledEditOxa.h"
#include "oxa/controls/MaskEditOxa.h"
#include "oxa/controls/MemoOxa.h"
#include "oxa/controls/NumEditOxa.h"
#include "oxa/controls/OxaEditCis.h"
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

namespace {

// Whether anything was typed into a masked date edit (an untouched mask is
// only separators and blanks).
bool DateTyped(const QString &text)
{
    return !text.trimmed().remove(QLatin1Char('.')).trimmed().isEmpty();
}

} // namespace

PatientPage::PatientPage(QWidget *parent)
    : QWidget(parent)
{
    BuildForm();
    WireNeighbours();
    RefreshList();
}

// The form is filled from the keyboard: the first field has the focus
// whenever the page is shown.
void PatientPage::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_prijmeni->setFocus();
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
    // The code-list edit keeps its button right of itself, inside this holder.
    auto *insurerHolder = new QWidget(box);
    m_pojistovna = new TOxaEditCis(insurerHolder);
    m_pojistovna->setObjectName(QStringLiteral("editPojistovna"));
    m_pojistovna->setMaxLength(3);
    m_pojistovnaNazev = new TEditOxa(insurerHolder);
    m_pojistovnaNazev->setObjectName(QStringLiteral("editPojistovnaNazev"));
    m_pojistovnaNazev->setReadOnly(true);
    m_pojistovnaNazev->setFocusPolicy(Qt::NoFocus);
    m_pojistovna->SetSecondEdit(m_pojistovnaNazev);
    m_pojistovna->OnBtnClick2 = [this](QObject *, QString &code, QString &name) { PickInsurer(code, name); };
    auto *insurerLayout = new QHBoxLayout(insurerHolder);
    insurerLayout->setContentsMargins(0, 0, 0, 0);
    insurerLayout->addWidget(m_pojistovna, 0);
    insurerLayout->addSpacing(m_pojistovna->sizeHint().height() + 4);
    insurerLayout->addWidget(m_pojistovnaNazev, 1);
    m_pojistovna->setFixedWidth(60);
    insurerHolder->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);

    m_vaha = new TNumEditOxa(box);
    m_vaha->setObjectName(QStringLiteral("editVaha"));
    m_vaha->SetNumType(TNumEditOxa::ntDouble);
    m_vaha->SetDigits(2);
    m_vaha->clear(); // an unknown weight stays empty until the field is entered
    m_deti = new TNumEditOxa(box);
    m_deti->setObjectName(QStringLiteral("editDeti"));
    m_deti->SetNumType(TNumEditOxa::ntInteger);
    m_chyby = new TErrorProvider(this);
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
    form->addRow(QStringLiteral("Pojišťovna:"), insurerHolder);
    form->addRow(QStringLiteral("Váha (kg):"), m_vaha);
    form->addRow(QStringLiteral("Počet dětí:"), m_deti);
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
    m_pojistovna->SetFocDown(m_vaha);
    m_vaha->SetFocUp(m_pojistovna);
    m_vaha->SetFocDown(m_deti);
    m_vaha->SetFocRight(m_deti);
    m_deti->SetFocUp(m_vaha);
    m_deti->SetFocLeft(m_vaha);
    m_deti->SetFocDown(m_telefon);
    m_telefon->SetFocUp(m_deti);
    m_telefon->SetFocDown(m_navsteva);
    m_navsteva->SetFocUp(m_telefon);
    m_navsteva->SetFocDown(m_poznamka);
    m_poznamka->SetFocUp(m_navsteva);
    m_poznamka->SetFocDown(m_ulozit);
    m_ulozit->SetFocUp(m_poznamka);
}

void PatientPage::PickInsurer(QString &code, QString &name)
{
    CodeListDialog dialog(QStringLiteral("Číselník pojišťoven"),
                          QStringLiteral("SELECT kod AS \"Kód\", nazev AS \"Název\" FROM pojistovna ORDER BY kod"),
                          this);
    dialog.SelectCode(code);
    if (MessageService::ExecDialog(&dialog) != mrOk || dialog.Code().isEmpty())
        return;
    code = dialog.Code();
    name = dialog.Name();
}

// Marks what keeps the patient from being saved (errors) and what looks
// unusual (warnings). Returns whether there is no error.
bool PatientPage::Validate()
{
    m_chyby->ClearAllErrors();
    m_chyby->BeginUpdate();
    bool ok = true;
    if (m_prijmeni->text().trimmed().isEmpty()) {
        m_chyby->SetError(m_prijmeni, QStringLiteral("Vyplňte příjmení pacienta."), etError);
        ok = false;
    }
    if (DateTyped(m_datumNarozeni->text())) {
        try {
            FormatStrToDate(m_datumNarozeni->text());
        } catch (const EConvertError &e) {
            m_chyby->SetError(m_datumNarozeni, e.Message(), etError);
            ok = false;
        }
    }
    if (!m_vaha->text().isEmpty()) {
        const double weight = m_vaha->getDouble();
        if (weight != 0 && (weight < 2 || weight > 250))
            m_chyby->SetError(m_vaha, QStringLiteral("Neobvyklá váha: %1 kg.").arg(m_vaha->text()), etWarning);
    }
    if (!m_pojistovna->text().isEmpty() && m_pojistovnaNazev->text().isEmpty())
        m_chyby->SetError(m_pojistovna, QStringLiteral("Neznámý kód pojišťovny."), etWarning);
    m_chyby->EndUpdate();
    return ok;
}

void PatientPage::Save()
{
    if (!Validate()) {
        m_status->setText(QStringLiteral("Opravte označená pole."));
        return;
    }
    const QString bornText = m_datumNarozeni->text();
    const QString born = DateTyped(bornText) ? DateToStr(FormatStrToDate(bornText)) : QString();
    QSqlQuery q(SampleDatabase::Database());
    q.prepare(QStringLiteral("INSERT INTO pacient (prijmeni, jmeno, rodne_cislo, datum_narozeni, pohlavi,"
                             " pojistovna, telefon, poznamka, navsteva, vaha, deti)"
                             " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    q.addBindValue(m_prijmeni->text().trimmed());
    q.addBindValue(m_jmeno->text().trimmed());
    q.addBindValue(m_rodneCislo->text());
    q.addBindValue(born);
    q.addBindValue(m_pohlavi->currentText());
    q.addBindValue(m_pojistovna->text());
    q.addBindValue(m_telefon->text().trimmed());
    q.addBindValue(m_poznamka->toPlainText());
    q.addBindValue(m_navsteva->EmptyDate() ? QString() : DateToStr(m_navsteva->Date()));
    const double weight = m_vaha->text().isEmpty() ? 0 : m_vaha->getDouble();
    q.addBindValue(weight == 0 ? QVariant() : QVariant(weight));
    q.addBindValue(m_deti->text().isEmpty() ? QVariant() : QVariant(m_deti->getInteger()));
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
    m_pojistovna->clear();
    m_pojistovnaNazev->clear();
    m_vaha->clear();
    m_deti->clear();
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
