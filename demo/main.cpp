// oxa-demo: a small clinic showing the library's components on an SQLite
// sample database.
#include "ExportPage.h"
#include "MainWindow.h"
#include "SampleDatabase.h"

#include "oxa/package/Package.h"
#include "oxa/toolkit/Translations.h"

#include <QApplication>
#include <QCommandLineParser>
#include <cstdio>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("oxa-demo"));
    QApplication::setApplicationDisplayName(QStringLiteral("Oxa"));
    // Qt's own texts (context menus, standard dialogs) in Czech as well.
    oxa::InstallCzechTranslations();

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Ukázková ambulance s komponentami Oxa"));
    parser.addHelpOption();
    const QCommandLineOption dbOption(
        QStringLiteral("db"),
        QStringLiteral("Soubor databáze SQLite (výchozí v datovém adresáři uživatele)."),
        QStringLiteral("PATH"));
    const QCommandLineOption screenshotOption(
        QStringLiteral("screenshot"),
        QStringLiteral("Vykreslí všechny stránky do PNG v adresáři DIR a skončí."),
        QStringLiteral("DIR"));
    const QCommandLineOption exportOption(
        QStringLiteral("export"),
        QStringLiteral("Exportuje seznam pacientů do sešitu FILE a skončí."),
        QStringLiteral("FILE"));
    parser.addOption(dbOption);
    parser.addOption(exportOption);
    parser.addOption(screenshotOption);
    parser.process(app);

    oxa::RegisterAll();
    QString error;
    if (!SampleDatabase::Open(parser.value(dbOption), &error)) {
        std::fprintf(stderr, "oxa-demo: cannot open the database: %s\n", qPrintable(error));
        return 1;
    }

    int result = 0;
    {
        MainWindow window;
        if (parser.isSet(exportOption)) {
            const QString failure = window.Export()->ExportAndWait(parser.value(exportOption));
            if (!failure.isEmpty())
                std::fprintf(stderr, "oxa-demo: %s\n", qPrintable(failure));
            result = failure.isEmpty() ? 0 : 1;
        } else if (parser.isSet(screenshotOption)) {
            const QStringList files = window.SaveScreenshots(parser.value(screenshotOption));
            for (const QString &file : files)
                std::printf("%s\n", qPrintable(file));
            result = files.isEmpty() ? 1 : 0;
        } else {
            window.show();
            result = QApplication::exec();
        }
    }
    SampleDatabase::Close();
    return result;
}
