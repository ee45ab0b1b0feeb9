#pragma once

#include "oxa/oxa_export.h"

#include <QFont>
#include <QObject>
#include <QRect>

class QWidget;

namespace oxa {

// The pixel sizes of the components (column widths, cell sizes, form
// layouts, thresholds) were designed for the original toolkit's 8-point
// sans-serif font at 96 pixels per inch, whose metrics are these:
// the height of a line of text,
inline constexpr int ReferenceFontHeight = 13;
// the average width of the Latin letters (the dialog base unit),
inline constexpr int ReferenceAverageCharWidth = 6;
// and the width of a digit, which times and dates are made of.
inline constexpr int ReferenceDigitWidth = 6;

// The one geometry scale of the library: the factor that maps the designed
// pixel sizes onto the application's font. Automatically it is the largest
// of the ratios of the application font's metrics to the reference metrics,
// recomputed when the application font changes; a host may fix it instead
// (1.0 gives the designed pixels exactly) and return to the automatic one.
// The factor is never below 1: a smaller font keeps the designed sizes.
//
//     oxa::TGeometryScale::Instance()->SetFactor(1.5); // fixed
//     oxa::TGeometryScale::Instance()->ResetFactor();  // automatic again
//
// Components that lay themselves out by pixels follow factorChanged.
class OXA_EXPORT TGeometryScale : public QObject
{
    Q_OBJECT
    Q_PROPERTY(double Factor READ Factor WRITE SetFactor RESET ResetFactor NOTIFY factorChanged)
    Q_PROPERTY(bool Automatic READ Automatic NOTIFY automaticChanged)

public:
    // The application's scale; it lives as long as the application object.
    static TGeometryScale *Instance();

    // The factor in force: the host's, or the automatic one.
    double Factor() const;
    // Fixes the factor; values below 1 (and NaN) give 1.
    void SetFactor(double Value);
    // Returns to the factor of the application font.
    void ResetFactor();
    bool Automatic() const { return FAutomatic; }

    // The automatic factor for a font: 1 for the reference font or smaller.
    static double FactorForFont(const QFont &Font);

    // A designed size in pixels at the factor in force, rounded.
    int Scaled(int Pixels) const;

Q_SIGNALS:
    void factorChanged(double Factor);
    void automaticChanged(bool Automatic);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit TGeometryScale(QObject *parent);
    void UpdateFactor(double Value);

    bool FAutomatic = true;
    double FFactor = 1.0;
};

// TGeometryScale::Instance()->Scaled(Pixels).
OXA_EXPORT int ScalePixels(int Pixels);
// A rectangle designed in pixels, position and size scaled.
OXA_EXPORT QRect ScaleRect(const QRect &Designed);

// Base with the largest pixel size whose line height (ascent + descent)
// is at most Height pixels: the toolkit sizes fonts by their height.
OXA_EXPORT QFont FontOfHeight(const QFont &Base, int Height);

// Lays out a form built from a form description at the scale in force: the
// geometry of every child widget and the form's fixed size are its designed
// ones (remembered on the first call) scaled. Call it after setupUi, and
// again when the factor changes.
OXA_EXPORT void ScaleFormGeometry(QWidget *Form);

} // namespace oxa
