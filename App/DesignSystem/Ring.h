#pragma once

#include "App/DesignSystem/Theme.h"

#include <optional>

namespace vespra {

/// The time of a session inside a ring that shows how much is left.
class Ring final : public QWidget {
public:
    struct Facts {
        std::string clock;
        std::string subtitle;
        std::string spoken; // for a screen reader
        /// 0 to 1; absent: a ring of dots.
        std::optional<double> remaining;
        bool operator==(const Facts&) const = default;
    };

    explicit Ring(const Theme& theme);

    void show(const Facts& facts);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawClock(QPainter& painter) const;

    const Theme theme_;
    Facts facts_;
    FollowsLook follows_;
};

} // namespace vespra
