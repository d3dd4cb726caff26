#include "App/Panel/PanelMotion.h"

namespace vespra {

PanelMotion::PanelMotion(MainLoop& mainLoop, const PanelPresentation& presentation, std::function<void(double)> apply)
    : apply_{std::move(apply)}
    , loop_{mainLoop, [this, &presentation] {
                const bool isShown = presentation.isShown();
                moveTo(isShown ? 1 : 0, presentation.change(isShown));
            }}
{
    animation_.setEasingCurve(QEasingCurve::OutCubic);
    QObject::connect(&animation_, &QVariantAnimation::valueChanged, &animation_, [this](const QVariant& value) {
        this->apply(value.toDouble());
    });
}

void PanelMotion::moveTo(double end, Seconds length)
{
    animation_.stop();
    if (progress_ == end)
        return;
    if (length == 0s)
        return apply(end);
    animation_.setStartValue(progress_);
    animation_.setEndValue(end);
    animation_.setDuration(static_cast<int>(length / 1ms));
    animation_.start();
}

void PanelMotion::apply(double progress)
{
    progress_ = progress;
    apply_(progress);
}

} // namespace vespra
