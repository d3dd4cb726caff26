#include "App/DesignSystem/Tokens.h"

namespace vespra {

namespace {

    /// "rrggbb" or "rrggbbaa" as a number, opaque unless `alpha` says otherwise.
    QColor rgb(unsigned value, double alpha = 1)
    {
        auto color = QColor::fromRgb(value);
        color.setAlphaF(static_cast<float>(alpha));
        return color;
    }

    QColor soft(unsigned value, unsigned alpha) { return rgb(value, alpha / 255.0); }

    const QColor none = rgb(0, 0);
    constexpr double strongHairline = 1;

    Tokens light()
    {
        return {
            .window = rgb(0xF6F5F8),
            .panel = rgb(0xFBFAFC),
            .surface = rgb(0xFFFFFF),
            .surface2 = rgb(0xEFEDF3),
            .raised = rgb(0xFFFFFF),
            .line = soft(0x000000, 0x14),
            .line2 = soft(0x000000, 0x26),
            .control = none,
            .hairline = measure::hairline,
            .text = rgb(0x1B1922),
            .text2 = rgb(0x5F5B6B),
            .text3 = rgb(0x757083),
            .accent = rgb(0x9C5C00),
            .accentFill = rgb(0xF4B13E),
            .onAccent = rgb(0x2A1B00),
            .accentSoft = soft(0xF4B13E, 0x33),
            .ok = rgb(0x1C7C46),
            .warn = rgb(0xA65B00),
            .bad = rgb(0xB3261E),
            .info = rgb(0x3F55B5),
            .okSoft = soft(0x1C7C46, 0x1A),
            .warnSoft = soft(0xE08A00, 0x1F),
            .badSoft = soft(0xB3261E, 0x17),
            .infoSoft = soft(0x3F55B5, 0x17),
            .focus = rgb(0x7A5CFF),
            .knob = rgb(0xFFFFFF),
            .knobOn = rgb(0xFFFFFF),
            .off = rgb(0x8E889D),
            .track = rgb(0xE9E6EE),
            .ring = rgb(0xBD7408),
            .edge = soft(0x000000, 0x2E),
            .shadow = soft(0x1B1922, 0x38),
        };
    }

    Tokens dark()
    {
        return {
            .window = rgb(0x17151C),
            .panel = rgb(0x1F1D26),
            .surface = rgb(0x2A2733),
            .surface2 = rgb(0x34303F),
            .raised = rgb(0x4A4559),
            .line = soft(0xFFFFFF, 0x14),
            .line2 = soft(0xFFFFFF, 0x2B),
            .control = none,
            .hairline = measure::hairline,
            .text = rgb(0xF2F0F6),
            .text2 = rgb(0xABA6B8),
            .text3 = rgb(0x948FA2),
            .accent = rgb(0xFFC65C),
            .accentFill = rgb(0xFFC65C),
            .onAccent = rgb(0x2A1B00),
            .accentSoft = soft(0xFFC65C, 0x29),
            .ok = rgb(0x5BD08F),
            .warn = rgb(0xFFB454),
            .bad = rgb(0xFF8A80),
            .info = rgb(0x9DB0FF),
            .okSoft = soft(0x5BD08F, 0x1F),
            .warnSoft = soft(0xFFB454, 0x1F),
            .badSoft = soft(0xFF8A80, 0x1F),
            .infoSoft = soft(0x9DB0FF, 0x1F),
            .focus = rgb(0xA78BFF),
            .knob = rgb(0xFFFFFF),
            .knobOn = rgb(0xFFFFFF),
            .off = rgb(0x7E7890),
            .track = rgb(0x393545),
            .ring = rgb(0xFFC65C),
            .edge = soft(0xFFFFFF, 0x24),
            .shadow = soft(0x000000, 0xA6),
        };
    }

    /// Lines that are seen, and nothing said in a paler voice.
    Tokens strong(Tokens tokens, QColor line, QColor off, QColor knobOn)
    {
        tokens.knobOn = knobOn;
        tokens.line = tokens.line2 = tokens.control = tokens.edge = line;
        tokens.hairline = strongHairline;
        tokens.text3 = tokens.text2;
        tokens.text2 = tokens.text;
        tokens.off = off;
        return tokens;
    }

} // namespace

const Tokens& tokens(const Appearance& appearance)
{
    static const Tokens table[2][2] = {
        {light(), strong(light(), rgb(0x5F5B6B), rgb(0x757083), light().knob)},
        {dark(), strong(dark(), rgb(0xABA6B8), rgb(0x948FA2), dark().onAccent)},
    };
    return table[appearance.isDark ? 1 : 0][appearance.hasHighContrast ? 1 : 0];
}

} // namespace vespra
