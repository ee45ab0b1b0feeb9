#include "CodeListsPage.h"

#include "SampleDatabase.h"

#include "oxa/controls/ButtonOxa.h"
#include "oxa/controls/EditOxa.h"
#include "oxa/grids/CheckTreeViewOxa.h"
#include "oxa/grids/StringGridCheck.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSqlError>
#include <QSqlQuery>
#include <QVBoxLayout>

using namespace oxa;

namespace {

enum DiagnosisColumn { colMark, colKod, colNazev };

} // namespace

CodeListsPage::CodeListsPage(QWidget *parent)
    : QWidget(parent), m_collator(QLocale(QLocale::Czech, QLocale::CzechRepublic))
{
    setProperty("statusHint",
                QStringLiteral("Klik na záhlaví třídí, mezerník nebo Enter zaškrtne "
                               "diagnózu, mezerník ve stromu zaškrtne vyšetření."));
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(BuildDiagnoses(), 3);
    layout->addWidget(BuildExaminations(), 2);
    LoadDiagnoses();
    LoadPatients();
    LoadExaminations();

    m_hledat->SetFocDown(m_diagnozy);
    m_diagnozy->SetFocUp(m_hledat);
    m_diagnozy->SetFocDown(m_pacient);
    m_diagnozy->SetFocRight(m_vysetreni);
    m_vysetreni->SetFocLeft(m_diagnozy);
}

int CodeListsPage::CompareCzech(const QString &a, const QString &b) const
{
    return m_collator.compare(a, b);
}

QWidget *CodeListsPage::BuildDiagnoses()
{
    auto *box = new QGroupBox(QStringLiteral("Diagnózy"), this);
    auto *column = new QVBoxLayout(box);
    auto *search = new QFormLayout;
    m_hledat = new TEditOxa(box);
    m_hledat->setObjectName(QStringLiteral("editHledatKod"));
    search->addRow(QStringLiteral("Hledat kód:"), m_hledat);
    column->addLayout(search);

    m_diagnozy = new TStringGridCheck(box);
    m_diagnozy->setObjectName(QStringLiteral("gridDiagnozy"));
    m_diagnozy->SetColCount(3);
    m_diagnozy->SetFixedCols(0);
    m_diagnozy->SetColWidths(colMark, 24);
    m_diagnozy->SetColWidths(colKod, 70);
    m_diagnozy->SetColWidths(colNazev, 420);
    m_diagnozy->SetDefaultRowHeight(22);
    m_diagnozy->SetCheckBox(true);
    m_diagnozy->SetASloupec(colMark);
    m_diagnozy->SetSorting(true);
    m_diagnozy->OnSort = [this](QObject *, int col) {
        m_diagnozy->Sort([this](const QString &a, const QString &b) { return CompareCzech(a, b); },
                         col);
    };
    connect(m_hledat, &QLineEdit::textChanged, this, &CodeListsPage::FindCode);
    column->addWidget(m_diagnozy, 1);
    column->addWidget(new QLabel(QStringLiteral("Mezerník nebo Enter ve sloupci zaškrtávátek označí"
                                                " diagnózu, klepnutí na záhlaví řadí."),
                                 box));

    auto *carry = new QHBoxLayout;
    m_pacient = new QComboBox(box);
    m_pacient->setObjectName(QStringLiteral("comboPacient"));
    m_prenest = new TButtonOxa(box);
    m_prenest->setObjectName(QStringLiteral("buttonPrenest"));
    m_prenest->setText(QStringLiteral("Přenést k pacientovi"));
    carry->addWidget(new QLabel(QStringLiteral("Pacient:"), box));
    carry->addWidget(m_pacient, 1);
    carry->addWidget(m_prenest);
    column->addLayout(carry);
    m_diagnozyPacienta = new QLabel(box);
    m_diagnozyPacienta->setWordWrap(true);
    column->addWidget(m_diagnozyPacienta);
    connect(m_prenest, &QPushButton::clicked, this, &CodeListsPage::CarryOver);
    connect(m_pacient, &QComboBox::currentIndexChanged, this, &CodeListsPage::ShowPatientDiagnoses);
    return box;
}

QWidget *CodeListsPage::BuildExaminations()
{
    auto *box = new QGroupBox(QStringLiteral("Vyšetření"), this);
    auto *column = new QVBoxLayout(box);
    m_vysetreni = new TCheckTreeViewOxa(box);
    m_vysetreni->setObjectName(QStringLiteral("treeVysetreni"));
    column->addWidget(m_vysetreni, 1);
    m_vybrano = new QLabel(box);
    m_vybrano->setWordWrap(true);
    column->addWidget(m_vybrano);
    connect(m_vysetreni, &TCheckTreeView::stateImageClicked, this,
            &CodeListsPage::ShowChosenExaminations);
    return box;
}

void CodeListsPage::LoadDiagnoses()
{
    QSqlQuery q(SampleDatabase::Database());
    QList<QPair<QString, QString>> rows;
    if (q.exec(QStringLiteral("SELECT kod, nazev FROM diagnoza ORDER BY rowid"))) {
        while (q.next())
            rows.append({q.value(0).toString(), q.value(1).toString()});
    }
    m_diagnozy->SetRowCount(std::max<int>(2, int(rows.size()) + 1));
    m_diagnozy->SetFixedRows(1);
    m_diagnozy->SetCells(colKod, 0, QStringLiteral("Kód"));
    m_diagnozy->SetCells(colNazev, 0, QStringLiteral("Název"));
    for (int r = 0; r < rows.size(); ++r) {
        m_diagnozy->SetCells(colKod, r + 1, rows.at(r).first);
        m_diagnozy->SetCells(colNazev, r + 1, rows.at(r).second);
    }
}

void CodeListsPage::LoadPatients()
{
    QSqlQuery q(SampleDatabase::Database());
    if (!q.exec(QStringLiteral("SELECT id, prijmeni, jmeno, rodne_cislo FROM pacient"
                               " ORDER BY prijmeni, jmeno")))
        return;
    while (q.next()) {
        m_pacient->addItem(
            QStringLiteral("%1 %2 (%3)")
                .arg(q.value(1).toString(), q.value(2).toString(), q.value(3).toString()),
            q.value(0));
    }
}

// Groups on the first level, their examinations below; every node starts
// unchecked.
void CodeListsPage::LoadExaminations()
{
    QSqlQuery q(SampleDatabase::Database());
    if (!q.exec(QStringLiteral("SELECT s.id, s.nazev, v.nazev FROM vysetreni_skupina s"
                               " JOIN vysetreni v ON v.skupina = s.id ORDER BY s.id, v.id")))
        return;
    QTreeWidgetItem *group = nullptr;
    int groupId = -1;
    while (q.next()) {
        if (q.value(0).toInt() != groupId) {
            groupId = q.value(0).toInt();
            group = new QTreeWidgetItem(m_vysetreni, {q.value(1).toString()});
            TCheckTreeView::SetStateIndex(group, itvUnchecked);
        }
        auto *examination = new QTreeWidgetItem(group, {q.value(2).toString()});
        TCheckTreeView::SetStateIndex(examination, itvUnchecked);
    }
    m_vysetreni->expandAll();
    ShowChosenExaminations();
}

void CodeListsPage::FindCode(const QString &prefix)
{
    const int row = m_diagnozy->Locate(
        [this](const QString &a, const QString &b) { return CompareCzech(a, b); }, prefix, colKod);
    m_diagnozy->SetRow(row);
}

// The marked diagnoses are added to the patient's (those already there stay).
void CodeListsPage::CarryOver()
{
    QStringList codes;
    for (int r = m_diagnozy->FixedRows(); r < m_diagnozy->RowCount(); ++r) {
        if (m_diagnozy->Oznacene(r))
            codes.append(m_diagnozy->Cells(colKod, r));
    }
    if (codes.isEmpty() || m_pacient->currentIndex() < 0) {
        m_diagnozyPacienta->setText(QStringLiteral("Není označena žádná diagnóza."));
        return;
    }
    QSqlDatabase db = SampleDatabase::Database();
    QSqlQuery q(db);
    q.prepare(
        QStringLiteral("INSERT OR IGNORE INTO pacient_diagnoza (pacient, diagnoza) VALUES (?, ?)"));
    db.transaction();
    for (const QString &code : codes) {
        q.addBindValue(m_pacient->currentData());
        q.addBindValue(code);
        if (!q.exec()) {
            db.rollback();
            m_diagnozyPacienta->setText(QStringLiteral("Diagnózy se nepodařilo uložit: ") +
                                        q.lastError().text());
            return;
        }
    }
    db.commit();
    for (int r = m_diagnozy->FixedRows(); r < m_diagnozy->RowCount(); ++r)
        m_diagnozy->SetOznacene(r, false);
    ShowPatientDiagnoses();
}

void CodeListsPage::ShowPatientDiagnoses()
{
    QSqlQuery q(SampleDatabase::Database());
    q.prepare(QStringLiteral(
        "SELECT diagnoza FROM pacient_diagnoza WHERE pacient = ? ORDER BY diagnoza"));
    q.addBindValue(m_pacient->currentData());
    QStringList codes;
    if (q.exec()) {
        while (q.next())
            codes.append(q.value(0).toString());
    }
    m_diagnozyPacienta->setText(
        codes.isEmpty() ? QStringLiteral("Pacient zatím nemá přenesené diagnózy.")
                        : QStringLiteral("Diagnózy pacienta: ") + codes.join(QStringLiteral(", ")));
}

void CodeListsPage::ShowChosenExaminations()
{
    QStringList chosen;
    for (QTreeWidgetItemIterator it(m_vysetreni); *it; ++it) {
        if ((*it)->childCount() == 0 && TCheckTreeView::StateIndex(*it) == itvChecked)
            chosen.append((*it)->text(0));
    }
    m_vybrano->setText(chosen.isEmpty() ? QStringLiteral("Není vybráno žádné vyšetření.")
                                        : QStringLiteral("Vybraná vyšetření: ") +
                               chosen.join(QStringLiteral(", ")));
}
