#include "App/Desktop/DesktopSurfaces.h"

#include "App/Model/AppModel.h"
#include "App/Panel/Content/PanelContent.h"

#include <QApplication>
#include <QScreen>
#include <QShortcut>

namespace vespra {

namespace {

    /// A desktop that has a tray says so within this time.
    constexpr Seconds trayAnswer = 2s;
    /// A tray that starts anew is back within this time.
    constexpr Seconds trayReturn = 5s;

    class StatusItemAnchor final : public PanelAnchor {
    public:
        explicit StatusItemAnchor(StatusItem& item)
            : item_{item}
        {
        }

        std::optional<PanelHook> hook() const override
        {
            if (!item_.isShown())
                return {};
            const auto button = item_.buttonFrame(), visible = item_.visibleFrame();
            if (button && visible)
                return PanelHook{.item = *button, .visible = *visible};
            const auto& screen = *QGuiApplication::primaryScreen();
            return panelGeometry::usualCorner(screen.geometry(), screen.availableGeometry());
        }
        void setHighlighted(bool highlighted) override { item_.setHighlighted(highlighted); }

    private:
        StatusItem& item_;
    };

    void addShortcut(QWidget& window, const QKeySequence& keys, const std::function<void()>& action)
    {
        QObject::connect(new QShortcut{keys, &window}, &QShortcut::activated, &window, action);
    }

} // namespace

struct DesktopSurfaces::Panel {
    Panel(const SurfaceContext& context, std::function<void()> hide)
        : look{context.mainLoop, context.appearance}
        , theme{.mainLoop = context.mainLoop, .look = look.look()}
        , presentation{context.tasks, context.appearance}
        , frame{theme, [this, context, hide = std::move(hide)] { return new PanelContent{context, theme, hide}; }}
        , window{makePanelWindow(theme, presentation, frame)}
        , controller{context.model, *window, presentation}
    {
        addShortcut(frame, Qt::CTRL | Qt::Key_Q, [] { QCoreApplication::quit(); });
        addShortcut(
            frame, Qt::CTRL | Qt::Key_Comma, [&model = context.model] { notify(model.showSettings, std::nullopt); });
    }

    SystemLook look;
    Theme theme;
    PanelPresentation presentation;
    PanelFrame frame;
    std::unique_ptr<PanelWindow> window;
    PanelController controller;
};

DesktopSurfaces::DesktopSurfaces() = default;

DesktopSurfaces::~DesktopSurfaces() = default;

void DesktopSurfaces::activate() { showPanel(); }

void DesktopSurfaces::makePanel(const SurfaceContext& context)
{
    context_.emplace(context);
    panel_ = std::make_unique<Panel>(context, lifetime_.guard([this] { hidePanel(); }));
    panel_->window->onClose = lifetime_.guard([this] { closeWindow(); });
}

bool DesktopSurfaces::isPanelVisible() const { return panel_->controller.isVisible() && panel_->window->isInFront(); }

void DesktopSurfaces::showPanel()
{
    // How it is shown depends on whether there is an item.
    isPanelAskedFor_ = lastPresence_ == StatusItem::Presence::unknown;
    if (!isPanelAskedFor_)
        panel_->controller.show(anchor_);
}

void DesktopSurfaces::hidePanel()
{
    isPanelAskedFor_ = false;
    if (!panel_->controller.isOrdinaryWindow())
        panel_->controller.hide();
}

void DesktopSurfaces::makeStatusItem(const SurfaceContext& context, StatusItemActions actions)
{
    item_ = vespra::makeStatusItem(context);
    anchor_ = std::make_shared<StatusItemAnchor>(*item_);
    itemController_.emplace(context, *item_, std::move(actions));
    presenceLoop_.emplace(context.mainLoop, [this] { followPresence(); });
}

void DesktopSurfaces::followPresence()
{
    const auto before = std::exchange(lastPresence_, item_->presence());
    substitution_.reset();
    switch (lastPresence_) {
    case StatusItem::Presence::unknown:
        substitution_ = context_->tasks.schedule(trayAnswer, lifetime_.guard([this] { nothingIsHeard(); }));
        return;
    case StatusItem::Presence::shown:
        return itemIsShown();
    case StatusItem::Presence::absent:
        // At login a tray may start a little later than the application.
        if (before == StatusItem::Presence::unknown)
            substitution_ = context_->tasks.schedule(trayAnswer, lifetime_.guard([this] { nothingIsHeard(); }));
        else
            substitution_ = context_->tasks.schedule(trayReturn, lifetime_.guard([this] { itemIsAbsent(); }));
    }
}

void DesktopSurfaces::nothingIsHeard()
{
    lastPresence_ = StatusItem::Presence::absent;
    showPanel();
}

void DesktopSurfaces::itemIsShown()
{
    // The window stood in for the item.
    if (panel_->controller.isOrdinaryWindow() && panel_->frame.isMinimized())
        panel_->controller.hide();
    if (isPanelAskedFor_)
        showPanel();
}

/// Something to click is to be there, but not in the way.
void DesktopSurfaces::itemIsAbsent()
{
    if (panel_->controller.isOrdinaryWindow())
        return;
    panel_->controller.hide();
    panel_->controller.show(anchor_);
    panel_->frame.showMinimized();
}

/// Without an item nothing else could be clicked: while a session runs the window stays among those of the desktop, and
/// else the application ends with it.
void DesktopSurfaces::closeWindow()
{
    if (item_->isShown())
        panel_->controller.hide();
    else if (context_->model.coordinator().state().isActive())
        panel_->frame.showMinimized();
    else
        QCoreApplication::quit();
}

void DesktopSurfaces::makeSettingsWindow(const SurfaceContext& context) { settings_.emplace(context, panel_->theme); }

void DesktopSurfaces::showSettings(std::optional<SettingsTab> tab) { settings_->show(tab); }

void DesktopSurfaces::showOnboarding(const SurfaceContext& context)
{
    onboarding_.emplace(context, panel_->theme);
    onboarding_->show();
}

} // namespace vespra
