#include "App/DesignSystem/Look.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace vespra {

namespace {

    /// The size of text that the measures are made for, in pixels.
    constexpr double usualSize = 13;
    /// Beyond it windows would not fit small screens any more.
    constexpr double largestScale = 1.5;
    /// In steps most measures stay whole numbers, and a usual size that is a little above 13 stays usual.
    constexpr double steps = 8;

    struct Letters {
        double size; // in points of the measures
        QFont::Weight weight;
        double lineHeight = 1.38; // of the size
    };

    Letters letters(TextStyle style)
    {
        switch (style) {
        case TextStyle::body:
            return {13, QFont::Normal};
        case TextStyle::strong:
            return {13, QFont::DemiBold};
        case TextStyle::medium:
            return {13, QFont::Medium};
        case TextStyle::caption:
            return {11.5, QFont::Normal, 1.35};
        case TextStyle::activity:
            return {11.5, QFont::Medium, 1.35};
        case TextStyle::glyph:
            return {11, QFont::DemiBold};
        case TextStyle::note:
            return {12, QFont::Normal};
        case TextStyle::section:
            return {12, QFont::DemiBold};
        case TextStyle::clock:
            return {32, QFont::DemiBold, 1.1};
        case TextStyle::longClock:
            return {27, QFont::DemiBold, 1.1};
        case TextStyle::title:
            break;
        }
        return {19, QFont::DemiBold};
    }

    /// What a point of type is in pixels of the layout.
    double pixelsPerPoint(const QFont& font) { return QFontMetricsF{font}.fontDpi() / 72; }

    double pixels(const QFont& font)
    {
        return font.pixelSize() > 0 ? font.pixelSize() : font.pointSizeF() * pixelsPerPoint(font);
    }

} // namespace

Look::Look(const Appearance& appearance, const QFont& base)
    : appearance_{appearance}
    , base_{base}
{
}

double Look::scale() const
{
    const double exact = pixels(base_.get()) / usualSize;
    return std::clamp(std::round(exact * steps) / steps, 1.0, largestScale);
}

int Look::units(double points) const { return static_cast<int>(std::lround(scaled(points))); }

QFont Look::font(TextStyle style) const
{
    const auto letter = letters(style);
    auto font = base_.get();
    font.setWeight(letter.weight);
    // In points of the type system: pixel sizes are whole numbers, and 11.5 would be lost.
    font.setPointSizeF(scaled(letter.size) / pixelsPerPoint(font));
    return font;
}

double Look::fontSize(TextStyle style) const { return scaled(letters(style).size); }

double Look::lineHeight(TextStyle style) const
{
    const auto letter = letters(style);
    return scaled(letter.size * letter.lineHeight);
}

} // namespace vespra
