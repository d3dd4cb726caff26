#pragma once

#include "App/DesignSystem/Buttons.h"
#include "App/Panel/Content/PanelContext.h"

class QHBoxLayout;

namespace vespra {

/// The mark, the application's name, and the way to the settings.
class Header final : public QWidget {
public:
    explicit Header(const PanelContext& context);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void layOut();

    const Theme theme_;
    QHBoxLayout* row_;
    FollowsLook follows_;
};

} // namespace vespra
