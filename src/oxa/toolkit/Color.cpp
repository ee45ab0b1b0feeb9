#include "oxa/toolkit/Color.h"

#include "oxa/toolkit/Exceptions.h"

#include <QApplication>
#include <QWidget>

namespace oxa {

namespace {

struct NamedColor
{
    TColor value;
    const char *name;
};

// The toolkit's colour names, in its own order.
constexpr NamedColor kNamedColors[] = {
    {clBlack, "clBlack"},
    {clMaroon, "clMaroon"},
    {clGreen, "clGreen"},
    {clOlive, "clOlive"},
    {clNavy, "clNavy"},
    {clPurple, "clPurple"},
    {clTeal, "clTeal"},
    {clGray, "clGray"},
    {clSilver, "clSilver"},
    {clRed, "clRed"},
    {clLime, "clLime"},
    {clYellow, "clYellow"},
    {clBlue, "clBlue"},
    {clFuchsia, "clFuchsia"},
    {clAqua, "clAqua"},
    {clWhite, "clWhite"},
    {clMoneyGreen, "clMoneyGreen"},
    {clSkyBlue, "clSkyBlue"},
    {clCream, "clCream"},
    {clMedGray, "clMedGray"},
    {clActiveBorder, "clActiveBorder"},
    {clActiveCaption, "clActiveCaption"},
    {clAppWorkSpace, "clAppWorkSpace"},
    {clBackground, "clBackground"},
    {clBtnFace, "clBtnFace"},
    {clBtnHighlight, "clBtnHighlight"},
    {clBtnShadow, "clBtnShadow"},
    {clBtnText, "clBtnText"},
    {clCaptionText, "clCaptionText"},
    {clDefault, "clDefault"},
    {clGradientActiveCaption, "clGradientActiveCaption"},
    {clGradientInactiveCaption, "clGradientInactiveCaption"},
    {clGrayText, "clGrayText"},
    {clHighlight, "clHighlight"},
    {clHighlightText, "clHighlightText"},
    {clHotLight, "clHotLight"},
    {clInactiveBorder, "clInactiveBorder"},
    {clInactiveCaption, "clInactiveCaption"},
    {clInactiveCaptionText, "clInactiveCaptionText"},
    {clInfoBk, "clInfoBk"},
    {clInfoText, "clInfoText"},
    {clMenu, "clMenu"},
    {clMenuBar, "clMenuBar"},
    {clMenuHighlight, "clMenuHighlight"},
    {clMenuText, "clMenuText"},
    {clNone, "clNone"},
    {clScrollBar, "clScrollBar"},
    {cl3DDkShadow, "cl3DDkShadow"},
    {cl3DLight, "cl3DLight"},
    {clWindow, "clWindow"},
    {clWindowFrame, "clWindowFrame"},
    {clWindowText, "clWindowText"},
};

// Which palette role stands for each system colour index.
QColor systemColor(int index, const QPalette &p)
{
    switch (index) {
    case 0:
        return p.color(QPalette::Button); // scroll bar
    case 1:
        return p.color(QPalette::Dark); // desktop
    case 2:
    case 27:
        return p.color(QPalette::Highlight); // active caption
    case 3:
    case 28:
        return p.color(QPalette::Mid); // inactive caption
    case 4:
    case 30:
        return p.color(QPalette::Window); // menu
    case 5:
        return p.color(QPalette::Base); // window
    case 6:
        return p.color(QPalette::Shadow); // window frame
    case 7:
        return p.color(QPalette::WindowText); // menu text
    case 8:
        return p.color(QPalette::Text); // window text
    case 9:
        return p.color(QPalette::HighlightedText); // caption text
    case 10:
    case 11:
        return p.color(QPalette::Midlight); // borders
    case 12:
        return p.color(QPalette::Mid); // workspace
    case 13:
    case 29:
        return p.color(QPalette::Highlight);
    case 14:
        return p.color(QPalette::HighlightedText);
    case 15:
        return p.color(QPalette::Button); // button face
    case 16:
        return p.color(QPalette::Dark); // button shadow
    case 17:
        return p.color(QPalette::Disabled, QPalette::Text);
    case 18:
        return p.color(QPalette::ButtonText);
    case 19:
        return p.color(QPalette::Disabled, QPalette::WindowText);
    case 20:
        return p.color(QPalette::Light);
    case 21:
        return p.color(QPalette::Shadow);
    case 22:
        return p.color(QPalette::Midlight);
    case 23:
        return p.color(QPalette::ToolTipText);
    case 24:
        return p.color(QPalette::ToolTipBase);
    case 26:
        return p.color(QPalette::Link);
    default:
        return p.color(QPalette::Window);
    }
}

} // namespace

QColor ColorToQColor(TColor color, const QPalette &palette)
{
    if (color == clNone)
        return QColor();
    if (color == clDefault)
        return palette.color(QPalette::Base);
    if (IsSystemColor(color))
        return systemColor(int(color & 0xFF), palette);
    return QColor(int(color & 0xFF), int((color >> 8) & 0xFF), int((color >> 16) & 0xFF));
}

QColor ColorToQColor(TColor color, const QWidget *widget)
{
    if (widget)
        return ColorToQColor(color, widget->palette());
    return ColorToQColor(color, QApplication::palette());
}

TColor QColorToColor(const QColor &color)
{
    return RGBColor(color.red(), color.green(), color.blue());
}

bool ColorToIdent(TColor color, QString &ident)
{
    for (const NamedColor &c : kNamedColors) {
        if (c.value == color) {
            ident = QString::fromLatin1(c.name);
            return true;
        }
    }
    return false;
}

bool IdentToColor(const QString &ident, TColor &color)
{
    for (const NamedColor &c : kNamedColors) {
        if (ident.compare(QLatin1String(c.name), Qt::CaseInsensitive) == 0) {
            color = c.value;
            return true;
        }
    }
    return false;
}

QString ColorToString(TColor color)
{
    QString ident;
    if (ColorToIdent(color, ident))
        return ident;
    return QStringLiteral("$%1").arg(color, 8, 16, QLatin1Char('0')).toUpper();
}

TColor StringToColor(const QString &text)
{
    TColor color = 0;
    if (IdentToColor(text.trimmed(), color))
        return color;
    const QString t = text.trimmed();
    bool ok = false;
    qint64 value = 0;
    if (t.startsWith(QLatin1Char('$')))
        value = t.mid(1).toLongLong(&ok, 16);
    else if (t.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        value = t.mid(2).toLongLong(&ok, 16);
    else
        value = t.toLongLong(&ok, 10);
    if (!ok || value < -2147483648LL || value > 0xFFFFFFFFLL)
        throw EConvertError(QStringLiteral("'%1' není platná barva").arg(text));
    return TColor(std::uint32_t(value));
}

void SetControlColor(QWidget *widget, TColor color)
{
    if (!widget)
        return;
    QPalette p = widget->palette();
    const QColor c = ColorToQColor(color, QApplication::palette(widget));
    if (!c.isValid())
        return;
    for (QPalette::ColorRole role : {QPalette::Base, QPalette::Window, QPalette::Button})
        p.setColor(QPalette::Active, role, c), p.setColor(QPalette::Inactive, role, c);
    widget->setPalette(p);
}

void SetControlFontColor(QWidget *widget, TColor color)
{
    if (!widget)
        return;
    QPalette p = widget->palette();
    const QColor c = ColorToQColor(color, QApplication::palette(widget));
    if (!c.isValid())
        return;
    for (QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        p.setColor(QPalette::Active, role, c), p.setColor(QPalette::Inactive, role, c);
    widget->setPalette(p);
}

} // namespace oxa
