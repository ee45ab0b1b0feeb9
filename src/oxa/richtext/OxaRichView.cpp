#include "oxa/richtext/OxaRichView.h"

#include "oxa/richtext/Oxarichview_ftfunc.h"
#include "oxa/richtext/RichBody.h"
#include "oxa/richtext/RichClipboard.h"
#include "oxa/richtext/SpellHighlighter_p.h"
#include "oxa/richtext/StrToIntDef_p.h"
#include "oxa/richtext/StyleHeader.h"
#include "oxa/toolkit/Catalogue.h"
#include "oxa/toolkit/CodePage1250.h"
#include "oxa/toolkit/Exceptions.h"
#include "oxa/toolkit/MessageService.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextTable>

namespace oxa {

namespace {

// The working RVF option set of the engine; saved and restored around every
// save and load, as the stream format asks (the body itself carries no styles).
constexpr quint32 WorkingRVFOptions = 0x00080000 | 0x00100000;
constexpr int StreamVersion = 1;
constexpr int PrefixBytes = 20;

bool IsGuardExempt(Word key)
{
    return key == VK_BACK || key == VK_SHIFT || key == VK_CONTROL || key == VK_MENU ||
        (key >= VK_LEFT && key <= VK_DOWN) || key == VK_DELETE;
}

TRVAlignment EngineAlignment(TARVParaStyle style)
{
    switch (style) {
    case apsCenter:
        return rvaCenter;
    case apsRight:
        return rvaRight;
    case apsJustify:
        return rvaJustify;
    default:
        return rvaLeft;
    }
}

[[noreturn]] void InvalidFormat(const char *what)
{
    throw Exception(QStringLiteral("Neplatný formát - ") + QString::fromUtf8(what));
}

} // namespace

class TOxaRichView::Private
{
public:
    explicit Private(TOxaRichView *q) : q(q), doc(new RichDocument(q)) { }

    TOxaRichView *q;
    RichDocument *doc;
    SpellHighlighter *spell = nullptr;
    bool saveFontName = true;
    bool inserting = true;
    int minimalHeight = 20;
    bool autoSize = false;
    Word lastKey = 0;
    qint32 repeatCount = 0;
    bool hadSelection = false;
    quint32 rvfOptions = WorkingRVFOptions;

    // Between BeginUpdate and EndUpdate the operations share this cursor and
    // the view (scrolling, layout of the caret's line) follows once at the end.
    int updateDepth = 0;
    QTextCursor batch;

    QTextCursor Cursor() const { return updateDepth > 0 ? batch : q->textCursor(); }

    // Runs an engine operation on the editor's cursor and puts the cursor back.
    template<class Fn>
    void WithCursor(Fn fn)
    {
        if (updateDepth > 0) {
            fn(batch);
            return;
        }
        QTextCursor c = q->textCursor();
        fn(c);
        q->setTextCursor(c);
    }

    void UpdateAutoSize()
    {
        if (!autoSize)
            return;
        const int content = int(std::ceil(doc->Document()->size().height())) + 2 * q->frameWidth();
        const int height = std::max(minimalHeight, content);
        if (height == q->height())
            return;
        q->resize(q->width(), height);
        Q_EMIT q->OnChangeHeight(height);
    }

    // The format of the character to the right of a position (or to the left at a paragraph end).
    QTextCharFormat FormatAt(int position) const
    {
        QTextCursor c(doc->Document());
        c.setPosition(position);
        if (!c.atBlockEnd()) {
            c.movePosition(QTextCursor::NextCharacter);
            return c.charFormat();
        }
        return c.charFormat();
    }

    // The hyperlink item at a position, or -1.
    int LinkItemAt(int position) const
    {
        const QTextCharFormat format = FormatAt(position);
        if (!doc->Style().TextStyle(RichDocument::TextStyleOf(format)).Jump)
            return -1;
        QTextCursor c(doc->Document());
        c.setPosition(position);
        if (c.currentTable())
            return -1;
        TCursorPos pos = doc->PositionToItem(position);
        if (pos.Offset > doc->GetItemText(pos.Item).size() && pos.Item + 1 < doc->ItemCount() &&
            !doc->IsParaStart(pos.Item + 1))
            ++pos.Item;
        return doc->Style().TextStyle(doc->GetItemStyle(pos.Item)).Jump ? pos.Item : -1;
    }

    static int UndoTypeOfKey(const QKeyEvent *event)
    {
        if (event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete ||
            event->matches(QKeySequence::Cut))
            return utDeleting;
        if (event->matches(QKeySequence::Paste))
            return utInserting;
        return utTyping;
    }

    // Replaces a word by a correction as one step of the undo list, in the
    // word's own format.
    void ReplaceWord(int start, int length, const QString &replacement)
    {
        const QTextCharFormat format = FormatAt(start);
        doc->BreakTypingRun();
        {
            RichDocument::UndoScope scope(doc, utTyping);
            const SpellHighlighter::Interactive typed(spell);
            QTextCursor c(doc->Document());
            c.setPosition(start);
            c.setPosition(start + length, QTextCursor::KeepAnchor);
            c.beginEditBlock();
            c.insertText(replacement, format);
            c.endEditBlock();
            q->setTextCursor(c);
        }
        doc->BreakTypingRun();
        doc->Invalidate();
    }

    void LoadStyledBody(const TRVStyle &style, QByteArrayView body)
    {
        RichBody::ContentPtr content;
        if (!body.isEmpty())
            content =
                RichBody::Parse(body, int(style.TextStyles.size()), int(style.ParaStyles.size()));
        // Everything is read and checked; only now the document changes.
        QTextDocument *document = doc->Document();
        document->setUndoRedoEnabled(false);
        document->setLayoutEnabled(false);
        doc->Clear();
        doc->SetStyle(style);
        document->setUndoRedoEnabled(false);
        if (content) {
            // One edit block: the document reports one change instead of one per item.
            QTextCursor c(document);
            c.beginEditBlock();
            RichBody::Insert(*doc, c, *content, {}, {}, false);
            c.endEditBlock();
        }
        // The caret is placed before the layout comes back, so that placing it
        // does not lay the whole document out at once.
        q->setTextCursor(QTextCursor(document));
        q->setCurrentCharFormat(doc->TextFormat(0));
        document->setLayoutEnabled(true);
        document->setUndoRedoEnabled(true);
        doc->ClearUndo();
        UpdateAutoSize();
    }
};

TOxaRichView::TOxaRichView(QWidget *parent) : QTextEdit(parent), d(std::make_unique<Private>(this))
{
    setDocument(d->doc->Document());
    d->doc->Clear();
    setCurrentCharFormat(d->doc->TextFormat(0));
    setTabChangesFocus(false);
    setAcceptRichText(true);
    d->spell = new SpellHighlighter(document(), SpellChecker::Shared(), this);
    connect(this, &QTextEdit::cursorPositionChanged, this, &TOxaRichView::OnCaretMoveOxa);
    connect(this, &QTextEdit::cursorPositionChanged, this,
            [this] { d->spell->CaretMoved(textCursor().position()); });
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &TOxaRichView::OnVScrolled);
    connect(d->doc->Document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged,
            this, [this] { d->UpdateAutoSize(); });
}

TOxaRichView::~TOxaRichView() = default;

RichDocument *TOxaRichView::RVData() const
{
    return d->doc;
}
const TRVStyle &TOxaRichView::Style() const
{
    return d->doc->Style();
}

void TOxaRichView::SetStyle(const TRVStyle &style)
{
    d->doc->SetStyle(style);
    setCurrentCharFormat(d->doc->TextFormat(CurTextStyleNo()));
}

bool TOxaRichView::SaveFontName() const
{
    return d->saveFontName;
}
void TOxaRichView::SetSaveFontName(bool value)
{
    const auto before = SaveFontName();
    d->saveFontName = value;
    if (SaveFontName() != before)
        Q_EMIT saveFontNameChanged();
}
bool TOxaRichView::Inserting() const
{
    return d->inserting;
}

void TOxaRichView::SetInserting(bool value)
{
    if (d->inserting == value)
        return;
    d->inserting = value;
    setOverwriteMode(!value);
    Q_EMIT OnChangeInserting();
}

int TOxaRichView::MinimalHeight() const
{
    return d->minimalHeight;
}

void TOxaRichView::SetMinimalHeight(int value)
{
    const auto before = MinimalHeight();
    d->minimalHeight = value;
    d->UpdateAutoSize();
    if (MinimalHeight() != before)
        Q_EMIT minimalHeightChanged();
}

bool TOxaRichView::AutoSize() const
{
    return d->autoSize;
}

void TOxaRichView::SetAutoSize(bool value)
{
    const auto before = AutoSize();
    d->autoSize = value;
    setVerticalScrollBarPolicy(value ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
    d->UpdateAutoSize();
    if (AutoSize() != before)
        Q_EMIT autoSizeChanged();
}

// ---- formatting ----

void TOxaRichView::SetFontStyle(TARVFontStyle style)
{
    if (style == afsFontNone)
        return;
    d->WithCursor([&](QTextCursor &c) {
        d->doc->ConvertTextStyle(c, [style](TFontInfo &info) {
            switch (style) {
            case afsClear:
                info.Style = {};
                break;
            case afsBold:
            case afsUnBold:
                info.Style.setFlag(fsBold, style == afsBold);
                break;
            case afsItalic:
            case afsUnItalic:
                info.Style.setFlag(fsItalic, style == afsItalic);
                break;
            case afsUnderline:
            case afsUnUnderline:
                info.Style.setFlag(fsUnderline, style == afsUnderline);
                break;
            case afsStrikeline:
            case afsUnStrikeline:
                info.Style.setFlag(fsStrikeOut, style == afsStrikeline);
                break;
            case afsFontUp:
                ++info.Size;
                break;
            case afsFontDown:
                info.Size = std::max(1, info.Size - 1);
                break;
            case afsFontNone:
                break;
            }
        });
    });
}

TFontStyles TOxaRichView::GetFontStyle() const
{
    return Style().TextStyle(CurTextStyleNo()).Style;
}

void TOxaRichView::SetFontName(const QString &name)
{
    d->WithCursor([&](QTextCursor &c) {
        d->doc->ConvertTextStyle(c, [&](TFontInfo &i) { i.FontName = name; });
    });
}

void TOxaRichView::SetFontSize(int size)
{
    d->WithCursor(
        [&](QTextCursor &c) { d->doc->ConvertTextStyle(c, [&](TFontInfo &i) { i.Size = size; }); });
}

void TOxaRichView::SetColor(TColor color)
{
    d->WithCursor([&](QTextCursor &c) {
        d->doc->ConvertTextStyle(c, [&](TFontInfo &i) { i.Color = color; });
    });
}

void TOxaRichView::SetBgColor(TColor color)
{
    d->WithCursor([&](QTextCursor &c) {
        d->doc->ConvertTextStyle(c, [&](TFontInfo &i) { i.BackColor = color; });
    });
}

void TOxaRichView::SetParaStyle(TARVParaStyle style)
{
    const TRVAlignment alignment = EngineAlignment(style);
    d->WithCursor([&](QTextCursor &c) {
        d->doc->ConvertParaStyle(c, [&](TParaInfo &i) { i.Alignment = alignment; });
    });
}

int TOxaRichView::CurTextStyleNo() const
{
    return d->doc->CurTextStyleNo(d->Cursor());
}
int TOxaRichView::CurParaStyleNo() const
{
    return d->doc->CurParaStyleNo(d->Cursor());
}

void TOxaRichView::ApplyTextStyle(int styleNo)
{
    d->WithCursor([&](QTextCursor &c) { d->doc->ApplyTextStyle(c, styleNo); });
}

// ---- tables ----

bool TOxaRichView::InsTable(const TTableCreateInfo &info)
{
    TRVTableProps props;
    props.BestWidth = std::max(0, info.Width);
    props.BorderWidth = 0;
    props.BorderVSpacing = 0;
    props.BorderHSpacing = 0;
    props.CellBorderWidth = info.CellBorderWidth;
    props.CellBorderColor = info.CellBorderColor;
    props.CellBorderStyle = 2;
    props.CellHSpacing = 0;
    props.CellVSpacing = 0;
    QTextTable *table = nullptr;
    if (info.Rows >= 1 && info.Cols >= 1 && !isReadOnly())
        d->WithCursor([&](QTextCursor &c) {
            table = d->doc->InsertTable(c, info.Rows, info.Cols, props, QStringLiteral("tabulka"));
        });
    if (!table) {
        QApplication::beep();
        return false;
    }
    setTextCursor(table->cellAt(0, 0).firstCursorPosition());
    return true;
}

QTextTable *TOxaRichView::CurrentTable() const
{
    return d->Cursor().currentTable();
}

bool TOxaRichView::DeleteTable()
{
    QTextTable *table = CurrentTable();
    if (!table)
        return false;
    RichDocument::UndoScope scope(d->doc, utDeleting);
    QTextCursor c = textCursor();
    c.setPosition(table->firstPosition() - 1);
    c.setPosition(table->lastPosition() + 1, QTextCursor::KeepAnchor);
    c.removeSelectedText();
    setTextCursor(c);
    return true;
}

void TOxaRichView::SetTableColor(TColor color)
{
    QTextTable *table = CurrentTable();
    if (!table)
        return;
    const QTextCursor c = d->Cursor();
    int firstRow, rows, firstCol, cols;
    if (c.hasSelection()) {
        c.selectedTableCells(&firstRow, &rows, &firstCol, &cols);
    } else {
        const QTextTableCell cell = table->cellAt(c);
        firstRow = cell.row();
        firstCol = cell.column();
        rows = cols = 1;
    }
    for (int r = firstRow; r < firstRow + std::max(rows, 1); ++r)
        for (int col = firstCol; col < firstCol + std::max(cols, 1); ++col)
            d->doc->SetCellColor(table, r, col, color);
}

void TOxaRichView::SetTableBorderColor(TColor color)
{
    if (QTextTable *table = CurrentTable()) {
        TRVTableProps p = RichDocument::TableProps(table);
        p.CellBorderColor = color;
        d->doc->SetTableProps(table, p);
    }
}

void TOxaRichView::SetCellBorderWidth(int width)
{
    if (QTextTable *table = CurrentTable()) {
        TRVTableProps p = RichDocument::TableProps(table);
        p.CellBorderWidth = width;
        d->doc->SetTableProps(table, p);
    }
}

void TOxaRichView::SetTableProps(const TRVTableProps &props)
{
    if (QTextTable *table = CurrentTable())
        d->doc->SetTableProps(table, props);
}

void TOxaRichView::InsLink(const QString &Text, int data, int style, bool Space)
{
    d->WithCursor([&](QTextCursor &c) {
        RichDocument::UndoScope scope(d->doc, utInserting);
        c.beginEditBlock();
        if (c.hasSelection())
            c.removeSelectedText();
        c.insertText(Text, d->doc->TextFormat(style, QString::number(data)));
        if (Space)
            c.insertText(QStringLiteral(" "), d->doc->TextFormat(0));
        c.endEditBlock();
        c.setCharFormat(d->doc->TextFormat(Space ? 0 : style));
        d->doc->Invalidate();
    });
}

// ---- text ----

QString TOxaRichView::GetText(int ItemStart, int ItemStop) const
{
    QString text;
    const int count = ItemCount();
    for (int i = std::max(ItemStart, 0); i <= ItemStop && i < count; ++i) {
        if (IsParaStart(i) && i != ItemStart)
            text += QStringLiteral("\r\n");
        text += GetItemText(i);
    }
    return text;
}

QString TOxaRichView::GetFormatText(int ItemStart, int OffsetStart, int ItemStop,
                                    int OffsetStop) const
{
    return GetFormatedText(this, ItemStart, OffsetStart, ItemStop, OffsetStop);
}

QString TOxaRichView::GetSelFormatText() const
{
    TCursorPos start, end;
    if (!GetSelectionBounds(start, end))
        return QString();
    return GetFormatedText(this, start.Item, start.Offset, end.Item, end.Offset);
}

void TOxaRichView::InsertFormatText(const QString &text)
{
    SetFormatedText(this, text);
}

void TOxaRichView::InsertFontText(const QString &text, TFontStyles styles)
{
    const int before = CurTextStyleNo();
    d->WithCursor([&](QTextCursor &c) {
        d->doc->ConvertTextStyle(c, [&](TFontInfo &i) { i.Style = styles; });
        d->doc->InsertText(c, text);
        c.setCharFormat(d->doc->TextFormat(before));
    });
}

void TOxaRichView::InsertText(const QString &text)
{
    d->WithCursor([&](QTextCursor &c) { d->doc->InsertText(c, text); });
}

void TOxaRichView::PasteText()
{
    d->WithCursor([&](QTextCursor &c) {
        RichDocument::UndoScope scope(d->doc, utInserting);
        RichClipboard::PasteText(*d->doc, c, QApplication::clipboard()->mimeData());
    });
    ensureCursorVisible();
}

QString TOxaRichView::GetAllItemText(int index) const
{
    const QTextTable *table = d->doc->GetItemTable(index);
    if (!table)
        return GetItemText(index);
    QString text;
    for (int r = 0; r < table->rows(); ++r) {
        if (r > 0)
            text += QStringLiteral("\r\n");
        for (int c = 0; c < table->columns(); ++c) {
            if (c > 0)
                text += u'\t';
            QTextCursor cc = table->cellAt(r, c).firstCursorPosition();
            cc.setPosition(table->cellAt(r, c).lastCursorPosition().position(),
                           QTextCursor::KeepAnchor);
            text += cc.selectedText().replace(QChar::ParagraphSeparator, QStringLiteral("\r\n"));
        }
    }
    return text;
}

bool TOxaRichView::IsEmpty() const
{
    return d->doc->IsEmpty();
}

void TOxaRichView::Clear()
{
    d->doc->Clear();
    setCurrentCharFormat(d->doc->TextFormat(0));
}

int TOxaRichView::ItemCount() const
{
    return d->doc->ItemCount();
}
int TOxaRichView::GetItemStyle(int itemNo) const
{
    return d->doc->GetItemStyle(itemNo);
}
int TOxaRichView::GetItemPara(int itemNo) const
{
    return d->doc->GetItemPara(itemNo);
}
QString TOxaRichView::GetItemText(int itemNo) const
{
    return d->doc->GetItemText(itemNo);
}
QString TOxaRichView::GetItemTag(int itemNo) const
{
    return d->doc->GetItemTag(itemNo);
}
void TOxaRichView::SetItemTag(int itemNo, const QString &tag)
{
    d->doc->SetItemTag(itemNo, tag);
}
bool TOxaRichView::IsParaStart(int itemNo) const
{
    return d->doc->IsParaStart(itemNo);
}

bool TOxaRichView::GetSelectionBounds(TCursorPos &start, TCursorPos &end) const
{
    const QTextCursor c = d->Cursor();
    if (!c.hasSelection())
        return false;
    start = d->doc->PositionToItem(c.selectionStart());
    end = d->doc->PositionToItem(c.selectionEnd());
    return true;
}

// ---- undo ----

void TOxaRichView::BeginUpdate()
{
    if (d->updateDepth++ == 0)
        d->batch = textCursor();
}

void TOxaRichView::EndUpdate()
{
    if (d->updateDepth > 0 && --d->updateDepth == 0)
        setTextCursor(d->batch);
}

void TOxaRichView::Undo()
{
    d->WithCursor([&](QTextCursor &c) { d->doc->Undo(&c); });
}

void TOxaRichView::Redo()
{
    d->WithCursor([&](QTextCursor &c) { d->doc->Redo(&c); });
}

int TOxaRichView::UndoAction() const
{
    return d->doc->UndoAction();
}
int TOxaRichView::RedoAction() const
{
    return d->doc->RedoAction();
}
QString TOxaRichView::UndoName() const
{
    return d->doc->UndoName();
}
QString TOxaRichView::RedoName() const
{
    return d->doc->RedoName();
}
void TOxaRichView::BeginUndoGroup(int undoType)
{
    d->doc->BeginUndoGroup(undoType);
}
void TOxaRichView::SetUndoGroupMode(bool on)
{
    d->doc->SetUndoGroupMode(on);
}

// ---- streams ----

void TOxaRichView::SaveOxaRVFToStream(QIODevice &stream)
{
    d->rvfOptions = 0;
    const QList<int> textMap = d->doc->UsedTextStyleMap();
    const QList<int> paraMap = d->doc->UsedParaStyleMap();
    const QByteArray header =
        CodePage1250::FromUnicode(StyleHeader::Build(Style(), textMap, paraMap, d->saveFontName));
    const QByteArray prefix =
        QByteArray::number(StreamVersion) + ' ' + QByteArray::number(header.size()) + '|';
    QByteArray bytes = prefix + header + RichBody::Save(*d->doc, textMap, paraMap);
    d->rvfOptions = WorkingRVFOptions;
    if (auto *buffer = qobject_cast<QBuffer *>(&stream)) {
        buffer->buffer().clear();
        buffer->seek(0);
    } else {
        stream.seek(0);
    }
    if (stream.write(bytes) != bytes.size())
        throw EWriteError(QStringLiteral("Chyba zápisu proudu"));
}

void TOxaRichView::LoadOxaRVFFromStream(QIODevice &stream)
{
    if (stream.size() < PrefixBytes)
        InvalidFormat("malý soubor");
    stream.seek(0);
    const QString first = CodePage1250::ToUnicode(stream.read(PrefixBytes));
    const int bar = first.indexOf(u'|');
    if (bar < 0)
        InvalidFormat("neplatná hlavička");
    const QString prefix = first.left(bar);
    const int space = prefix.indexOf(u' ');
    const int version = space < 0 ? -1 : StrToIntDef(prefix.left(space), -1);
    const int length = space < 0 ? -1 : StrToIntDef(prefix.mid(space + 1), -1);
    if (version != StreamVersion)
        InvalidFormat("neznámá verze");
    if (length < 0)
        InvalidFormat("chybná délka hlavičky");
    stream.seek(bar + 1);
    const QByteArray headerBytes = stream.read(length);
    if (headerBytes.size() != length)
        throw Exception(QStringLiteral("Neplatný formát - poškozený obsah dokumentu"));
    TRVStyle style = Style();
    style.TextStyles.removeIf([](const TFontInfo &i) { return !i.Standard; });
    style.ParaStyles.removeIf([](const TParaInfo &i) { return !i.Standard; });
    if (style.TextStyles.isEmpty())
        style.TextStyles = TRVStyle().TextStyles;
    if (style.ParaStyles.isEmpty())
        style.ParaStyles = TRVStyle().ParaStyles;
    StyleHeader::Parse(CodePage1250::ToUnicode(headerBytes), d->saveFontName, style);
    d->rvfOptions = 0;
    const QByteArray body = stream.readAll();
    try {
        d->LoadStyledBody(style, body);
    } catch (...) {
        d->rvfOptions = WorkingRVFOptions;
        throw;
    }
    d->rvfOptions = WorkingRVFOptions;
}

QByteArray TOxaRichView::SaveOxaRVFToString()
{
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    SaveOxaRVFToStream(buffer);
    return buffer.data();
}

void TOxaRichView::LoadOxaRVFFromString(const QByteArray &value)
{
    QByteArray copy = value;
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    LoadOxaRVFFromStream(buffer);
}

QByteArray TOxaRichView::SaveRVFToString() const
{
    return RichBody::Save(*d->doc);
}

void TOxaRichView::LoadRVFFromString(const QByteArray &value)
{
    d->LoadStyledBody(Style(), value);
}

void TOxaRichView::AppendRVFFromString(const QByteArray &value)
{
    const RichBody::ContentPtr content =
        RichBody::Parse(value, int(Style().TextStyles.size()), int(Style().ParaStyles.size()));
    QTextCursor c(document());
    c.movePosition(QTextCursor::End);
    RichDocument::UndoScope scope(d->doc, utInserting);
    c.beginEditBlock();
    RichBody::Insert(*d->doc, c, *content, {}, {}, false);
    c.endEditBlock();
}

void TOxaRichView::InsertRVFFromStringEd(const QByteArray &value)
{
    const RichBody::ContentPtr content =
        RichBody::Parse(value, int(Style().TextStyles.size()), int(Style().ParaStyles.size()));
    d->WithCursor([&](QTextCursor &c) {
        RichDocument::UndoScope scope(d->doc, utInserting);
        c.beginEditBlock();
        RichBody::Insert(*d->doc, c, *content);
        c.endEditBlock();
    });
}

// ---- caret ----

void TOxaRichView::CaretToBegin()
{
    moveCursor(QTextCursor::Start);
}
void TOxaRichView::CaretToEnd()
{
    moveCursor(QTextCursor::End);
}
void TOxaRichView::CaretToEndLine()
{
    moveCursor(QTextCursor::EndOfLine);
}
bool TOxaRichView::IsCaretInBegin() const
{
    return textCursor().atStart();
}
bool TOxaRichView::IsCaretInEnd() const
{
    return textCursor().atEnd();
}

bool TOxaRichView::IsCaretInFirstLine() const
{
    QTextCursor c = textCursor();
    c.clearSelection();
    const int before = c.position();
    return !c.movePosition(QTextCursor::Up) || c.position() == before;
}

bool TOxaRichView::IsCaretInLastLine() const
{
    QTextCursor c = textCursor();
    c.clearSelection();
    const int before = c.position();
    return !c.movePosition(QTextCursor::Down) || c.position() == before;
}

QPoint TOxaRichView::GetCaretPos() const
{
    return cursorRect().topLeft() +
        QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value());
}

TCursorPos TOxaRichView::GetCursorPos() const
{
    return d->doc->PositionToItem(textCursor().position());
}

void TOxaRichView::SetCursorPos(const TCursorPos &pos)
{
    QTextCursor c = textCursor();
    c.setPosition(d->doc->ItemToPosition(pos));
    setTextCursor(c);
}

QPoint TOxaRichView::GetCaretClientPos() const
{
    return cursorRect().topLeft();
}
int TOxaRichView::GetCaretY() const
{
    return cursorRect().y();
}
int TOxaRichView::GetCaretHeight() const
{
    return fontMetrics().height();
}

bool TOxaRichView::TryFocus()
{
    if (!isVisible() || !isEnabled())
        return false;
    setFocus(Qt::OtherFocusReason);
    return true;
}

// ---- keys ----

void TOxaRichView::KeyDown(Word &Key, TShiftState Shift)
{
    if (Key == d->lastKey) {
        ++d->repeatCount;
    } else {
        d->lastKey = Key;
        d->repeatCount = 0;
    }
    if (d->repeatCount > MaxKeyRepeat && !IsGuardExempt(Key)) {
        MessageService::MessageDlg(QStringLiteral("Ochrana (max. %1x) proti zaseklé klávese (%2).")
                                       .arg(MaxKeyRepeat)
                                       .arg(Key),
                                   mtError, mbOK, this);
        Key = 0;
        return;
    }
    d->hadSelection = textCursor().hasSelection();
    if (Key == VK_NEXT && IsCaretInLastLine())
        Key = VK_DOWN;
    else if (Key == VK_PRIOR && IsCaretInFirstLine())
        Key = VK_UP;
    if (Key == VK_INSERT && Shift == TShiftState()) {
        SetInserting(!Inserting());
        Key = 0;
        return;
    }
    const bool handled = KeyDownFormating(Key, Shift);
    if (Key == VK_ESCAPE) {
        if (QWidget *parent = parentWidget()) {
            QCoreApplication::postEvent(
                parent, new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
            QCoreApplication::postEvent(
                parent, new QKeyEvent(QEvent::KeyRelease, Qt::Key_Escape, Qt::NoModifier));
        }
    }
    if (handled)
        Key = 0;
}

bool TOxaRichView::KeyDownFormating(Word Key, TShiftState Shift)
{
    if (Shift != TShiftState(ssCtrl))
        return false;
    const TFontStyles current = GetFontStyle();
    switch (Key) {
    case VK_Letter('B'):
        SetFontStyle(current & fsBold ? afsUnBold : afsBold);
        return true;
    case VK_Letter('I'):
        SetFontStyle(current & fsItalic ? afsUnItalic : afsItalic);
        return true;
    case VK_Letter('P'):
        SetFontStyle(current & fsUnderline ? afsUnUnderline : afsUnderline);
        return true;
    case VK_Letter('S'):
        SetFontStyle(current & fsStrikeOut ? afsUnStrikeline : afsStrikeline);
        return true;
    case VK_Letter('L'):
        SetParaStyle(apsLeft);
        return true;
    case VK_Letter('E'):
        SetParaStyle(apsCenter);
        return true;
    case VK_Letter('R'):
        SetParaStyle(apsRight);
        return true;
    case VK_Letter('J'):
        SetParaStyle(apsJustify);
        return true;
    default:
        return false;
    }
}

void TOxaRichView::keyPressEvent(QKeyEvent *event)
{
    // What a key changes is checked at once (only the paragraphs it touches).
    const SpellHighlighter::Interactive typed(d->spell);
    Word key = 0;
    TShiftState shift;
    KeyFromEvent(event, key, shift);
    const Word original = key;
    if (key != 0)
        KeyDown(key, shift);
    if (original != 0 && key == 0) {
        event->accept();
        return;
    }
    if (event->matches(QKeySequence::Undo)) {
        Undo();
        return;
    }
    if (event->matches(QKeySequence::Redo)) {
        Redo();
        return;
    }
    if (key == VK_RETURN && shift == TShiftState() && !textCursor().hasSelection()) {
        const int link = d->LinkItemAt(textCursor().position());
        if (link >= 0) {
            Q_EMIT OnTextJump(link);
            return;
        }
    }
    const int undoType = Private::UndoTypeOfKey(event);
    const bool typing =
        undoType == utTyping && !event->text().isEmpty() && event->text().front().isPrint();
    if (!typing)
        d->doc->BreakTypingRun();
    RichDocument::UndoScope scope(d->doc, undoType);
    // Each key is an edit block of its own, so no key merges into an earlier
    // step; the document joins the typed keys of one run itself.
    QTextCursor block(document());
    block.beginEditBlock();
    if (key != original) {
        QKeyEvent changed(event->type(), VirtualKeyToQtKey(key), event->modifiers());
        QTextEdit::keyPressEvent(&changed);
    } else {
        QTextEdit::keyPressEvent(event);
    }
    block.endEditBlock();
    if (key == VK_ESCAPE)
        event->accept(); // the parent has its own Escape already
    d->doc->Invalidate();
}

void TOxaRichView::mousePressEvent(QMouseEvent *event)
{
    d->doc->BreakTypingRun();
    QTextEdit::mousePressEvent(event);
}

void TOxaRichView::mouseReleaseEvent(QMouseEvent *event)
{
    QTextEdit::mouseReleaseEvent(event);
    if (event->button() != Qt::LeftButton || !(event->modifiers() & Qt::ControlModifier))
        return;
    const int link = d->LinkItemAt(cursorForPosition(event->position().toPoint()).position());
    if (link >= 0)
        Q_EMIT OnTextJump(link);
}

void TOxaRichView::contextMenuEvent(QContextMenuEvent *event)
{
    Q_EMIT OnPopup();
    // The standard menu wants document coordinates (for a link under the mouse).
    const QPoint scrolled(horizontalScrollBar()->value(), verticalScrollBar()->value());
    QMenu *menu = createStandardContextMenu(event->pos() + scrolled);
    AddSpellingActions(menu, event->pos());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
}

// ---- spell checking ----

bool TOxaRichView::SpellCheck() const
{
    return d->spell->IsEnabled();
}

void TOxaRichView::SetSpellCheck(bool value)
{
    const bool before = SpellCheck();
    d->spell->SetEnabled(value);
    if (SpellCheck() != before)
        Q_EMIT spellCheckChanged();
}

bool TOxaRichView::SpellCheckAvailable() const
{
    return SpellChecker::Shared()->IsAvailable();
}

QStringList TOxaRichView::PersonalWords() const
{
    return SpellChecker::Shared()->PersonalWords();
}

void TOxaRichView::SetPersonalWords(const QStringList &words)
{
    SpellChecker::Shared()->SetPersonalWords(words);
}

int TOxaRichView::AddSpellingActions(QMenu *menu, const QPoint &viewportPos)
{
    int start = 0;
    int length = 0;
    if (!menu || !SpellCheck() ||
        !d->spell->MisspelledAt(cursorForPosition(viewportPos).position(), start, length))
        return 0;
    const QTextBlock block = document()->findBlock(start);
    const QString word = block.text().mid(start - block.position(), length);
    // The word must still stand there when an action runs (a host's menu may
    // be shown later than it is built).
    auto stillThere = [this, start, word] {
        const QTextBlock b = document()->findBlock(start);
        return b.text().mid(start - b.position(), word.size()) == word;
    };
    QAction *first = menu->actions().value(0);
    int added = 0;
    for (const QString &suggestion : SpellChecker::Shared()->Suggest(word, 5)) {
        auto *action = new QAction(suggestion, menu);
        QFont font = action->font();
        font.setBold(true);
        action->setFont(font);
        connect(action, &QAction::triggered, this, [this, start, word, suggestion, stillThere] {
            if (stillThere())
                d->ReplaceWord(start, int(word.size()), suggestion);
        });
        menu->insertAction(first, action);
        ++added;
    }
    auto *add = new QAction(QStringLiteral("Přidat do slovníku"), menu);
    connect(add, &QAction::triggered, this, [this, word] {
        SpellChecker::Shared()->AddPersonalWord(word);
        Q_EMIT personalWordAdded(word);
    });
    menu->insertAction(first, add);
    ++added;
    if (first)
        menu->insertSeparator(first);
    return added;
}

// ---- clipboard ----

QMimeData *TOxaRichView::createMimeDataFromSelection() const
{
    return RichClipboard::MimeOfSelection(*d->doc, textCursor(), d->saveFontName);
}

bool TOxaRichView::canInsertFromMimeData(const QMimeData *source) const
{
    return RichClipboard::CanPaste(source);
}

void TOxaRichView::insertFromMimeData(const QMimeData *source)
{
    d->WithCursor([&](QTextCursor &c) {
        RichDocument::UndoScope scope(d->doc, utInserting);
        RichClipboard::Paste(*d->doc, c, source);
    });
    ensureCursorVisible();
}

void RegisterOxaRichView()
{
    Catalogue::Instance().RegisterComponents({WidgetEntry<TOxaRichView>(
        QStringLiteral("Oxa"), QStringLiteral("TOxaRichView"), QStringLiteral("OxaRichView"),
        QStringLiteral("oxa/richtext/OxaRichView.h"))});
}

} // namespace oxa
