#pragma once

#include <QWidget>

class QSqlQueryModel;
class QTableView;
class QLabel;

namespace oxa {
class TEditOxa;
class TMaskEditOxa;
class TComboBoxOxa;
class TMemoOxa;
class TLabeledEditOxa;
class TButtonOxa;
class TDateTimePickerOxa;
}

// Registration of a patient: a form of Oxa data-entry controls wired for
// Ctrl+arrow movement, and the list of registered patients.
class PatientPage : public QWidget
{
    Q_OBJECT

public:
    explicit PatientPage(QWidget *parent = nullptr);

private:
    void BuildForm();
    void WireNeighbours();
    void LoadInsurers();
    void Save();
    void ClearForm();
    void RefreshList();

    oxa::TEditOxa *m_prijmeni = nullptr;
    oxa::TEditOxa *m_jmeno = nullptr;
    oxa::TMaskEditOxa *m_rodneCislo = nullptr;
    oxa::TMaskEditOxa *m_datumNarozeni = nullptr;
    oxa::TComboBoxOxa *m_pohlavi = nullptr;
    oxa::TComboBoxOxa *m_pojistovna = nullptr;
    oxa::TLabeledEditOxa *m_telefon = nullptr;
    oxa::TDateTimePickerOxa *m_navsteva = nullptr;
    oxa::TMemoOxa *m_poznamka = nullptr;
    oxa::TButtonOxa *m_ulozit = nullptr;
    QLabel *m_status = nullptr;
    QSqlQueryModel *m_model = nullptr;
    QTableView *m_list = nullptr;
};
