#include "App/DesignSystem/Drawing.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vespra {

namespace {

    QColor over(const QColor& color, const QColor& ground)
    {
        const auto channel = [&](float top, float below) { return below + (top - below) * color.alphaF(); };
        return QColor::fromRgbF(channel(color.redF(), ground.redF()),
            channel(color.greenF(), ground.greenF()),
            channel(color.blueF(), ground.blueF()));
    }

    double luminance(const QColor& color)
    {
        const auto linear
            = [](double part) { return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
    }

    double contrast(const QColor& color, const QColor& ground)
    {
        const double one = luminance(over(color, ground)), other = luminance(ground);
        return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
    }

    constexpr std::array touches{ControlState{}, ControlState{.isHovered = true}, ControlState{.isPressed = true}};

    struct Pair {
        std::string what;
        QColor color, ground;
        double least;
    };

    constexpr double ofText = 4.5, ofShapes = 3;

    void addTexts(std::vector<Pair>& pairs, const Tokens& t)
    {
        for (const auto& ground : {t.window, t.panel, t.surface, t.surface2}) {
            pairs.push_back({"text on " + ground.name().toStdString(), t.text, ground, ofText});
            pairs.push_back({"text2 on " + ground.name().toStdString(), t.text2, ground, ofText});
        }
        pairs.push_back({"text on a chosen segment", t.text, t.raised, ofText});
        pairs.push_back({"accent on a chosen tab", t.accent, t.surface2, ofText});
        for (const auto& color : {t.accent, t.ok, t.info, t.bad, t.text3})
            pairs.push_back({"activity " + color.name().toStdString(), color, t.surface, ofText});
    }

    void addNotes(std::vector<Pair>& pairs, const Tokens& t)
    {
        struct {
            const char* kind;
            QColor ground, icon;
        } notes[]{{"ok", t.okSoft, t.ok},
            {"warn", t.warnSoft, t.warn},
            {"bad", t.badSoft, t.bad},
            {"info", t.infoSoft, t.info}};
        for (const auto& note : notes)
            for (const auto& behind : {t.panel, t.window}) {
                pairs.push_back({std::string{"text of note "} + note.kind, t.text2, over(note.ground, behind), ofText});
                pairs.push_back(
                    {std::string{"icon of note "} + note.kind, note.icon, over(note.ground, behind), ofShapes});
            }
    }

    void addControls(std::vector<Pair>& pairs, const Tokens& t)
    {
        for (const auto state : touches) {
            for (const auto kind : {ButtonKind::primary, ButtonKind::plain, ButtonKind::stop, ButtonKind::quiet})
                pairs.push_back(
                    {"button", buttonText(kind, state, t), over(buttonGround(kind, state, t), t.surface), ofText});
            for (const double knob : {0.0, 1.0})
                pairs.push_back({"switch", switchGround(knob, state, t), t.surface, ofShapes});
        }
        pairs.push_back({"knob", t.knob, t.off, ofShapes});
        for (const auto& ground : {t.panel, t.window, t.surface})
            pairs.push_back({"focus on " + ground.name().toStdString(), t.focus, ground, ofShapes});
        pairs.push_back({"ring", t.ring, t.panel, ofShapes});
        pairs.push_back({"what is left of the ring", t.ring, t.track, ofShapes});
        pairs.push_back({"icon of what is open", t.text3, t.surface, ofShapes});
    }

} // namespace

TEST(Contrast, IsEnoughInEveryAppearance)
{
    for (const bool isDark : {false, true})
        for (const bool hasHighContrast : {false, true}) {
            SCOPED_TRACE(testing::Message() << "dark " << isDark << ", high contrast " << hasHighContrast);
            const auto& t = tokens({.isDark = isDark, .hasHighContrast = hasHighContrast});
            std::vector<Pair> pairs;
            addTexts(pairs, t);
            addNotes(pairs, t);
            addControls(pairs, t);
            if (hasHighContrast) {
                pairs.push_back({"outline of a button", t.control, t.surface, ofShapes});
                pairs.push_back({"hairline", t.line, t.surface, ofShapes});
                pairs.push_back({"knob that is on", t.knobOn, t.ring, ofShapes});
            }
            for (const auto& pair : pairs)
                EXPECT_GE(contrast(pair.color, pair.ground), pair.least)
                    << pair.what << ": " << pair.color.name().toStdString() << " on "
                    << pair.ground.name().toStdString();
        }
}

} // namespace vespra
