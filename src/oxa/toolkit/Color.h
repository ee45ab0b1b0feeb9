#pragma once

#include "oxa/oxa_export.h"

#include <QColor>
#include <QPalette>
#include <QString>
#include <cstdint>

class QWidget;

namespace oxa {

// The toolkit's colour value: 0x00BBGGRR for a plain colour (red in the low
// byte); 0xFF0000nn names the system colour with index nn; clNone and
// clDefault are special markers.
using TColor = std::uint32_t;

// Plain colours.
inline constexpr TColor clBlack = 0x000000;
inline constexpr TColor clMaroon = 0x000080;
inline constexpr TColor clGreen = 0x008000;
inline constexpr TColor clOlive = 0x008080;
inline constexpr TColor clNavy = 0x800000;
inline constexpr TColor clPurple = 0x800080;
inline constexpr TColor clTeal = 0x808000;
inline constexpr TColor clGray = 0x808080;
inline constexpr TColor clSilver = 0xC0C0C0;
inline constexpr TColor clRed = 0x0000FF;
inline constexpr TColor clLime = 0x00FF00;
inline constexpr TColor clYellow = 0x00FFFF;
inline constexpr TColor clBlue = 0xFF0000;
inline constexpr TColor clFuchsia = 0xFF00FF;
inline constexpr TColor clAqua = 0xFFFF00;
inline constexpr TColor clWhite = 0xFFFFFF;
inline constexpr TColor clMoneyGreen = 0xC0DCC0;
inline constexpr TColor clSkyBlue = 0xF0CAA6;
inline constexpr TColor clCream = 0xF0FBFF;
inline constexpr TColor clMedGray = 0xA4A0A0;

// System colours: 0xFF000000 | index.
inline constexpr TColor clSystemColor = 0xFF000000;
inline constexpr TColor clScrollBar = clSystemColor | 0;
inline constexpr TColor clBackground = clSystemColor | 1;
inline constexpr TColor clActiveCaption = clSystemColor | 2;
inline constexpr TColor clInactiveCaption = clSystemColor | 3;
inline constexpr TColor clMenu = clSystemColor | 4;
inline constexpr TColor clWindow = clSystemColor | 5;
inline constexpr TColor clWindowFrame = clSystemColor | 6;
inline constexpr TColor clMenuText = clSystemColor | 7;
inline constexpr TColor clWindowText = clSystemColor | 8;
inline constexpr TColor clCaptionText = clSystemColor | 9;
inline constexpr TColor clActiveBorder = clSystemColor | 10;
inline constexpr TColor clInactiveBorder = clSystemColor | 11;
inline constexpr TColor clAppWorkSpace = clSystemColor | 12;
inline constexpr TColor clHighlight = clSystemColor | 13;
inline constexpr TColor clHighlightText = clSystemColor | 14;
inline constexpr TColor clBtnFace = clSystemColor | 15;
inline constexpr TColor clBtnShadow = clSystemColor | 16;
inline constexpr TColor clGrayText = clSystemColor | 17;
inline constexpr TColor clBtnText = clSystemColor | 18;
inline constexpr TColor clInactiveCaptionText = clSystemColor | 19;
inline constexpr TColor clBtnHighlight = clSystemColor | 20;
inline constexpr TColor cl3DDkShadow = clSystemColor | 21;
inline constexpr TColor cl3DLight = clSystemColor | 22;
inline constexpr TColor clInfoText = clSystemColor | 23;
inline constexpr TColor clInfoBk = clSystemColor | 24;
inline constexpr TColor clHotLight = clSystemColor | 26;
inline constexpr TColor clGradientActiveCaption = clSystemColor | 27;
inline constexpr TColor clGradientInactiveCaption = clSystemColor | 28;
inline constexpr TColor clMenuHighlight = clSystemColor | 29;
inline constexpr TColor clMenuBar = clSystemColor | 30;

inline constexpr TColor clNone = 0x1FFFFFFF;
inline constexpr TColor clDefault = 0x20000000;

inline constexpr bool IsSystemColor(TColor c)
{
    return (c & 0xFF000000u) == clSystemColor;
}

// Plain colour from its components, as the toolkit's RGB macro builds it.
inline constexpr TColor RGBColor(int r, int g, int b)
{
    return TColor(r & 0xFF) | (TColor(g & 0xFF) << 8) | (TColor(b & 0xFF) << 16);
}

// Converts a toolkit colour to a QColor. System colours are taken from the
// palette (the widget's own when given, else the application's); clNone gives
// an invalid QColor and clDefault the palette's base colour.
OXA_EXPORT QColor ColorToQColor(TColor color, const QWidget *widget = nullptr);
OXA_EXPORT QColor ColorToQColor(TColor color, const QPalette &palette);
// The nearest plain toolkit colour of a QColor (alpha is dropped).
OXA_EXPORT TColor QColorToColor(const QColor &color);

// "clWindowText" for named colours, otherwise "$" and eight hexadecimal digits.
OXA_EXPORT QString ColorToString(TColor color);
// Reads a name ("clRed"), "$00FF00FF" or a decimal number; throws EConvertError otherwise.
OXA_EXPORT TColor StringToColor(const QString &text);
// The name of a named colour; false when the colour has no name.
OXA_EXPORT bool ColorToIdent(TColor color, QString &ident);
OXA_EXPORT bool IdentToColor(const QString &ident, TColor &color);

// Paints the background of a control in the colour (the widget's base,
// window and button roles), the way the toolkit's Color property does.
OXA_EXPORT void SetControlColor(QWidget *widget, TColor color);
// The font colour (text roles) of a control.
OXA_EXPORT void SetControlFontColor(QWidget *widget, TColor color);

} // namespace oxa
