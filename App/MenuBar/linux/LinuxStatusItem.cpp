#include "App/MenuBar/linux/LinuxStatusItem.h"

#include "App/DesignSystem/Theme.h"
#include "App/Launch/AppSurfaces.h"
#include "App/System/linux/Desktop.h"
#include "HelperProtocol/Brand.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace vespra {

namespace {

    TrayScreen described(const QScreen& screen)
    {
        return {
            .geometry = screen.geometry(), .available = screen.availableGeometry(), .scale = screen.devicePixelRatio()};
    }

    std::vector<TrayScreen> screens()
    {
        std::vector<TrayScreen> all;
        for (const auto* screen : QGuiApplication::screens())
            all.push_back(described(*screen));
        return all;
    }

    /// Under Wayland a client learns of the pointer over its own windows only.
    std::optional<QPoint> pointer()
    {
        return qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ? std::nullopt : std::optional{QCursor::pos()};
    }

} // namespace

LinuxStatusItem::LinuxStatusItem(MainLoop& mainLoop, const AppearanceMonitoring& appearance)
    : mainLoop_{mainLoop}
    , appearance_{appearance}
    , bus_{dbus::sessionBus()}
    , item_{&itemObject_, qtText(Brand::appName()), QString::fromLatin1(TrayMenu::path)}
    , menu_{&menuObject_}
{
    item_.onActivate = [this](QPoint told) { activated(told); };
    menu_.onChoose = [this](StatusMenuAction action) { chosen(action); };
}

LinuxStatusItem::~LinuxStatusItem()
{
    for (const char* path : {StatusNotifierItem::path, TrayMenu::path})
        bus_.unregisterObject(QString::fromLatin1(path));
}

StatusItem::Features LinuxStatusItem::features() const
{
    using enum StatusMenuAction;
    // MATE's panel shows the text in the place of the icon.
    return {.hasTitle = !desktop::isCurrent("MATE"),
        .hasToolTip = true,
        .menu = {openPanel, toggleSession, openSettings, quit}};
}

void LinuxStatusItem::show(const StatusItemContent& content)
{
    isActive_.set(content.isActive);
    item_.setTitle(qtText(content.accessibilityLabel));
    item_.setToolTip(qtText(content.toolTip.value_or("")));
    item_.setLabel(qtText(content.title.value_or("")).trimmed()); // panels keep it apart from the icon themselves
    menu_.setEntries(content.menu);
    if (registration_)
        return;
    iconLoop_.emplace(mainLoop_, [this] { drawIcon(); });
    bus_.registerObject(QString::fromLatin1(StatusNotifierItem::path), &itemObject_, QDBusConnection::ExportAdaptors);
    bus_.registerObject(QString::fromLatin1(TrayMenu::path), &menuObject_, QDBusConnection::ExportAdaptors);
    registration_.emplace(bus_, [this](Presence presence) { setPresence(presence); });
}

void LinuxStatusItem::drawIcon()
{
    const std::pair next{isActive_.get(), trayColors(appearance_.current())};
    if (std::exchange(drawn_, next) != next)
        item_.setIcon(trayImages(next.first, next.second));
}

void LinuxStatusItem::activated(QPoint told)
{
    if (const auto clicked = clickedPlace(told, pointer(), screens()))
        place_ = clicked;
    notify(onClick, Click::primary);
}

/// In a later turn, so that the panel has its answer even if the application ends.
void LinuxStatusItem::chosen(StatusMenuAction action)
{
    if (!place_)
        place_ = pointer(); // near the item, under which the menu is
    mainLoop_.post(lifetime_.guard([this, action] { notify(onChoose, action); }));
}

std::optional<TrayScreen> LinuxStatusItem::screen() const
{
    const auto* found = place_ ? QGuiApplication::screenAt(*place_) : nullptr;
    return found ? std::optional{described(*found)} : std::nullopt;
}

std::optional<QRect> LinuxStatusItem::buttonFrame() const
{
    const auto found = screen();
    return found ? std::optional{itemFrame(*place_, *found)} : std::nullopt;
}

std::optional<QRect> LinuxStatusItem::visibleFrame() const
{
    const auto found = screen();
    return found ? std::optional{found->available} : std::nullopt;
}

std::unique_ptr<StatusItem> makeStatusItem(const SurfaceContext& context)
{
    return std::make_unique<LinuxStatusItem>(context.mainLoop, context.appearance);
}

} // namespace vespra
