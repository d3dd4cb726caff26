#pragma once

#include "App/DesignSystem/Tokens.h"
#include "Core/Observation/Observed.h"

#include <QFont>

namespace vespra {

/// What a text is for; each has its size and weight.
enum class TextStyle {
    body, // what is said
    strong, // names and values
    medium, // labels of controls
    caption, // what explains
    activity, // what somebody does now
    glyph, // two letters for a name
    note, // in notes and small buttons
    section, // above a card
    clock, // the time of a session
    longClock, // the same from an hour on
    title, // of a window that greets
};

/// Colours and letters as they are to be now: the system's appearance, its font and its size. Reading it inside an
/// observation block follows it. Main thread only.
class Look {
public:
    /// `base` is the system's font for text, at its size.
    Look(const Appearance& appearance, const QFont& base);

    const Appearance& appearance() const { return appearance_.get(); }
    void setAppearance(const Appearance& appearance) { appearance_.set(appearance); }
    void setFont(const QFont& base) { base_.set(base); }

    const Tokens& tokens() const { return vespra::tokens(appearance()); }
    QFont font(TextStyle style) const;
    /// In pixels of the layout, fractions included.
    double fontSize(TextStyle style) const;
    /// From one baseline to the next, in pixels of the layout.
    double lineHeight(TextStyle style) const;

    /// `points` of the measures at the size of the user's text: one and a half of it at 150 %.
    double scaled(double points) const { return points * scale(); }
    /// The same as a whole number for layouts.
    int units(double points) const;
    /// 1 at the usual size of text, in steps of an eighth up to one and a half.
    double scale() const;

private:
    Observed<Appearance> appearance_;
    Observed<QFont> base_;
};

} // namespace vespra
