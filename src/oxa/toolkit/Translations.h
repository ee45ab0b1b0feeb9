#pragma once

#include "oxa/oxa_export.h"

#include <QCoreApplication>

namespace oxa {

// Makes every text of the application Czech, Qt's own included: installs
// Qt's Czech translation (the standard context menus of edits and spin
// boxes, the standard dialogs and buttons) for the application, once. Call
// it after creating the QApplication:
//     QApplication app(argc, argv);
//     oxa::InstallCzechTranslations();
// Returns false, and changes nothing, when Qt's Czech translation is not
// installed (Debian: qt6-translations-l10n) or there is no application.
OXA_EXPORT bool
InstallCzechTranslations(QCoreApplication *application = QCoreApplication::instance());

} // namespace oxa
