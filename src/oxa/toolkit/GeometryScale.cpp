#include "oxa/toolkit/GeometryScale.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPointer>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace oxa {

namespace {

// Where a widget of a form keeps its designed geometry.
const char *const DesignedGeometryProperty = "_oxa_designedGeometry";

double NotBelowOne(double Value)
{
    return std::isnan(Value) ? 1.0 : std::max(1.0, Value);
}

QString LatinLetters()
{
    QString letters;
    for (char16_t c = u'a'; c <= u'z'; ++c)
        letters += QChar(c);
    for (char16_t c = u'A'; c <= u'Z'; ++c)
        letters += QChar(c);
    return letters;
}

double ApplicationFactor()
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return 1.0;
    return TGeometryScale::FactorForFont(QGuiApplication::font());
}

} // namespace

TGeometryScale::TGeometryScale(QObject *parent) : QObject(parent), FFactor(ApplicationFactor())
{
    if (parent)
        parent->installEventFilter(this);
}

TGeometryScale *TGeometryScale::Instance()
{
    // One per application object, so that a test's or a host's second
    // application starts from its own font.
    static QPointer<TGeometryScale> instance;
    if (!instance)
        instance = new TGeometryScale(QCoreApplication::instance());
    return instance;
}

double TGeometryScale::Factor() const
{
    return FFactor;
}

void TGeometryScale::SetFactor(double Value)
{
    const bool wasAutomatic = FAutomatic;
    FAutomatic = false;
    UpdateFactor(NotBelowOne(Value));
    if (wasAutomatic)
        Q_EMIT automaticChanged(false);
}

void TGeometryScale::ResetFactor()
{
    const bool wasAutomatic = FAutomatic;
    FAutomatic = true;
    UpdateFactor(ApplicationFactor());
    if (!wasAutomatic)
        Q_EMIT automaticChanged(true);
}

double TGeometryScale::FactorForFont(const QFont &Font)
{
    const QFontMetricsF metrics(Font);
    const QString letters = LatinLetters();
    const double ratios[] = {
        metrics.height() / ReferenceFontHeight,
        metrics.horizontalAdvance(letters) / letters.size() / ReferenceAverageCharWidth,
        metrics.horizontalAdvance(QLatin1Char('0')) / ReferenceDigitWidth,
    };
    return NotBelowOne(*std::max_element(std::begin(ratios), std::end(ratios)));
}

int TGeometryScale::Scaled(int Pixels) const
{
    return int(std::lround(Pixels * FFactor));
}

void TGeometryScale::UpdateFactor(double Value)
{
    if (Value == FFactor)
        return;
    FFactor = Value;
    Q_EMIT factorChanged(Value);
}

bool TGeometryScale::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parent() && event->type() == QEvent::ApplicationFontChange && FAutomatic)
        UpdateFactor(ApplicationFactor());
    return QObject::eventFilter(watched, event);
}

int ScalePixels(int Pixels)
{
    return TGeometryScale::Instance()->Scaled(Pixels);
}

QRect ScaleRect(const QRect &Designed)
{
    return QRect(ScalePixels(Designed.x()), ScalePixels(Designed.y()),
                 ScalePixels(Designed.width()), ScalePixels(Designed.height()));
}

QFont FontOfHeight(const QFont &Base, int Height)
{
    QFont font = Base;
    int size = std::max(1, Height);
    font.setPixelSize(size);
    while (size > 1 && QFontMetrics(font).height() > Height)
        font.setPixelSize(--size);
    return font;
}

void ScaleFormGeometry(QWidget *Form)
{
    auto designed = [](QWidget *widget, const QRect &current) {
        const QVariant stored = widget->property(DesignedGeometryProperty);
        if (stored.isValid())
            return stored.toRect();
        widget->setProperty(DesignedGeometryProperty, current);
        return current;
    };
    for (QObject *child : Form->children()) {
        auto *widget = qobject_cast<QWidget *>(child);
        if (widget && !widget->isWindow())
            widget->setGeometry(ScaleRect(designed(widget, widget->geometry())));
    }
    const QSize size = ScaleRect(designed(Form, QRect(QPoint(), Form->size()))).size();
    if (Form->minimumSize() == Form->maximumSize())
        Form->setFixedSize(size);
    else
        Form->resize(size);
}

} // namespace oxa
