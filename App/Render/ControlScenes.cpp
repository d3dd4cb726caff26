#include "App/Render/Scenes.h"

#include "App/DesignSystem/Buttons.h"
#include "App/DesignSystem/Card.h"
#include "App/DesignSystem/Drawing.h"
#include "App/DesignSystem/Icon.h"
#include "App/DesignSystem/Note.h"
#include "App/DesignSystem/Ring.h"
#include "App/DesignSystem/Stepper.h"

#include <QGridLayout>
#include <QPainter>

#include <array>

namespace vespra {

namespace {

    void nothing(Stage&) { }

    constexpr std::array icons{"battery.25percent",
        "bolt",
        "checkmark.circle.fill",
        "chevron.down",
        "circle.dotted",
        "clock",
        "clock.badge.exclamationmark",
        "exclamationmark.circle.fill",
        "gearshape",
        "hourglass",
        "info.circle",
        "laptopcomputer",
        "minus",
        "moon",
        "plus",
        "power",
        "powerplug",
        "terminal",
        "thermometer.high",
        "xmark.circle",
        "xmark"};

    /// A ground, and on it what `paint` draws.
    class Sheet final : public QWidget {
    public:
        explicit Sheet(const Theme& theme, Ink ground = &Tokens::panel)
            : theme_{theme}
            , ground_{ground}
        {
        }

        std::function<void(QPainter&)> paint;

    protected:
        void paintEvent(QPaintEvent*) override
        {
            QPainter painter{this};
            painter.fillRect(rect(), theme_.look.tokens().*ground_);
            if (paint)
                paint(painter);
        }

    private:
        Theme theme_;
        Ink ground_;
    };

    /// All icons, at three sizes.
    QWidget* iconSheet(const Theme& theme)
    {
        auto* sheet = new Sheet{theme, &Tokens::surface};
        constexpr int step = 76;
        sheet->setFixedSize(step * 7, 3 * 72);
        sheet->paint = [&theme](QPainter& painter) {
            for (std::size_t index = 0; index < icons.size(); ++index) {
                const double left = static_cast<double>(index % 7) * step, top = static_cast<double>(index / 7) * 72;
                const auto& color = theme.look.tokens().text;
                drawIcon(painter, icons[index], {left + 4, top + 8, 16, 16}, color);
                drawIcon(painter, icons[index], {left + 24, top + 8, 48, 48}, color);
            }
        };
        return sheet;
    }

    /// The grounds that `draw` paints at rest, hovered, pressed and disabled, side by side.
    QWidget* states(const Theme& theme, QSizeF size,
        std::function<void(QPainter&, const QRectF&, ControlState, const Tokens&)> draw)
    {
        auto* sheet = new Sheet{theme};
        constexpr std::array all{ControlState{},
            ControlState{.isHovered = true},
            ControlState{.isPressed = true},
            ControlState{.isEnabled = false}};
        const double width = theme.look.scaled(size.width()), height = theme.look.scaled(size.height()), gap = 8;
        sheet->setFixedSize(static_cast<int>((width + gap) * 4), static_cast<int>(height + gap));
        sheet->paint = [=, &theme](QPainter& painter) {
            double left = gap / 2;
            for (const auto state : all) {
                draw(painter, {left, gap / 2, width, height}, state, theme.look.tokens());
                left += width + gap;
            }
        };
        return sheet;
    }

    QWidget* buttonStates(const Theme& theme, ButtonKind kind)
    {
        return states(theme, {66, 32}, [kind, &theme](auto& painter, const auto& area, auto state, const auto& tokens) {
            drawButton(painter, area, kind, theme.look.scaled(measure::buttonRadius), state, tokens);
            painter.setFont(theme.look.font(TextStyle::strong));
            painter.setPen(buttonText(kind, state, tokens));
            painter.drawText(area, Qt::AlignCenter, QStringLiteral("Start"));
        });
    }

    QWidget* switchStates(const Theme& theme, double knob)
    {
        return states(theme, {34, 20}, [knob](auto& painter, const auto& area, auto state, const auto& tokens) {
            drawSwitch(painter, area, knob, state, tokens);
        });
    }

    Stepper* stepper(const Theme& theme, const std::string& value, bool canDecrement)
    {
        auto* made = new Stepper{theme};
        made->show({.name = "Duration", .value = value, .spokenValue = value, .canDecrement = canDecrement});
        return made;
    }

    Switch* switched(const Theme& theme, bool isOn, bool isEnabled = true)
    {
        auto* made = new Switch{theme};
        made->show(isOn);
        made->setEnabled(isEnabled);
        return made;
    }

    Button* button(const Theme& theme, ButtonKind kind, const std::string& text, ButtonSize size = ButtonSize::regular,
        bool isEnabled = true)
    {
        auto* made = new Button{theme, kind, size};
        made->show(text);
        made->setEnabled(isEnabled);
        return made;
    }

    SegmentedControl* segments(const Theme& theme, std::size_t chosen)
    {
        auto* made = new SegmentedControl{theme, {"Timer", "Until", "Unlimited", "Agent"}};
        made->show(chosen);
        return made;
    }

    Note* note(const Theme& theme, NoteKind kind, std::string_view icon, const std::string& title,
        const std::string& text, QWidget* control)
    {
        auto* made = new Note{theme, kind, control};
        made->show(icon, title, text);
        return made;
    }

    Ring* ring(
        const Theme& theme, const std::string& clock, const std::string& subtitle, std::optional<double> remaining)
    {
        auto* made = new Ring{theme};
        made->show({.clock = clock, .subtitle = subtitle, .spoken = clock, .remaining = remaining});
        return made;
    }

    Activity* activity(const Theme& theme, const std::string& text, Ink ink)
    {
        auto* made = new Activity{theme};
        made->show(text, ink);
        return made;
    }

    CheckLine* check(const Theme& theme, const std::string& text, CheckLine::State state)
    {
        auto* made = new CheckLine{theme};
        made->show(text, state);
        return made;
    }

    Row* row(const Theme& theme, const std::string& title, QWidget* control, const std::string& subtitle = {})
    {
        auto* made = new Row{theme, title, control};
        made->showSubtitle(subtitle);
        return made;
    }

    QVBoxLayout* column(const Theme& theme, std::initializer_list<QWidget*> widgets)
    {
        auto* made = new QVBoxLayout;
        made->setSpacing(theme.look.units(measure::panelGap));
        for (auto* widget : widgets)
            made->addWidget(widget);
        made->addStretch();
        return made;
    }

    QWidget* card(const Theme& theme, std::initializer_list<Row*> rows)
    {
        auto* made = new Card{theme};
        for (auto* row : rows)
            made->add(row);
        return made;
    }

    std::unique_ptr<QWidget> controls(Stage& stage)
    {
        const auto& theme = stage.theme();
        auto sheet = std::make_unique<Sheet>(theme);
        auto* columns = new QHBoxLayout{sheet.get()};
        columns->setSpacing(24);
        auto* notice = new IconButton{theme, "xmark", 24, false};
        notice->setName("Dismiss");
        columns->addLayout(column(theme,
            {segments(theme, 0),
                card(theme, {row(theme, "Duration", stepper(theme, "1h 30m", true))}),
                card(theme, {row(theme, "Ends at", stepper(theme, "18:00", false))}),
                card(theme,
                    {row(theme, "Keep display on", switched(theme, true)),
                        row(theme, "Closed-lid mode", switched(theme, false), "Stay awake with the lid closed"),
                        row(theme,
                            "Closed-lid mode",
                            button(theme, ButtonKind::plain, "Open System Settings", ButtonSize::small),
                            "Waiting for your approval")}),
                note(theme, NoteKind::warn, "powerplug", "Plug in the charger to start.", {}, nullptr),
                note(theme,
                    NoteKind::warn,
                    "battery.25percent",
                    "Battery at 19%",
                    "Session ended at 16:42. This laptop can go to sleep again.",
                    notice),
                note(theme,
                    NoteKind::info,
                    "terminal",
                    "Connect an agent first",
                    "Claude Code or Codex reports through hooks when it is done.",
                    button(theme, ButtonKind::plain, "Connect…", ButtonSize::small)),
                note(theme,
                    NoteKind::ok,
                    "checkmark.circle.fill",
                    "Agents finished",
                    "Ends in 1:48 unless an agent starts again.",
                    button(theme, ButtonKind::plain, "Keep awake", ButtonSize::small)),
                note(theme,
                    NoteKind::bad,
                    "moon",
                    "Sleep in 0:42",
                    "Claude Code finished in checkout-service",
                    button(theme, ButtonKind::plain, "Cancel", ButtonSize::small)),
                button(theme, ButtonKind::primary, "Start")}));
        columns->addLayout(column(theme,
            {ring(theme, "48:12", "Until 18:00", 0.54),
                ring(theme, "1:24:09", "Agent · since 14:31", {}),
                activity(theme, "Waiting for approval", &Tokens::info),
                activity(theme, "Finished", &Tokens::ok),
                check(theme, "Component installed", CheckLine::State::ok),
                check(theme, "Sleep is being switched off", CheckLine::State::pending),
                check(theme, "Temperature", CheckLine::State::failed),
                button(theme, ButtonKind::stop, "Stop"),
                button(theme, ButtonKind::plain, "+15 min"),
                button(theme, ButtonKind::primary, "Start", ButtonSize::regular, false)}));
        columns->addLayout(column(theme,
            {iconSheet(theme),
                buttonStates(theme, ButtonKind::primary),
                buttonStates(theme, ButtonKind::plain),
                buttonStates(theme, ButtonKind::stop),
                buttonStates(theme, ButtonKind::quiet),
                switchStates(theme, 1),
                switchStates(theme, 0)}));
        const int width = theme.look.units(measure::panelWidth - 2 * measure::panelPadding);
        for (auto* widget : sheet->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (columns->itemAt(0)->layout()->indexOf(widget) >= 0)
                widget->setFixedWidth(width);
        const int sheetWidth = sheet->sizeHint().width();
        sheet->setFixedSize(sheetWidth, sheet->heightForWidth(sheetWidth));
        return sheet;
    }

    constexpr std::array<Scene, 4> scenesOfControls{{
        {"controls", nothing, controls},
        {"controls-contrast", nothing, controls, {.hasHighContrast = true}},
        {"controls-large", nothing, controls, {.textScale = 1.5}},
        {"controls-right-to-left", nothing, controls, {.isRightToLeft = true}},
    }};

} // namespace

std::span<const Scene> controlScenes() { return scenesOfControls; }

} // namespace vespra
