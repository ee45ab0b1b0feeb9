#pragma once

#include "oxa/richtext/RVToolBar.h"

#include <QWidget>

class QListWidget;
class QLabel;
class QPushButton;

namespace oxa {
class TOxaRichView;
class TRVPopupMenu;
} // namespace oxa

// The clinical report of the selected patient: written in the rich-text
// editor with its toolbar and context menu, stored in the sample database as
// a rich-text stream. The toolbar's insertion buttons insert tagged text from
// the database at the caret: text templates, the patient's long-term
// medication, medical history and long-term diagnoses, and text blocks.
class ReportPage : public QWidget
{
    Q_OBJECT

public:
    explicit ReportPage(QWidget *parent = nullptr);

    oxa::TOxaRichView *Editor() const { return m_editor; }
    oxa::TRVToolBar *ToolBar() const { return m_toolbar; }
    // The patient whose report is shown; -1 for none.
    int PatientId() const { return m_patientId; }
    // Stores the report of the current patient; false when the database refused it.
    bool SaveReport();

public Q_SLOTS:
    // For the screenshots: a short report from the database's texts, with a
    // misspelt word so that the spell check shows.
    void PrepareScreenshot();

private:
    void LoadPatients();
    void LoadTemplates();
    void SelectPatient(int row);
    void InsertTemplate();
    // The host's part of the toolbar: what its insertion buttons insert.
    bool InsertFromDatabase(QObject *button, oxa::TRVToolButtonType typ);
    // The tagged texts of a query on the current patient, one paragraph each.
    QStringList PatientTexts(const QString &table) const;
    // Offers the (name, tagged text) choices in a menu under the button.
    void OfferChoices(QObject *button, const QList<QPair<QString, QString>> &choices);
    void Insert(const QString &taggedText);

    QListWidget *m_patients = nullptr;
    QListWidget *m_templates = nullptr;
    oxa::TOxaRichView *m_editor = nullptr;
    oxa::TRVToolBar *m_toolbar = nullptr;
    oxa::TRVPopupMenu *m_menu = nullptr;
    QLabel *m_status = nullptr;
    QPushButton *m_save = nullptr;
    int m_patientId = -1;
};
