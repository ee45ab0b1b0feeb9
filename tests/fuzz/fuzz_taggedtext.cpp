// Feeds arbitrary UTF-8 text to SetFormatedText and IsPlainText (see RichFuzz.h).

#include "RichFuzz.h"

#include <QApplication>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    oxa::fuzz::TaggedText(data, size);
    return 0;
}
