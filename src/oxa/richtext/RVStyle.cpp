#include "oxa/richtext/RVStyle.h"

namespace oxa {

bool TFontInfo::IsSameFormat(const TFontInfo &other) const
{
    return FontName == other.FontName && Size == other.Size && Style == other.Style &&
        Color == other.Color && BackColor == other.BackColor && Jump == other.Jump;
}

bool TParaInfo::IsSameFormat(const TParaInfo &other) const
{
    return FirstIndent == other.FirstIndent && LeftIndent == other.LeftIndent &&
        SpaceBefore == other.SpaceBefore && SpaceAfter == other.SpaceAfter &&
        LineSpacing == other.LineSpacing && Alignment == other.Alignment;
}

namespace {

TFontInfo StandardText(const char *name, TFontStyles style, TColor color, bool jump = false)
{
    TFontInfo info;
    info.StyleName = QString::fromLatin1(name);
    info.Style = style;
    info.Color = color;
    info.Jump = jump;
    info.Standard = true;
    return info;
}

TParaInfo StandardPara(const char *name, TRVAlignment alignment)
{
    TParaInfo info;
    info.StyleName = QString::fromLatin1(name);
    info.Alignment = alignment;
    info.Standard = true;
    return info;
}

} // namespace

TRVStyle::TRVStyle()
{
    TextStyles = {StandardText("Normal text", {}, clWindowText),
                  StandardText("Heading", fsBold, clBlue),
                  StandardText("Hyperlink", fsUnderline, clBlue, true)};
    ParaStyles = {StandardPara("Paragraph Style", rvaLeft), StandardPara("Centered", rvaCenter)};
}

namespace {

size_t FormatHash(const TFontInfo &i)
{
    return qHashMulti(0, i.FontName, i.Size, i.Style.toInt(), i.Color, i.BackColor, i.Jump);
}

size_t FormatHash(const TParaInfo &i)
{
    return qHashMulti(0, i.FirstIndent, i.LeftIndent, i.SpaceBefore, i.SpaceAfter, i.LineSpacing,
                      int(i.Alignment));
}

// The first style of the list with the format of info, through the index.
template<class Info>
int FindIndexed(const QList<Info> &list, const Info &info, QMultiHash<size_t, int> &index,
                qsizetype &indexed)
{
    if (indexed > list.size()) {
        index.clear();
        indexed = 0;
    }
    for (; indexed < list.size(); ++indexed)
        index.insert(FormatHash(list[indexed]), int(indexed));
    int found = -1;
    for (auto it = index.constFind(FormatHash(info));
         it != index.cend() && it.key() == FormatHash(info); ++it) {
        if (it.value() < list.size() && list[it.value()].IsSameFormat(info) &&
            (found < 0 || it.value() < found))
            found = it.value();
    }
    return found;
}

} // namespace

int TRVStyle::FindTextStyle(const TFontInfo &info) const
{
    return FindIndexed(TextStyles, info, m_textIndex, m_textIndexed);
}

int TRVStyle::FindParaStyle(const TParaInfo &info) const
{
    return FindIndexed(ParaStyles, info, m_paraIndex, m_paraIndexed);
}

int TRVStyle::FindOrAddTextStyle(const TFontInfo &info)
{
    const int found = FindTextStyle(info);
    if (found >= 0)
        return found;
    TFontInfo added = info;
    added.Standard = false;
    TextStyles.append(added);
    return int(TextStyles.size()) - 1;
}

int TRVStyle::FindOrAddParaStyle(const TParaInfo &info)
{
    const int found = FindParaStyle(info);
    if (found >= 0)
        return found;
    TParaInfo added = info;
    added.Standard = false;
    ParaStyles.append(added);
    return int(ParaStyles.size()) - 1;
}

const TFontInfo &TRVStyle::TextStyle(int no) const
{
    return TextStyles[IsValidTextStyle(no) ? no : 0];
}

const TParaInfo &TRVStyle::ParaStyle(int no) const
{
    return ParaStyles[IsValidParaStyle(no) ? no : 0];
}

} // namespace oxa
