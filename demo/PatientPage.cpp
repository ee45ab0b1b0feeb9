#include "PatientPage.h"

#include "BirthNumber.h"
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

#include <QCollator>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QSortFilterProxyModel>
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

// The list of patients sorted the Czech way: Č after C, "ch" after "h".
class CzechSortModel : public QSortFilterProxyModel
{
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

protected:
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override
    {
        return m_collator.compare(left.data().toString(), right.data().toString()) < 0;
    }

private:
    QCollator m_collator{QLocale(QLocale::Czech, QLocale::CzechRepublic)};
};

// The name of an insurer of the code list; empty for an unknown code.
QString InsurerName(const QString &code)
{
    QSqlQuery q(SampleDatabase::Database());
    q.prepare(QStringLiteral("SELECT nazev FROM pojistovna WHERE kod = ?"));
    q.addBindValue(code);
    return q.exec() && q.next() ? q.value(0).toString() : QString();
}

} // namespace

PatientPage::PatientPage(QWidget *parent) : QWidget(parent)
{
    setProperty("statusHint",
                QStringLiteral("Ctrl+šipky přesouvají mezi poli, Tab v pořadí formuláře, "
                               "Enter na tlačítku Uložit uloží pacienta."));
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
    m_pohlavi->setPlaceholderText(QStringLiteral("vyberte"));
    m_pohlavi->setCurrentIndex(-1); // no silent default: the user chooses
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
    m_pojistovna->OnBtnClick2 = [this](QObject *, QString &code, QString &name) {
        PickInsurer(code, name);
    };
    // A typed code fills the name as a code chosen from the list does.
    connect(m_pojistovna, &QLineEdit::editingFinished, this, &PatientPage::FillInsurerName);
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
    m_deti->SetNumType(TNumEditOxa::ntCardinal); // no minus can be typed
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
    m_status->setObjectName(QStringLiteral("labelStatus"));

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
    for (QWidget *field : QList<QWidget *>{m_prijmeni, m_rodneCislo, m_datumNarozeni, m_pohlavi,
                                           m_pojistovna, m_vaha, m_deti})
        ClearMarkWhenEdited(field);

    m_model = new QSqlQueryModel(this);
    auto *sorted = new CzechSortModel(this);
    sorted->setSourceModel(m_model);
    m_list = new QTableView(this);
    m_list->setModel(sorted);
    m_list->setSortingEnabled(true);
    m_list->sortByColumn(0, Qt::AscendingOrder);
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
    CodeListDialog dialog(
        QStringLiteral("Číselník pojišťoven"),
        QStringLiteral("SELECT kod AS \"Kód\", nazev AS \"Název\" FROM pojistovna ORDER BY kod"),
        this);
    dialog.SelectCode(code);
    if (MessageService::ExecDialog(&dialog) != mrOk || dialog.Code().isEmpty())
        return;
    code = dialog.Code();
    name = dialog.Name();
}

void PatientPage::FillInsurerName()
{
    const QString code = m_pojistovna->text().trimmed();
    m_pojistovnaNazev->setText(code.isEmpty() ? QString() : InsurerName(code));
    m_pojistovnaNazev->setCursorPosition(0); // the start of a long name
}

// A mark goes as soon as the user changes its field; Save checks again.
void PatientPage::ClearMarkWhenEdited(QWidget *field)
{
    const auto clear = [this, field] { m_chyby->ClearError(field); };
    if (auto *edit = qobject_cast<QLineEdit *>(field))
        connect(edit, &QLineEdit::textEdited, this, clear);
    else if (auto *combo = qobject_cast<QComboBox *>(field))
        connect(combo, &QComboBox::currentIndexChanged, this, clear);
}

bool PatientPage::Validate(QStringList &warnings)
{
    m_chyby->ClearAllErrors();
    m_chyby->BeginUpdate();
    bool ok = true;
    const auto error = [&](QWidget *field, const QString &text) {
        if (m_chyby->ErrorImage(field)) // the first fault of a field is shown
            return;
        m_chyby->SetError(field, text, etError);
        ok = false;
    };
    const auto warning = [&](QWidget *field, const QString &text) {
        m_chyby->SetError(field, text, etWarning);
        warnings << text;
    };

    if (m_prijmeni->text().trimmed().isEmpty())
        error(m_prijmeni, QStringLiteral("Vyplňte příjmení pacienta."));
    if (m_pohlavi->currentIndex() < 0)
        error(m_pohlavi, QStringLiteral("Vyberte pohlaví."));

    QDate born;
    if (DateTyped(m_datumNarozeni->text())) {
        try {
            born = DateTimeToQDate(FormatStrToDate(m_datumNarozeni->text()));
            if (born > QDate::currentDate())
                error(m_datumNarozeni, QStringLiteral("Datum narození je v budoucnosti."));
            else if (born.addYears(120) < QDate::currentDate())
                warning(m_datumNarozeni, QStringLiteral("Pacientovi by bylo přes 120 let."));
        } catch (const EConvertError &e) {
            error(m_datumNarozeni, e.Message());
        }
    }
    if (!BirthNumber::Digits(m_rodneCislo->text()).isEmpty()) {
        const BirthNumber number = BirthNumber::Parse(m_rodneCislo->text());
        if (!number.IsValid())
            error(m_rodneCislo, number.error);
        else if (born.isValid() && born != number.birthDate)
            error(m_datumNarozeni,
                  QStringLiteral("Datum narození neodpovídá rodnému číslu (%1).")
                      .arg(number.birthDate.toString(QStringLiteral("d.M.yyyy"))));
        else if (m_pohlavi->currentIndex() >= 0 && m_pohlavi->currentIndex() != int(number.sex))
            error(m_pohlavi, QStringLiteral("Pohlaví neodpovídá rodnému číslu."));
    }

    const QString insurer = m_pojistovna->text().trimmed();
    if (!insurer.isEmpty() && InsurerName(insurer).isEmpty())
        error(m_pojistovna, QStringLiteral("Pojišťovna %1 není v číselníku.").arg(insurer));

    if (!m_vaha->text().isEmpty()) {
        try {
            const double weight = m_vaha->getDouble(); // 0: not weighed
            if (weight < 0 || weight > 250)
                error(m_vaha, QStringLiteral("Váha musí být mezi 0 a 250 kg."));
            else if (weight != 0 && (weight < 2 || weight > 200))
                warning(m_vaha, QStringLiteral("Neobvyklá váha: %1 kg.").arg(m_vaha->text()));
        } catch (const EConvertError &e) {
            error(m_vaha, e.Message());
        }
    }
    if (!m_deti->text().isEmpty() && m_deti->getCardinal() > 20)
        warning(m_deti, QStringLiteral("Neobvyklý počet dětí: %1.").arg(m_deti->text()));
    m_chyby->EndUpdate();
    return ok;
}

// Errors stop the save; warnings are asked about once, before anything is stored.
void PatientPage::Save()
{
    QStringList warnings;
    if (!Validate(warnings)) {
        m_status->setText(QStringLiteral("Opravte označená pole."));
        return;
    }
    if (!warnings.isEmpty() &&
        MessageService::MessageDlg(warnings.join(QLatin1Char('\n')) +
                                       QStringLiteral("\n\nUložit i přesto?"),
                                   mtWarning, mbYes | mbNo) != mrYes) {
        m_status->setText(QStringLiteral("Neuloženo."));
        return;
    }
    const QString bornText = m_datumNarozeni->text();
    const QString born = DateTyped(bornText) ? DateToStr(FormatStrToDate(bornText)) : QString();
    const QString birthNumber = m_rodneCislo->text();
    QSqlQuery q(SampleDatabase::Database());
    q.prepare(
        QStringLiteral("INSERT INTO pacient (prijmeni, jmeno, rodne_cislo, datum_narozeni, pohlavi,"
                       " pojistovna, telefon, poznamka, navsteva, vaha, deti)"
                       " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    q.addBindValue(m_prijmeni->text().trimmed());
    q.addBindValue(m_jmeno->text().trimmed());
    q.addBindValue(BirthNumber::Digits(birthNumber).isEmpty() ? QVariant() : QVariant(birthNumber));
    q.addBindValue(born.isEmpty() ? QVariant() : QVariant(born));
    q.addBindValue(m_pohlavi->currentText());
    q.addBindValue(m_pojistovna->text().trimmed().isEmpty()
                       ? QVariant()
                       : QVariant(m_pojistovna->text().trimmed()));
    q.addBindValue(m_telefon->text().trimmed());
    q.addBindValue(m_poznamka->toPlainText());
    q.addBindValue(m_navsteva->EmptyDate() ? QVariant() : QVariant(DateToStr(m_navsteva->Date())));
    const double weight = m_vaha->text().isEmpty() ? 0 : m_vaha->getDouble();
    q.addBindValue(weight == 0 ? QVariant()
                               : QVariant(weight)); // 0: the numeric edit's empty value
    q.addBindValue(m_deti->text().isEmpty() ? QVariant() : QVariant(qint64(m_deti->getCardinal())));
    if (!q.exec()) {
        MessageService::ShowError(QStringLiteral("Pacienta nelze uložit: ") + q.lastError().text(),
                                  this);
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
    m_pohlavi->setCurrentIndex(-1);
    m_chyby->ClearAllErrors();
    m_navsteva->SetDate(m_navsteva->MinDate());
    m_prijmeni->setFocus();
}

void PatientPage::RefreshList()
{
    m_model->setQuery(
        QStringLiteral("SELECT prijmeni AS \"Příjmení\", jmeno AS \"Jméno\","
                       " rodne_cislo AS \"Rodné číslo\", datum_narozeni AS \"Narozen\","
                       " pojistovna AS \"Pojišťovna\", navsteva AS \"Návštěva\""
                       " FROM pacient"),
        SampleDatabase::Database());
    m_list->resizeColumnsToContents();
}
