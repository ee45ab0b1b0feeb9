#pragma once

#include <QStringList>
#include <QWidget>

#include <atomic>
#include <optional>
#include <vector>

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace oxa {
class TBackgroundWorker;
class TExecApplication;
} // namespace oxa

// Export of the patient list to a spreadsheet file: written on a background
// worker with progress and cancelling, then opened in a spreadsheet program.
class ExportPage : public QWidget
{
    Q_OBJECT

public:
    explicit ExportPage(QWidget *parent = nullptr);

    // Exports to fileName as the button does and waits until the worker is
    // done; returns the error text (empty on success).
    QString ExportAndWait(const QString &fileName);

    // A worksheet holds 65,536 rows; one is the header, and the rows are
    // counted from 1 in 16 bits: 65,534 patients a file.
    static constexpr int PatientsPerFile = 65534;
    // The files an export of patients writes: fileName, then name-2.xls...
    static QStringList TargetFiles(const QString &fileName, qsizetype patients);

Q_SIGNALS:
    void exportFinished(const QString &error);

private:
    struct PatientRow
    {
        QStringList texts;            // surname, first name, birth number, born, insurer
        std::optional<double> weight; // none: not known, the cell stays empty
        std::optional<double> children;
    };

    // False when the export did not start (the user declined, a folder could
    // not be made).
    bool StartExport();
    void ChooseFile();
    bool PrepareFolder(const QString &fileName);
    void WriteFiles();
    void WriteFile(qsizetype first, qsizetype count, const QString &fileName, qsizetype total);
    void ExportDone(const QString &error, double elapsedDays);
    void OpenFile();
    std::vector<PatientRow> ReadPatients() const;
    void SetRunning(bool running);

    oxa::TBackgroundWorker *m_worker = nullptr;
    oxa::TExecApplication *m_launcher = nullptr;
    QLineEdit *m_fileName = nullptr;
    QLineEdit *m_program = nullptr;
    QProgressBar *m_progress = nullptr;
    QLabel *m_status = nullptr;
    QPushButton *m_export = nullptr;
    QPushButton *m_cancel = nullptr;
    QPushButton *m_open = nullptr;
    QPushButton *m_browse = nullptr;
    std::vector<PatientRow> m_rows;
    QStringList m_targets;        // the files the running or last export writes
    std::atomic_int m_written{0}; // how many of them are complete
};
