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
class TNumEditOxa;
class TOxaEditCis;
class TErrorProvider;
} // namespace oxa

// Registration of a patient: a form of Oxa data-entry controls wired for
// Ctrl+arrow movement, and the list of registered patients.
class PatientPage : public QWidget
{
    Q_OBJECT

public:
    explicit PatientPage(QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void BuildForm();
    void WireNeighbours();
    void Save();
    // Marks every field that keeps the patient from being saved (errors) or
    // looks unusual (warnings); the warnings' texts are returned.
    bool Validate(QStringList &warnings);
    void PickInsurer(QString &code, QString &name);
    void FillInsurerName();
    void ClearMarkWhenEdited(QWidget *field);
    void ClearForm();
    void RefreshList();

    oxa::TEditOxa *m_prijmeni = nullptr;
    oxa::TEditOxa *m_jmeno = nullptr;
    oxa::TMaskEditOxa *m_rodneCislo = nullptr;
    oxa::TMaskEditOxa *m_datumNarozeni = nullptr;
    oxa::TComboBoxOxa *m_pohlavi = nullptr;
    oxa::TOxaEditCis *m_pojistovna = nullptr;
    oxa::TEditOxa *m_pojistovnaNazev = nullptr;
    oxa::TNumEditOxa *m_vaha = nullptr;
    oxa::TNumEditOxa *m_deti = nullptr;
    oxa::TErrorProvider *m_chyby = nullptr;
    oxa::TLabeledEditOxa *m_telefon = nullptr;
    oxa::TDateTimePickerOxa *m_navsteva = nullptr;
    oxa::TMemoOxa *m_poznamka = nullptr;
    oxa::TButtonOxa *m_ulozit = nullptr;
    QLabel *m_status = nullptr;
    QSqlQueryModel *m_model = nullptr;
    QTableView *m_list = nullptr;
};
