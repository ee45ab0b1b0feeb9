#include "ExportPage.h"

#include "SampleDatabase.h"

#include "oxa/spreadsheet/XLSfile.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/MessageService.h"
#include "oxa/utilities/BackgroundWorker.h"
#include "oxa/utilities/ExecApp.h"

#include <QDir>
#include <QEventLoop>
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

const char *const kHeaders[] = {"Příjmení", "Jméno", "Rodné číslo", "Narozen", "Pojišťovna",
                                "Váha (kg)", "Počet dětí"};

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
    : QWidget(parent),
      m_worker(new TBackgroundWorker(this)),
      m_launcher(new TExecApplication(this))
{
    auto *intro = new QLabel(QStringLiteral(
        "Seznam pacientů se zapíše do sešitu tabulkového procesoru na pozadí; "
        "aplikace mezitím reaguje a export lze zrušit."), this);
    intro->setWordWrap(true);

    m_fileName = new QLineEdit(QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
                                   .filePath(QStringLiteral("pacienti.xls")), this);
    m_program = new QLineEdit(defaultProgram(), this);
    m_progress = new QProgressBar(this);
    m_progress->setRange(0, 100);
    m_status = new QLabel(this);
    m_export = new QPushButton(QStringLiteral("Exportovat"), this);
    m_cancel = new QPushButton(QStringLiteral("Zrušit"), this);
    m_open = new QPushButton(QStringLiteral("Otevřít"), this);
    m_cancel->setEnabled(false);
    m_open->setEnabled(false);

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("Soubor:"), m_fileName);
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

    connect(m_export, &QPushButton::clicked, this, &ExportPage::StartExport);
    connect(m_cancel, &QPushButton::clicked, this, [this] { m_worker->Terminate(); });
    connect(m_open, &QPushButton::clicked, this, &ExportPage::OpenFile);

    // The job sees only copies made before it started: widgets belong to the
    // main thread.
    m_worker->OnDoInBackGround = [this](QObject *) { WriteFile(m_rows, m_target); };
    m_worker->OnProgress = [this](qint16 percent, const QString &text, QObject *) {
        m_progress->setValue(percent);
        m_status->setText(text);
    };
    m_worker->OnDone = [this](const QString &error, TDateTime elapsed, QObject *) {
        ExportDone(error, elapsed);
    };
    m_launcher->OnApplicationEnd = [this](QObject *) {
        if (QThread::currentThread() == thread())
            m_status->setText(QStringLiteral("Program %1 skončil.").arg(m_program->text()));
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
        row.weight = q.value(5).toDouble();
        row.children = q.value(6).toInt();
        rows.push_back(row);
    }
    return rows;
}

void ExportPage::StartExport()
{
    m_rows = ReadPatients();
    m_target = m_fileName->text();
    m_progress->setValue(0);
    SetRunning(true);
    try {
        m_worker->Run(nullptr);
    } catch (const Exception &e) {
        SetRunning(false);
        MessageService::ShowError(e.Message(), this);
    }
}

void ExportPage::WriteFile(const std::vector<PatientRow> &rows, const QString &fileName)
{
    TXLSfile xls;
    xls.SetFileName(fileName);
    quint16 col = 1;
    for (const char *header : kHeaders)
        xls.AddStrCell(col++, 1, {}, QString::fromUtf8(header));
    const int total = int(rows.size());
    for (int i = 0; i < total; ++i) {
        if (m_worker->isTerminated())
            throw Exception(QStringLiteral("Export byl zrušen."));
        const PatientRow &row = rows[size_t(i)];
        const quint16 r = quint16(i + 2);
        for (int c = 0; c < row.texts.size(); ++c)
            xls.AddStrCell(quint16(c + 1), r, {}, row.texts[c]);
        xls.AddDoubleCell(6, r, {}, row.weight);
        xls.AddWordCell(7, r, {}, quint16(row.children));
        if (i % 20 == 0)
            m_worker->Progress(qint16(100 * i / std::max(total, 1)),
                               QStringLiteral("Zapsáno %1 z %2 pacientů").arg(i).arg(total));
    }
    m_worker->Progress(100, QStringLiteral("Zapisuji soubor..."));
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
    StartExport();
    if (m_cancel->isEnabled())
        loop.exec();
    return result;
}

void ExportPage::ExportDone(const QString &error, double elapsedDays)
{
    SetRunning(false);
    Q_EMIT exportFinished(error);
    if (!error.isEmpty()) {
        m_status->setText(error);
        return;
    }
    m_status->setText(QStringLiteral("Exportováno %1 pacientů do %2 za %3 ms.")
                          .arg(m_rows.size())
                          .arg(QFileInfo(m_target).fileName())
                          .arg(qRound(elapsedDays * 24 * 3600 * 1000)));
    m_open->setEnabled(true);
}

void ExportPage::OpenFile()
{
    m_launcher->SetApplicationName(QStringLiteral("%1 \"%2\"").arg(m_program->text(), m_target));
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
}
