#include "App/Render/Scenes.h"

#include "App/DesignSystem/TextBlock.h"
#include "App/MenuBar/StatusItemContent.h"
#include "App/MenuBar/StatusItemDrawing.h"

#include <QPainter>

#include <array>
#include <cmath>

namespace vespra {

namespace {

    /// The item as a menu bar shows it, without the bar.
    class StatusItemPicture final : public QWidget {
    public:
        explicit StatusItemPicture(Stage& stage)
            : theme_{stage.theme()}
            , content_{statusItemContent(stage.model(), {.hasTitle = true, .hasToolTip = false, .menu = {}})}
        {
            setAttribute(Qt::WA_TranslucentBackground);
            const double titleWidth = title().size().width();
            resize(static_cast<int>(std::ceil(2 * margin + statusImage::width + titleWidth)), height);
        }

    protected:
        void paintEvent(QPaintEvent*) override
        {
            QPainter painter{this};
            painter.setRenderHint(QPainter::Antialiasing);
            const auto& tokens = theme_.look.tokens();
            painter.translate(margin, (height - statusImage::height) / 2);
            drawStatusMark(painter, content_.isActive, tokens.text);
            painter.setPen(Qt::NoPen);
            painter.setBrush(tokens.accentFill);
            if (content_.isActive)
                painter.drawEllipse(statusImage::dotCenter, statusImage::dotSize / 2, statusImage::dotSize / 2);
            painter.setPen(tokens.text);
            const QRectF beside{statusImage::width, 0, width() - statusImage::width, statusImage::height};
            title().draw(painter, beside, Qt::AlignLeft);
        }

    private:
        TextBlock title() const { return {qtText(content_.title.value_or("")), theme_.look, TextStyle::body}; }

        static constexpr int margin = 8, height = 26;
        const Theme& theme_;
        StatusItemContent content_;
    };

    void run(Stage& stage, bool showsTime)
    {
        stage.model().setShowsRemainingTimeInMenuBar(showsTime);
        stage.prefer([](SessionPreferences& preferences) { preferences.timerDuration = 90min; });
        stage.waitUntil(16, 30);
        stage.start();
        stage.waitUntil(17, 11, 48);
    }

    std::unique_ptr<QWidget> item(Stage& stage) { return std::make_unique<StatusItemPicture>(stage); }

    constexpr std::array<Scene, 3> scenesOfStatusItem{{
        {"status-item-idle", [](Stage&) {}, item},
        {"status-item-active", [](Stage& stage) { run(stage, false); }, item},
        {"status-item-time", [](Stage& stage) { run(stage, true); }, item},
    }};

} // namespace

std::span<const Scene> statusItemScenes() { return scenesOfStatusItem; }

} // namespace vespra
