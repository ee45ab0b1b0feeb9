#include "VaccinationPage.h"

#include "SampleDatabase.h"

#include "oxa/controls/DBCheckBoxOxa.h"
#include "oxa/controls/DBComboBoxOxa.h"
#include "oxa/controls/DBEditOxa.h"
#include "oxa/controls/DBLookupComboBoxOxa.h"
#include "oxa/grids/CheckDBGrid.h"
#include "oxa/toolkit/MessageService.h"
#include "oxa/toolkit/SqlDataSet.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSqlError>
#include <QSqlQuery>
#include <QTimer>
#include <QVBoxLayout>

using namespace oxa;

namespace {

const QString kColumnOrderKey = QStringLiteral("ockovani.sloupce");

bool run(QSqlQuery &query, const QString &sql, QString *error)
{
    if (query.exec(sql))
        return true;
    if (error)
        *error = query.lastError().text();
    return false;
}

} // namespace

bool VaccinationPage::EnsureTables(QString *error)
{
    QSqlDatabase db = SampleDatabase::Database();
    if (db.tables().contains(QStringLiteral("ockovani")))
        return true;
    QSqlQuery q(db);
    // Plain SQL that SQLite and PostgreSQL both take.
    const QStringList statements = {
        QStringLiteral("CREATE TABLE lekar (id INTEGER PRIMARY KEY, jmeno VARCHAR(60) NOT NULL)"),
        QStringLiteral("CREATE TABLE ockovani (id INTEGER PRIMARY KEY, pacient_id INTEGER NOT NULL,"
                       " vakcina VARCHAR(60) NOT NULL, podano BOOLEAN NOT NULL DEFAULT FALSE,"
                       " stav INTEGER NOT NULL DEFAULT 0 CHECK (stav BETWEEN 0 AND 2),"
                       " lekar_id INTEGER, poznamka VARCHAR(200))"),
        QStringLiteral("CREATE TABLE IF NOT EXISTS nastaveni (klic VARCHAR(60) PRIMARY KEY,"
                       " hodnota VARCHAR(400))"),
        QStringLiteral("INSERT INTO lekar VALUES (1, 'MUDr. Jana Nováková'),"
                       " (2, 'MUDr. Petr Dvořák'), (3, 'MUDr. Eva Svobodová')"),
        QStringLiteral("INSERT INTO nastaveni VALUES ('%1', 'vakcina;podano;stav;lekar_id')")
            .arg(kColumnOrderKey),
    };
    for (const QString &sql : statements) {
        if (!run(q, sql, error))
            return false;
    }
    const QStringList vaccines = {
        QStringLiteral("Tetanus"), QStringLiteral("Chřipka"), QStringLiteral("Hepatitida B"),
        QStringLiteral("Klíšťová encefalitida"), QStringLiteral("Pneumokok")};
    QSqlQuery patients(db);
    if (!run(patients, QStringLiteral("SELECT id FROM pacient ORDER BY id"), error))
        return false;
    int id = 0;
    q.prepare(
        QStringLiteral("INSERT INTO ockovani (id, pacient_id, vakcina, podano, stav, lekar_id)"
                       " VALUES (?, ?, ?, ?, ?, ?)"));
    while (patients.next()) {
        const int patient = patients.value(0).toInt();
        for (int i = 0; i < 4; ++i) {
            ++id;
            const int state = (patient + i) % 3;
            q.addBindValue(id);
            q.addBindValue(patient);
            q.addBindValue(vaccines.at((patient + i) % vaccines.size()));
            q.addBindValue(state == 1);
            q.addBindValue(state);
            q.addBindValue(1 + (patient + i) % 3);
            if (!q.exec()) {
                if (error)
                    *error = q.lastError().text();
                return false;
            }
        }
    }
    return true;
}

VaccinationPage::VaccinationPage(QWidget *parent, const QString &connectionName)
    : QWidget(parent), m_vaccinations(new TSqlDataSet), m_doctors(new TSqlDataSet)
{
    setProperty("statusHint",
                QStringLiteral("Mezerník, plus a minus mění stav, Ctrl+šipka dolů přejde "
                               "k podrobnostem; každá změna se ukládá hned."));
    QString error;
    if (!EnsureTables(&error))
        MessageService::ShowError(QStringLiteral("Tabulky očkování nelze vytvořit: %1").arg(error),
                                  this);

    m_patients = new QComboBox(this);
    QSqlQuery patients(QSqlDatabase::database(
        connectionName.isEmpty() ? SampleDatabase::Database().connectionName() : connectionName));
    patients.exec(
        QStringLiteral("SELECT id, prijmeni, jmeno FROM pacient ORDER BY prijmeni, jmeno"));
    while (patients.next())
        m_patients->addItem(patients.value(1).toString() + QLatin1Char(' ') +
                                patients.value(2).toString(),
                            patients.value(0));

    const QString connection =
        connectionName.isEmpty() ? SampleDatabase::Database().connectionName() : connectionName;
    m_doctors->SetConnectionName(connection);
    m_doctors->SetTableName(QStringLiteral("lekar"));
    m_doctorSource = new TDataSource(this);
    m_doctorSource->SetDataSet(m_doctors.get());
    m_vaccinations->SetConnectionName(connection);
    m_vaccinations->SetTableName(QStringLiteral("ockovani"));
    m_source = new TDataSource(this);
    m_source->SetDataSet(m_vaccinations.get());
    m_source->OnDataChange = [this](TDataSource *, TField *field) {
        if (field)
            StoreAtOnce();
    };

    m_grid = new VaccinationGrid(this);
    m_grid->SetAllowAppend(false);
    m_grid->SetDataSource(m_source);
    m_grid->SetDBOptions(m_grid->DBOptions() & ~TDBGridOptions(dgEditing));

    m_vaccine = new TDBEditOxa(this);
    m_vaccine->SetDataField(QStringLiteral("vakcina"));
    m_note = new TDBComboBoxOxa(this);
    m_note->addItems({QStringLiteral("bez reakce"), QStringLiteral("zarudnutí v místě vpichu"),
                      QStringLiteral("zvýšená teplota")});
    m_note->SetDataField(QStringLiteral("poznamka"));
    m_doctor = new TDBLookupComboBoxOxa(this);
    m_doctor->SetListSource(m_doctorSource);
    m_doctor->SetKeyField(QStringLiteral("id"));
    m_doctor->SetListField(QStringLiteral("jmeno"));
    m_doctor->SetDataField(QStringLiteral("lekar_id"));
    m_given = new TDBCheckBoxOxa(this);
    m_given->setText(QStringLiteral("Podáno"));
    m_given->SetDataField(QStringLiteral("podano"));
    for (QWidget *control : std::initializer_list<QWidget *>{m_vaccine, m_note, m_doctor, m_given})
        control->setProperty("oxaDataControl", true);
    m_vaccine->SetDataSource(m_source);
    m_note->SetDataSource(m_source);
    m_doctor->SetDataSource(m_source);
    m_given->SetDataSource(m_source);

    // Ctrl+arrows: from the grid down into the details and back up.
    m_grid->SetFocDown(m_vaccine);
    m_vaccine->SetFocUp(m_grid);
    m_vaccine->SetFocDown(m_doctor);
    m_doctor->SetFocUp(m_vaccine);
    m_doctor->SetFocDown(m_note);
    m_note->SetFocUp(m_doctor);
    m_note->SetFocDown(m_given);
    m_given->SetFocUp(m_note);

    auto *details = new QFormLayout;
    details->addRow(QStringLiteral("Vakcína:"), m_vaccine);
    details->addRow(QStringLiteral("Očkoval:"), m_doctor);
    details->addRow(QStringLiteral("Poznámka:"), m_note);
    details->addRow(QString(), m_given);
    auto *layout = new QVBoxLayout(this);
    auto *patientRow = new QFormLayout;
    patientRow->addRow(QStringLiteral("Pacient:"), m_patients);
    layout->addLayout(patientRow);
    layout->addWidget(m_grid, 1);
    layout->addLayout(details);
    if (connectionName.isEmpty()) {
        auto *second = new QPushButton(QStringLiteral("Druhé okno (jiný uživatel)"), this);
        connect(second, &QPushButton::clicked, this, [this] { OpenSecondWindow(); });
        layout->addWidget(second, 0, Qt::AlignLeft);
    }
    layout->addWidget(new QLabel(
        QStringLiteral("Mezerník, plus a minus mění stav, mezerník zaškrtne „Podáno“; "
                       "Ctrl+šipka dolů přejde k podrobnostem. Každá změna se ukládá hned."),
        this));

    HandleExceptions(this, [this] { m_doctors->Open(); });
    connect(m_patients, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this](int index) { ShowPatient(index); });
    ShowPatient(m_patients->currentIndex());
}

VaccinationPage::~VaccinationPage()
{
    m_source->SetDataSet(nullptr);
    m_doctorSource->SetDataSet(nullptr);
}

void VaccinationPage::ShowPatient(int index)
{
    HandleExceptions(this, [&] {
        if (m_vaccinations->Active())
            m_vaccinations->CheckBrowseMode();
        m_vaccinations->Close();
        m_vaccinations->SetFilter(QStringLiteral("pacient_id = ?"), {m_patients->itemData(index)});
        m_vaccinations->Open();
        ApplyColumns();
    });
}

// The column order comes from the settings table.
void VaccinationPage::ApplyColumns()
{
    QSqlQuery query(SampleDatabase::Database());
    query.prepare(QStringLiteral("SELECT hodnota FROM nastaveni WHERE klic = ?"));
    query.addBindValue(kColumnOrderKey);
    const QString order = query.exec() && query.next() ? query.value(0).toString()
                                                       : QStringLiteral("vakcina;podano;stav");
    PreradeniSloupcuGridu(m_grid, order);
    for (int i = 0; i < m_grid->Columns()->Count(); ++i) {
        auto *column = qobject_cast<TEnhancedCheckValueColumn *>(m_grid->Columns()->Items(i));
        const QString name = column->FieldName();
        if (name == QLatin1String("vakcina")) {
            column->SetTitle(QStringLiteral("Vakcína"));
            column->SetWidth(220);
        } else if (name == QLatin1String("podano")) {
            column->SetTitle(QStringLiteral("Podáno"));
            column->SetWidth(70);
            column->SetChecking(true);
        } else if (name == QLatin1String("stav")) {
            column->SetTitle(QStringLiteral("Stav"));
            column->SetWidth(110);
            column->SetStringValues({QStringLiteral("plánováno"), QStringLiteral("podáno"),
                                     QStringLiteral("odloženo")});
            column->SetCheckLevel(3);
        } else if (name == QLatin1String("lekar_id")) {
            column->SetTitle(QStringLiteral("Lékař (č.)"));
            column->SetReadOnly(true);
        }
    }
}

void VaccinationPage::OpenSecondWindow()
{
    const QString name = QStringLiteral("oxa-demo-second");
    if (!QSqlDatabase::contains(name)) {
        QSqlDatabase second = QSqlDatabase::cloneDatabase(SampleDatabase::Database(), name);
        if (!second.open()) {
            MessageService::ShowError(QStringLiteral("Druhé spojení s databází nelze otevřít: %1")
                                          .arg(second.lastError().text()),
                                      this);
            return;
        }
    }
    auto *window = new VaccinationPage(nullptr, name);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(QStringLiteral("Očkování – druhý uživatel"));
    window->resize(900, 560);
    connect(this, &QObject::destroyed, window, &QWidget::close);
    window->show();
}

// A change of a field is posted as soon as the current event is done, so
// that the grid and the edits show what the database holds.
void VaccinationPage::StoreAtOnce()
{
    if (m_storePending)
        return;
    m_storePending = true;
    QTimer::singleShot(0, this, [this] {
        m_storePending = false;
        HandleExceptions(this, [this] {
            if (m_vaccinations->State() == dsEdit && m_vaccinations->Modified())
                m_vaccinations->Post();
        });
    });
}
