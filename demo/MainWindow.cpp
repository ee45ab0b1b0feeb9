#include "MainWindow.h"

#include "CodeListsPage.h"
#include "DiaryPage.h"
#include "ExportPage.h"
#include "PatientPage.h"
#include "ReportPage.h"
#include "VaccinationPage.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent), m_tabs(new QTabWidget(this))
{
    setWindowTitle(QStringLiteral("Oxa – ukázková ambulance"));
    setCentralWidget(m_tabs);
    AddPage(new PatientPage(this), QStringLiteral("Pacient"), QStringLiteral("pacient"));
    AddPage(new DiaryPage(this), QStringLiteral("Diář"), QStringLiteral("diar"));
    AddPage(new VaccinationPage(this), QStringLiteral("Očkování"), QStringLiteral("ockovani"));
    m_export = new ExportPage(this);
    AddPage(m_export, QStringLiteral("Export"), QStringLiteral("export"));
    AddPage(new ReportPage(this), QStringLiteral("Zpráva"), QStringLiteral("zprava"));
    AddPage(new CodeListsPage(this), QStringLiteral("Číselníky"), QStringLiteral("ciselniky"));
    // Each page says what its keys do (its "statusHint" property).
    const auto showHint = [this](int index) {
        const QString hint = m_tabs->widget(index)->property("statusHint").toString();
        statusBar()->showMessage(hint.isEmpty() ? QStringLiteral("Tab v pořadí formuláře.") : hint);
    };
    connect(m_tabs, &QTabWidget::currentChanged, this, showHint);
    showHint(m_tabs->currentIndex());
    resize(1100, 720);
}

void MainWindow::AddPage(QWidget *page, const QString &title, const QString &fileName)
{
    m_tabs->addTab(page, title);
    m_fileNames.append(fileName);
}

QStringList MainWindow::SaveScreenshots(const QString &directory)
{
    QDir().mkpath(directory);
    QStringList written;
    // A size at which every page's texts are whole (the week view's too).
    resize(1600, 1000);
    show();
    for (int i = 0; i < m_tabs->count(); ++i) {
        m_tabs->setCurrentIndex(i);
        // A page may fill itself with an example first; what it starts in
        // the background (the spell check) gets a moment to finish.
        if (QMetaObject::invokeMethod(m_tabs->widget(i), "PrepareScreenshot")) {
            QEventLoop settle;
            QTimer::singleShot(300, &settle, &QEventLoop::quit);
            settle.exec();
        }
        QApplication::processEvents();
        const QString file = QDir(directory).filePath(
            QStringLiteral("%1-%2.png").arg(i + 1).arg(m_fileNames.value(i)));
        if (grab().save(file))
            written.append(file);
    }
    return written;
}
