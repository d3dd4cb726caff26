#pragma once

#include "App/DesignSystem/Theme.h"

namespace vespra {

/// Two letters on a small ground, in the place of a picture. For a screen reader it is not there: the name stands
/// beside it.
class Glyph final : public QWidget {
public:
    Glyph(const Theme& theme, const std::string& letters);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme theme_;
    QString letters_;
    FollowsLook follows_;
};

} // namespace vespra
