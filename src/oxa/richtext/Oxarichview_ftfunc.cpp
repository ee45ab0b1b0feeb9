#include "oxa/richtext/Oxarichview_ftfunc.h"

#include "oxa/richtext/OxaRichView.h"
#include "oxa/richtext/StrToIntDef_p.h"

#include <QTextDocument>
#include <array>

namespace oxa {

namespace {

// Above this length an insertion is laid out once, after the last piece.
constexpr qsizetype BulkInsertChars = 8192;

// The tag names; the index is also the tag's bit in the writer's set of open tags.
enum TagIndex : quint8 {
    tBold,
    tUnderline,
    tItalic,
    tStrike,
    tFontName,
    tFontSize,
    tColor,
    tBgColor,
    tReserved,
    tLink,
    tPara
};
using TTagArray = std::array<const char16_t *, 11>;
constexpr TTagArray Tags = {u"b", u"u", u"i", u"s", u"fn", u"fs", u"c", u"g", u"j", u"a", u"p"};

// The run attributes of one item, compared between neighbouring items.
struct TFInfo
{
    QString FontName;
    int FontSize = 0;
    int StyleNo = 0;
    TFontStyles FontStyle;
    qint32 Color = 0;
    qint32 BgColor = 0;
    bool IsLink = false;
    QString LinkTag;
    QString Text;
    int Alignment = rvaLeft;
};

TFInfo InfoOf(const TRVStyle &sheet, int styleNo, int paraNo)
{
    const TFontInfo &text = sheet.TextStyle(styleNo);
    TFInfo info;
    info.FontName = text.FontName;
    info.FontSize = text.Size;
    info.StyleNo = styleNo;
    info.FontStyle = text.Style;
    info.Color = qint32(text.Color);
    info.BgColor = qint32(text.BackColor);
    info.IsLink = false;
    info.Alignment = sheet.ParaStyle(paraNo).Alignment;
    return info;
}

QChar AlignmentLetter(int alignment)
{
    switch (alignment) {
    case rvaRight:
        return u'r';
    case rvaCenter:
        return u'c';
    case rvaJustify:
        return u'j';
    default:
        return u'l';
    }
}

// One routine builds every tag the writer emits.
QString TagText(int index, bool opening, const QString &value = QString())
{
    QString text = opening ? QStringLiteral("<") : QStringLiteral("</");
    text += QString::fromUtf16(Tags[size_t(index)]);
    if (opening && !value.isEmpty())
        text += u'=' + value;
    return text + u'>';
}

class Writer
{
public:
    Writer(const TFInfo &def) : m_default(def) { }

    QString Result;

    void Differences(const TFInfo &prev, const TFInfo &cur)
    {
        if (cur.FontName != prev.FontName)
            Open(tFontName, cur.FontName == m_default.FontName ? QString() : cur.FontName);
        if (cur.FontSize != prev.FontSize)
            Open(tFontSize,
                 cur.FontSize == m_default.FontSize ? QString() : QString::number(cur.FontSize));
        if (cur.Color != prev.Color)
            Open(tColor, cur.Color == m_default.Color ? QString() : QString::number(cur.Color));
        if (cur.BgColor != prev.BgColor)
            Open(tBgColor,
                 cur.BgColor == m_default.BgColor ? QString() : QString::number(cur.BgColor));
        if (cur.Alignment != prev.Alignment)
            Open(tPara,
                 cur.Alignment == m_default.Alignment ? QString()
                                                      : QString(AlignmentLetter(cur.Alignment)));
        FontStyle(prev, cur, fsBold, tBold);
        FontStyle(prev, cur, fsUnderline, tUnderline);
        FontStyle(prev, cur, fsItalic, tItalic);
        FontStyle(prev, cur, fsStrikeOut, tStrike);
        Link(prev, cur);
        Result += QString(cur.Text).replace(u'<', QStringLiteral("<<"));
    }

    // Whatever is still open is closed at the end, in the table's order.
    void CloseAll()
    {
        for (int i = 0; i < int(Tags.size()); ++i)
            if (m_open & (1u << i))
                Result += TagText(i, false);
    }

private:
    // Attribute tags stay in the open set once set, even when the value went back to the default.
    void Open(int index, const QString &value)
    {
        m_open |= 1u << index;
        Result += TagText(index, true, value);
    }

    void FontStyle(const TFInfo &prev, const TFInfo &cur, TFontStyleFlag flag, int index)
    {
        const bool had = prev.FontStyle & flag;
        const bool has = cur.FontStyle & flag;
        if (had && !has) {
            Result += TagText(index, false);
            m_open &= ~(1u << index);
        } else if (!had && has) {
            Open(index, QString());
        }
    }

    // The link bit is only ever removed: a link running to the end stays unclosed.
    void Link(const TFInfo &prev, const TFInfo &cur)
    {
        if (prev.IsLink && !cur.IsLink) {
            Result += TagText(tLink, false);
        } else if (!prev.IsLink && cur.IsLink) {
            Result += TagText(tLink, true, cur.LinkTag);
        } else if (prev.IsLink && cur.IsLink && prev.LinkTag != cur.LinkTag) {
            Result += TagText(tLink, false);
            Result += TagText(tLink, true, cur.LinkTag);
        } else {
            return;
        }
        m_open &= ~(1u << tLink);
    }

    const TFInfo &m_default;
    quint16 m_open = 0;
};

// A tag as the reader and IsPlainText parse it.
struct ParsedTag
{
    quint8 Index = 0;
    bool Recognised = false;
    bool Opening = false;
    QString Value;
};

// Parses the characters between "<" and ">" into tag; the index changes only
// for a known name, so the current tag keeps its index otherwise.
void ParseTag(QString body, ParsedTag &tag)
{
    tag.Opening = !body.startsWith(u'/');
    if (!tag.Opening)
        body.remove(0, 1);
    const int eq = body.indexOf(u'=');
    tag.Value = eq < 0 ? QString() : body.mid(eq + 1);
    const QString name = eq < 0 ? body : body.left(eq);
    for (size_t i = 0; i < Tags.size(); ++i) {
        if (name == QString::fromUtf16(Tags[i])) {
            tag.Index = quint8(i);
            tag.Recognised = true;
            return;
        }
    }
}

// The three-state scanner of the reader. Each round yields at most one
// recognised tag and one piece of text.
class Scanner
{
public:
    explicit Scanner(const QString &text) : m_rest(text) { }

    bool AtEnd() const { return m_end; }
    ParsedTag Tag;
    QString Piece;

    void Round()
    {
        Tag.Recognised = false;
        switch (m_state) {
        case State::Text:
            TextState();
            break;
        case State::Tag:
            TagState();
            break;
        case State::Escape:
            Piece = QStringLiteral("<");
            m_state = State::Text;
            break;
        }
    }

private:
    enum class State { Text, Tag, Escape };

    void TextState()
    {
        const int lt = m_rest.indexOf(u'<');
        if (lt < 0) {
            Piece = m_rest;
            m_rest.clear();
            m_end = true;
            return;
        }
        Piece = m_rest.left(lt);
        m_rest.remove(0, lt + 1);
        m_state = State::Tag;
    }

    void TagState()
    {
        if (m_rest.startsWith(u'<')) {
            m_rest.remove(0, 1);
            m_state = State::Escape;
            return;
        }
        const int gt = m_rest.indexOf(u'>');
        if (gt < 0) {
            Piece = u'<' + m_rest;
            m_rest.clear();
            m_end = true;
            return;
        }
        ParseTag(m_rest.left(gt), Tag);
        if (Tag.Recognised) {
            m_rest.remove(0, gt + 1);
        } else {
            const int next = m_rest.indexOf(u'<');
            if (next < 0) {
                Piece = u'<' + m_rest;
                m_rest.clear();
                m_end = true;
            } else {
                Piece = u'<' + m_rest.left(next);
                m_rest.remove(0, next);
            }
        }
        m_state = State::Text;
    }

    QString m_rest;
    State m_state = State::Text;
    bool m_end = false;
};

void ApplyTag(TOxaRichView *editor, const ParsedTag &tag)
{
    const TFontInfo &normal = editor->Style().TextStyle(0);
    const bool open = tag.Opening;
    switch (tag.Index) {
    case tBold:
        editor->SetFontStyle(open ? afsBold : afsUnBold);
        break;
    case tUnderline:
        editor->SetFontStyle(open ? afsUnderline : afsUnUnderline);
        break;
    case tItalic:
        editor->SetFontStyle(open ? afsItalic : afsUnItalic);
        break;
    case tStrike:
        editor->SetFontStyle(open ? afsStrikeline : afsUnStrikeline);
        break;
    case tFontName:
        editor->SetFontName(open && !tag.Value.isEmpty() ? tag.Value : normal.FontName);
        break;
    case tFontSize: // a closing fs with a value sets that size too
        editor->SetFontSize(StrToIntDef(tag.Value, normal.Size));
        break;
    case tColor:
        editor->SetColor(open ? TColor(StrToIntDef(tag.Value, int(normal.Color))) : normal.Color);
        break;
    case tBgColor:
        editor->SetBgColor(open ? TColor(StrToIntDef(tag.Value, int(normal.BackColor)))
                                : normal.BackColor);
        break;
    case tPara:
        if (open) {
            const QChar letter = tag.Value.isEmpty() ? QChar(u'l') : tag.Value.front();
            editor->SetParaStyle(letter == u'c'       ? apsCenter
                                     : letter == u'j' ? apsJustify
                                     : letter == u'r' ? apsRight
                                                      : apsLeft);
        }
        break;
    default: // "j" is reserved, "a" acts on the text that follows
        break;
    }
}

} // namespace

QString GetFormatedText(const TOxaRichView *editor, int ItemStart, int OffsetStart, int ItemStop,
                        int OffsetStop)
{
    const TRVStyle &sheet = editor->Style();
    const TFInfo def = InfoOf(sheet, 0, 0);
    Writer writer(def);
    TFInfo prev = def;
    for (int i = ItemStart; i <= ItemStop; ++i) {
        const int styleNo = editor->GetItemStyle(i);
        const bool isTable = styleNo == rvsTableItem;
        TFInfo cur = isTable ? prev : InfoOf(sheet, styleNo, editor->GetItemPara(i));
        if (!isTable && sheet.TextStyle(styleNo).Jump) {
            cur.IsLink = true;
            cur.LinkTag = editor->GetItemTag(i);
        }
        cur.Text = isTable ? QString() : editor->GetItemText(i);
        // Offsets are 1-based positions before a character, as the engine counts them.
        if (i == ItemStart && OffsetStart > 0)
            cur.Text.remove(0, OffsetStart - 1);
        if (ItemStart == ItemStop)
            OffsetStop -= OffsetStart - 1;
        if (i == ItemStop && OffsetStop > 0)
            cur.Text = cur.Text.left(std::max(0, OffsetStop - 1));
        // Against item 0 of the document, not ItemStart: readers expect the leading CR LF.
        if (editor->IsParaStart(i) && i > 0)
            writer.Result += QStringLiteral("\r\n");
        if (!isTable)
            writer.Differences(prev, cur);
        prev = cur;
    }
    writer.CloseAll();
    return writer.Result;
}

void SetFormatedText(TOxaRichView *editor, const QString &Text)
{
    if (Text.isEmpty())
        return;
    // One edit block: the document reports one change and records one undo
    // command for the whole insertion instead of one per piece and tag.
    QTextCursor block = editor->textCursor();
    editor->BeginUpdate();
    // A long text is laid out once at the end instead of piece by piece.
    QTextDocument *document = editor->document();
    const bool bulk = Text.size() > BulkInsertChars && document->isLayoutEnabled();
    if (bulk)
        document->setLayoutEnabled(false);
    editor->BeginUndoGroup(utInserting);
    editor->SetUndoGroupMode(true);
    block.beginEditBlock();
    const TFontInfo normal = editor->Style().TextStyle(0);
    // Font size and alignment are deliberately left as they are.
    editor->SetFontStyle(afsClear);
    editor->SetColor(normal.Color);
    editor->SetBgColor(normal.BackColor);
    editor->SetFontName(normal.FontName);
    Scanner scanner(Text);
    while (!scanner.AtEnd()) {
        scanner.Round();
        if (scanner.Tag.Recognised)
            ApplyTag(editor, scanner.Tag);
        if (scanner.Piece.isEmpty())
            continue;
        if (scanner.Tag.Index == tLink && scanner.Tag.Opening)
            editor->InsLink(scanner.Piece, StrToIntDef(scanner.Tag.Value, 0),
                            TRVStyle::HyperlinkStyleNo, true);
        else
            editor->InsertText(scanner.Piece);
        scanner.Piece.clear();
    }
    block.endEditBlock();
    editor->SetUndoGroupMode(false);
    if (!bulk) {
        editor->EndUpdate();
        return;
    }
    // The caret goes to the end of the insertion while the layout is still
    // off, so that placing it does not lay out the whole text at once; a shown
    // editor then scrolls to it, which lays out only up to the caret.
    editor->EndUpdate();
    document->setLayoutEnabled(true);
    if (editor->isVisible())
        editor->ensureCursorVisible();
}

bool IsPlainText(const QString &Text)
{
    Scanner scanner(Text);
    while (!scanner.AtEnd()) {
        scanner.Round();
        if (scanner.Tag.Recognised)
            return false;
    }
    return true;
}

} // namespace oxa
