#include "DemoTestSupport.h"
#include "PatientPage.h"

#include "oxa/controls/ComboBoxOxa.h"
#include "oxa/controls/ErrorProvider.h"
#include "oxa/controls/MaskEditOxa.h"
#include "oxa/controls/OxaEditCis.h"
#include "support/TestSupport.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QSqlRecord>
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
    static int Stored(const QString &surname)
    {
        return test::SampleValue(QStringLiteral("SELECT count(*) FROM pacient WHERE prijmeni = ?"),
                                 surname)
            .toInt();
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
    QString Surname() const { return Field<QLineEdit>("editPrijmeni")->text(); }
    // Enter on a row of the list (a sample patient or the one named).
    void OpenFromList(const QString &surname = QString())
    {
        auto *list = Field<QTableView>("listPacienti");
        const QModelIndexList found = list->model()->match(
            list->model()->index(0, 0), Qt::DisplayRole, surname, 1, Qt::MatchExactly);
        list->setFocus();
        list->setCurrentIndex(found.value(0, list->model()->index(0, 0)));
        QTest::keyClick(list, Qt::Key_Return);
    }
    // Enter on "Nový pacient"; the button clicks after its animation.
    void PressNew()
    {
        QSignalSpy clicked(Field<QAbstractButton>("buttonNovy"), &QAbstractButton::clicked);
        QTest::keyClick(Field<QWidget>("buttonNovy"), Qt::Key_Return);
        QVERIFY(clicked.wait());
    }
    // The first name stored under the surname, and how many times.
    static QString StoredName(const QString &surname)
    {
        return test::SampleValue(
                   QStringLiteral("SELECT jmeno || count(*) FROM pacient WHERE prijmeni = ?"),
                   surname)
            .toString();
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

    void init()
    {
        test::MessageRecorder discard(mrNo);
        PressNew();
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
        QVERIFY2(messages.Shown().isEmpty(), qPrintable(messages.Texts().join('|')));
        for (const char *field : {"editRodneCislo", "radekPojistovna", "editVaha", "comboPohlavi"})
            QVERIFY2(marks->ErrorImage(Field<QWidget>(field)), field);
        QCOMPARE(sex->currentIndex(), -1); // no silent default

        // A woman's number, her sex, a known insurer (its name filled on
        // leaving), a weight that only looks odd.
        Type("editRodneCislo", QStringLiteral("7360285163"));
        sex->setFocus();
        QTest::keyClick(sex, Qt::Key_Down);
        QTest::keyClick(sex, Qt::Key_Down);
        QCOMPARE(sex->currentText(), QStringLiteral("žena"));
        Type("editPojistovna", QStringLiteral("211")); // the longest name
        Type("editVaha", QStringLiteral("1,5"));
        const auto *name = Field<QLineEdit>("editPojistovnaNazev");
        QVERIFY(!name->text().isEmpty());
        QVERIFY(name->contentsRect().width() > name->fontMetrics().horizontalAdvance(name->text()));
        QCOMPARE(PressSave(), QStringLiteral("Neuloženo."));
        QCOMPARE(messages.Shown().size(), 1);
        QVERIFY(messages.Texts().first().endsWith(QStringLiteral("Uložit i přesto?")));
        QCOMPARE(Stored(QStringLiteral("Stastna")), 0); // answered No

        messages.SetAnswer(mrYes);
        QCOMPARE(PressSave(), QStringLiteral("Pacient Stastna uložen."));
        QCOMPARE(Stored(QStringLiteral("Stastna")), 1);
        QCOMPARE(messages.Shown().size(), 2);
    }

    // Every mark stands whole beside its field, over no other control (the
    // insurer's "..." button, the window's edge); it goes at the keystroke
    // that makes its field right, and not before.
    void marksCoverNothingAndGoWhenFixed()
    {
        test::MessageRecorder messages(mrNo);
        Type("editRodneCislo", QStringLiteral("736028516"));
        Type("editDatumNarozeni", QStringLiteral("01012099"));
        Type("editPojistovna", QStringLiteral("99"));
        Type("editVaha", QStringLiteral("300"));
        Type("editDeti", QStringLiteral("30"));
        QCOMPARE(PressSave(), QStringLiteral("Opravte označená pole."));
        auto *marks = m_page->findChild<TErrorProvider *>();
        QCOMPARE(marks->ErrorCount(), 7);
        for (const TErrorImage *mark : m_page->findChildren<TErrorImage *>()) {
            const QRect place(mark->mapTo(m_page.get(), QPoint()), mark->size());
            QVERIFY(mark->parentWidget()->rect().contains(mark->geometry()));
            for (const QWidget *w : m_page->findChildren<QWidget *>()) {
                const QRect other(w->mapTo(m_page.get(), QPoint()), w->size());
                QVERIFY2(!w->isVisible() || qobject_cast<const TErrorImage *>(w) ||
                             w->isAncestorOf(mark) || !place.intersects(other),
                         qPrintable(mark->Control()->objectName() + " covers " + w->objectName()));
            }
        }
        // The field, a keystroke that keeps it wrong, its right value.
        const char *rows[][4] = {{"editPrijmeni", "editPrijmeni", " ", "Dvorak"},
                                 {"editRodneCislo", "editRodneCislo", "4", "7360285163"},
                                 {"editVaha", "editVaha", "0", "80"},
                                 {"editPojistovna", "radekPojistovna", "9", "111"}};
        int count = 7;
        for (const auto &[field, marked, appended, right] : rows) {
            QTest::keyClicks(Field<QWidget>(field), QString::fromUtf8(appended));
            QVERIFY2(marks->ErrorImage(QLatin1String(marked)), field);
            Type(field, QString::fromUtf8(right));
            QVERIFY2(!marks->ErrorImage(QLatin1String(marked)), field);
            QCOMPARE(marks->ErrorCount(), --count);
        }
    }

    // A patient opened from the list is changed in place, not stored again;
    // the saved patient stays in the form, unchanged.
    void savedPatientOpensChangesAndSaves()
    {
        test::MessageRecorder messages(mrYes);
        const QVariant id = Field<QTableView>("listPacienti")->model()->index(0, 6).data();
        const auto row = [&id] {
            QSqlQuery q(SampleDatabase::Database());
            q.prepare(QStringLiteral("SELECT * FROM pacient WHERE id = ?"));
            q.addBindValue(id);
            QStringList values;
            for (int i = 0; q.exec() && q.next() && i < q.record().count(); ++i)
                values << q.value(i).toString();
            return values;
        };
        QStringList before = row();
        OpenFromList();
        const int stored = Stored(Surname());
        QCOMPARE(m_page->findChild<QGroupBox *>()->title(), QStringLiteral("Úprava pacienta"));
        Type("editJmeno", QStringLiteral("Zmena"));
        QCOMPARE(PressSave(), QStringLiteral("Pacient %1 uložen.").arg(Surname()));
        QCOMPARE(Stored(Surname()), stored);
        before[2] = QStringLiteral("Zmena"); // all else as it was
        QCOMPARE(row(), before);
        QVERIFY(m_page->MayLeavePatient());
    }

    // Unsaved changes are asked about before another patient, a new one or
    // the window's closing replaces them: Ano saves, Ne drops, Storno stays.
    void unsavedChangesAskFirst_data()
    {
        QTest::addColumn<QString>("leave");
        QTest::addColumn<int>("answer");
        for (const char *leave : {"other patient", "new patient", "close"}) {
            QTest::addRow("%s, Ano", leave) << leave << mrYes;
            QTest::addRow("%s, Ne", leave) << leave << mrNo;
            QTest::addRow("%s, Storno", leave) << leave << mrCancel;
        }
    }
    void unsavedChangesAskFirst()
    {
        QFETCH(QString, leave);
        QFETCH(int, answer);
        test::MessageRecorder messages(answer);
        Type("editPrijmeni", QStringLiteral("Menena"));
        Field<TComboBoxOxa>("comboPohlavi")->setCurrentIndex(1);
        Type("editJmeno", QStringLiteral("Puvodni"));
        QCOMPARE(PressSave(), QStringLiteral("Pacient Menena uložen."));
        OpenFromList(QStringLiteral("Menena"));
        Type("editJmeno", QStringLiteral("Zmena"));
        QVERIFY(messages.Shown().isEmpty());

        if (leave == QLatin1String("other patient"))
            OpenFromList();
        else if (leave == QLatin1String("new patient"))
            PressNew();
        else
            QCOMPARE(m_page->close(), answer != mrCancel);
        QCOMPARE(messages.Texts(),
                 QStringList{"Změny pacienta Menena Zmena nejsou uloženy.\n\nUložit změny?"});
        QCOMPARE(messages.Shown().first().Buttons, mbYesNoCancel);
        QCOMPARE(StoredName(QStringLiteral("Menena")),
                 answer == mrYes ? QStringLiteral("Zmena1") : QStringLiteral("Puvodni1"));
        QCOMPARE(Surname() == QLatin1String("Menena"),
                 answer == mrCancel || leave == QLatin1String("close"));
        QVERIFY(m_page->isVisible() || test::ShowAndActivate(m_page.get()));
        QSqlQuery(QStringLiteral("DELETE FROM pacient WHERE prijmeni = 'Menena'"),
                  SampleDatabase::Database());
    }

    void emptyBirthNumberIsNoValue()
    {
        test::MessageRecorder messages(mrYes);
        Type("editPrijmeni", QStringLiteral("Bezcisla"));
        Field<TComboBoxOxa>("comboPohlavi")->setCurrentIndex(0);
        QCOMPARE(PressSave(), QStringLiteral("Pacient Bezcisla uložen."));
        QCOMPARE(
            test::SampleValue(QStringLiteral("SELECT count(*) FROM pacient WHERE prijmeni = ?"
                                             " AND rodne_cislo IS NULL AND pojistovna IS NULL"),
                              QStringLiteral("Bezcisla"))
                .toInt(),
            1);
    }
};

QTEST_MAIN(TestPatientPage)
#include "tst_patientpage.moc"
