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

int TRVStyle::FindTextStyle(const TFontInfo &info) const
{
    for (int i = 0; i < TextStyles.size(); ++i)
        if (TextStyles[i].IsSameFormat(info))
            return i;
    return -1;
}

int TRVStyle::FindParaStyle(const TParaInfo &info) const
{
    for (int i = 0; i < ParaStyles.size(); ++i)
        if (ParaStyles[i].IsSameFormat(info))
            return i;
    return -1;
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
