#pragma once

#include "App/DesignSystem/Theme.h"

#include <QLabel>

namespace vespra {

/// The colour of a text: a member of the tokens.
using Ink = QColor Tokens::*;

/// A text that wraps, in a style and a colour of the look. Its digits are all equally wide.
class Label final : public QLabel {
public:
    Label(const Theme& theme, TextStyle style, Ink ink = &Tokens::text);

    /// Plain text: nothing in it is taken for markup.
    void show(const std::string& text);
    /// The same, read aloud as `spoken`.
    void show(const std::string& text, const std::string& spoken);
    void setInk(Ink ink);
    void setTextStyle(TextStyle style);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void apply();

    const Theme theme_;
    TextStyle style_;
    Ink ink_;
    ObservationLoop loop_;
};

} // namespace vespra
