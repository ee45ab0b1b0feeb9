#include "oxa/richtext/RichBody.h"

#include "oxa/richtext/RichDocument.h"
#include "oxa/toolkit/Exceptions.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>
#include <QtEndian>
#include <vector>

namespace oxa::RichBody {

namespace {

const char Magic[4] = {'O', 'R', 'T', 'B'};
constexpr quint8 ParagraphEntry = 0;
constexpr quint8 TableEntry = 1;
constexpr int MaxTableDepth = 16;
constexpr int TablePropsCount = 11;

QString DamagedMessage()
{
    return QStringLiteral("Neplatný formát - poškozený obsah dokumentu");
}

} // namespace

struct Item
{
    int Style = 0;
    QString Text;
    QString Tag;
};

struct Table;

struct Entry
{
    int Para = 0; // paragraph entries
    std::vector<Item> Items;
    std::shared_ptr<Table> Tab; // table entries
};

struct Content
{
    std::vector<Entry> Entries;
};

struct Cell
{
    TColor Color = clNone;
    Content Body;
};

struct Table
{
    int Rows = 0;
    int Cols = 0;
    TRVTableProps Props;
    QString Name;
    std::vector<Cell> Cells;
};

namespace {

class Writer
{
public:
    Writer(const QList<int> &textMap, const QList<int> &paraMap)
        : m_textMap(textMap), m_paraMap(paraMap)
    { }

    QByteArray Bytes;

    void U8(quint8 v) { Bytes.append(char(v)); }
    void U16(quint16 v)
    {
        char b[2];
        qToLittleEndian(v, b);
        Bytes.append(b, 2);
    }
    void I32(qint32 v)
    {
        char b[4];
        qToLittleEndian(v, b);
        Bytes.append(b, 4);
    }
    void Str(const QString &s)
    {
        I32(qint32(s.size()));
        for (QChar c : s)
            U16(c.unicode());
    }
    int Text(int no) const
    {
        return no >= 0 && no < m_textMap.size() ? std::max(0, int(m_textMap[no])) : no;
    }
    int Para(int no) const
    {
        return no >= 0 && no < m_paraMap.size() ? std::max(0, int(m_paraMap[no])) : no;
    }

    void Frame(QTextFrame::iterator it)
    {
        const int countAt = int(Bytes.size());
        I32(0);
        qint32 count = 0;
        for (; !it.atEnd(); ++it, ++count) {
            if (QTextFrame *frame = it.currentFrame()) {
                if (auto *table = qobject_cast<QTextTable *>(frame))
                    TableEntryOf(table);
                else
                    --count; // frames other than tables do not occur in our documents
                continue;
            }
            Block(it.currentBlock());
        }
        qToLittleEndian(count, Bytes.data() + countAt);
    }

    void Block(const QTextBlock &block)
    {
        U8(ParagraphEntry);
        I32(Para(RichDocument::ParaStyleOf(block.blockFormat())));
        QList<Item> items;
        for (auto f = block.begin(); !f.atEnd(); ++f) {
            const QTextFragment fragment = f.fragment();
            if (fragment.isValid() && fragment.length() > 0)
                items.append({RichDocument::TextStyleOf(fragment.charFormat()), fragment.text(),
                              RichDocument::TagOf(fragment.charFormat())});
        }
        if (items.isEmpty())
            items.append({RichDocument::TextStyleOf(block.charFormat()), QString(), QString()});
        I32(qint32(items.size()));
        for (const Item &item : items) {
            I32(Text(item.Style));
            Str(item.Text);
            Str(item.Tag);
        }
    }

    void TableEntryOf(QTextTable *table)
    {
        U8(TableEntry);
        I32(table->rows());
        I32(table->columns());
        const TRVTableProps p = RichDocument::TableProps(table);
        for (int v : {p.BestWidth, p.BorderWidth, p.BorderVSpacing, p.BorderHSpacing,
                      p.CellBorderWidth, int(p.CellBorderColor), p.CellBorderStyle, p.CellHSpacing,
                      p.CellVSpacing, p.CellPadding, int(p.Color)})
            I32(v);
        Str(RichDocument::TableName(table));
        for (int r = 0; r < table->rows(); ++r)
            for (int c = 0; c < table->columns(); ++c) {
                const QTextTableCell cell = table->cellAt(r, c);
                I32(qint32(RichDocument::CellColor(table, r, c)));
                Frame(cell.begin());
            }
    }

private:
    const QList<int> &m_textMap;
    const QList<int> &m_paraMap;
};

class Reader
{
public:
    Reader(QByteArrayView bytes, int textCount, int paraCount)
        : m_bytes(bytes), m_textCount(textCount), m_paraCount(paraCount)
    { }

    [[noreturn]] static void Damaged() { throw Exception(DamagedMessage()); }

    void Need(qsizetype n) const
    {
        if (n < 0 || m_bytes.size() - m_pos < n)
            Damaged();
    }
    quint8 U8()
    {
        Need(1);
        return quint8(m_bytes[m_pos++]);
    }
    quint16 U16()
    {
        Need(2);
        const quint16 v = qFromLittleEndian<quint16>(m_bytes.data() + m_pos);
        m_pos += 2;
        return v;
    }
    qint32 I32()
    {
        Need(4);
        const qint32 v = qFromLittleEndian<qint32>(m_bytes.data() + m_pos);
        m_pos += 4;
        return v;
    }
    QString Str()
    {
        const qint32 size = I32();
        Need(qsizetype(size) * 2);
        QString s(size, Qt::Uninitialized);
        for (qint32 i = 0; i < size; ++i) {
            const char16_t c = U16();
            // Paragraph and frame marks are structure, never item text.
            if (c == u'\r' || c == u'\n' || c == 0x2029 || c == 0xFDD0 || c == 0xFDD1 ||
                c == 0xFDEF)
                Damaged();
            s[i] = QChar(c);
        }
        return s;
    }
    int Count(qsizetype minBytesEach)
    {
        const qint32 n = I32();
        if (n < 0)
            Damaged();
        Need(qsizetype(n) * minBytesEach);
        return n;
    }

    void Header()
    {
        Need(6);
        if (QByteArrayView(m_bytes.data(), 4) != QByteArrayView(Magic, 4))
            Damaged();
        m_pos = 4;
        if (U16() != Version)
            throw Exception(QStringLiteral("Neplatný formát - neznámá verze obsahu dokumentu"));
    }

    void Frame(Content &content, int depth)
    {
        const int count = Count(5);
        content.Entries.reserve(count);
        for (int i = 0; i < count; ++i) {
            Entry entry;
            const quint8 kind = U8();
            if (kind == ParagraphEntry)
                Paragraph(entry);
            else if (kind == TableEntry && depth < MaxTableDepth)
                entry.Tab = TableOf(depth + 1);
            else
                Damaged();
            content.Entries.push_back(std::move(entry));
        }
    }

    void Paragraph(Entry &entry)
    {
        entry.Para = I32();
        if (entry.Para < 0 || entry.Para >= m_paraCount)
            Damaged();
        const int count = Count(12);
        if (count == 0)
            Damaged();
        for (int i = 0; i < count; ++i) {
            Item item;
            item.Style = I32();
            if (item.Style < 0 || item.Style >= m_textCount)
                Damaged();
            item.Text = Str();
            item.Tag = Str();
            if (item.Text.isEmpty() && count > 1)
                Damaged();
            entry.Items.push_back(std::move(item));
        }
    }

    std::shared_ptr<Table> TableOf(int depth)
    {
        auto table = std::make_shared<Table>();
        table->Rows = I32();
        table->Cols = I32();
        if (table->Rows < 1 || table->Cols < 1)
            Damaged();
        qint32 v[TablePropsCount];
        for (qint32 &value : v)
            value = I32();
        TRVTableProps &p = table->Props;
        p = {v[0], v[1], v[2], v[3], v[4], TColor(v[5]), v[6], v[7], v[8], v[9], TColor(v[10])};
        table->Name = Str();
        // Each cell takes at least its colour and its entry count.
        const qint64 cells = qint64(table->Rows) * table->Cols;
        Need(qsizetype(std::min<qint64>(cells * 8, qint64(1) << 40)));
        table->Cells.resize(size_t(cells));
        for (Cell &cell : table->Cells) {
            cell.Color = TColor(I32());
            Frame(cell.Body, depth);
        }
        return table;
    }

    bool AtEnd() const { return m_pos == m_bytes.size(); }

private:
    QByteArrayView m_bytes;
    qsizetype m_pos = 0;
    int m_textCount;
    int m_paraCount;
};

class Builder
{
public:
    Builder(RichDocument &doc, const QList<int> &textMap, const QList<int> &paraMap)
        : m_doc(doc), m_textMap(textMap), m_paraMap(paraMap)
    { }

    static int Mapped(const QList<int> &map, int no)
    {
        return no >= 0 && no < map.size() ? map[no] : no;
    }

    // fresh: the cursor stands in an empty paragraph that the next paragraph may take.
    // inlineFirst: the first paragraph continues the cursor's paragraph.
    void Frame(QTextCursor &cursor, const Content &content, bool fresh, bool inlineFirst = false)
    {
        for (const Entry &entry : content.Entries) {
            if (entry.Tab) {
                TableOf(cursor, *entry.Tab);
                fresh = true;
                inlineFirst = false;
                continue;
            }
            const bool keepParagraph = inlineFirst && !fresh;
            inlineFirst = false;
            if (!fresh && !keepParagraph)
                cursor.insertBlock();
            fresh = false;
            if (!keepParagraph)
                cursor.setBlockFormat(m_doc.ParaFormat(Mapped(m_paraMap, entry.Para)));
            for (const Item &item : entry.Items) {
                const QTextCharFormat format =
                    m_doc.TextFormat(Mapped(m_textMap, item.Style), item.Tag);
                if (item.Text.isEmpty())
                    cursor.setBlockCharFormat(format);
                else
                    cursor.insertText(item.Text, format);
            }
        }
    }

    void TableOf(QTextCursor &cursor, const Table &table)
    {
        QTextTable *t = m_doc.InsertTable(cursor, table.Rows, table.Cols, table.Props, table.Name);
        for (int r = 0; r < table.Rows; ++r)
            for (int c = 0; c < table.Cols; ++c) {
                const Cell &cell = table.Cells[size_t(r * table.Cols + c)];
                if (cell.Color != clNone)
                    m_doc.SetCellColor(t, r, c, cell.Color);
                QTextCursor cc = t->cellAt(r, c).firstCursorPosition();
                Frame(cc, cell.Body, true);
            }
        cursor = t->lastCursorPosition();
        cursor.movePosition(QTextCursor::NextBlock);
    }

private:
    RichDocument &m_doc;
    const QList<int> &m_textMap;
    const QList<int> &m_paraMap;
};

// Maps foreign formatting onto the style sheet.
class ForeignReader
{
public:
    explicit ForeignReader(RichDocument &doc) : m_doc(doc) { }

    void Frame(QTextFrame::iterator it, Content &content, int depth)
    {
        for (; !it.atEnd(); ++it) {
            if (QTextFrame *frame = it.currentFrame()) {
                auto *table = qobject_cast<QTextTable *>(frame);
                if (table && depth < MaxTableDepth) {
                    Entry entry;
                    entry.Tab = TableOf(table, depth + 1);
                    content.Entries.push_back(std::move(entry));
                } else {
                    Frame(frame->begin(), content, depth); // other frames: their text only
                }
                continue;
            }
            content.Entries.push_back(Paragraph(it.currentBlock()));
        }
    }

private:
    Entry Paragraph(const QTextBlock &block)
    {
        Entry entry;
        TParaInfo para = m_doc.Style().ParaStyle(0);
        const Qt::Alignment a = block.blockFormat().alignment();
        para.Alignment = a & Qt::AlignRight ? rvaRight
            : a & Qt::AlignHCenter          ? rvaCenter
            : a & Qt::AlignJustify          ? rvaJustify
                                            : rvaLeft;
        entry.Para = FindOrAddPara(para);
        for (auto f = block.begin(); !f.atEnd(); ++f) {
            const QTextFragment fragment = f.fragment();
            if (!fragment.isValid() || fragment.length() == 0)
                continue;
            QString text = fragment.text();
            text.remove(QChar::ObjectReplacementCharacter);
            if (!text.isEmpty())
                entry.Items.push_back({TextStyle(fragment.charFormat()), text, QString()});
        }
        if (entry.Items.empty())
            entry.Items.push_back({TextStyle(block.charFormat()), QString(), QString()});
        return entry;
    }

    int TextStyle(const QTextCharFormat &f)
    {
        TFontInfo info = m_doc.Style().TextStyle(0);
        const QStringList families = f.fontFamilies().toStringList();
        if (!families.isEmpty() && !families.first().isEmpty())
            info.FontName = families.first();
        if (f.fontPointSize() > 0)
            info.Size = qRound(f.fontPointSize());
        info.Style = {};
        info.Style.setFlag(fsBold, f.fontWeight() >= QFont::DemiBold);
        info.Style.setFlag(fsItalic, f.fontItalic());
        info.Style.setFlag(fsUnderline, f.fontUnderline());
        info.Style.setFlag(fsStrikeOut, f.fontStrikeOut());
        if (f.foreground().style() != Qt::NoBrush)
            info.Color = QColorToColor(f.foreground().color());
        if (f.background().style() != Qt::NoBrush)
            info.BackColor = QColorToColor(f.background().color());
        info.Jump = false;
        return FindOrAddText(info);
    }

    int FindOrAddText(const TFontInfo &info) { return m_doc.FindOrAddTextStyle(info); }
    int FindOrAddPara(const TParaInfo &info) { return m_doc.FindOrAddParaStyle(info); }

    std::shared_ptr<Table> TableOf(QTextTable *table, int depth)
    {
        auto t = std::make_shared<Table>();
        t->Rows = table->rows();
        t->Cols = table->columns();
        const QTextTableFormat f = table->format();
        t->Props.CellBorderWidth = qRound(f.border());
        if (f.borderBrush().style() != Qt::NoBrush)
            t->Props.CellBorderColor = QColorToColor(f.borderBrush().color());
        t->Props.CellPadding = qRound(f.cellPadding());
        t->Props.CellHSpacing = t->Props.CellVSpacing = qRound(f.cellSpacing());
        if (f.width().type() == QTextLength::FixedLength)
            t->Props.BestWidth = qRound(f.width().rawValue());
        t->Cells.resize(size_t(t->Rows) * size_t(t->Cols));
        for (int r = 0; r < t->Rows; ++r)
            for (int c = 0; c < t->Cols; ++c) {
                Cell &cell = t->Cells[size_t(r * t->Cols + c)];
                const QTextTableCell source = table->cellAt(r, c);
                // A cell spanned over by another one keeps an empty paragraph.
                if (source.row() == r && source.column() == c) {
                    if (source.format().background().style() != Qt::NoBrush)
                        cell.Color = QColorToColor(source.format().background().color());
                    Frame(source.begin(), cell.Body, depth);
                }
                if (cell.Body.Entries.empty())
                    cell.Body.Entries.push_back({0, {{0, QString(), QString()}}, nullptr});
            }
        return t;
    }

    RichDocument &m_doc;
};

} // namespace

QByteArray Save(const RichDocument &doc, const QList<int> &textMap, const QList<int> &paraMap)
{
    Writer writer(textMap, paraMap);
    writer.Bytes.append(Magic, 4);
    writer.U16(Version);
    writer.Frame(doc.Document()->rootFrame()->begin());
    return writer.Bytes;
}

ContentPtr Parse(QByteArrayView bytes, int textStyleCount, int paraStyleCount)
{
    Reader reader(bytes, textStyleCount, paraStyleCount);
    reader.Header();
    auto content = std::make_shared<Content>();
    reader.Frame(*content, 0);
    if (!reader.AtEnd())
        Reader::Damaged();
    return content;
}

void Insert(RichDocument &doc, QTextCursor &cursor, const Content &content,
            const QList<int> &textMap, const QList<int> &paraMap, bool inlineFirst)
{
    if (cursor.hasSelection())
        cursor.removeSelectedText();
    const bool fresh = cursor.block().length() <= 1;
    Builder(doc, textMap, paraMap).Frame(cursor, content, fresh, inlineFirst);
    doc.Invalidate();
}

ContentPtr FromForeign(const QTextDocument &foreign, RichDocument &doc)
{
    auto content = std::make_shared<Content>();
    ForeignReader(doc).Frame(foreign.rootFrame()->begin(), *content, 0);
    return content;
}

} // namespace oxa::RichBody
