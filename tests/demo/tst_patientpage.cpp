#include "BirthNumber.h"
#include "PatientPage.h"
#include "SampleDatabase.h"

#include "oxa/controls/ComboBoxOxa.h"
#include "oxa/controls/EditOxa.h"
#include "oxa/controls/ErrorProvider.h"
#include "oxa/controls/MaskEditOxa.h"
#include "oxa/controls/OxaEditCis.h"
#include "support/TestSupport.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

using namespace oxa;

// The patient form as a nurse fills it: from the keyboard, saved with Enter
// on "Uložit", checked before anything is stored.
class TestPatientPage : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    std::unique_ptr<PatientPage> m_page;

    template<class T>
    T *Field(const char *name) const
    {
        return m_page->findChild<T *>(QLatin1String(name));
    }
    int Stored(const QString &surname) const
    {
        QSqlQuery q(SampleDatabase::Database());
        q.prepare(QStringLiteral("SELECT count(*) FROM pacient WHERE prijmeni = ?"));
        q.addBindValue(surname);
        return q.exec() && q.next() ? q.value(0).toInt() : -1;
    }
    void Type(const char *field, const QString &text)
    {
        auto *edit = Field<QLineEdit>(field);
        edit->setFocus();
        edit->selectAll();
        if (text.isEmpty())
            QTest::keyClick(edit, Qt::Key_Delete);
        else
            QTest::keyClicks(edit, text);
    }
    QString Status() const { return Field<QLabel>("labelStatus")->text(); }
    // Opens the patient of the list with Enter, as the nurse does.
    bool OpenFromList(const QString &surname)
    {
        auto *list = Field<QTableView>("listPacienti");
        const QModelIndexList found = list->model()->match(
            list->model()->index(0, 0), Qt::DisplayRole, surname, 1, Qt::MatchExactly);
        if (found.isEmpty())
            return false;
        list->setFocus();
        list->setCurrentIndex(found.first());
        QTest::keyClick(list, Qt::Key_Return);
        return true;
    }
    // A registered patient with only a surname and a sex.
    void Register(const QString &surname)
    {
        Type("editPrijmeni", surname);
        Field<TComboBoxOxa>("comboPohlavi")->setCurrentIndex(0);
        QCOMPARE(PressSave(), QStringLiteral("Pacient %1 uložen.").arg(surname));
    }
    // An empty form for the next case, whatever the last one left.
    void StartOver()
    {
        test::MessageRecorder discard(mrNo);
        PressNew();
    }
    // Enter on "Nový pacient"; the button clicks after its animation.
    void PressNew()
    {
        auto *button = Field<QAbstractButton>("buttonNovy");
        QSignalSpy clicked(button, &QAbstractButton::clicked);
        QTest::keyClick(button, Qt::Key_Return);
        QVERIFY(clicked.wait());
    }
    QVariant StoredValue(const QString &surname, const QString &column) const
    {
        QSqlQuery q(SampleDatabase::Database());
        q.prepare(QStringLiteral("SELECT %1 FROM pacient WHERE prijmeni = ?").arg(column));
        q.addBindValue(surname);
        return q.exec() && q.next() ? q.value(0) : QVariant();
    }
    // The widgets a mark could hide: every visible widget but the mark, its
    // ancestors and the other marks.
    QList<QWidget *> Controls(const QWidget *mark) const
    {
        QList<QWidget *> controls;
        for (QWidget *w : m_page->findChildren<QWidget *>()) {
            if (w != mark && w->isVisible() && !qobject_cast<TErrorImage *>(w) &&
                !w->isAncestorOf(mark))
                controls << w;
        }
        return controls;
    }

    // Enter on "Uložit"; returns the status line the save left.
    QString PressSave()
    {
        auto *status = Field<QLabel>("labelStatus");
        status->clear();
        QTest::keyClick(Field<QWidget>("buttonUlozit"), Qt::Key_Return);
        return QTest::qWaitFor([&] { return !status->text().isEmpty(); }) ? status->text()
                                                                          : QString();
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(SampleDatabase::Open(m_dir.filePath(QStringLiteral("clinic.sqlite"))));
        m_page = std::make_unique<PatientPage>();
        m_page->resize(1200, 700);
        QVERIFY(test::ShowAndActivate(m_page.get()));
    }
    void cleanupTestCase()
    {
        m_page.reset();
        SampleDatabase::Close();
    }

    void init() { StartOver(); }

    void errorsStopTheSaveWarningsAskOnce()
    {
        test::MessageRecorder messages(mrNo);
        auto *marks = m_page->findChild<TErrorProvider *>();
        auto *sex = Field<TComboBoxOxa>("comboPohlavi");
        Type("editPrijmeni", QStringLiteral("Stastna"));
        Type("editRodneCislo", QStringLiteral("12345"));
        Type("editPojistovna", QStringLiteral("999"));
        Type("editVaha", QStringLiteral("300"));
        QCOMPARE(PressSave(), QStringLiteral("Opravte označená pole."));
        QCOMPARE(Stored(QStringLiteral("Stastna")), 0);
        QVERIFY2(messages.Shown().isEmpty(), qPrintable(messages.Texts().join('|')));
        for (const char *field : {"editRodneCislo", "radekPojistovna", "editVaha", "comboPohlavi"})
            QVERIFY2(marks->ErrorImage(Field<QWidget>(field)), field);
        QCOMPARE(sex->currentIndex(), -1); // no silent default

        // Fixed fields lose their marks at once; a woman's number, her sex,
        // a known insurer (its name filled on leaving), a weight that only
        // looks odd.
        Type("editRodneCislo", QStringLiteral("7360285163"));
        QVERIFY(!marks->ErrorImage(Field<QWidget>("editRodneCislo")));
        sex->setFocus();
        QTest::keyClick(sex, Qt::Key_Down);
        QTest::keyClick(sex, Qt::Key_Down);
        QCOMPARE(sex->currentText(), QStringLiteral("žena"));
        Type("editPojistovna", QStringLiteral("111"));
        Type("editVaha", QStringLiteral("1,5"));
        QVERIFY(!Field<QLineEdit>("editPojistovnaNazev")->text().isEmpty());
        QCOMPARE(PressSave(), QStringLiteral("Neuloženo."));
        QCOMPARE(messages.Shown().size(), 1);
        QVERIFY(messages.Texts().first().endsWith(QStringLiteral("Uložit i přesto?")));
        QCOMPARE(Stored(QStringLiteral("Stastna")), 0); // answered No

        messages.SetAnswer(mrYes);
        QCOMPARE(PressSave(), QStringLiteral("Pacient Stastna uložen."));
        QCOMPARE(Stored(QStringLiteral("Stastna")), 1);
        QCOMPARE(messages.Shown().size(), 2);
    }

    // Every mark stands beside its field, whole, in the window, over no
    // other control (the insurer's "..." button, the next field, the edge).
    void marksCoverNoControl()
    {
        test::MessageRecorder messages(mrNo);
        Type("editPrijmeni", QString());
        Type("editRodneCislo", QStringLiteral("12345"));
        Type("editDatumNarozeni", QStringLiteral("01012099"));
        Type("editPojistovna", QStringLiteral("999"));
        Type("editVaha", QStringLiteral("300"));
        Type("editDeti", QStringLiteral("30"));
        QCOMPARE(PressSave(), QStringLiteral("Opravte označená pole."));
        auto *marks = m_page->findChild<TErrorProvider *>();
        const QStringList fields{"editPrijmeni", "editRodneCislo",  "editDatumNarozeni",
                                 "comboPohlavi", "radekPojistovna", "editVaha",
                                 "editDeti"};
        QCOMPARE(marks->ErrorCount(), fields.size());
        for (const QString &field : fields) {
            const TErrorImage *mark = marks->ErrorImage(field);
            QVERIFY2(mark, qPrintable(field));
            const QRect place(mark->mapTo(m_page.get(), QPoint()), mark->size());
            QVERIFY2(mark->parentWidget()->rect().contains(mark->geometry()), qPrintable(field));
            QVERIFY2(m_page->rect().contains(place), qPrintable(field));
            for (const QWidget *control : Controls(mark)) {
                const QRect other(control->mapTo(m_page.get(), QPoint()), control->size());
                QVERIFY2(!place.intersects(other),
                         qPrintable(field + QStringLiteral(" covers ") + control->objectName() +
                                    QLatin1Char(' ') + control->metaObject()->className()));
            }
        }
    }

    // A mark goes at the keystroke that makes its field right, not before.
    void markGoesWhenFieldIsFixed_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("wrong");
        QTest::addColumn<QString>("appended"); // keeps the field wrong
        QTest::addColumn<QString>("right");
        QTest::newRow("surname") << "editPrijmeni"
                                 << ""
                                 << " "
                                 << "Dvorak";
        QTest::newRow("birth number") << "editRodneCislo"
                                      << "12345"
                                      << "6"
                                      << "7360285163";
        QTest::newRow("check digit") << "editRodneCislo"
                                     << "736028516"
                                     << "4"
                                     << "7360285163";
        QTest::newRow("weight") << "editVaha"
                                << "300"
                                << "0"
                                << "80";
        QTest::newRow("insurer") << "editPojistovna"
                                 << "99"
                                 << "9"
                                 << "111";
    }
    void markGoesWhenFieldIsFixed()
    {
        QFETCH(QString, field);
        QFETCH(QString, wrong);
        QFETCH(QString, appended);
        QFETCH(QString, right);
        test::MessageRecorder messages(mrNo);
        auto *marks = m_page->findChild<TErrorProvider *>();
        const QString marked =
            field == QLatin1String("editPojistovna") ? QStringLiteral("radekPojistovna") : field;
        Type(qPrintable(field), wrong);
        PressSave();
        QVERIFY(marks->ErrorImage(marked));
        QTest::keyClicks(Field<QWidget>(qPrintable(field)), appended);
        QVERIFY(marks->ErrorImage(marked));
        Type(qPrintable(field), right);
        QVERIFY(!marks->ErrorImage(marked));
        QVERIFY(marks->ErrorImage(QStringLiteral("comboPohlavi"))); // still not chosen
    }

    // Fixing the birth number also takes the mark off the birth date it
    // disagreed with.
    void fixingOneFieldClearsTheMarkItCaused()
    {
        test::MessageRecorder messages(mrNo);
        auto *marks = m_page->findChild<TErrorProvider *>();
        Type("editPrijmeni", QStringLiteral("Rozporna"));
        Type("editRodneCislo", QStringLiteral("7360285163"));
        Type("editDatumNarozeni", QStringLiteral("29101973"));
        QCOMPARE(PressSave(), QStringLiteral("Opravte označená pole."));
        QVERIFY(marks->ErrorImage(QStringLiteral("editDatumNarozeni")));
        Type("editRodneCislo", QStringLiteral("7360290003"));
        QVERIFY(!marks->ErrorImage(QStringLiteral("editDatumNarozeni")));
    }

    // The form registers and edits: a patient opened from the list is
    // changed in place, not stored a second time.
    void savedPatientIsOpenedChangedAndSaved()
    {
        test::MessageRecorder messages(mrYes);
        Register(QStringLiteral("Upravovana"));
        QVERIFY(OpenFromList(QStringLiteral("Upravovana")));
        QCOMPARE(Field<QLineEdit>("editPrijmeni")->text(), QStringLiteral("Upravovana"));
        QCOMPARE(m_page->findChild<QGroupBox *>()->title(), QStringLiteral("Úprava pacienta"));
        Type("editJmeno", QStringLiteral("Eva"));
        Type("editPojistovna", QStringLiteral("205"));
        QCOMPARE(PressSave(), QStringLiteral("Pacient Upravovana uložen."));
        QCOMPARE(Stored(QStringLiteral("Upravovana")), 1);
        QCOMPARE(StoredValue(QStringLiteral("Upravovana"), QStringLiteral("jmeno")).toString(),
                 QStringLiteral("Eva"));
        QCOMPARE(StoredValue(QStringLiteral("Upravovana"), QStringLiteral("pojistovna")).toString(),
                 QStringLiteral("205"));
        // The saved patient stays in the form and counts as unchanged.
        QCOMPARE(Field<QLineEdit>("editJmeno")->text(), QStringLiteral("Eva"));
        QVERIFY(m_page->MayLeavePatient());
        QCOMPARE(messages.Shown().size(), 0);
    }

    // A sample patient from the list passes the form's checks unchanged.
    void samplePatientSavesUnchanged()
    {
        test::MessageRecorder messages(mrYes);
        auto *list = Field<QTableView>("listPacienti");
        list->setFocus();
        list->setCurrentIndex(list->model()->index(0, 0));
        QTest::keyClick(list, Qt::Key_Return);
        QVERIFY(Status().endsWith(QStringLiteral("otevřen.")));
        const QString surname = Field<QLineEdit>("editPrijmeni")->text();
        QCOMPARE(PressSave(), QStringLiteral("Pacient %1 uložen.").arg(surname));
    }

    // Unsaved changes are asked about before another patient, a new one or
    // the window's closing replaces them: Ano saves, Ne drops, Storno stays.
    void unsavedChangesAskFirst_data()
    {
        QTest::addColumn<QString>("leave");
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("left");
        QTest::addColumn<QString>("stored");
        for (const char *leave : {"other patient", "new patient", "close"}) {
            QTest::addRow("%s, Ano", leave) << leave << mrYes << true << "Zmena";
            QTest::addRow("%s, Ne", leave) << leave << mrNo << true << "Puvodni";
            QTest::addRow("%s, Storno", leave) << leave << mrCancel << false << "Puvodni";
        }
    }
    void unsavedChangesAskFirst()
    {
        QFETCH(QString, leave);
        QFETCH(int, answer);
        QFETCH(bool, left);
        QFETCH(QString, stored);
        test::MessageRecorder messages(mrYes);
        if (Stored(QStringLiteral("Menena")) == 0)
            Register(QStringLiteral("Menena"));
        QSqlQuery(QStringLiteral("UPDATE pacient SET jmeno = 'Puvodni' WHERE prijmeni = 'Menena'"),
                  SampleDatabase::Database());
        if (Stored(QStringLiteral("Jina")) == 0)
            Register(QStringLiteral("Jina"));
        QVERIFY(OpenFromList(QStringLiteral("Menena")));
        QVERIFY(m_page->MayLeavePatient()); // nothing changed, nothing asked
        QCOMPARE(messages.Shown().size(), 0);

        Type("editJmeno", QStringLiteral("Zmena"));
        messages.SetAnswer(answer);
        bool closed = false;
        if (leave == QLatin1String("other patient"))
            QVERIFY(OpenFromList(QStringLiteral("Jina")));
        else if (leave == QLatin1String("new patient"))
            PressNew();
        else
            closed = m_page->close();
        QCOMPARE(messages.Shown().size(), 1);
        const TMessageRequest &question = messages.Shown().first();
        QVERIFY(question.Text.endsWith(QStringLiteral("Uložit změny?")));
        QVERIFY(question.Text.contains(QStringLiteral("Menena Zmena")));
        QCOMPARE(question.Buttons, mbYesNoCancel);
        QCOMPARE(question.DefaultButton, TMsgDlgButtons(mbYes));
        QCOMPARE(StoredValue(QStringLiteral("Menena"), QStringLiteral("jmeno")).toString(), stored);
        const QString shown = Field<QLineEdit>("editPrijmeni")->text();
        if (leave == QLatin1String("close")) {
            QCOMPARE(closed, left);
            QCOMPARE(m_page->isVisible(), !left);
            if (closed)
                QVERIFY(test::ShowAndActivate(m_page.get()));
        } else if (!left) {
            QCOMPARE(shown, QStringLiteral("Menena"));
        } else {
            QCOMPARE(shown,
                     leave == QLatin1String("new patient") ? QString() : QStringLiteral("Jina"));
        }
        if (!left)
            QCOMPARE(Field<QLineEdit>("editJmeno")->text(), QStringLiteral("Zmena"));
    }

    void emptyBirthNumberIsNoValue()
    {
        test::MessageRecorder messages(mrYes);
        Type("editPrijmeni", QStringLiteral("Bezcisla"));
        auto *sex = Field<TComboBoxOxa>("comboPohlavi");
        sex->setCurrentIndex(0);
        const QString status = PressSave();
        QCOMPARE(status, QStringLiteral("Pacient Bezcisla uložen."));
        QCOMPARE(Stored(QStringLiteral("Bezcisla")), 1);
        QSqlQuery q(QStringLiteral("SELECT rodne_cislo IS NULL, pojistovna IS NULL FROM pacient"
                                   " WHERE prijmeni = 'Bezcisla'"),
                    SampleDatabase::Database());
        QVERIFY(q.next());
        QVERIFY(q.value(0).toBool() && q.value(1).toBool());
    }
};

QTEST_MAIN(TestPatientPage)
#include "tst_patientpage.moc"
