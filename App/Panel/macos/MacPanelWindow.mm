#include "App/Panel/PanelFrame.h"
#include "App/Panel/PanelMotion.h"
#include "App/Panel/PanelWindow.h"

#include <QScreen>

#import "App/Panel/macos/KeyPanel.h"
#import <AppKit/AppKit.h>

namespace vespra {

namespace {

    /// From the coordinates of Qt, which count from the top of the first screen, to the system's.
    NSRect systemFrame(const QRect& frame)
    {
        const CGFloat top = NSMaxY([NSScreen screens].firstObject.frame);
        return NSMakeRect(frame.x(), top - frame.y() - frame.height(), frame.width(), frame.height());
    }

    class GlobalClickMonitor final : public OutsideClickMonitor {
    public:
        explicit GlobalClickMonitor(std::function<void()> onClick)
            : token_{[NSEvent addGlobalMonitorForEventsMatchingMask:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown
                  | NSEventMaskOtherMouseDown
                                                            handler:^(NSEvent*) {
                                                                onClick();
                                                            }]}
        {
        }
        ~GlobalClickMonitor() override
        {
            if (token_)
                [NSEvent removeMonitor:token_];
        }
        GlobalClickMonitor(const GlobalClickMonitor&) = delete;
        GlobalClickMonitor& operator=(const GlobalClickMonitor&) = delete;

    private:
        id token_;
    };

    VespraKeyPanel* makeKeyPanel()
    {
        VespraKeyPanel* panel = [[VespraKeyPanel alloc]
            initWithContentRect:NSZeroRect
                      styleMask:NSWindowStyleMaskBorderless | NSWindowStyleMaskNonactivatingPanel
                        backing:NSBackingStoreBuffered
                          defer:YES];
        panel.releasedWhenClosed = NO;
        panel.opaque = NO;
        panel.backgroundColor = [NSColor clearColor];
        // The frame draws its own.
        panel.hasShadow = NO;
        panel.hidesOnDeactivate = NO;
        panel.level = NSPopUpMenuWindowLevel;
        panel.animationBehavior = NSWindowAnimationBehaviorNone;
        panel.collectionBehavior = NSWindowCollectionBehaviorCanJoinAllSpaces
            | NSWindowCollectionBehaviorFullScreenAuxiliary | NSWindowCollectionBehaviorTransient;
        return panel;
    }

    class MacPanelWindow final : public PanelWindow {
    public:
        MacPanelWindow(const Theme& theme, const PanelPresentation& presentation, PanelFrame& frame)
            : frame_{frame}
            , panel_{makeKeyPanel()}
            , motion_{theme.mainLoop, presentation, [this](double progress) { show(progress); }}
        {
            const auto cancel = lifetime_.guard([this] { notify(onCancel); });
            panel_.onCancel = ^{
                cancel();
            };
            frame_.onEscape = cancel;
            frame_.onPressOutside = cancel;
            frame_.onContentResize = lifetime_.guard([this] { notify(onContentResize); });
            embed();
        }
        ~MacPanelWindow() override
        {
            [panel_ orderOut:nil];
            [view_ removeFromSuperview];
            frame_.onEscape = frame_.onPressOutside = frame_.onContentResize = {};
        }
        MacPanelWindow(const MacPanelWindow&) = delete;
        MacPanelWindow& operator=(const MacPanelWindow&) = delete;

        bool canBePlaced() const override { return true; }

        QSize contentSize(int maximumHeight) override { return frame_.contentSize(maximumHeight); }

        void orderIn(const std::optional<PanelPlace>& there) override
        {
            place(there.value_or(inTheMiddle()));
            show(motion_.progress());
            frame_.show();
            [panel_ makeKeyAndOrderFront:nil];
            [panel_ makeFirstResponder:view_];
        }

        void place(const PanelPlace& place) override
        {
            place_ = place;
            const auto frame = frame_.frameAround(place.content);
            frame_.resize(frame.size());
            [panel_ setFrame:systemFrame(frame) display:YES];
            view_.frame = NSMakeRect(0, 0, frame.width(), frame.height());
        }

        void orderOut() override
        {
            [panel_ orderOut:nil];
            frame_.hide();
        }

        bool isInFront() const override { return panel_.keyWindow == YES; }

        std::unique_ptr<OutsideClickMonitor> monitorOutsideClicks(std::function<void()> onClick) override
        {
            return std::make_unique<GlobalClickMonitor>(std::move(onClick));
        }

    private:
        void embed()
        {
            frame_.setAttribute(Qt::WA_NativeWindow);
            view_ = (__bridge NSView*)reinterpret_cast<void*>(frame_.winId());
            panel_.contentView = [[NSView alloc] initWithFrame:NSZeroRect];
            [panel_.contentView addSubview:view_];
        }

        /// While the item does not say where it is.
        PanelPlace inTheMiddle()
        {
            const auto* screen = frame_.screen();
            const auto visible = screen->availableGeometry();
            QRect content{{}, contentSize(visible.height() - 2 * panelGeometry::inset)};
            content.moveCenter(visible.center());
            return {.content = content};
        }

        void show(double progress)
        {
            const auto drop = static_cast<int>(motion::drop * (1 - progress));
            panel_.alphaValue = progress;
            [panel_ setFrameOrigin:systemFrame(frame_.frameAround(place_.content).translated(0, -drop)).origin];
        }

        PanelFrame& frame_;
        VespraKeyPanel* panel_;
        NSView* view_ = nil;
        PanelPlace place_;
        PanelMotion motion_;
        Lifetime lifetime_;
    };

} // namespace

std::unique_ptr<PanelWindow> makePanelWindow(
    const Theme& theme, const PanelPresentation& presentation, PanelFrame& frame)
{
    return std::make_unique<MacPanelWindow>(theme, presentation, frame);
}

} // namespace vespra
