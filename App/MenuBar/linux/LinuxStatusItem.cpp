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

    std::unique_ptr<StatusNotifierItem> published(QObject& object, bool hasTitle)
    {
        const auto id = QString::fromStdString(Brand::appName());
        const auto menu = QString::fromLatin1(TrayMenu::path);
        if (hasTitle)
            return std::make_unique<LabelledStatusNotifierItem>(&object, id, menu);
        return std::make_unique<StatusNotifierItem>(&object, id, menu);
    }

} // namespace

LinuxStatusItem::LinuxStatusItem(MainLoop& mainLoop, const AppearanceMonitoring& appearance)
    // These show no label, or one in the place of the icon: nothing is to wake up for it.
    : hasTitle_{!desktop::isCurrent("MATE") && !desktop::isCurrent("XFCE") && !desktop::isCurrent("KDE")}
    , mainLoop_{mainLoop}
    , appearance_{appearance}
    , bus_{dbus::sessionBus()}
    , item_{published(itemObject_, hasTitle_)}
    , menu_{&menuObject_}
{
    item_->onActivate = [this](QPoint told) { activated(told); };
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
    return {.hasTitle = hasTitle_, .hasToolTip = true, .menu = {openPanel, toggleSession, openSettings, quit}};
}

void LinuxStatusItem::show(const StatusItemContent& content)
{
    isActive_.set(content.isActive);
    item_->setTitle(qtText(content.accessibilityLabel));
    item_->setToolTip(qtText(content.toolTip.value_or("")));
    item_->setLabel(qtText(content.title.value_or("")).trimmed()); // panels keep it apart from the icon themselves
    menu_.setEntries(content.menu);
    if (iconLoop_)
        return;
    iconLoop_.emplace(mainLoop_, [this] { drawIcon(); });
    publish();
}

void LinuxStatusItem::publish()
{
    const auto put = [this](const char* path, QObject& object) {
        return bus_.registerObject(QString::fromLatin1(path), &object, QDBusConnection::ExportAdaptors);
    };
    if (put(StatusNotifierItem::path, itemObject_) && put(TrayMenu::path, menuObject_))
        registration_.emplace(bus_, [this](Presence presence) { setPresence(presence); });
    else
        setPresence(Presence::absent); // there is no bus
}

void LinuxStatusItem::drawIcon()
{
    const std::pair next{isActive_.get(), trayColors(appearance_.current())};
    if (std::exchange(drawn_, next) != next)
        item_->setIcon(trayImages(next.first, next.second));
}

void LinuxStatusItem::activated(QPoint told)
{
    if (const auto clicked = clickedPlace(told, pointer(), screens())) {
        place_ = clicked;
        isPlaceClicked_ = true;
    }
    notify(onClick, Click::primary);
}

/// In a later turn, so that the panel has its answer even if the application ends.
void LinuxStatusItem::chosen(StatusMenuAction action)
{
    if (!isPlaceClicked_)
        place_ = pointer(); // near the item, which the menu hangs from
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
