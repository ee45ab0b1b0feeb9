#pragma once

#include "oxa/grids/CheckDBGrid.h"
#include "oxa/toolkit/FocusNavigation.h"

#include <QWidget>

#include <memory>

class QComboBox;

namespace oxa {
class TDataSource;
class TSqlDataSet;
class TDBEditOxa;
class TDBComboBoxOxa;
class TDBLookupComboBoxOxa;
class TDBCheckBoxOxa;
} // namespace oxa

// The page's grid: the enhanced check grid with the Ctrl+arrow neighbours of
// the data-entry family, so the focus moves to the details and back.
class VaccinationGrid : public oxa::TFocusNavigation<VaccinationGrid, oxa::TEnhancedCheckDBGrid>
{
public:
    using TFocusNavigation::TFocusNavigation;
};

// "Očkování": the selected patient's vaccinations in a check grid, the
// current one's details in data-aware edits below it; every change is
// stored in the database at once.
class VaccinationPage : public QWidget
{
    Q_OBJECT

public:
    // connection: the QSqlDatabase connection to work on; empty for the
    // demo's own.
    explicit VaccinationPage(QWidget *parent = nullptr, const QString &connection = QString());
    ~VaccinationPage() override;

    // Creates the page's tables with sample data where they are missing.
    static bool EnsureTables(QString *error = nullptr);

private:
    void ShowPatient(int index);
    void ApplyColumns();
    void StoreAtOnce();
    // A second window on a connection of its own: a second user of the
    // same records, to see what happens when both change one.
    void OpenSecondWindow();

    QComboBox *m_patients = nullptr;
    std::unique_ptr<oxa::TSqlDataSet> m_vaccinations;
    std::unique_ptr<oxa::TSqlDataSet> m_doctors;
    oxa::TDataSource *m_source = nullptr;
    oxa::TDataSource *m_doctorSource = nullptr;
    VaccinationGrid *m_grid = nullptr;
    oxa::TDBEditOxa *m_vaccine = nullptr;
    oxa::TDBComboBoxOxa *m_note = nullptr;
    oxa::TDBLookupComboBoxOxa *m_doctor = nullptr;
    oxa::TDBCheckBoxOxa *m_given = nullptr;
    bool m_storePending = false;
};
