#pragma once

#include <QCollator>
#include <QWidget>

class QComboBox;
class QLabel;

namespace oxa {
class TButtonOxa;
class TCheckTreeViewOxa;
class TEditOxa;
class TStringGridCheck;
} // namespace oxa

// Code lists: the diagnoses in a sortable check grid (a click on "Kód" or
// "Název" sorts them the Czech way; Space or Enter marks a diagnosis) whose
// marked rows are carried over to the chosen patient, and the examinations
// in a check tree, where checking a group checks its examinations.
class CodeListsPage : public QWidget
{
    Q_OBJECT

public:
    explicit CodeListsPage(QWidget *parent = nullptr);

private:
    QWidget *BuildDiagnoses();
    QWidget *BuildExaminations();
    void LoadDiagnoses();
    void LoadPatients();
    void LoadExaminations();
    void FindCode(const QString &prefix);
    void CarryOver();
    void ShowPatientDiagnoses();
    void ShowChosenExaminations();
    int CompareCzech(const QString &a, const QString &b) const;

    QCollator m_collator;
    oxa::TEditOxa *m_hledat = nullptr;
    oxa::TStringGridCheck *m_diagnozy = nullptr;
    QComboBox *m_pacient = nullptr;
    oxa::TButtonOxa *m_prenest = nullptr;
    QLabel *m_diagnozyPacienta = nullptr;
    oxa::TCheckTreeViewOxa *m_vysetreni = nullptr;
    QLabel *m_vybrano = nullptr;
};
