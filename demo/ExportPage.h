#pragma once

#include <QStringList>
#include <QWidget>

#include <vector>

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace oxa {
class TBackgroundWorker;
class TExecApplication;
}

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

Q_SIGNALS:
    void exportFinished(const QString &error);

private:
    struct PatientRow
    {
        QStringList texts;  // surname, first name, birth number, born, insurer
        double weight = 0;
        int children = 0;
    };

    void StartExport();
    void WriteFile(const std::vector<PatientRow> &rows, const QString &fileName);
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
    std::vector<PatientRow> m_rows;
    QString m_target; // the file the running or last export writes
};
