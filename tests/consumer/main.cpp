// Creates the library's controls the way a host does: by class, and by name
// through the catalogue.
#include <oxa/package/Package.h>
#include <oxa/toolkit/Catalogue.h>
#include <oxa/toolkit/DateUtils.h>

#include <QApplication>
#include <QWidget>
#include <cstdio>
#include <memory>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    oxa::RegisterAll();
    QWidget form;
    int created = 0;
    for (const oxa::TComponentEntry &entry : oxa::Catalogue::Instance().Components()) {
        if (oxa::Catalogue::Instance().Create(entry.ClassName, &form))
            ++created;
    }
    const QString today = oxa::DateToStr(oxa::Date());
    std::printf("consumer: created %d registered classes on %s\n", created, qPrintable(today));
    return created == int(oxa::Catalogue::Instance().Components().size()) ? 0 : 1;
}
