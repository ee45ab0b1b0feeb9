#include "oxa/toolkit/Translations.h"

#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace oxa {

bool InstallCzechTranslations(QCoreApplication *application)
{
    if (!application)
        return false;
    // Owned by the application; found again by its name on a second call.
    if (application->findChild<QTranslator *>(QStringLiteral("OxaQtCzech")))
        return true;
    auto *qt = new QTranslator(application);
    qt->setObjectName(QStringLiteral("OxaQtCzech"));
    if (!qt->load(QLocale(QLocale::Czech, QLocale::CzechRepublic), QStringLiteral("qtbase"),
                  QStringLiteral("_"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete qt;
        return false;
    }
    return QCoreApplication::installTranslator(qt);
}

} // namespace oxa
