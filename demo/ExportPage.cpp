#include "ExportPage.h"

#include "SampleDatabase.h"

#include "oxa/spreadsheet/XLSfile.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/MessageService.h"
#include "oxa/utilities/BackgroundWorker.h"
#include "oxa/utilities/ExecApp.h"

#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QThread>
#include <QVBoxLayout>

using namespace oxa;

namespace {

const char *const kHeaders[] = {"Příjmení",   "Jméno",     "Rodné číslo", "Narozen",
                                "Pojišťovna", "Váha (kg)", "Počet dětí"};

QString defaultProgram()
{
    for (const char *candidate : {"libreoffice", "xdg-open"}) {
        if (!QStandardPaths::findExecutable(QString::fromLatin1(candidate)).isEmpty())
            return QString::fromLatin1(candidate);
    }
    return QStringLiteral("xdg-open");
}

} // namespace

ExportPage::ExportPage(QWidget *parent)
    : QWidget(parent), m_worker(new TBackgroundWorker(this)), m_launcher(new TExecApplication(this))
{
    setProperty("statusHint",
                QStringLiteral("Exportovat zapíše seznam pacientů, Zrušit zápis přeruší, "
                               "Otevřít ukáže soubor v tabulkovém procesoru."));
    auto *intro = new QLabel(
        QStringLiteral("Seznam pacientů se zapíše do sešitu tabulkového procesoru na pozadí; "
                       "aplikace mezitím reaguje a export lze zrušit."),
        this);
    intro->setWordWrap(true);

    m_fileName =
        new QLineEdit(QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
                          .filePath(QStringLiteral("pacienti.xls")),
                      this);
    m_program = new QLineEdit(defaultProgram(), this);
    m_progress = new QProgressBar(this);
    m_progress->setRange(0, 100);
    m_status = new QLabel(this);
    m_export = new QPushButton(QStringLiteral("Exportovat"), this);
    m_cancel = new QPushButton(QStringLiteral("Zrušit"), this);
    m_open = new QPushButton(QStringLiteral("Otevřít"), this);
    m_browse = new QPushButton(QStringLiteral("Vybrat..."), this);
    m_cancel->setEnabled(false);
    m_open->setEnabled(false);

    auto *form = new QFormLayout;
    auto *fileRow = new QHBoxLayout;
    fileRow->addWidget(m_fileName, 1);
    fileRow->addWidget(m_browse);
    form->addRow(QStringLiteral("Soubor:"), fileRow);
    form->addRow(QStringLiteral("Otevřít programem:"), m_program);
    form->addRow(QStringLiteral("Průběh:"), m_progress);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_export);
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_open);
    buttons->addStretch(1);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(intro);
    layout->addLayout(form);
    layout->addLayout(buttons);
    layout->addWidget(m_status);
    layout->addStretch(1);

    connect(m_export, &QPushButton::clicked, this, [this] { StartExport(); });
    connect(m_cancel, &QPushButton::clicked, this, [this] { m_worker->Terminate(); });
    connect(m_open, &QPushButton::clicked, this, &ExportPage::OpenFile);
    connect(m_browse, &QPushButton::clicked, this, &ExportPage::ChooseFile);

    // The job sees only copies made before it started: widgets belong to the
    // main thread.
    m_worker->OnDoInBackGround = [this](QObject *) { WriteFiles(); };
    m_worker->OnProgress = [this](qint16 percent, const QString &text, QObject *) {
        m_progress->setValue(percent);
        m_status->setText(text);
    };
    m_worker->OnDone = [this](const QString &error, TDateTime elapsed, QObject *) {
        ExportDone(error, elapsed);
    };
    m_launcher->OnApplicationEnd = [this](QObject *) {
        if (QThread::currentThread() != thread())
            return;
        const int code = m_launcher->ExitCode();
        m_status->setText(code == 0 ? QStringLiteral("Program %1 skončil.").arg(m_program->text())
                                    : QStringLiteral("Program %1 skončil s chybou (kód %2): soubor "
                                                     "se nejspíš neotevřel.")
                                          .arg(m_program->text())
                                          .arg(code));
    };
}

// The database is read on the main thread (a connection belongs to the
// thread that opened it); the worker only builds and writes the file.
std::vector<ExportPage::PatientRow> ExportPage::ReadPatients() const
{
    std::vector<PatientRow> rows;
    QSqlQuery q(SampleDatabase::Database());
    q.exec(QStringLiteral("SELECT prijmeni, jmeno, rodne_cislo, datum_narozeni, pojistovna,"
                          " vaha, deti FROM pacient ORDER BY prijmeni, jmeno"));
    while (q.next()) {
        PatientRow row;
        for (int i = 0; i < 5; ++i)
            row.texts.append(q.value(i).toString());
        if (!q.isNull(5))
            row.weight = q.value(5).toDouble();
        if (!q.isNull(6))
            row.children = q.value(6).toDouble();
        rows.push_back(row);
    }
    return rows;
}

QStringList ExportPage::TargetFiles(const QString &fileName, qsizetype patients)
{
    const qsizetype files =
        std::max<qsizetype>(1, (patients + PatientsPerFile - 1) / PatientsPerFile);
    const QFileInfo info(fileName);
    const QString suffix = info.suffix().isEmpty() ? QString() : QLatin1Char('.') + info.suffix();
    const QString stem =
        info.suffix().isEmpty() ? fileName : fileName.left(fileName.size() - suffix.size());
    QStringList names{fileName};
    for (qsizetype i = 2; i <= files; ++i)
        names << QStringLiteral("%1-%2%3").arg(stem).arg(i).arg(suffix);
    return names;
}

void ExportPage::ChooseFile()
{
    QFileDialog dialog(this, QStringLiteral("Exportovat do souboru"), m_fileName->text(),
                       QStringLiteral("Sešit (*.xls)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("xls"));
    if (MessageService::ExecDialog(&dialog) == mrOk && !dialog.selectedFiles().isEmpty())
        m_fileName->setText(dialog.selectedFiles().constFirst());
}

// A folder that does not exist (a fresh machine has no Documents folder) is
// made when the user agrees.
bool ExportPage::PrepareFolder(const QString &fileName)
{
    const QString folder = QFileInfo(fileName).absolutePath();
    if (QFileInfo(folder).isDir())
        return true;
    const QString shown = QDir::toNativeSeparators(folder);
    if (MessageService::MessageDlg(
            QStringLiteral("Složka „%1“ neexistuje. Vytvořit ji?").arg(shown), mtConfirmation,
            mbYes | mbNo) != mrYes)
        return false;
    if (QDir().mkpath(folder))
        return true;
    MessageService::ShowError(
        QStringLiteral("Složku „%1“ nelze vytvořit. Vyberte jiný soubor.").arg(shown), this);
    return false;
}

// Says before anything is written how many files a long list takes.
bool ExportPage::StartExport()
{
    const QString fileName = m_fileName->text().trimmed();
    if (fileName.isEmpty() || !PrepareFolder(fileName))
        return false;
    m_rows = ReadPatients();
    m_targets = TargetFiles(fileName, qsizetype(m_rows.size()));
    if (m_targets.size() > 1) {
        const QString question =
            QStringLiteral("Sešit pojme nejvýše %1 pacientů. Exportuje se %2 pacientů, zapíšou se "
                           "proto do %3 souborů: %4 až %5. Pokračovat?")
                .arg(QLocale(QLocale::Czech).toString(PatientsPerFile))
                .arg(QLocale(QLocale::Czech).toString(qlonglong(m_rows.size())))
                .arg(m_targets.size())
                .arg(QFileInfo(m_targets.constFirst()).fileName(),
                     QFileInfo(m_targets.constLast()).fileName());
        if (MessageService::MessageDlg(question, mtConfirmation, mbYes | mbNo) != mrYes)
            return false;
    }
    m_written = 0;
    m_progress->setValue(0);
    SetRunning(true);
    try {
        m_worker->Run(nullptr);
    } catch (const Exception &e) {
        SetRunning(false);
        MessageService::ShowError(e.Message(), this);
        return false;
    }
    return true;
}

void ExportPage::WriteFiles()
{
    const qsizetype total = qsizetype(m_rows.size());
    for (qsizetype file = 0; file < m_targets.size(); ++file) {
        const qsizetype first = file * PatientsPerFile;
        WriteFile(first, std::min<qsizetype>(PatientsPerFile, total - first), m_targets.at(file),
                  total);
        ++m_written;
    }
}

// Numbers go into number cells: a word cell holds only 0 to 65,535.
void ExportPage::WriteFile(qsizetype first, qsizetype count, const QString &fileName,
                           qsizetype total)
{
    TXLSfile xls;
    xls.SetFileName(fileName);
    quint16 col = 1;
    for (const char *header : kHeaders)
        xls.AddStrCell(col++, 1, {}, QString::fromUtf8(header));
    for (qsizetype i = 0; i < count; ++i) {
        if (m_worker->isTerminated())
            throw Exception(QStringLiteral("Export byl zrušen."));
        const PatientRow &row = m_rows[size_t(first + i)];
        const quint16 r = quint16(i + 2);
        for (int c = 0; c < row.texts.size(); ++c)
            xls.AddStrCell(quint16(c + 1), r, {}, row.texts[c]);
        if (row.weight)
            xls.AddDoubleCell(6, r, {}, *row.weight);
        if (row.children)
            xls.AddDoubleCell(7, r, {}, *row.children);
        const qsizetype done = first + i;
        if (done % 500 == 0)
            m_worker->Progress(qint16(99 * done / std::max<qsizetype>(total, 1)),
                               QStringLiteral("Zapsáno %1 z %2 pacientů").arg(done).arg(total));
    }
    m_worker->Progress(qint16(99 * (first + count) / std::max<qsizetype>(total, 1)),
                       QStringLiteral("Zapisuji soubor %1...").arg(QFileInfo(fileName).fileName()));
    xls.write();
}

QString ExportPage::ExportAndWait(const QString &fileName)
{
    m_fileName->setText(fileName);
    QString result;
    QEventLoop loop;
    connect(this, &ExportPage::exportFinished, &loop, [&](const QString &error) {
        result = error;
        loop.quit();
    });
    if (!StartExport())
        return QStringLiteral("Export nebyl spuštěn.");
    if (m_cancel->isEnabled())
        loop.exec();
    return result;
}

// Only an export whose every file is complete is reported as done.
void ExportPage::ExportDone(const QString &error, double elapsedDays)
{
    SetRunning(false);
    Q_EMIT exportFinished(error);
    if (!error.isEmpty()) {
        m_progress->setValue(0);
        QStringList complete;
        for (int i = 0; i < m_written && i < m_targets.size(); ++i)
            complete << QFileInfo(m_targets.at(i)).fileName();
        m_status->setText(
            complete.isEmpty()
                ? QStringLiteral("Export se nezdařil: %1").arg(error)
                : QStringLiteral("Export se nezdařil a není úplný (celé jsou jen %1): %2")
                      .arg(complete.join(QStringLiteral(", ")), error));
        m_open->setEnabled(false);
        return;
    }
    m_progress->setValue(100);
    QStringList names;
    for (const QString &target : std::as_const(m_targets))
        names << QFileInfo(target).fileName();
    m_status->setText(QStringLiteral("Exportováno %1 pacientů do %2 za %3 ms.")
                          .arg(m_rows.size())
                          .arg(names.join(QStringLiteral(", ")))
                          .arg(qRound(elapsedDays * 24 * 3600 * 1000)));
    m_open->setEnabled(true);
}

void ExportPage::OpenFile()
{
    m_launcher->SetApplicationName(
        QStringLiteral("%1 \"%2\"").arg(m_program->text(), m_targets.value(0)));
    try {
        m_launcher->Execute();
        m_status->setText(QStringLiteral("Spuštěn program %1.").arg(m_program->text()));
    } catch (const Exception &e) {
        MessageService::ShowError(QStringLiteral("Program nelze spustit: ") + e.Message(), this);
    }
}

void ExportPage::SetRunning(bool running)
{
    m_export->setEnabled(!running);
    m_cancel->setEnabled(running);
    m_fileName->setEnabled(!running);
    m_browse->setEnabled(!running);
}
