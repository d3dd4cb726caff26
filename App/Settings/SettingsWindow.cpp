#include "App/Settings/SettingsWindow.h"

#include "App/DesignSystem/Following.h"
#include "App/DesignSystem/ScrollArea.h"
#include "App/Settings/PageView.h"
#include "App/Settings/TabBar.h"
#include "App/System/ClosedLidController.h"
#include "App/Wording/Localized.h"
#include "Core/Observation/ReadScope.h"

#include <QCloseEvent>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>

namespace vespra {

namespace {

    constexpr double tabsTop = 2, tabsBottom = 10;
    constexpr int lineHeight = 1; // in pixels

    /// A hairline below the tabs.
    QWidget* makeLine(const Theme& theme)
    {
        auto* line = new QWidget;
        line->setAutoFillBackground(true);
        line->setFixedHeight(lineHeight);
        follow(*line, theme, [line, &look = theme.look] {
            auto colors = line->palette();
            colors.setColor(QPalette::Window, look.tokens().line);
            line->setPalette(colors);
        });
        return line;
    }

} // namespace

SettingsWindow::SettingsWindow(const SurfaceContext& context, const Theme& theme)
    : surface_{context.model, theme}
    , tabs_{new TabBar{theme}}
    , scroller_{new ScrollArea{theme}}
    , ground_{theme, *this}
    , loop_{theme.mainLoop, [this] { followTab(); }}
{
    const auto& look = theme.look;
    auto* column = new QVBoxLayout{this};
    column->setContentsMargins(0, look.units(tabsTop), 0, 0);
    column->setSpacing(0);
    column->addWidget(tabs_, 0, Qt::AlignHCenter);
    column->addSpacing(look.units(tabsBottom));
    column->addWidget(makeLine(theme));
    column->addWidget(scroller_, 1);
    tabs_->onChoose = [&model = surface_.model](SettingsTab tab) { model.setSettingsTab(tab); };
    addShortcuts();
    fit();
}

void SettingsWindow::addShortcuts()
{
    int number = Qt::Key_1;
    for (const auto& [tab, name] : rawValues<SettingsTab>) {
        const auto* const shortcut = new QShortcut{QKeySequence{Qt::CTRL | static_cast<Qt::Key>(number++)}, this};
        connect(shortcut, &QShortcut::activated, this, [this, tab = tab] { surface_.model.setSettingsTab(tab); });
    }
    for (const auto& keys : {QKeySequence{QKeySequence::Close}, QKeySequence{Qt::Key_Escape}}) {
        const auto* const shortcut = new QShortcut{keys, this};
        connect(shortcut, &QShortcut::activated, this, &QWidget::close);
    }
}

/// What the page shows may have changed while nobody looked.
void SettingsWindow::refreshFacts()
{
    auto& model = surface_.model;
    model.loginItem().refresh();
    model.agentIntegration().refresh();
    if (const auto& closedLid = model.closedLid())
        closedLid->refreshStatus();
}

void SettingsWindow::followTab()
{
    const auto tab = surface_.model.settingsTab();
    // Sizes are taken when a row is made.
    surface_.theme.look.scale();
    // What rows show is for them to follow: a page that is made anew loses the focus.
    const ReadScope untracked{nullptr};
    showPage(tab);
}

void SettingsWindow::showPage(SettingsTab tab)
{
    refreshFacts();
    const bool hadFocus = scroller_->isAncestorOf(focusWidget());
    setWindowTitle(qtText(title(tab)));
    tabs_->show(tab);
    if (hadFocus)
        tabs_->setFocus();
    auto* page = makePageView(surface_, settingsPage(tab, surface_.model.updates().isAvailable()));
    page->installEventFilter(this);
    scroller_->setWidget(page);
    fit();
}

bool SettingsWindow::eventFilter(QObject* watched, QEvent* event)
{
    // A row has come or gone, or a text has grown.
    if (event->type() == QEvent::LayoutRequest && watched == scroller_->widget())
        fit();
    return QWidget::eventFilter(watched, event);
}

void SettingsWindow::fit()
{
    auto* const page = scroller_->widget();
    if (!layout() || !page)
        return;
    constexpr int decoration = 60; // pixels of a title bar, and some air
    const auto& look = surface_.theme.look;
    const auto available = screen()->availableSize();
    const int width = std::min(look.units(measure::settingsWidth), available.width());
    page->layout()->activate();
    const int above = look.units(tabsTop) + tabs_->sizeHint().height() + look.units(tabsBottom) + lineHeight;
    setFixedSize(width, std::min(above + page->heightForWidth(width), available.height() - decoration));
}

void SettingsWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    // The user comes back, perhaps from the system's settings.
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        refreshFacts();
}

void SettingsWindow::closeEvent(QCloseEvent* event)
{
    event->accept();
    notify(onClose);
}

} // namespace vespra
