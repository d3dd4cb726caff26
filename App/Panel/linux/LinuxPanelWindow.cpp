#include "App/Panel/linux/Compositing.h"
#include "App/Panel/PanelFrame.h"
#include "App/Panel/PanelMotion.h"
#include "App/Panel/PanelWindow.h"
#include "HelperProtocol/Brand.h"

#include <QGuiApplication>
#include <QScreen>

namespace vespra {

namespace {

    // The windowing system tells where a popup was clicked beside, wherever on the screen that is.
    constexpr Qt::WindowFlags popup = Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint;
    constexpr Qt::WindowFlags ordinary = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint
        | Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint;

    class PopupClickMonitor final : public OutsideClickMonitor {
    public:
        PopupClickMonitor(PanelFrame& frame, std::function<void()> onClick)
            : frame_{frame}
        {
            frame_.onPressOutside = std::move(onClick);
        }
        ~PopupClickMonitor() override { frame_.onPressOutside = {}; }
        PopupClickMonitor(const PopupClickMonitor&) = delete;
        PopupClickMonitor& operator=(const PopupClickMonitor&) = delete;

    private:
        PanelFrame& frame_;
    };

    class LinuxPanelWindow final : public PanelWindow {
    public:
        LinuxPanelWindow(const Theme& theme, const PanelPresentation& presentation, PanelFrame& frame)
            : frame_{frame}
            , motion_{theme.mainLoop, presentation, [this](double progress) { show(progress); }}
        {
            frame_.setWindowTitle(qtText(Brand::appName()));
            frame_.onEscape = [this] {
                if (isPopup_)
                    notify(onCancel);
            };
            frame_.onContentResize = [this] { contentResized(); };
            frame_.onClose = [this] { return closes(); };
        }
        ~LinuxPanelWindow() override
        {
            frame_.onEscape = frame_.onContentResize = {};
            frame_.onClose = {};
        }
        LinuxPanelWindow(const LinuxPanelWindow&) = delete;
        LinuxPanelWindow& operator=(const LinuxPanelWindow&) = delete;

        bool canBePlaced() const override
        {
            return !QGuiApplication::platformName().startsWith(QLatin1String{"wayland"});
        }

        QSize contentSize(int maximumHeight) override { return frame_.contentSize(maximumHeight); }

        void orderIn(const std::optional<PanelPlace>& place) override
        {
            isPopup_ = place.has_value();
            become(isPopup_ ? popup : ordinary);
            // A compositor comes and goes as the user likes.
            fades_ = isPopup_ && compositing::isRunning();
            // The last time that it faded has left it transparent.
            if (!fades_)
                frame_.setWindowOpacity(1);
            if (place)
                orderInPopup(*place);
            else
                orderInWindow();
            frame_.raise();
            frame_.activateWindow();
        }

        void place(const PanelPlace& place) override
        {
            place_ = place;
            frame_.setGeometry(frame_.frameAround(place.content));
        }

        void orderOut() override { frame_.hide(); }

        bool isInFront() const override { return isPopup_ || frame_.isActiveWindow(); }

        std::unique_ptr<OutsideClickMonitor> monitorOutsideClicks(std::function<void()> onClick) override
        {
            return std::make_unique<PopupClickMonitor>(frame_, std::move(onClick));
        }

    private:
        void become(Qt::WindowFlags flags)
        {
            if (frame_.windowFlags() != flags)
                frame_.setWindowFlags(flags);
        }

        void orderInPopup(const PanelPlace& there)
        {
            frame_.setGround(fades_ ? PanelFrame::Ground::floating : PanelFrame::Ground::square);
            frame_.setMinimumSize(0, 0);
            frame_.setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
            place(there);
            show(motion_.progress());
            frame_.showNormal(); // it may have been minimized as a window
        }

        void orderInWindow()
        {
            frame_.setGround(PanelFrame::Ground::window);
            fitWindow();
            frame_.showNormal();
        }

        void fitWindow() { frame_.setFixedSize(frame_.contentSize(frame_.screen()->availableSize().height())); }

        void contentResized()
        {
            if (isPopup_)
                notify(onContentResize);
            else
                fitWindow();
        }

        bool closes()
        {
            if (!isPopup_ && frame_.isVisible())
                notify(onClose);
            return !frame_.isVisible();
        }

        /// Where nothing can be seen through, it is there or not.
        void show(double progress)
        {
            if (!fades_)
                return;
            const auto away = [&](ScreenEdge edge) -> QPointF {
                switch (edge) {
                case ScreenEdge::top:
                    return {0, -1};
                case ScreenEdge::bottom:
                    return {0, 1};
                case ScreenEdge::left:
                    return {-1, 0};
                case ScreenEdge::right:
                    break;
                }
                return {1, 0};
            };
            const auto offset = (away(place_.edge) * motion::drop * (1 - progress)).toPoint();
            frame_.setWindowOpacity(progress);
            frame_.move(frame_.frameAround(place_.content).topLeft() + offset);
        }

        PanelFrame& frame_;
        PanelPlace place_;
        bool isPopup_ = false;
        bool fades_ = false;
        PanelMotion motion_;
    };

} // namespace

std::unique_ptr<PanelWindow> makePanelWindow(
    const Theme& theme, const PanelPresentation& presentation, PanelFrame& frame)
{
    return std::make_unique<LinuxPanelWindow>(theme, presentation, frame);
}

} // namespace vespra
