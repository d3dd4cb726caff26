#include "App/Launch/AppSurfaces.h"
#import "App/MenuBar/macos/StatusDotView.h"
#include "App/MenuBar/StatusItem.h"
#include "App/MenuBar/StatusItemDrawing.h"
#include "App/System/macos/NotificationObserver.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainLoop.h"

#include <QColor>
#include <QImage>
#include <QPainter>

#import <AppKit/AppKit.h>
#include <cmath>

/// What the button and the menu call.
@interface VespraStatusItemTarget : NSObject
@property (nonatomic, copy) void (^onClick)(void);
@property (nonatomic, copy) void (^onChoose)(NSInteger tag);
@end

@implementation VespraStatusItemTarget
- (void)click:(id)sender
{
    self.onClick();
}
- (void)choose:(NSMenuItem*)entry
{
    self.onChoose(entry.tag);
}
@end

namespace vespra {

namespace {

    NSString* nsText(const std::string& text) { return [NSString stringWithUTF8String:text.c_str()]; }

    /// The mark at whole pixels of every kind of screen, in a picture of `size` points.
    NSImage* markPixels(bool isActive, NSSize size)
    {
        NSImage* image = [[NSImage alloc] initWithSize:size];
        for (const int scale : {1, 2}) {
            QImage drawn{QSizeF{size.width, size.height}.toSize() * scale, QImage::Format_ARGB32_Premultiplied};
            drawn.fill(Qt::transparent);
            QPainter painter{&drawn};
            painter.scale(scale, scale);
            drawStatusMark(painter, isActive, Qt::black);
            painter.end();
            CGImageRef pixels = drawn.toCGImage();
            NSBitmapImageRep* representation = [[NSBitmapImageRep alloc] initWithCGImage:pixels];
            CFRelease(pixels);
            representation.size = size;
            [image addRepresentation:representation];
        }
        return image;
    }

    /// As high as the mark is, which is no whole number of points: its upper edge counts.
    NSImage* markImage(bool isActive)
    {
        const NSSize whole = NSMakeSize(statusImage::width, std::ceil(statusImage::height));
        NSImage* pixels = markPixels(isActive, whole);
        NSImage* image = [NSImage
             imageWithSize:NSMakeSize(statusImage::width, statusImage::height)
                   flipped:NO
            drawingHandler:^BOOL(NSRect area) {
                [pixels drawInRect:NSMakeRect(NSMinX(area), NSMaxY(area) - whole.height, whole.width, whole.height)];
                return YES;
            }];
        [image setTemplate:YES];
        return image;
    }

    NSString* keyEquivalent(StatusMenuAction action)
    {
        switch (action) {
        case StatusMenuAction::openSettings:
            return @",";
        case StatusMenuAction::quit:
            return @"q";
        case StatusMenuAction::openPanel:
        case StatusMenuAction::toggleSession:
            break;
        }
        return @"";
    }

    /// Qt counts from the upper left corner of the first screen, AppKit from its lower left one.
    QRect qtRect(NSRect rect)
    {
        const double top = NSMaxY([NSScreen screens].firstObject.frame);
        return QRectF{NSMinX(rect), top - NSMaxY(rect), NSWidth(rect), NSHeight(rect)}.toRect();
    }

    class MacStatusItem final : public StatusItem {
    public:
        explicit MacStatusItem(MainLoop& mainLoop);
        ~MacStatusItem() override { [[NSStatusBar systemStatusBar] removeStatusItem:item_]; }

        Features features() const override
        {
            return {.hasTitle = true,
                .hasToolTip = false,
                .menu = {StatusMenuAction::openSettings, StatusMenuAction::quit}};
        }
        void show(const StatusItemContent& content) override;
        void popUpMenu() override;
        void setHighlighted(bool highlighted) override;
        std::optional<QRect> buttonFrame() const override;
        std::optional<QRect> visibleFrame() const override;

    private:
        NSStatusBarButton* button() const { return item_.button; }
        void installDot();
        void showTitle();
        void alignDot();

        MainLoop& mainLoop_;
        NSStatusItem* item_ = [[NSStatusBar systemStatusBar] statusItemWithLength:NSVariableStatusItemLength];
        VespraStatusItemTarget* target_ = [[VespraStatusItemTarget alloc] init];
        StatusDotView* dot_ = [[StatusDotView alloc] initWithFrame:NSZeroRect];
        NSLayoutConstraint* leading_;
        NSLayoutConstraint* top_;
        std::optional<StatusItemContent> content_;
        std::optional<NotificationObserver> frameChanges_;
        Lifetime lifetime_;
    };

    MacStatusItem::MacStatusItem(MainLoop& mainLoop)
        : mainLoop_{mainLoop}
    {
        target_.onClick = ^{
            const bool isRight = NSApp.currentEvent.type == NSEventTypeRightMouseUp;
            notify(onClick, isRight ? Click::secondary : Click::primary);
        };
        target_.onChoose = ^(NSInteger tag) {
            notify(onChoose, static_cast<StatusMenuAction>(tag));
        };
        button().target = target_;
        button().action = @selector(click:);
        [button() sendActionOn:NSEventMaskLeftMouseUp | NSEventMaskRightMouseUp];
        // Digits of equal width, so that the item does not jitter.
        button().font = [NSFont monospacedDigitSystemFontOfSize:[NSFont systemFontSize] weight:NSFontWeightRegular];
        installDot();
        button().postsFrameChangedNotifications = YES;
        frameChanges_.emplace([NSNotificationCenter defaultCenter],
            NSViewFrameDidChangeNotification,
            lifetime_.guard([this] { alignDot(); }),
            button());
        setPresence(Presence::shown);
    }

    void MacStatusItem::installDot()
    {
        dot_.hidden = YES;
        [button() addSubview:dot_];
        leading_ = [dot_.leadingAnchor constraintEqualToAnchor:button().leadingAnchor];
        top_ = [dot_.topAnchor constraintEqualToAnchor:button().topAnchor];
        [NSLayoutConstraint activateConstraints:@[ leading_, top_ ]];
    }

    void MacStatusItem::show(const StatusItemContent& content)
    {
        const auto before = std::exchange(content_, content);
        if (!before || before->isActive != content.isActive)
            button().image = markImage(content.isActive);
        dot_.hidden = !content.isActive;
        [button() setAccessibilityLabel:nsText(content.accessibilityLabel)];
        if (!before || before->title != content.title)
            showTitle();
        alignDot();
    }

    void MacStatusItem::showTitle()
    {
        button().title = nsText(content_->title.value_or(""));
        button().imagePosition = content_->title ? NSImageLeft : NSImageOnly;
    }

    void MacStatusItem::alignDot()
    {
        const NSRect image = [static_cast<NSButtonCell*>(button().cell) imageRectForBounds:button().bounds];
        const auto origin = statusDotOrigin({NSMinX(image), NSMinY(image), NSWidth(image), NSHeight(image)},
            button().isFlipped,
            NSHeight(button().bounds));
        if (!origin)
            return;
        leading_.constant = origin->x();
        top_.constant = origin->y();
    }

    void MacStatusItem::popUpMenu()
    {
        NSMenu* menu = [[NSMenu alloc] initWithTitle:@""];
        for (const auto& entry : content_ ? content_->menu : std::vector<StatusMenuEntry>{}) {
            NSMenuItem* shown = [menu addItemWithTitle:nsText(entry.title)
                                                action:@selector(choose:)
                                         keyEquivalent:keyEquivalent(entry.action)];
            shown.target = target_;
            shown.tag = static_cast<NSInteger>(entry.action);
        }
        [menu popUpMenuPositioningItem:nil atLocation:NSMakePoint(0, NSHeight(button().bounds) + 4) inView:button()];
    }

    /// In a later turn: once the click is over, the button takes its own highlight away.
    void MacStatusItem::setHighlighted(bool highlighted)
    {
        mainLoop_.post(lifetime_.guard([this, highlighted] { [button() highlight:highlighted]; }));
    }

    std::optional<QRect> MacStatusItem::buttonFrame() const
    {
        NSWindow* window = button().window;
        if (!window)
            return {};
        return qtRect([window convertRectToScreen:[button() convertRect:button().bounds toView:nil]]);
    }

    std::optional<QRect> MacStatusItem::visibleFrame() const
    {
        NSScreen* screen = button().window.screen;
        return screen ? std::optional{qtRect(screen.visibleFrame)} : std::nullopt;
    }

} // namespace

std::unique_ptr<StatusItem> makeStatusItem(const SurfaceContext& context)
{
    return std::make_unique<MacStatusItem>(context.mainLoop);
}

} // namespace vespra
