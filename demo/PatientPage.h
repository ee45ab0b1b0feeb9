#pragma once

#include "oxa/controls/ErrorProvider.h"

#include <QWidget>

class QGroupBox;
class QLabel;
class QModelIndex;
class QSortFilterProxyModel;
class QSqlQueryModel;
class QTableView;

namespace oxa {
class TEditOxa;
class TMaskEditOxa;
class TComboBoxOxa;
class TMemoOxa;
class TLabeledEditOxa;
class TButtonOxa;
class TDateTimePickerOxa;
class TNumEditOxa;
class TOxaEditCis;
} // namespace oxa

// Registration and editing of a patient: a form of Oxa data-entry controls
// wired for Ctrl+arrow movement, and the list of registered patients, from
// which Enter or a double click opens a patient in the form again.
class PatientPage : public QWidget
{
    Q_OBJECT

public:
    explicit PatientPage(QWidget *parent = nullptr);

    // Asks what to do with unsaved changes of the form: save them, drop them
    // or stay. True when the form may be left (or closed).
    bool MayLeavePatient();

protected:
    void showEvent(QShowEvent *event) override;
    // The window closes only after MayLeavePatient.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // A field that keeps the patient from being saved (an error) or looks
    // unusual (a warning).
    struct Fault
    {
        QWidget *field;
        QString text;
        oxa::TErrorType type;
    };

    void BuildForm();
    void BuildList();
    void WireNeighbours();
    bool Save();
    QList<Fault> Faults() const;
    // Marks every fault; the warnings' texts are returned.
    bool Validate(QStringList &warnings);
    // Removes the marks of the fields that are no longer at fault.
    void ClearFixedMarks();
    void ClearMarksWhenFixed(QWidget *field);
    void PickInsurer(QString &code, QString &name);
    void FillInsurerName();

    void OpenPatient(const QModelIndex &index);
    void NewPatient();
    void LoadPatient(int id);
    void ClearForm();
    void ShowPatientId(int id);
    // What the form shows, compared with what was loaded or saved last.
    QStringList FormValues() const;
    bool Modified() const { return FormValues() != m_savedValues; }
    void RefreshList();

    int m_id = 0; // the patient being edited; 0 while registering a new one
    QStringList m_savedValues;
    QGroupBox *m_box = nullptr;
    oxa::TEditOxa *m_prijmeni = nullptr;
    oxa::TEditOxa *m_jmeno = nullptr;
    oxa::TMaskEditOxa *m_rodneCislo = nullptr;
    oxa::TMaskEditOxa *m_datumNarozeni = nullptr;
    oxa::TComboBoxOxa *m_pohlavi = nullptr;
    QWidget *m_pojistovnaRadek = nullptr;
    oxa::TOxaEditCis *m_pojistovna = nullptr;
    oxa::TEditOxa *m_pojistovnaNazev = nullptr;
    oxa::TNumEditOxa *m_vaha = nullptr;
    oxa::TNumEditOxa *m_deti = nullptr;
    oxa::TErrorProvider *m_chyby = nullptr;
    oxa::TLabeledEditOxa *m_telefon = nullptr;
    oxa::TDateTimePickerOxa *m_navsteva = nullptr;
    oxa::TMemoOxa *m_poznamka = nullptr;
    oxa::TButtonOxa *m_ulozit = nullptr;
    oxa::TButtonOxa *m_novy = nullptr;
    QLabel *m_status = nullptr;
    QSqlQueryModel *m_model = nullptr;
    QSortFilterProxyModel *m_sorted = nullptr;
    QTableView *m_list = nullptr;
};
