#pragma once

#include "App/DesignSystem/Theme.h"

#include <QLabel>

namespace vespra {

/// The colour of a text: a member of the tokens.
using Ink = QColor Tokens::*;

/// A text that wraps, in a style and a colour of the look.
class Label final : public QLabel {
public:
    Label(const Theme& theme, TextStyle style, Ink ink = &Tokens::text);

    /// Plain text: nothing in it is taken for markup.
    void show(const std::string& text);
    void setInk(Ink ink);
    void setTextStyle(TextStyle style);

private:
    void apply();

    const Theme theme_;
    TextStyle style_;
    Ink ink_;
    ObservationLoop loop_;
};

} // namespace vespra
