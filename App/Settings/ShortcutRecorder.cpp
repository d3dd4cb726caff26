#include "App/Settings/ShortcutRecorder.h"

#include "App/DesignSystem/Following.h"
#include "App/Model/ShortcutFacts.h"
#include "App/Settings/ShortcutKeys.h"
#include "App/Wording/Localized.h"

#include <QHBoxLayout>
#include <QPainter>

#include <algorithm>
#include <array>

namespace vespra {

namespace {

    constexpr double fieldHeight = 26, fieldRadius = 8, fieldPadding = 9, recorderGap = 8;

    /// The ground that the keys stand on.
    class KeysField final : public QWidget {
    public:
        explicit KeysField(const Theme& theme)
            : theme_{theme}
            , follows_{theme, *this}
        {
            const int padding = theme.look.units(fieldPadding);
            auto* row = new QHBoxLayout{this};
            row->setContentsMargins(padding, 0, padding, 0);
            setFixedHeight(theme.look.units(fieldHeight));
        }

    protected:
        void paintEvent(QPaintEvent*) override
        {
            QPainter painter{this};
            const auto& look = theme_.look;
            drawButton(painter, rect(), ButtonKind::plain, look.scaled(fieldRadius), {}, look.tokens());
        }

    private:
        const Theme theme_;
        FollowsLook follows_;
    };

    std::string requirement()
    {
        const auto keys = modifierKeys();
        return localized("Press a letter or a digit together with %1, %2 or %3.",
            {localized(keys[0].name), localized(keys[1].name), localized(keys.back().name)});
    }

} // namespace

ShortcutRecorder::ShortcutRecorder(const SettingsSurface& surface)
    : shortcut_{surface.model.sessionShortcut()}
    , field_{new KeysField{surface.theme}}
    , keys_{new Label{surface.theme, TextStyle::strong}}
    , record_{new Button{surface.theme, ButtonKind::plain, ButtonSize::small}}
    , clear_{new Button{surface.theme, ButtonKind::plain, ButtonSize::small}}
{
    auto* row = new QHBoxLayout{this};
    row->setContentsMargins({});
    row->setSpacing(surface.theme.look.units(recorderGap));
    row->addWidget(field_);
    row->addWidget(record_);
    row->addWidget(clear_);
    field_->layout()->addWidget(keys_);
    keys_->setWordWrap(false);
    clear_->show(localized("Clear"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::NoFocus);
    connect(record_, &QPushButton::clicked, this, [this] { isRecording_.get() ? stop() : record(); });
    connect(clear_, &QPushButton::clicked, this, [this] { shortcut_.clear(); });
    follow(*this, surface.theme, [this] { apply(); });
}

ShortcutRecorder::~ShortcutRecorder() { stop(); }

std::string ShortcutRecorder::problem() const
{
    if (isRecording_.get())
        return isRefused_.get() ? requirement() : std::string{};
    if (auto notice = shortcutFacts::notice(shortcut_); !notice.empty())
        return notice;
    if (const auto& others = shortcut_.desktopsKeys(); !others.empty())
        return localized("The desktop's own settings give it these keys: %1", {others});
    return {};
}

void ShortcutRecorder::apply()
{
    const bool isRecording = isRecording_.get();
    const auto& keys = shortcut_.keys();
    record_->show(isRecording ? localized("Cancel") : localized("Record"));
    clear_->setVisible(keys && !isRecording);
    if (isRecording)
        show(localized("Press keys…"), false);
    else
        show(keys ? keysText(*keys) : localized("None"), keys.has_value());
}

void ShortcutRecorder::show(const std::string& keys, bool isRecorded)
{
    keys_->show(keys);
    keys_->setInk(isRecorded ? &Tokens::text : &Tokens::text2);
}

void ShortcutRecorder::record()
{
    // The keys that work now would not reach this window.
    shortcut_.setPaused(true);
    isRefused_.set(false);
    isRecorded_ = false;
    isRecording_.set(true);
    setFocus();
    grabKeyboard();
}

void ShortcutRecorder::stop()
{
    if (!isRecording_.get())
        return;
    releaseKeyboard();
    isRecording_.set(false);
    shortcut_.setPaused(false);
}

bool ShortcutRecorder::event(QEvent* event)
{
    // The window's own shortcuts can be recorded too.
    if (isRecording_.get() && event->type() == QEvent::ShortcutOverride)
        event->accept();
    return QWidget::event(event);
}

void ShortcutRecorder::keyPressEvent(QKeyEvent* event)
{
    if (!isRecording_.get())
        return QWidget::keyPressEvent(event);
    if (event->key() == Qt::Key_Escape)
        return stop();
    if (isRecorded_)
        return;
    const auto keys = pressedKeys(*event);
    if (shortcut_.record(keys)) {
        // They work once one is let go: still held, they would count as pressed.
        isRecorded_ = true;
        return show(keysText(keys), true);
    }
    const auto held = keysText({keys.control, keys.alt, keys.shift, keys.super});
    show(held.empty() ? localized("Press keys…") : held, false);
    constexpr std::array modifiers{Qt::Key_Control, Qt::Key_Alt, Qt::Key_Shift, Qt::Key_Meta, Qt::Key_AltGr};
    isRefused_.set(std::ranges::find(modifiers, event->key()) == modifiers.end());
}

void ShortcutRecorder::keyReleaseEvent(QKeyEvent* event)
{
    if (isRecorded_ && !event->isAutoRepeat())
        return stop();
    if (isRecording_.get() && !isRecorded_)
        show(localized("Press keys…"), false);
}

void ShortcutRecorder::focusOutEvent(QFocusEvent* event)
{
    stop();
    QWidget::focusOutEvent(event);
}

void ShortcutRecorder::hideEvent(QHideEvent* event)
{
    stop();
    QWidget::hideEvent(event);
}

} // namespace vespra
