#pragma once

#include "oxa/oxa_export.h"

#include "oxa/toolkit/Exceptions.h"

#include <QFlags>
#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QtEndian>

#include <array>
#include <cstring>
#include <functional>
#include <memory>
#include <vector>

class QIODevice;

namespace oxa {

class TXLSfilePrivate;

class TMyReader;
class TMyWriter;

// ---------------------------------------------------------------------------
// The record layer: a worksheet file is a flat sequence of records, each a
// 16-bit opcode, a 16-bit payload length and the payload, little-endian.
// These classes are public because a host extends a file with record classes
// of its own (descendants of TData or TCell) and reads records back.
// ---------------------------------------------------------------------------

// Declared for opcode and length faults of a record stream; reading collects
// such faults as messages instead and ends in EReadError.
class OXA_EXPORT EopCodeError : public Exception
{
    using Exception::Exception;
};
class OXA_EXPORT EOverUnderError : public Exception
{
    using Exception::Exception;
};

// A record object: knows its opcode and writes (and reads) its own payload.
class OXA_EXPORT TMyPersistent
{
public:
    TMyPersistent() = default;
    virtual ~TMyPersistent() = default;
    TMyPersistent(const TMyPersistent &) = delete;
    TMyPersistent &operator=(const TMyPersistent &) = delete;

    virtual void Write(TMyWriter &Writer);
    virtual void Read(TMyReader &Reader);

    quint16 opCode = 0;
};

// The base of every record class of a worksheet file.
class OXA_EXPORT TData : public TMyPersistent
{ };

// Holds the byte stream a reader or writer works on; the stream is not owned.
class OXA_EXPORT TMyFiler
{
public:
    explicit TMyFiler(QIODevice *stream = nullptr) : FStream(stream) { }
    virtual ~TMyFiler() = default;
    TMyFiler(const TMyFiler &) = delete;
    TMyFiler &operator=(const TMyFiler &) = delete;

    QIODevice *Stream() const { return FStream; }
    virtual void SetStream(QIODevice *stream) { FStream = stream; }

protected:
    QIODevice *FStream;
};

// Reads little-endian values from the stream. A stream that ends too early
// fails with EReadError "Stream read error".
class OXA_EXPORT TMyReader : public TMyFiler
{
public:
    using TMyFiler::TMyFiler;

    quint8 readByte();
    quint16 readWord();
    qint32 readInt();
    double readDouble();
    // Reads a 16-bit count n, then n bytes into the storage of a text of n
    // UTF-16 units: the bytes fill the first half of the text, the rest stays
    // zero. Nothing in the library reads text this way; kept as it always was.
    QString readStr();

private:
    void ReadBuffer(void *dest, qint64 count);
};

// Writes little-endian values and code page 1250 text straight to the
// stream: every value is in the stream when the call returns. A stream that
// takes fewer bytes than given, or no stream at all, throws EWriteError at
// that call.
class OXA_EXPORT TMyWriter : public TMyFiler
{
public:
    using TMyFiler::TMyFiler;

    void WriteBuffer(const void *data, qsizetype count);
    void WriteByte(quint8 Value);
    void WriteWord(quint16 Value);
    void WriteInt(qint32 Value);
    void WriteDouble(double Value);
    // The text in code page 1250, one byte per UTF-16 unit, without a length.
    void WriteSingleStr(QStringView Value);
    // The same, preceded by the 16-bit byte count.
    void WriteStr(QStringView Value);
};

// Keeps the record objects of a file in registration order, writes them with
// their record headers and reads a record stream back.
class OXA_EXPORT TDispatcher
{
public:
    TDispatcher();
    ~TDispatcher();
    TDispatcher(const TDispatcher &) = delete;
    TDispatcher &operator=(const TDispatcher &) = delete;

    QIODevice *Stream() const { return FStream; }
    // Binds the reader and the writer to stream (not owned).
    void SetStream(QIODevice *stream);

    // The opcode of the end record; 999 unless set.
    quint16 OpcodeEOF() const { return FOpcodeEOF; }
    void SetOpcodeEOF(quint16 value) { FOpcodeEOF = value; }

    // Appends a record object, which the dispatcher owns from now on. Neither
    // sorted nor checked for duplicates.
    TMyPersistent *RegisterObj(std::unique_ptr<TMyPersistent> MyPers);
    // Frees every registered object and forgets the read messages.
    void Clear();

    // The registered objects in order, each under the decimal text of the
    // opcode it had when it was registered.
    qsizetype Count() const { return qsizetype(StrList.size()); }
    TMyPersistent *Objects(qsizetype index) const { return StrList.at(size_t(index)).get(); }
    QString Strings(qsizetype index) const;

    // Writes every registered object as a record, then the end record, each
    // record's length put into its header by seeking back: the stream must
    // be seekable.
    void Write();
    // Reads records until the end record, collecting in SLError a message
    // for every unknown opcode and every record its object under- or
    // over-reads; throws EReadError when SLError then holds any message.
    // Messages of an earlier Read stay until Clear. A stream that ends or
    // is left before the end record throws EReadError "Stream read error".
    void Read();

    TMyReader &Reader() { return *FReader; }
    TMyWriter &Writer() { return *FWriter; }
    // The messages collected by the last Read.
    QStringList &SLError() { return FSLError; }
    const QStringList &SLError() const { return FSLError; }

private:
    QHash<quint16, TMyPersistent *> FirstByOpcode() const;
    void SeekRelative(qint64 offset);

    // The registered objects, and apart from them (writing walks only the
    // objects) the opcodes they were registered under.
    std::vector<std::unique_ptr<TMyPersistent>> StrList;
    std::vector<quint16> StrListOpcodes;
    std::unique_ptr<TMyReader> FReader;
    std::unique_ptr<TMyWriter> FWriter;
    QIODevice *FStream = nullptr;
    QStringList FSLError;
    quint16 FOpcodeEOF = 999;
};

// ---------------------------------------------------------------------------
// The records of a worksheet file.
// ---------------------------------------------------------------------------

// The file header: a worksheet.
class OXA_EXPORT TBOF : public TData
{
public:
    TBOF();
    void Write(TMyWriter &Writer) override;
};

// Declares code page 1250 for the texts of the file.
class OXA_EXPORT TCodePage : public TData
{
public:
    TCodePage();
    void Write(TMyWriter &Writer) override;
};

// The sheet's extent. Always claims rows 0-1000 and columns 0-100, whatever
// the cells: readers take it as a hint only.
class OXA_EXPORT TDimension : public TData
{
public:
    TDimension();
    void Write(TMyWriter &Writer) override;

    quint16 MinSaveRecs = 0;
    quint16 MaxSaveRecs = 1000;
    quint16 MinSaveCols = 0;
    quint16 MaxSaveCols = 100;
};

// Cell attributes. The values are bit masks so that they combine in a
// TSetOfAtribut.
enum TAtributCell : quint16 {
    acHidden = 1 << 0,
    acLocked = 1 << 1,
    acShaded = 1 << 2,
    acBottomBorder = 1 << 3,
    acTopBorder = 1 << 4,
    acRightBorder = 1 << 5,
    acLeftBorder = 1 << 6,
    acLeft = 1 << 7,
    acCenter = 1 << 8,
    acRight = 1 << 9,
    acFill = 1 << 10,
};
Q_DECLARE_FLAGS(TSetOfAtribut, TAtributCell)
Q_DECLARE_OPERATORS_FOR_FLAGS(TSetOfAtribut)

// A cell record: zero-based row and column and three attribute bytes, then
// the value of the descendant.
class OXA_EXPORT TCell : public TData
{
    Q_GADGET
    Q_PROPERTY(oxa::TSetOfAtribut Atribut READ Atribut WRITE SetAtribut)

public:
    // The attribute set as last given to SetAtribut.
    TSetOfAtribut Atribut() const { return FAtributSet; }
    // Turns the set into the three attribute bytes.
    void SetAtribut(TSetOfAtribut Value);

    void Write(TMyWriter &Writer) override;

    std::array<quint8, 3> FAtribut{};
    quint16 Col = 0;
    quint16 Row = 0;

private:
    TSetOfAtribut FAtributSet;
};

// Makes a new cell of one cell class: the class reference AddCell takes.
using TCellClass = std::unique_ptr<TCell> (*)();

template<class T>
TCellClass CellClassOf()
{
    return []() -> std::unique_ptr<TCell> { return std::make_unique<T>(); };
}

// An empty cell. Written with no payload at all: no row, column or attributes.
class OXA_EXPORT TBlankCell : public TCell
{
public:
    TBlankCell();
    void Write(TMyWriter &Writer) override;
};

// A small integer, 0 to 65535.
class OXA_EXPORT TWordCell : public TCell
{
public:
    TWordCell();
    void Write(TMyWriter &Writer) override;

    quint16 Value = 0;
};

// A number.
class OXA_EXPORT TDoubleCell : public TCell
{
public:
    TDoubleCell();
    void Write(TMyWriter &Writer) override;

    double Value = 0.0;
};

// A text. Its length byte counts UTF-16 units modulo 256, so a text of 256
// units or more is read back shortened by spreadsheet programs.
class OXA_EXPORT TStrCell : public TCell
{
public:
    TStrCell();
    void Write(TMyWriter &Writer) override;
    void Read(TMyReader &Reader) override;

    QString Value;
};

// ---------------------------------------------------------------------------
// The component.
// ---------------------------------------------------------------------------

// Collects cells and writes them to a worksheet file. Columns and rows are
// counted from 1 by the callers; nothing is range-checked.
class OXA_EXPORT TXLSfile : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString FileName READ FileName WRITE SetFileName NOTIFY fileNameChanged)

public:
    explicit TXLSfile(QObject *owner = nullptr);
    ~TXLSfile() override;

    QString FileName() const;
    void SetFileName(const QString &value);

    // Removes every cell and starts again with the header, code page and
    // dimensions records.
    void clear();

    TWordCell *AddWordCell(quint16 vCol, quint16 vRow, TSetOfAtribut vAtribut, quint16 aValue);
    TDoubleCell *AddDoubleCell(quint16 vCol, quint16 vRow, TSetOfAtribut vAtribut, double aValue);
    TStrCell *AddStrCell(quint16 vCol, quint16 vRow, TSetOfAtribut vAtribut, const QString &aValue);
    // Adds a cell of CellClass at (vCol - 1, vRow - 1), computed in 16 bits.
    TCell *AddCell(quint16 vCol, quint16 vRow, TSetOfAtribut vAtribut, TCellClass CellClass);
    // Adds any record; the component owns it from now on.
    TData *AddData(std::unique_ptr<TData> Data);

    // Creates FileName anew and writes the records into it, byte for byte as
    // the dispatcher's Write would, but in large blocks on a thread of its
    // own. A file that
    // cannot be created throws EFCreateError, a failed write EWriteError; the
    // cells stay in either case.
    void write();

    bool ModeOpen() const;
    TDispatcher &Dispatcher() const;
    TBOF *BOF() const;
    TCodePage *CodePage() const;
    TDimension *Dimension() const;

Q_SIGNALS:
    void fileNameChanged();

private:
    template<class T>
    T *AddTypedCell(quint16 vCol, quint16 vRow, TSetOfAtribut vAtribut);

    std::unique_ptr<TXLSfilePrivate> const d;
};

// Offers TXLSfile on the "Oxa" page of the component catalogue.
OXA_EXPORT void RegisterXLSfile();

} // namespace oxa
