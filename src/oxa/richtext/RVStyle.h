#pragma once

#include "oxa/oxa_export.h"
#include "oxa/toolkit/Color.h"

#include <QFlags>
#include <QList>
#include <QMultiHash>
#include <QString>

namespace oxa {

// The four font styles of a text style.
enum TFontStyleFlag { fsBold = 0x1, fsItalic = 0x2, fsUnderline = 0x4, fsStrikeOut = 0x8 };
Q_DECLARE_FLAGS(TFontStyles, TFontStyleFlag)
Q_DECLARE_OPERATORS_FOR_FLAGS(TFontStyles)

// Paragraph alignment in the engine's own order.
enum TRVAlignment { rvaLeft = 0, rvaRight = 1, rvaCenter = 2, rvaJustify = 3 };

// One numbered text style of the style sheet.
struct OXA_EXPORT TFontInfo
{
    QString StyleName;
    QString FontName = QStringLiteral("Arial");
    int Size = 10;
    TFontStyles Style;
    TColor Color = clWindowText;
    TColor BackColor = clNone;
    bool Jump = false;     // a hyperlink style
    bool Standard = false; // part of the editor's own style sheet

    // Same look and behaviour; the name and the standard flag do not count.
    bool IsSameFormat(const TFontInfo &other) const;
};

// One numbered paragraph style of the style sheet.
struct OXA_EXPORT TParaInfo
{
    QString StyleName;
    int FirstIndent = 0;
    int LeftIndent = 0;
    int SpaceBefore = 0;
    int SpaceAfter = 0;
    int LineSpacing = 100; // percent
    TRVAlignment Alignment = rvaLeft;
    bool Standard = false;

    bool IsSameFormat(const TParaInfo &other) const;
};

// The style sheet: numbered text styles and paragraph styles. Documents refer
// to styles by number only, so the numbers of existing styles never change
// except through an explicit renumbering (DeleteUnusedStyles of the document).
class OXA_EXPORT TRVStyle
{
public:
    // The editor's default sheet: text styles "Normal text", "Heading" and
    // "Hyperlink" (style 2, the hyperlink style the tagged text relies on),
    // paragraph styles "Paragraph Style" and "Centered"; all standard.
    TRVStyle();

    QList<TFontInfo> TextStyles;
    QList<TParaInfo> ParaStyles;

    // The hyperlink style of the default sheet.
    static constexpr int HyperlinkStyleNo = 2;

    // The number of a style with the same format, added when there is none.
    int FindOrAddTextStyle(const TFontInfo &info);
    int FindOrAddParaStyle(const TParaInfo &info);
    // -1 when no style has that format.
    int FindTextStyle(const TFontInfo &info) const;
    int FindParaStyle(const TParaInfo &info) const;

    const TFontInfo &TextStyle(int no) const;
    const TParaInfo &ParaStyle(int no) const;
    bool IsValidTextStyle(int no) const { return no >= 0 && no < TextStyles.size(); }
    bool IsValidParaStyle(int no) const { return no >= 0 && no < ParaStyles.size(); }

private:
    // Look-up of styles by format, extended as styles are appended. Every hit
    // is checked against the style itself, so the index never gives a wrong
    // style; it is rebuilt whenever the lists got shorter.
    mutable QMultiHash<size_t, int> m_textIndex;
    mutable qsizetype m_textIndexed = 0;
    mutable QMultiHash<size_t, int> m_paraIndex;
    mutable qsizetype m_paraIndexed = 0;
};

} // namespace oxa
