#pragma once

#include "App/System/AppearanceMonitoring.h"

#include <QColor>

namespace vespra {

/// Every colour of the look, by what it is for. The soft ones are laid over a surface.
struct Tokens {
    QColor window, panel, surface, surface2,
        raised; // grounds, from the back to the front; surface2 for what is pressed
    QColor line, line2; // hairlines, and those of a control
    QColor control; // the outline of a button; transparent where its ground is enough
    double hairline; // points
    QColor text, text2, text3; // what is said, what explains, what is not active
    QColor accent, accentFill, onAccent, accentSoft; // as text; as ground, the text on it; behind an icon
    QColor ok, warn, bad, info;
    QColor okSoft, warnSoft, badSoft, infoSoft;
    QColor focus, knob, knobOn, off, track, ring; // of controls; the ring is also what a switch is when on
    QColor edge, shadow; // of a window
};

/// Lives as long as the program.
const Tokens& tokens(const Appearance& appearance);

/// Distances and sizes, in points at the usual text size.
namespace measure {
    inline constexpr double panelWidth = 340, panelRadius = 14, panelPadding = 14, panelGap = 12, shadowMargin = 40;
    inline constexpr double cardRadius = 11, rowHeight = 40, rowPadding = 12, rowGap = 10;
    inline constexpr double buttonHeight = 32, buttonRadius = 9, buttonPadding = 14;
    inline constexpr double smallButtonHeight = 26, smallButtonRadius = 7, smallButtonPadding = 10;
    inline constexpr double switchWidth = 34, switchHeight = 20, switchInset = 2;
    inline constexpr double segmentHeight = 26, segmentInset = 2, segmentRadius = 7, segmentPadding = 4;
    inline constexpr double stepperButton = 24, stepperRadius = 7, stepperValue = 64;
    inline constexpr double ringSize = 156, ringRadius = 70, ringStroke = 7, ringDots = 24;
    inline constexpr double noteRadius = 10, glyphSize = 26, glyphRadius = 7, iconSize = 16, dotSize = 7;
    inline constexpr double focusWidth = 2, focusDistance = 2, hairline = 0.5;
    inline constexpr double settingsWidth = 640, onboardingWidth = 460;
} // namespace measure

/// How long things move, in milliseconds; with reduced motion none does.
namespace motion {
    inline constexpr int appear = 120, disappear = 90, change = 120;
    inline constexpr double drop = 6; // points that a panel comes down
} // namespace motion

} // namespace vespra
