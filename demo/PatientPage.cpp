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
#include <QEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QSortFilterProxyModel>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlQueryModel>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

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

// The stored dates: "dd.MM.yyyy" as the form writes them; older rows may
// lack the leading zeros.
QDate StoredDate(const QVariant &value)
{
    return QDate::fromString(value.toString(), QStringLiteral("d.M.yyyy"));
}

// The width in which every insurer's name of the code list is shown whole.
int LongestInsurerName(const QFontMetrics &metrics)
{
    int width = 0;
    QSqlQuery q(QStringLiteral("SELECT nazev FROM pojistovna"), SampleDatabase::Database());
    while (q.next())
        width = std::max(width, metrics.horizontalAdvance(q.value(0).toString()));
    return width + 16; // the frame and the text margins of the edit
}

// The hidden column of the patient list that holds the patient's key.
constexpr int IdColumn = 6;

} // namespace

PatientPage::PatientPage(QWidget *parent) : QWidget(parent)
{
    setProperty("statusHint",
                QStringLiteral("Ctrl+šipky přesouvají mezi poli, Tab v pořadí formuláře, "
                               "Enter na tlačítku Uložit uloží pacienta, Enter v seznamu "
                               "otevře pacienta k úpravě."));
    BuildForm();
    BuildList();
    WireNeighbours();
    RefreshList();
    ClearForm();
}

// The form is filled from the keyboard: the first field has the focus
// whenever the page is shown. The window the page lives in closes only after
// the page agreed.
void PatientPage::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    window()->installEventFilter(this); // installed once, however often shown
    m_prijmeni->setFocus();
}

bool PatientPage::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == window() && event->type() == QEvent::Close && Modified()) {
        // The user sees the form that is asked about, whatever page was shown.
        auto *tabs = window()->findChild<QTabWidget *>();
        for (QWidget *page = this; tabs && page; page = page->parentWidget()) {
            if (tabs->indexOf(page) >= 0) {
                tabs->setCurrentWidget(page);
                break;
            }
        }
    }
    if (watched == window() && event->type() == QEvent::Close && !MayLeavePatient()) {
        event->ignore();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void PatientPage::BuildForm()
{
    m_box = new QGroupBox(this);
    auto *form = new QFormLayout(m_box);
    // The marks of the error provider stand right of their fields, in a
    // column of their own, where they cover nothing.
    QMargins margins = form->contentsMargins();
    margins.setRight(margins.right() + TErrorImage::ImageSize + 4);
    form->setContentsMargins(margins);

    m_prijmeni = new TEditOxa(m_box);
    m_prijmeni->setObjectName(QStringLiteral("editPrijmeni"));
    m_prijmeni->SetKorekceTextu(true);
    m_jmeno = new TEditOxa(m_box);
    m_jmeno->setObjectName(QStringLiteral("editJmeno"));
    m_jmeno->SetKorekceTextu(true);
    m_rodneCislo = new TMaskEditOxa(m_box);
    m_rodneCislo->setObjectName(QStringLiteral("editRodneCislo"));
    m_rodneCislo->SetEditMask(QStringLiteral("999999\\/9999;1;_"));
    m_datumNarozeni = new TMaskEditOxa(m_box);
    m_datumNarozeni->setObjectName(QStringLiteral("editDatumNarozeni"));
    m_datumNarozeni->SetIsDateFormat(true);
    m_pohlavi = new TComboBoxOxa(m_box);
    m_pohlavi->setObjectName(QStringLiteral("comboPohlavi"));
    m_pohlavi->addItems({QStringLiteral("muž"), QStringLiteral("žena")});
    m_pohlavi->setPlaceholderText(QStringLiteral("vyberte"));
    m_pohlavi->setCurrentIndex(-1); // no silent default: the user chooses
    // The code-list edit keeps its button right of itself, inside this row;
    // the row as a whole carries the insurer's mark, right of the name.
    m_pojistovnaRadek = new QWidget(m_box);
    m_pojistovnaRadek->setObjectName(QStringLiteral("radekPojistovna"));
    m_pojistovna = new TOxaEditCis(m_pojistovnaRadek);
    m_pojistovna->setObjectName(QStringLiteral("editPojistovna"));
    m_pojistovna->setMaxLength(3);
    m_pojistovnaNazev = new TEditOxa(m_pojistovnaRadek);
    m_pojistovnaNazev->setObjectName(QStringLiteral("editPojistovnaNazev"));
    m_pojistovnaNazev->setReadOnly(true);
    m_pojistovnaNazev->setFocusPolicy(Qt::NoFocus);
    m_pojistovnaNazev->setMinimumWidth(LongestInsurerName(m_pojistovnaNazev->fontMetrics()));
    m_pojistovna->SetSecondEdit(m_pojistovnaNazev);
    m_pojistovna->OnBtnClick2 = [this](QObject *, QString &code, QString &name) {
        PickInsurer(code, name);
    };
    // A typed code fills the name as a code chosen from the list does.
    connect(m_pojistovna, &QLineEdit::editingFinished, this, &PatientPage::FillInsurerName);
    auto *insurerLayout = new QHBoxLayout(m_pojistovnaRadek);
    insurerLayout->setContentsMargins(0, 0, 0, 0);
    insurerLayout->addWidget(m_pojistovna, 0);
    insurerLayout->addSpacing(m_pojistovna->sizeHint().height() + 4);
    insurerLayout->addWidget(m_pojistovnaNazev, 1);
    m_pojistovna->setFixedWidth(60);
    m_pojistovnaRadek->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);

    m_vaha = new TNumEditOxa(m_box);
    m_vaha->setObjectName(QStringLiteral("editVaha"));
    m_vaha->SetNumType(TNumEditOxa::ntDouble);
    m_vaha->SetDigits(2);
    m_deti = new TNumEditOxa(m_box);
    m_deti->setObjectName(QStringLiteral("editDeti"));
    m_deti->SetNumType(TNumEditOxa::ntCardinal); // no minus can be typed
    m_chyby = new TErrorProvider(this);
    // The labeled edit keeps its label above itself, inside this holder.
    auto *telefonHolder = new QWidget(m_box);
    m_telefon = new TLabeledEditOxa(telefonHolder);
    m_telefon->setObjectName(QStringLiteral("editTelefon"));
    m_telefon->SetLabelCaption(QStringLiteral("mobil nebo pevná linka:"));
    auto *telefonLayout = new QVBoxLayout(telefonHolder);
    telefonLayout->setContentsMargins(0, m_telefon->fontMetrics().height() + 4, 0, 0);
    telefonLayout->addWidget(m_telefon);
    telefonHolder->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    m_navsteva = new TDateTimePickerOxa(m_box);
    m_navsteva->setObjectName(QStringLiteral("pickerNavsteva"));
    m_poznamka = new TMemoOxa(m_box);
    m_poznamka->setObjectName(QStringLiteral("memoPoznamka"));
    m_poznamka->setFixedHeight(70);
    m_ulozit = new TButtonOxa(m_box);
    m_ulozit->setObjectName(QStringLiteral("buttonUlozit"));
    m_ulozit->setText(QStringLiteral("Uložit"));
    m_novy = new TButtonOxa(m_box);
    m_novy->setObjectName(QStringLiteral("buttonNovy"));
    m_novy->setText(QStringLiteral("Nový pacient"));
    m_status = new QLabel(m_box);
    m_status->setObjectName(QStringLiteral("labelStatus"));

    form->addRow(QStringLiteral("Příjmení:"), m_prijmeni);
    form->addRow(QStringLiteral("Jméno:"), m_jmeno);
    form->addRow(QStringLiteral("Rodné číslo:"), m_rodneCislo);
    form->addRow(QStringLiteral("Datum narození:"), m_datumNarozeni);
    form->addRow(QStringLiteral("Pohlaví:"), m_pohlavi);
    form->addRow(QStringLiteral("Pojišťovna:"), m_pojistovnaRadek);
    form->addRow(QStringLiteral("Váha (kg):"), m_vaha);
    form->addRow(QStringLiteral("Počet dětí:"), m_deti);
    form->addRow(QStringLiteral("Telefon:"), telefonHolder);
    form->addRow(QStringLiteral("Datum návštěvy:"), m_navsteva);
    form->addRow(QStringLiteral("Poznámka:"), m_poznamka);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_ulozit);
    buttons->addWidget(m_novy);
    buttons->addWidget(m_status, 1);
    form->addRow(buttons);
    connect(m_ulozit, &QPushButton::clicked, this, &PatientPage::Save);
    connect(m_novy, &QPushButton::clicked, this, &PatientPage::NewPatient);
    for (QWidget *field : QList<QWidget *>{m_prijmeni, m_rodneCislo, m_datumNarozeni, m_pohlavi,
                                           m_pojistovna, m_vaha, m_deti})
        ClearMarksWhenFixed(field);
}

void PatientPage::BuildList()
{
    m_model = new QSqlQueryModel(this);
    m_sorted = new CzechSortModel(this);
    m_sorted->setSourceModel(m_model);
    m_list = new QTableView(this);
    m_list->setObjectName(QStringLiteral("listPacienti"));
    m_list->setModel(m_sorted);
    m_list->setSortingEnabled(true);
    m_list->sortByColumn(0, Qt::AscendingOrder);
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->horizontalHeader()->setStretchLastSection(true);
    m_list->verticalHeader()->hide();
    connect(m_list, &QAbstractItemView::activated, this, &PatientPage::OpenPatient);

    auto *layout = new QHBoxLayout(this);
    layout->addWidget(m_box, 0);
    auto *right = new QVBoxLayout;
    right->addWidget(new QLabel(QStringLiteral("Registrovaní pacienti (Enter otevře):"), this));
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
    m_ulozit->SetFocRight(m_novy);
    m_novy->SetFocLeft(m_ulozit);
    m_novy->SetFocUp(m_poznamka);
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

// A mark goes as soon as its field is right again (a field that still is
// wrong keeps it); Save checks everything again.
void PatientPage::ClearMarksWhenFixed(QWidget *field)
{
    if (auto *edit = qobject_cast<QLineEdit *>(field))
        connect(edit, &QLineEdit::textChanged, this, &PatientPage::ClearFixedMarks);
    else if (auto *combo = qobject_cast<QComboBox *>(field))
        connect(combo, &QComboBox::currentIndexChanged, this, &PatientPage::ClearFixedMarks);
}

void PatientPage::ClearFixedMarks()
{
    if (m_chyby->ErrorCount() == 0)
        return;
    const QList<Fault> faults = Faults();
    for (QWidget *field : QList<QWidget *>{m_prijmeni, m_rodneCislo, m_datumNarozeni, m_pohlavi,
                                           m_pojistovnaRadek, m_vaha, m_deti}) {
        const TErrorImage *mark = m_chyby->ErrorImage(field);
        if (!mark)
            continue;
        // A field whose error became a warning loses its error mark; the
        // warning is asked about at the save.
        const bool stillWrong = std::any_of(faults.begin(), faults.end(), [&](const Fault &f) {
            return f.field == field && f.type <= mark->ErrorType();
        });
        if (!stillWrong)
            m_chyby->ClearError(field);
    }
}

QList<PatientPage::Fault> PatientPage::Faults() const
{
    QList<Fault> faults;
    const auto error = [&](QWidget *field, const QString &text) {
        faults.append({field, text, etError});
    };
    const auto warning = [&](QWidget *field, const QString &text) {
        faults.append({field, text, etWarning});
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
        error(m_pojistovnaRadek, QStringLiteral("Pojišťovna %1 není v číselníku.").arg(insurer));

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
    return faults;
}

bool PatientPage::Validate(QStringList &warnings)
{
    m_chyby->ClearAllErrors();
    m_chyby->BeginUpdate();
    bool ok = true;
    for (const Fault &fault : Faults()) {
        if (fault.type == etError) {
            if (m_chyby->ErrorImage(fault.field)) // the first fault of a field is shown
                continue;
            ok = false;
        } else {
            warnings << fault.text;
        }
        m_chyby->SetError(fault.field, fault.text, fault.type, jtCenterRight);
    }
    m_chyby->EndUpdate();
    return ok;
}

// Errors stop the save; warnings are asked about once, before anything is
// stored. A new patient leaves an empty form for the next one; an edited
// patient stays in the form.
bool PatientPage::Save()
{
    QStringList warnings;
    if (!Validate(warnings)) {
        m_status->setText(QStringLiteral("Opravte označená pole."));
        return false;
    }
    if (!warnings.isEmpty() &&
        MessageService::MessageDlg(warnings.join(QLatin1Char('\n')) +
                                       QStringLiteral("\n\nUložit i přesto?"),
                                   mtWarning, mbYes | mbNo) != mrYes) {
        m_status->setText(QStringLiteral("Neuloženo."));
        return false;
    }
    const QString bornText = m_datumNarozeni->text();
    const QString born = DateTyped(bornText) ? DateToStr(FormatStrToDate(bornText)) : QString();
    const QString birthNumber = m_rodneCislo->text();
    QSqlQuery q(SampleDatabase::Database());
    q.prepare(
        m_id ? QStringLiteral("UPDATE pacient SET prijmeni = ?, jmeno = ?, rodne_cislo = ?,"
                              " datum_narozeni = ?, pohlavi = ?, pojistovna = ?, telefon = ?,"
                              " poznamka = ?, navsteva = ?, vaha = ?, deti = ? WHERE id = ?")
             : QStringLiteral("INSERT INTO pacient (prijmeni, jmeno, rodne_cislo, datum_narozeni,"
                              " pohlavi, pojistovna, telefon, poznamka, navsteva, vaha, deti)"
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
    if (m_id)
        q.addBindValue(m_id);
    if (!q.exec()) {
        MessageService::ShowError(QStringLiteral("Pacienta nelze uložit: ") + q.lastError().text(),
                                  this);
        return false;
    }
    const QString surname = m_prijmeni->text().trimmed();
    if (m_id)
        m_savedValues = FormValues();
    else
        ClearForm();
    RefreshList();
    m_status->setText(QStringLiteral("Pacient %1 uložen.").arg(surname));
    return true;
}

bool PatientPage::MayLeavePatient()
{
    if (!Modified())
        return true;
    const QString name =
        QStringList{m_prijmeni->text().trimmed(), m_jmeno->text().trimmed()}.join(QLatin1Char(' '));
    const QString text = name.trimmed().isEmpty()
        ? QStringLiteral("Formulář pacienta obsahuje neuložené údaje.\n\nUložit změny?")
        : QStringLiteral("Změny pacienta %1 nejsou uloženy.\n\nUložit změny?").arg(name.trimmed());
    switch (MessageService::MessageDlg(text, mtConfirmation, mbYesNoCancel, this,
                                       QStringLiteral("Neuložené změny"), mbYes)) {
    case mrYes:
        return Save(); // a patient that cannot be saved keeps the form open
    case mrNo:
        return true;
    default:
        m_status->setText(QStringLiteral("Změny nejsou uloženy."));
        return false;
    }
}

void PatientPage::OpenPatient(const QModelIndex &index)
{
    const int id = m_sorted->index(index.row(), IdColumn).data().toInt();
    if (id == 0 || !MayLeavePatient())
        return;
    LoadPatient(id);
}

void PatientPage::NewPatient()
{
    if (MayLeavePatient())
        ClearForm();
}

void PatientPage::LoadPatient(int id)
{
    QSqlQuery q(SampleDatabase::Database());
    q.prepare(QStringLiteral("SELECT prijmeni, jmeno, rodne_cislo, datum_narozeni, pohlavi,"
                             " pojistovna, telefon, poznamka, navsteva, vaha, deti"
                             " FROM pacient WHERE id = ?"));
    q.addBindValue(id);
    if (!q.exec() || !q.next()) {
        MessageService::ShowError(QStringLiteral("Pacienta nelze načíst: ") + q.lastError().text(),
                                  this);
        return;
    }
    ClearForm();
    m_prijmeni->setText(q.value(0).toString());
    m_jmeno->setText(q.value(1).toString());
    m_rodneCislo->setText(q.value(2).toString());
    m_datumNarozeni->setText(StoredDate(q.value(3)).toString(QStringLiteral("dd.MM.yyyy")));
    m_pohlavi->setCurrentIndex(m_pohlavi->findText(q.value(4).toString()));
    m_pojistovna->setText(q.value(5).toString());
    FillInsurerName();
    m_telefon->setText(q.value(6).toString());
    m_poznamka->setPlainText(q.value(7).toString());
    const QDate visit = StoredDate(q.value(8));
    m_navsteva->SetDate(visit.isValid() ? QDateToDateTime(visit) : m_navsteva->MinDate());
    if (!q.value(9).isNull())
        m_vaha->setDouble(q.value(9).toDouble());
    if (!q.value(10).isNull())
        m_deti->setCardinal(q.value(10).toUInt());
    ShowPatientId(id);
    m_status->setText(QStringLiteral("Pacient %1 otevřen.").arg(m_prijmeni->text()));
    m_prijmeni->setFocus();
}

// An empty form for a new patient.
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
    m_vaha->clear(); // an unknown weight stays empty until the field is entered
    m_deti->clear();
    m_pohlavi->setCurrentIndex(-1);
    m_chyby->ClearAllErrors();
    m_navsteva->SetDate(m_navsteva->MinDate());
    ShowPatientId(0);
    m_prijmeni->setFocus();
}

void PatientPage::ShowPatientId(int id)
{
    m_id = id;
    m_box->setTitle(id ? QStringLiteral("Úprava pacienta") : QStringLiteral("Registrace pacienta"));
    m_savedValues = FormValues();
}

// The numeric edits turn an empty text into 0 when entered; both mean "not
// given", so they are compared by value.
QStringList PatientPage::FormValues() const
{
    const auto number = [](const TNumEditOxa *edit) {
        try {
            return edit->text().isEmpty() ? 0.0 : edit->getDouble();
        } catch (const EConvertError &) {
            return -1.0; // a text that is no number is a change too
        }
    };
    return {m_prijmeni->text(),
            m_jmeno->text(),
            m_rodneCislo->text(),
            m_datumNarozeni->text(),
            QString::number(m_pohlavi->currentIndex()),
            m_pojistovna->text(),
            QString::number(number(m_vaha)),
            QString::number(number(m_deti)),
            m_telefon->text(),
            QString::number(m_navsteva->Date()),
            m_poznamka->toPlainText()};
}

void PatientPage::RefreshList()
{
    m_model->setQuery(
        QStringLiteral("SELECT prijmeni AS \"Příjmení\", jmeno AS \"Jméno\","
                       " rodne_cislo AS \"Rodné číslo\", datum_narozeni AS \"Narozen\","
                       " pojistovna AS \"Pojišťovna\", navsteva AS \"Návštěva\", id"
                       " FROM pacient"),
        SampleDatabase::Database());
    m_list->setColumnHidden(IdColumn, true);
    m_list->resizeColumnsToContents();
}
