#pragma once

#include "App/DesignSystem/Label.h"

namespace vespra {

/// An icon that goes with a text and is not read aloud.
class IconLabel final : public QWidget {
public:
    /// `size` in points.
    IconLabel(const Theme& theme, double size, Ink ink);

    /// `icon` is one of Resources/icons.
    void show(std::string_view icon, Ink ink);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme theme_;
    std::string icon_;
    double size_;
    Ink ink_;
    FollowsLook follows_;
};

} // namespace vespra
