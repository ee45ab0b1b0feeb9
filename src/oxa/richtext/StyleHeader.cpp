#include "oxa/richtext/StyleHeader.h"

#include "oxa/richtext/StrToIntDef_p.h"

namespace oxa::StyleHeader {

namespace {

int StyleBits(TFontStyles style)
{
    return (style & fsBold ? 1 : 0) | (style & fsItalic ? 2 : 0) | (style & fsUnderline ? 4 : 0) |
        (style & fsStrikeOut ? 8 : 0);
}

TFontStyles StyleFromBits(int bits)
{
    TFontStyles style;
    style.setFlag(fsBold, bits & 1);
    style.setFlag(fsItalic, bits & 2);
    style.setFlag(fsUnderline, bits & 4);
    style.setFlag(fsStrikeOut, bits & 8);
    return style;
}

bool Used(const QList<int> &map, int no)
{
    return no >= map.size() || map[no] >= 0;
}

// The entries of a list: each one ends at a ","; what follows the last "," is not an entry.
QStringList Entries(const QString &list)
{
    QStringList entries = list.split(QLatin1Char(','));
    entries.removeLast();
    return entries;
}

QString Field(const QStringList &fields, int index)
{
    return index < fields.size() ? fields[index] : QString();
}

} // namespace

QString Build(const TRVStyle &style, const QList<int> &textMap, const QList<int> &paraMap,
              bool saveFontName)
{
    QString header;
    for (int i = 0; i < style.TextStyles.size(); ++i) {
        const TFontInfo &info = style.TextStyles[i];
        if (info.Standard || !Used(textMap, i))
            continue;
        header += ColorToString(info.Color) + u' ' + ColorToString(info.BackColor) + u' ' +
            QString::number(info.Size) + u' ' + QString::number(StyleBits(info.Style)) + u' ';
        if (saveFontName)
            header += QString(info.FontName).replace(u' ', u'_') + u' ';
        header += u',';
    }
    header += u'|';
    for (int i = 0; i < style.ParaStyles.size(); ++i) {
        const TParaInfo &info = style.ParaStyles[i];
        if (info.Standard || !Used(paraMap, i))
            continue;
        header += QStringLiteral("%1 %2 %3 %4 %5 %6,")
                      .arg(info.FirstIndent)
                      .arg(info.LeftIndent)
                      .arg(info.SpaceBefore)
                      .arg(info.SpaceAfter)
                      .arg(info.LineSpacing)
                      .arg(int(info.Alignment));
    }
    header += u'|';
    return header;
}

void Parse(const QString &header, bool saveFontName, TRVStyle &style)
{
    const int bar = header.indexOf(u'|');
    const QString textList = bar < 0 ? header : header.left(bar);
    const QString paraList = bar < 0 ? QString() : header.mid(bar + 1);
    for (const QString &entry : Entries(textList)) {
        const QStringList fields = entry.split(u' ');
        TFontInfo info = style.TextStyle(0);
        info.StyleName.clear();
        info.Standard = false;
        info.Jump = false;
        if (!Field(fields, 0).isEmpty())
            info.Color = StringToColor(Field(fields, 0));
        if (!Field(fields, 1).isEmpty())
            info.BackColor = StringToColor(Field(fields, 1));
        info.Size = StrToIntDef(Field(fields, 2), 10);
        info.Style = StyleFromBits(StrToIntDef(Field(fields, 3), 0));
        if (saveFontName && !Field(fields, 4).isEmpty())
            info.FontName = QString(Field(fields, 4)).replace(u'_', u' ');
        style.TextStyles.append(info);
    }
    for (const QString &entry : Entries(paraList)) {
        const QStringList fields = entry.split(u' ');
        TParaInfo info = style.ParaStyle(0);
        info.StyleName.clear();
        info.Standard = false;
        info.FirstIndent = StrToIntDef(Field(fields, 0), 0);
        info.LeftIndent = StrToIntDef(Field(fields, 1), 0);
        info.SpaceBefore = StrToIntDef(Field(fields, 2), 0);
        info.SpaceAfter = StrToIntDef(Field(fields, 3), 0);
        info.LineSpacing = StrToIntDef(Field(fields, 4), 100);
        const int alignment = StrToIntDef(Field(fields, 5), 0);
        info.Alignment = alignment >= 0 && alignment <= 3 ? TRVAlignment(alignment) : rvaLeft;
        style.ParaStyles.append(info);
    }
}

} // namespace oxa::StyleHeader
