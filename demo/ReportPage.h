#pragma once

#include <QWidget>

class QListWidget;
class QLabel;
class QPushButton;

namespace oxa {
class TOxaRichView;
}

// The clinical report of the selected patient: written in the rich-text
// editor, stored in the sample database as a rich-text stream, with text
// templates (tagged text) inserted at the caret.
class ReportPage : public QWidget
{
    Q_OBJECT

public:
    explicit ReportPage(QWidget *parent = nullptr);

    oxa::TOxaRichView *Editor() const { return m_editor; }
    // Stores the report of the current patient; false when the database refused it.
    bool SaveReport();

private:
    void LoadPatients();
    void LoadTemplates();
    void SelectPatient(int row);
    void InsertTemplate();

    QListWidget *m_patients = nullptr;
    QListWidget *m_templates = nullptr;
    oxa::TOxaRichView *m_editor = nullptr;
    QLabel *m_status = nullptr;
    QPushButton *m_save = nullptr;
    int m_patientId = -1;
};
