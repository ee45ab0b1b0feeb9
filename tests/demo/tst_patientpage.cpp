#include "PatientPage.h"
#include "SampleDatabase.h"

#include "oxa/controls/ComboBoxOxa.h"
#include "oxa/controls/ErrorProvider.h"
#include "oxa/controls/MaskEditOxa.h"
#include "oxa/controls/OxaEditCis.h"
#include "support/TestSupport.h"

#include <QLabel>
#include <QSqlQuery>
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
        QTest::keyClicks(edit, text);
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
        QVERIFY(messages.Shown().isEmpty());
        for (const char *field : {"editRodneCislo", "editPojistovna", "editVaha", "comboPohlavi"})
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
