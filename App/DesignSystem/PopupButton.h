#pragma once

#include "App/DesignSystem/Theme.h"

#include <QComboBox>

namespace vespra {

/// One of several choices, on a small button that opens the list of them. The wheel passes: it is for the page.
class PopupButton final : public QComboBox {
public:
    PopupButton(const Theme& theme, const std::vector<std::string>& titles);

    /// Follows the model: tells nobody. `index` is that of a title.
    void show(std::size_t index);
    /// Called when the user has chosen one.
    std::function<void(std::size_t index)> onChoose;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void apply();

    const Theme theme_;
    ObservationLoop loop_;
};

} // namespace vespra
