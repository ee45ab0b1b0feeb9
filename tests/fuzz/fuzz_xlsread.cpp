// Feeds arbitrary bytes to TDispatcher::Read with the records a worksheet
// file registers, plus one that reads more than it is given. Reading may end
// normally or in EReadError; anything else (a crash, a hang, a leak, another
// exception) is a fault.

#include "oxa/spreadsheet/XLSfile.h"

#include <QBuffer>
#include <QByteArray>

#include <cstdint>
#include <cstdlib>

namespace {

class TOverreader : public oxa::TData
{
public:
    TOverreader() { opCode = 0x0005; }
    void Read(oxa::TMyReader &reader) override
    {
        reader.readInt();
        reader.readDouble();
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);

    oxa::TXLSfile sheet;
    sheet.AddCell(1, 1, {}, oxa::CellClassOf<oxa::TBlankCell>());
    sheet.AddWordCell(1, 1, {}, 0);
    sheet.AddDoubleCell(1, 1, {}, 0);
    sheet.AddStrCell(1, 1, {}, QString());
    sheet.AddData(std::make_unique<TOverreader>());

    oxa::TDispatcher &dispatcher = sheet.Dispatcher();
    dispatcher.SetStream(&buffer);
    try {
        dispatcher.Read();
    } catch (const oxa::EReadError &) { }
    // Every round of the loop adds at most one message and no record
    // position is read twice.
    if (dispatcher.SLError().size() > qsizetype(size) + 1)
        std::abort();
    dispatcher.SetStream(nullptr);
    return 0;
}
