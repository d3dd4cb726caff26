#include "App/DesignSystem/Look.h"

#include <QFontInfo>

#include <algorithm>
#include <cmath>

namespace vespra {

namespace {

    /// The size of text that the measures are made for, in pixels.
    constexpr double usualSize = 13;
    /// Beyond it windows would not fit small screens any more.
    constexpr double largestScale = 1.5;

    struct Letters {
        double size; // in points of the measures
        QFont::Weight weight;
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
            return {11.5, QFont::Normal};
        case TextStyle::note:
            return {12, QFont::Normal};
        case TextStyle::section:
            return {12, QFont::DemiBold};
        case TextStyle::clock:
            return {32, QFont::DemiBold};
        case TextStyle::longClock:
            return {27, QFont::DemiBold};
        case TextStyle::title:
            break;
        }
        return {19, QFont::DemiBold};
    }

} // namespace

Look::Look(const Appearance& appearance, const QFont& base)
    : appearance_{appearance}
    , base_{base}
{
}

double Look::scale() const { return std::clamp(QFontInfo{base_.get()}.pixelSize() / usualSize, 1.0, largestScale); }

int Look::units(double points) const { return static_cast<int>(std::lround(scaled(points))); }

QFont Look::font(TextStyle style) const
{
    const auto [size, weight] = letters(style);
    auto font = base_.get();
    font.setWeight(weight);
    // In points of the type system: pixel sizes are whole numbers, and 11.5 would be lost.
    font.setPointSizeF(QFontInfo{font}.pointSizeF() / QFontInfo{font}.pixelSize() * scaled(size));
    return font;
}

} // namespace vespra
