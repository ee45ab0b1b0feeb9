#include "oxa/richtext/RichDocument.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>
#include <algorithm>

namespace oxa {

namespace {

// Where the document keeps our numbers.
constexpr int TextStyleProperty = QTextFormat::UserProperty + 1;
constexpr int ItemTagProperty = QTextFormat::UserProperty + 2;
constexpr int ParaStyleProperty = QTextFormat::UserProperty + 3;
// Table properties that Qt's table format has no place for.
constexpr int TablePropsProperty = QTextFormat::UserProperty + 10;
constexpr int CellColorProperty = QTextFormat::UserProperty + 11;
constexpr int TableNameProperty = QTextFormat::UserProperty + 12;

// One top-level item: a run of one format in one block, an empty block, or a table.
struct Item
{
    int Start = 0;
    int Length = 0;
    int Style = 0;
    int Para = 0;
    bool ParaStart = false;
    QTextTable *Table = nullptr;
};

struct UndoStep
{
    int Type = utNone;
    QString Name;
    int Count = 0;
};

Qt::Alignment QtAlignment(TRVAlignment alignment)
{
    switch (alignment) {
    case rvaRight:
        return Qt::AlignRight;
    case rvaCenter:
        return Qt::AlignHCenter;
    case rvaJustify:
        return Qt::AlignJustify;
    default:
        return Qt::AlignLeft;
    }
}

QList<int> PropsToList(const TRVTableProps &p)
{
    return {p.BestWidth,       p.BorderWidth,          p.BorderVSpacing,  p.BorderHSpacing,
            p.CellBorderWidth, int(p.CellBorderColor), p.CellBorderStyle, p.CellHSpacing,
            p.CellVSpacing,    p.CellPadding,          int(p.Color)};
}

QTextFrameFormat::BorderStyle QtBorderStyle(int style)
{
    switch (style) {
    case 0:
        return QTextFrameFormat::BorderStyle_None;
    case 1:
        return QTextFrameFormat::BorderStyle_Dotted;
    case 3:
        return QTextFrameFormat::BorderStyle_Double;
    default:
        return QTextFrameFormat::BorderStyle_Solid;
    }
}

} // namespace

class RichDocument::Private
{
public:
    explicit Private(RichDocument *q) : q(q), doc(new QTextDocument(q)) { }

    RichDocument *q;
    QTextDocument *doc;
    TRVStyle style;
    mutable QList<Item> items;
    mutable QString rawText; // the document's characters when the items were listed
    mutable QList<QTextCharFormat> formatCache; // by text style number
    mutable bool dirty = true;

    QList<UndoStep> undo;
    QList<UndoStep> redo;
    int nextType = utEditing;
    QString nextName;
    bool groupMode = false;
    bool groupOpen = false;
    bool replaying = false;
    bool typingRun = false; // the last step is typing that the next typed key continues

    const QList<Item> &Items() const
    {
        if (dirty)
            Rebuild();
        return items;
    }

    void Rebuild() const
    {
        items.clear();
        rawText = doc->toRawText();
        for (auto it = doc->rootFrame()->begin(); !it.atEnd(); ++it) {
            if (QTextFrame *frame = it.currentFrame()) {
                if (auto *table = qobject_cast<QTextTable *>(frame)) {
                    Item item;
                    item.Start = frame->firstPosition() - 1;
                    item.Length = frame->lastPosition() + 1 - item.Start;
                    item.Style = rvsTableItem;
                    item.ParaStart = true;
                    item.Table = table;
                    items.append(item);
                }
                continue;
            }
            AddBlockItems(it.currentBlock());
        }
        dirty = false;
    }

    void AddBlockItems(const QTextBlock &block) const
    {
        const int para = ParaStyleOf(block.blockFormat());
        bool first = true;
        for (auto f = block.begin(); !f.atEnd(); ++f) {
            const QTextFragment fragment = f.fragment();
            if (!fragment.isValid() || fragment.length() == 0)
                continue;
            Item item;
            item.Start = fragment.position();
            item.Length = fragment.length();
            item.Style = TextStyleOf(fragment.charFormat());
            item.Para = para;
            item.ParaStart = first;
            first = false;
            items.append(item);
        }
        if (first) {
            Item item;
            item.Start = block.position();
            item.Style = TextStyleOf(block.charFormat());
            item.Para = para;
            item.ParaStart = true;
            items.append(item);
        }
    }

    const Item *At(int itemNo) const
    {
        const QList<Item> &all = Items();
        return itemNo >= 0 && itemNo < all.size() ? &all[itemNo] : nullptr;
    }

    void OnUndoCommandAdded()
    {
        if (replaying)
            return;
        redo.clear();
        const bool continuesTyping = !groupMode && nextType == utTyping && typingRun &&
            !undo.isEmpty() && undo.last().Type == utTyping;
        typingRun = !groupMode && nextType == utTyping;
        if ((groupMode && groupOpen && !undo.isEmpty()) || continuesTyping) {
            ++undo.last().Count;
        } else {
            undo.append({nextType, nextName, 1});
            groupOpen = groupMode;
            if (!groupMode && nextType == utCustom) {
                nextType = utEditing;
                nextName.clear();
            }
        }
        Q_EMIT q->UndoChanged();
    }

    // Applies a char format to runs, collected first since applying changes fragments.
    struct Run
    {
        int Start;
        int End;
        QTextCharFormat Format;
    };
    QList<Run> RunsIn(int start, int end) const
    {
        QList<Run> runs;
        for (QTextBlock b = doc->findBlock(start); b.isValid() && b.position() <= end;
             b = b.next()) {
            for (auto f = b.begin(); !f.atEnd(); ++f) {
                const QTextFragment fragment = f.fragment();
                const int s = std::max(start, fragment.position());
                const int e = std::min(end, fragment.position() + fragment.length());
                if (s < e)
                    runs.append({s, e, fragment.charFormat()});
            }
        }
        return runs;
    }
};

RichDocument::RichDocument(QObject *parent) : QObject(parent), d(std::make_unique<Private>(this))
{
    d->doc->setUndoRedoEnabled(true);
    d->doc->setDocumentMargin(4);
    connect(d->doc, &QTextDocument::contentsChange, this, [this] { d->dirty = true; });
    connect(d->doc, &QTextDocument::undoCommandAdded, this, [this] { d->OnUndoCommandAdded(); });
    SetStyle(d->style);
}

RichDocument::~RichDocument() = default;

QTextDocument *RichDocument::Document() const
{
    return d->doc;
}

const TRVStyle &RichDocument::Style() const
{
    return d->style;
}

void RichDocument::SetStyle(const TRVStyle &style)
{
    d->style = style;
    d->formatCache.clear();
    const TFontInfo &normal = d->style.TextStyle(0);
    QFont font(normal.FontName);
    font.setPointSize(normal.Size);
    d->doc->setDefaultFont(font);
    // Re-derive every format from its number so the document looks as the sheet says.
    const bool undoWas = d->doc->isUndoRedoEnabled();
    d->doc->setUndoRedoEnabled(false);
    QTextCursor c(d->doc);
    for (QTextBlock b = d->doc->begin(); b.isValid(); b = b.next()) {
        QTextCursor bc(b);
        const int para = ParaStyleOf(b.blockFormat());
        QTextBlockFormat bf = ParaFormat(d->style.IsValidParaStyle(para) ? para : 0);
        bc.mergeBlockFormat(bf);
        bc.setBlockCharFormat(TextFormat(TextStyleOf(b.charFormat())));
        const auto runs = d->RunsIn(b.position(), b.position() + b.length() - 1);
        for (const auto &run : runs) {
            QTextCursor rc(d->doc);
            rc.setPosition(run.Start);
            rc.setPosition(run.End, QTextCursor::KeepAnchor);
            rc.setCharFormat(TextFormat(TextStyleOf(run.Format), TagOf(run.Format)));
        }
    }
    d->doc->setUndoRedoEnabled(undoWas);
    ClearUndo();
    d->dirty = true;
}

int RichDocument::FindOrAddTextStyle(const TFontInfo &info)
{
    return d->style.FindOrAddTextStyle(info);
}
int RichDocument::FindOrAddParaStyle(const TParaInfo &info)
{
    return d->style.FindOrAddParaStyle(info);
}

int RichDocument::ItemCount() const
{
    return int(d->Items().size());
}

int RichDocument::GetItemStyle(int itemNo) const
{
    const Item *item = d->At(itemNo);
    return item ? item->Style : 0;
}

int RichDocument::GetItemPara(int itemNo) const
{
    const Item *item = d->At(itemNo);
    return item ? item->Para : 0;
}

QString RichDocument::GetItemText(int itemNo) const
{
    const Item *item = d->At(itemNo);
    if (!item || item->Table || item->Length == 0)
        return QString();
    // The document's text is taken once per edit; an item is a piece of it.
    return d->rawText.mid(item->Start, item->Length);
}

QString RichDocument::GetItemTag(int itemNo) const
{
    const Item *item = d->At(itemNo);
    if (!item || item->Table)
        return QString();
    if (item->Length == 0)
        return TagOf(d->doc->findBlock(item->Start).charFormat());
    QTextCursor c(d->doc);
    c.setPosition(item->Start + 1);
    return TagOf(c.charFormat());
}

void RichDocument::SetItemTag(int itemNo, const QString &tag)
{
    const Item *item = d->At(itemNo);
    if (!item || item->Table || item->Length == 0)
        return;
    UndoScope scope(this, utTag);
    QTextCursor c(d->doc);
    c.setPosition(item->Start);
    c.setPosition(item->Start + item->Length, QTextCursor::KeepAnchor);
    QTextCharFormat f;
    f.setProperty(ItemTagProperty, tag);
    c.mergeCharFormat(f);
    d->dirty = true;
}

bool RichDocument::IsParaStart(int itemNo) const
{
    const Item *item = d->At(itemNo);
    return item && item->ParaStart;
}

QTextTable *RichDocument::GetItemTable(int itemNo) const
{
    const Item *item = d->At(itemNo);
    return item ? item->Table : nullptr;
}

TCursorPos RichDocument::PositionToItem(int position) const
{
    const QList<Item> &all = d->Items();
    if (all.isEmpty())
        return {};
    auto it = std::upper_bound(all.begin(), all.end(), position,
                               [](int pos, const Item &item) { return pos < item.Start; });
    int no = int(it - all.begin()) - 1;
    if (no < 0)
        return {0, all[0].Table ? 0 : 1};
    const Item &item = all[no];
    if (item.Table)
        return {no, position > item.Start + item.Length ? 1 : 0};
    // Between two runs of one paragraph the caret belongs to the left one.
    if (position == item.Start && !item.ParaStart && no > 0 && !all[no - 1].Table)
        return {no - 1, all[no - 1].Length + 1};
    return {no, std::min(position - item.Start, item.Length) + 1};
}

int RichDocument::ItemToPosition(const TCursorPos &pos) const
{
    const QList<Item> &all = d->Items();
    if (all.isEmpty())
        return 0;
    const Item &item = all[std::clamp(pos.Item, 0, int(all.size()) - 1)];
    if (item.Table)
        return pos.Offset > 0 ? item.Start + item.Length + 1 : std::max(0, item.Start - 1);
    return item.Start + std::clamp(pos.Offset - 1, 0, item.Length);
}

QTextCharFormat RichDocument::TextFormat(int styleNo, const QString &tag) const
{
    // Formats are made once per style: typing and loading ask for them all the time.
    if (!d->style.IsValidTextStyle(styleNo))
        styleNo = 0;
    if (d->formatCache.size() != d->style.TextStyles.size())
        d->formatCache.resize(d->style.TextStyles.size());
    QTextCharFormat &cached = d->formatCache[styleNo];
    if (!cached.hasProperty(TextStyleProperty))
        cached = MakeTextFormat(styleNo);
    if (tag.isEmpty())
        return cached;
    QTextCharFormat f = cached;
    f.setProperty(ItemTagProperty, tag);
    return f;
}

QTextCharFormat RichDocument::MakeTextFormat(int styleNo) const
{
    const TFontInfo &info = d->style.TextStyle(styleNo);
    QTextCharFormat f;
    f.setFontFamilies(QStringList{info.FontName});
    f.setFontPointSize(info.Size);
    f.setFontWeight(info.Style & fsBold ? QFont::Bold : QFont::Normal);
    f.setFontItalic(info.Style & fsItalic);
    f.setFontUnderline(info.Style & fsUnderline);
    f.setFontStrikeOut(info.Style & fsStrikeOut);
    f.setForeground(ColorToQColor(info.Color));
    if (info.BackColor != clNone)
        f.setBackground(ColorToQColor(info.BackColor));
    f.setAnchor(info.Jump);
    f.setProperty(TextStyleProperty, styleNo);
    return f;
}

QTextBlockFormat RichDocument::ParaFormat(int paraNo) const
{
    const TParaInfo &info = d->style.ParaStyle(paraNo);
    QTextBlockFormat f;
    f.setAlignment(QtAlignment(info.Alignment));
    f.setTextIndent(info.FirstIndent);
    f.setLeftMargin(info.LeftIndent);
    f.setTopMargin(info.SpaceBefore);
    f.setBottomMargin(info.SpaceAfter);
    f.setLineHeight(info.LineSpacing, QTextBlockFormat::ProportionalHeight);
    f.setProperty(ParaStyleProperty, d->style.IsValidParaStyle(paraNo) ? paraNo : 0);
    return f;
}

int RichDocument::TextStyleOf(const QTextCharFormat &format)
{
    return format.hasProperty(TextStyleProperty) ? format.intProperty(TextStyleProperty) : 0;
}

int RichDocument::ParaStyleOf(const QTextBlockFormat &format)
{
    return format.hasProperty(ParaStyleProperty) ? format.intProperty(ParaStyleProperty) : 0;
}

QString RichDocument::TagOf(const QTextCharFormat &format)
{
    return format.stringProperty(ItemTagProperty);
}

int RichDocument::CurTextStyleNo(const QTextCursor &cursor) const
{
    const int no = TextStyleOf(cursor.charFormat());
    return d->style.IsValidTextStyle(no) ? no : 0;
}

int RichDocument::CurParaStyleNo(const QTextCursor &cursor) const
{
    const int no = ParaStyleOf(cursor.blockFormat());
    return d->style.IsValidParaStyle(no) ? no : 0;
}

void RichDocument::ConvertTextStyle(QTextCursor &cursor,
                                    const std::function<void(TFontInfo &)> &change)
{
    auto converted = [&](int styleNo) {
        TFontInfo info = d->style.TextStyle(styleNo);
        change(info);
        return d->style.FindOrAddTextStyle(info);
    };
    if (!cursor.hasSelection()) {
        const QTextCharFormat current = cursor.charFormat();
        SetInsertionFormat(cursor, TextFormat(converted(CurTextStyleNo(cursor)), TagOf(current)));
        return;
    }
    UndoScope scope(this, utFormatting);
    const auto runs = d->RunsIn(cursor.selectionStart(), cursor.selectionEnd());
    QTextCursor c(d->doc);
    c.beginEditBlock();
    for (const auto &run : runs) {
        c.setPosition(run.Start);
        c.setPosition(run.End, QTextCursor::KeepAnchor);
        c.setCharFormat(TextFormat(converted(TextStyleOf(run.Format)), TagOf(run.Format)));
    }
    c.endEditBlock();
    d->dirty = true;
}

void RichDocument::SetInsertionFormat(QTextCursor &cursor, const QTextCharFormat &format)
{
    // An empty paragraph is an item of its own: it takes the style too.
    if (cursor.block().length() == 1 && cursor.block().charFormat() != format) {
        UndoScope scope(this, utFormatting);
        cursor.setBlockCharFormat(format);
        d->dirty = true;
    }
    cursor.setCharFormat(format);
}

void RichDocument::ApplyTextStyle(QTextCursor &cursor, int styleNo)
{
    if (!cursor.hasSelection()) {
        SetInsertionFormat(cursor, TextFormat(styleNo));
        return;
    }
    UndoScope scope(this, utFormatting);
    cursor.setCharFormat(TextFormat(styleNo));
    d->dirty = true;
}

void RichDocument::ApplyParaStyle(QTextCursor &cursor, int paraNo)
{
    UndoScope scope(this, utParagraph);
    QTextCursor c(d->doc);
    c.beginEditBlock();
    const QTextBlock last = d->doc->findBlock(cursor.selectionEnd());
    for (QTextBlock b = d->doc->findBlock(cursor.selectionStart()); b.isValid(); b = b.next()) {
        c.setPosition(b.position());
        c.setBlockFormat(ParaFormat(paraNo));
        if (b == last)
            break;
    }
    c.endEditBlock();
    d->dirty = true;
}

void RichDocument::ConvertParaStyle(QTextCursor &cursor,
                                    const std::function<void(TParaInfo &)> &change)
{
    UndoScope scope(this, utParagraph);
    QTextCursor c(d->doc);
    c.beginEditBlock();
    const QTextBlock last = d->doc->findBlock(cursor.selectionEnd());
    for (QTextBlock b = d->doc->findBlock(cursor.selectionStart()); b.isValid(); b = b.next()) {
        TParaInfo info = d->style.ParaStyle(ParaStyleOf(b.blockFormat()));
        change(info);
        c.setPosition(b.position());
        c.setBlockFormat(ParaFormat(d->style.FindOrAddParaStyle(info)));
        if (b == last)
            break;
    }
    c.endEditBlock();
    d->dirty = true;
}

QList<int> RichDocument::UsedTextStyleMap() const
{
    QList<bool> used(d->style.TextStyles.size(), false);
    for (QTextBlock b = d->doc->begin(); b.isValid(); b = b.next()) {
        bool any = false;
        for (auto f = b.begin(); !f.atEnd(); ++f) {
            const int no = TextStyleOf(f.fragment().charFormat());
            if (no >= 0 && no < used.size())
                used[no] = any = true;
        }
        const int no = TextStyleOf(b.charFormat());
        if (!any && no >= 0 && no < used.size())
            used[no] = true;
    }
    QList<int> map;
    int next = 0;
    for (int i = 0; i < used.size(); ++i)
        map.append(used[i] || d->style.TextStyles[i].Standard ? next++ : -1);
    return map;
}

QList<int> RichDocument::UsedParaStyleMap() const
{
    QList<bool> used(d->style.ParaStyles.size(), false);
    for (QTextBlock b = d->doc->begin(); b.isValid(); b = b.next()) {
        const int no = ParaStyleOf(b.blockFormat());
        if (no >= 0 && no < used.size())
            used[no] = true;
    }
    QList<int> map;
    int next = 0;
    for (int i = 0; i < used.size(); ++i)
        map.append(used[i] || d->style.ParaStyles[i].Standard ? next++ : -1);
    return map;
}

void RichDocument::DeleteUnusedStyles(bool textStyles, bool paraStyles)
{
    const QList<int> textMap = textStyles ? UsedTextStyleMap() : QList<int>();
    const QList<int> paraMap = paraStyles ? UsedParaStyleMap() : QList<int>();
    auto renumber = [](const QList<int> &map, int no) {
        return no >= 0 && no < map.size() && map[no] >= 0 ? map[no] : 0;
    };
    TRVStyle style = d->style;
    if (textStyles) {
        style.TextStyles.clear();
        for (int i = 0; i < textMap.size(); ++i)
            if (textMap[i] >= 0)
                style.TextStyles.append(d->style.TextStyles[i]);
    }
    if (paraStyles) {
        style.ParaStyles.clear();
        for (int i = 0; i < paraMap.size(); ++i)
            if (paraMap[i] >= 0)
                style.ParaStyles.append(d->style.ParaStyles[i]);
    }
    // Renumber the document's properties first; SetStyle then re-derives the looks.
    d->doc->setUndoRedoEnabled(false);
    for (QTextBlock b = d->doc->begin(); b.isValid(); b = b.next()) {
        QTextCursor bc(b);
        if (paraStyles) {
            QTextBlockFormat bf;
            bf.setProperty(ParaStyleProperty, renumber(paraMap, ParaStyleOf(b.blockFormat())));
            bc.mergeBlockFormat(bf);
        }
        if (!textStyles)
            continue;
        QTextCharFormat bcf = b.charFormat();
        bcf.setProperty(TextStyleProperty, renumber(textMap, TextStyleOf(bcf)));
        bc.setBlockCharFormat(bcf);
        const auto runs = d->RunsIn(b.position(), b.position() + b.length() - 1);
        for (const auto &run : runs) {
            QTextCursor rc(d->doc);
            rc.setPosition(run.Start);
            rc.setPosition(run.End, QTextCursor::KeepAnchor);
            QTextCharFormat f;
            f.setProperty(TextStyleProperty, renumber(textMap, TextStyleOf(run.Format)));
            rc.mergeCharFormat(f);
        }
    }
    d->doc->setUndoRedoEnabled(true);
    SetStyle(style);
}

void RichDocument::InsertText(QTextCursor &cursor, const QString &text, int styleNo)
{
    if (text.isEmpty())
        return;
    UndoScope scope(this, utInserting);
    const QTextCharFormat format = TextFormat(styleNo);
    cursor.beginEditBlock();
    QString normalized = text;
    normalized.replace(QLatin1String("\r\n"), QLatin1String("\n"))
        .replace(QLatin1Char('\r'), QLatin1Char('\n'));
    const QStringList lines = normalized.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        if (i > 0)
            cursor.insertBlock(cursor.blockFormat(), format);
        if (!lines[i].isEmpty())
            cursor.insertText(lines[i], format);
    }
    cursor.endEditBlock();
    cursor.setCharFormat(format);
    d->dirty = true;
}

void RichDocument::InsertText(QTextCursor &cursor, const QString &text)
{
    InsertText(cursor, text, CurTextStyleNo(cursor));
}

void RichDocument::Clear()
{
    d->doc->setUndoRedoEnabled(false);
    d->doc->clear();
    QTextCursor c(d->doc);
    c.setBlockFormat(ParaFormat(0));
    c.setBlockCharFormat(TextFormat(0));
    d->doc->setUndoRedoEnabled(true);
    ClearUndo();
    d->dirty = true;
}

bool RichDocument::IsEmpty() const
{
    return d->doc->characterCount() <= 1 && d->doc->rootFrame()->childFrames().isEmpty();
}

QTextTable *RichDocument::InsertTable(QTextCursor &cursor, int rows, int cols,
                                      const TRVTableProps &props, const QString &name)
{
    if (rows < 1 || cols < 1)
        return nullptr;
    UndoScope scope(this, utInserting);
    cursor.beginEditBlock();
    QTextTable *table = cursor.insertTable(rows, cols);
    SetTableProps(table, props);
    if (!name.isEmpty())
        SetTableName(table, name);
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < cols; ++c) {
            QTextCursor cc = table->cellAt(r, c).firstCursorPosition();
            cc.setBlockFormat(ParaFormat(0));
            cc.setBlockCharFormat(TextFormat(0));
        }
    cursor.endEditBlock();
    cursor.setCharFormat(TextFormat(0));
    d->dirty = true;
    return table;
}

TRVTableProps RichDocument::TableProps(const QTextTable *table)
{
    TRVTableProps p;
    const QList<QVariant> values = table->format().property(TablePropsProperty).toList();
    if (values.size() != 11)
        return p;
    int i = 0;
    for (int *field :
         {&p.BestWidth, &p.BorderWidth, &p.BorderVSpacing, &p.BorderHSpacing, &p.CellBorderWidth})
        *field = values[i++].toInt();
    p.CellBorderColor = TColor(values[i++].toInt());
    for (int *field : {&p.CellBorderStyle, &p.CellHSpacing, &p.CellVSpacing, &p.CellPadding})
        *field = values[i++].toInt();
    p.Color = TColor(values[i++].toInt());
    return p;
}

void RichDocument::SetTableProps(QTextTable *table, const TRVTableProps &props)
{
    QTextTableFormat f = table->format();
    f.setBorder(props.CellBorderWidth);
    f.setBorderBrush(ColorToQColor(props.CellBorderColor));
    f.setBorderStyle(QtBorderStyle(props.CellBorderStyle));
    f.setCellSpacing(props.CellHSpacing);
    f.setBorderCollapse(props.CellHSpacing == 0);
    f.setCellPadding(props.CellPadding);
    f.setMargin(props.BorderWidth);
    if (props.BestWidth > 0)
        f.setWidth(QTextLength(QTextLength::FixedLength, props.BestWidth));
    else
        f.clearProperty(QTextFormat::FrameWidth);
    if (props.Color != clNone)
        f.setBackground(ColorToQColor(props.Color));
    else
        f.clearBackground();
    QList<QVariant> values;
    for (int v : PropsToList(props))
        values.append(v);
    f.setProperty(TablePropsProperty, values);
    UndoScope scope(this, utModifying);
    table->setFormat(f);
    d->dirty = true;
}

void RichDocument::SetCellColor(QTextTable *table, int row, int col, TColor color)
{
    QTextTableCell cell = table->cellAt(row, col);
    if (!cell.isValid())
        return;
    QTextTableCellFormat f = cell.format().toTableCellFormat();
    f.setProperty(CellColorProperty, int(color));
    if (color == clNone)
        f.clearBackground();
    else
        f.setBackground(ColorToQColor(color));
    UndoScope scope(this, utModifying);
    cell.setFormat(f);
}

TColor RichDocument::CellColor(const QTextTable *table, int row, int col)
{
    const QTextTableCell cell = table->cellAt(row, col);
    if (!cell.isValid() || !cell.format().hasProperty(CellColorProperty))
        return clNone;
    return TColor(cell.format().intProperty(CellColorProperty));
}

QString RichDocument::TableName(const QTextTable *table)
{
    return table->format().stringProperty(TableNameProperty);
}

void RichDocument::SetTableName(QTextTable *table, const QString &name)
{
    QTextTableFormat f = table->format();
    f.setProperty(TableNameProperty, name);
    UndoScope scope(this, utModifying);
    table->setFormat(f);
}

void RichDocument::BeginUndoGroup(int undoType)
{
    d->nextType = undoType;
    d->nextName.clear();
    d->groupOpen = false;
}

void RichDocument::SetUndoGroupMode(bool on)
{
    d->groupMode = on;
    d->groupOpen = false;
    if (!on) {
        d->nextType = utEditing;
        d->nextName.clear();
    }
}

void RichDocument::BeginUndoCustom(const QString &name)
{
    d->nextType = utCustom;
    d->nextName = name;
    d->groupOpen = false;
}

int RichDocument::UndoAction() const
{
    return d->undo.isEmpty() ? utNone : d->undo.last().Type;
}
int RichDocument::RedoAction() const
{
    return d->redo.isEmpty() ? utNone : d->redo.last().Type;
}
QString RichDocument::UndoName() const
{
    return d->undo.isEmpty() ? QString() : d->undo.last().Name;
}
QString RichDocument::RedoName() const
{
    return d->redo.isEmpty() ? QString() : d->redo.last().Name;
}

void RichDocument::Undo(QTextCursor *cursor)
{
    if (d->undo.isEmpty())
        return;
    const UndoStep step = d->undo.takeLast();
    d->replaying = true;
    for (int i = 0; i < step.Count; ++i)
        cursor ? d->doc->undo(cursor) : d->doc->undo();
    d->replaying = false;
    d->typingRun = false;
    d->redo.append(step);
    d->dirty = true;
    Q_EMIT UndoChanged();
}

void RichDocument::Redo(QTextCursor *cursor)
{
    if (d->redo.isEmpty())
        return;
    const UndoStep step = d->redo.takeLast();
    d->replaying = true;
    for (int i = 0; i < step.Count; ++i)
        cursor ? d->doc->redo(cursor) : d->doc->redo();
    d->replaying = false;
    d->undo.append(step);
    d->dirty = true;
    Q_EMIT UndoChanged();
}

void RichDocument::ClearUndo()
{
    d->undo.clear();
    d->redo.clear();
    if (d->doc->isUndoRedoEnabled()) {
        d->doc->setUndoRedoEnabled(false);
        d->doc->setUndoRedoEnabled(true);
    }
    Q_EMIT UndoChanged();
}

RichDocument::UndoScope::UndoScope(RichDocument *doc, int undoType)
    : m_doc(doc), m_previous(doc->d->nextType)
{
    // A group or a custom action names the step itself.
    m_changed = !doc->d->groupMode && doc->d->nextType != utCustom;
    if (m_changed)
        doc->d->nextType = undoType;
}

RichDocument::UndoScope::~UndoScope()
{
    if (m_changed && !m_doc->d->groupMode && m_doc->d->nextType != utCustom)
        m_doc->d->nextType = m_previous;
}

void RichDocument::Invalidate()
{
    d->dirty = true;
}

void RichDocument::BreakTypingRun()
{
    d->typingRun = false;
}

} // namespace oxa
