#include "App/DesignSystem/Buttons.h"

#include "App/DesignSystem/Accessibility.h"
#include "App/DesignSystem/Focus.h"
#include "App/DesignSystem/Icon.h"
#include "App/DesignSystem/TextBlock.h"

#include <QPainter>

#include <cmath>

namespace vespra {

namespace {

    void setUp(QAbstractButton& button, double radius)
    {
        button.setAttribute(Qt::WA_Hover);
        button.setFocusPolicy(Qt::StrongFocus);
        FocusRing::setRadius(button, radius);
    }

    void setUp(QPushButton& button, double radius)
    {
        setUp(static_cast<QAbstractButton&>(button), radius);
        // Return presses it too, in a window as in a dialog.
        button.setAutoDefault(true);
    }

} // namespace

Button::Button(const Theme& theme, ButtonKind kind, ButtonSize size)
    : theme_{theme}
    , kind_{kind}
    , size_{size}
    , follows_{theme, *this}
{
    setUp(*this, size == ButtonSize::small ? measure::smallButtonRadius : measure::buttonRadius);
    setSizePolicy(size == ButtonSize::small ? QSizePolicy::Fixed : QSizePolicy::Expanding, QSizePolicy::Fixed);
}

double Button::radius() const
{
    return theme_.look.scaled(size_ == ButtonSize::small ? measure::smallButtonRadius : measure::buttonRadius);
}

TextStyle Button::textStyle() const { return size_ == ButtonSize::small ? TextStyle::section : TextStyle::strong; }

void Button::show(const std::string& text) { show(text, text); }

void Button::show(const std::string& text, const std::string& spoken)
{
    setAccessibleName(qtText(spoken));
    if (std::exchange(label_, qtText(text)) == label_)
        return;
    // An ampersand is one, not the mark of a shortcut.
    setText(QString{label_}.replace(QLatin1Char('&'), QStringLiteral("&&")));
    updateGeometry();
}

QSize Button::sizeHint() const
{
    const bool isSmall = size_ == ButtonSize::small;
    const auto& look = theme_.look;
    const double width = TextBlock{label_, look, textStyle()}.size().width();
    const double padding = look.scaled(isSmall ? measure::smallButtonPadding : measure::buttonPadding);
    const int height = look.units(isSmall ? measure::smallButtonHeight : measure::buttonHeight);
    return {static_cast<int>(std::ceil(width + 2 * padding)), height};
}

void Button::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    const auto state = controlState(*this);
    const auto& tokens = theme_.look.tokens();
    drawButton(painter, rect(), kind_, radius(), state, tokens);
    painter.setPen(buttonText(kind_, state, tokens));
    TextBlock{label_, theme_.look, textStyle()}.draw(painter, rect(), Qt::AlignCenter);
}

IconButton::IconButton(const Theme& theme, std::string_view icon, double size, bool hasGround)
    : theme_{theme}
    , icon_{icon}
    , size_{size}
    , hasGround_{hasGround}
    , follows_{theme, *this}
{
    setUp(*this, measure::stepperRadius);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void IconButton::setName(const std::string& name)
{
    setAccessibleName(qtText(name));
    setToolTip(qtText(name));
}

QSize IconButton::sizeHint() const { return QSize{1, 1} * theme_.look.units(size_); }

void IconButton::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    const auto& look = theme_.look;
    const auto state = controlState(*this);
    const auto kind = hasGround_ ? ButtonKind::plain : ButtonKind::quiet;
    drawButton(painter, rect(), kind, look.scaled(measure::stepperRadius), state, look.tokens());
    QRectF place{0, 0, look.scaled(measure::iconSize), look.scaled(measure::iconSize)};
    place.moveCenter(QRectF{rect()}.center());
    drawIcon(painter, icon_, place, buttonText(kind, state, look.tokens()));
}

Switch::Switch(const Theme& theme)
    : theme_{theme}
    , follows_{theme, *this}
{
    setUp(*this, measure::switchHeight / 2);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    knob_.setStartValue(0.0);
    knob_.setEndValue(1.0);
    connect(&knob_, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(this, &QCheckBox::toggled, this, [this] { slide(); });
    connect(this, &QCheckBox::clicked, this, [this](bool isOn) { notify(onSwitch, isOn); });
}

void Switch::show(bool isOn) { setChecked(isOn); }

void Switch::slide()
{
    const bool moves = isVisible() && !theme_.look.appearance().reducesMotion;
    knob_.setDuration(moves ? motion::change : 0);
    knob_.setDirection(isChecked() ? QAbstractAnimation::Forward : QAbstractAnimation::Backward);
    knob_.start();
}

QSize Switch::sizeHint() const
{
    return {theme_.look.units(measure::switchWidth), theme_.look.units(measure::switchHeight)};
}

void Switch::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    const bool moves = knob_.state() == QAbstractAnimation::Running;
    const double knob = moves ? knob_.currentValue().toDouble() : isChecked() ? 1 : 0;
    if (isRightToLeft()) {
        painter.translate(width(), 0);
        painter.scale(-1, 1);
    }
    drawSwitch(painter, rect(), knob, controlState(*this), theme_.look.tokens());
}

Segment::Segment(const Theme& theme)
    : theme_{theme}
    , follows_{theme, *this}
{
    setUp(*this, measure::segmentRadius);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize Segment::sizeHint() const
{
    const double width = TextBlock{accessibleName(), theme_.look, TextStyle::medium}.size().width();
    const int padding = theme_.look.units(2 * measure::segmentPadding);
    return {static_cast<int>(std::ceil(width)) + padding, theme_.look.units(measure::segmentHeight)};
}

/// A title that is too long for its segment is drawn smaller, and only then cut.
void Segment::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    const auto& look = theme_.look;
    const auto& tokens = look.tokens();
    painter.setPen(isChecked() || controlState(*this).isHovered ? tokens.text : tokens.text2);
    const double room = width() - look.scaled(measure::segmentPadding);
    const TextBlock title{accessibleName(), look, TextStyle::medium};
    if (title.size().width() <= room)
        return title.draw(painter, rect(), Qt::AlignCenter);
    const auto fitting
        = QFontMetricsF{look.font(TextStyle::activity)}.elidedText(accessibleName(), Qt::ElideRight, room);
    TextBlock{fitting, look, TextStyle::activity}.draw(painter, rect(), Qt::AlignCenter);
}

SegmentedControl::SegmentedControl(const Theme& theme, const std::vector<std::string>& titles)
    : theme_{theme}
    , row_{new QHBoxLayout{this}}
    , follows_{theme, *this, [this, &look = theme.look] {
                   const int inset = look.units(measure::segmentInset);
                   row_->setContentsMargins(inset, inset, inset, inset);
               }}
{
    accessibility::install();
    row_->setSpacing(0);
    row_->setSizeConstraint(QLayout::SetNoConstraint);
    for (std::size_t index = 0; index < titles.size(); ++index) {
        auto& segment = added(*row_, new Segment{theme}, 1);
        segment.setAccessibleName(qtText(titles[index]));
        connect(&segment, &QRadioButton::clicked, this, [this, index] { notify(onChoose, index); });
        connect(&segment, &QRadioButton::toggled, this, [this] { update(); });
        segments_.push_back(&segment);
    }
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void SegmentedControl::show(std::size_t index) { segments_.at(index)->setChecked(true); }

void SegmentedControl::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    const auto& look = theme_.look;
    drawSegments(painter, rect(), look.scale(), look.tokens());
    for (const auto* segment : segments_)
        if (segment->isChecked())
            drawChosenSegment(painter, segment->geometry(), look.scale(), look.tokens());
}

} // namespace vespra
