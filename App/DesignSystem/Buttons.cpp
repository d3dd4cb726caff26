#include "App/DesignSystem/Buttons.h"

#include "App/DesignSystem/Focus.h"
#include "App/DesignSystem/Icon.h"

#include <QHBoxLayout>
#include <QPainter>

namespace vespra {

namespace {

    void setUp(QAbstractButton& button)
    {
        button.setAttribute(Qt::WA_Hover);
        button.setFocusPolicy(Qt::StrongFocus);
    }

} // namespace

Button::Button(const Theme& theme, ButtonKind kind, ButtonSize size)
    : theme_{theme}
    , kind_{kind}
    , size_{size}
    , follows_{theme, *this}
{
    setUp(*this);
    FocusRing::setRadius(*this, radius());
    setSizePolicy(size == ButtonSize::small ? QSizePolicy::Fixed : QSizePolicy::Expanding, QSizePolicy::Fixed);
}

double Button::radius() const
{
    return theme_.look.scaled(size_ == ButtonSize::small ? measure::smallButtonRadius : measure::buttonRadius);
}

void Button::show(const std::string& text)
{
    // An ampersand is one, not the mark of a shortcut.
    setText(qtText(text).replace(QLatin1Char('&'), QStringLiteral("&&")));
    setAccessibleName(qtText(text));
    updateGeometry();
}

QSize Button::sizeHint() const
{
    const bool isSmall = size_ == ButtonSize::small;
    const auto& look = theme_.look;
    const QFontMetrics metrics{look.font(isSmall ? TextStyle::section : TextStyle::strong)};
    const int padding = look.units(isSmall ? measure::smallButtonPadding : measure::buttonPadding);
    const int height = look.units(isSmall ? measure::smallButtonHeight : measure::buttonHeight);
    return {metrics.horizontalAdvance(accessibleName()) + 2 * padding, height};
}

void Button::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    const auto state = controlState(*this);
    const auto& tokens = theme_.look.tokens();
    drawButton(painter, rect(), kind_, radius(), state, tokens);
    painter.setFont(theme_.look.font(size_ == ButtonSize::small ? TextStyle::section : TextStyle::strong));
    painter.setPen(buttonText(kind_, state, tokens));
    painter.drawText(rect(), Qt::AlignCenter, accessibleName());
}

IconButton::IconButton(const Theme& theme, std::string_view icon, double size, bool hasGround)
    : theme_{theme}
    , icon_{icon}
    , size_{size}
    , hasGround_{hasGround}
    , follows_{theme, *this}
{
    setUp(*this);
    FocusRing::setRadius(*this, theme.look.scaled(measure::stepperRadius));
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
    setUp(*this);
    FocusRing::setRadius(*this, theme.look.scaled(measure::switchHeight / 2));
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
    drawSwitch(painter, rect(), knob, controlState(*this), theme_.look.tokens());
}

Segment::Segment(const Theme& theme)
    : theme_{theme}
    , follows_{theme, *this}
{
    setUp(*this);
    FocusRing::setRadius(*this, theme.look.scaled(measure::segmentRadius));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize Segment::sizeHint() const
{
    const QFontMetrics metrics{theme_.look.font(TextStyle::medium)};
    const int padding = theme_.look.units(measure::segmentInset);
    return {metrics.horizontalAdvance(accessibleName()) + 2 * padding, theme_.look.units(measure::segmentHeight)};
}

void Segment::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    const auto& tokens = theme_.look.tokens();
    const auto state = controlState(*this);
    if (isChecked())
        drawChosenSegment(painter, rect(), theme_.look.scale(), tokens);
    painter.setFont(theme_.look.font(TextStyle::medium));
    painter.setPen(isChecked() || state.isHovered ? tokens.text : tokens.text2);
    painter.drawText(rect(), Qt::AlignCenter, accessibleName());
}

SegmentedControl::SegmentedControl(const Theme& theme, const std::vector<std::string>& titles)
    : theme_{theme}
    , follows_{theme, *this}
{
    auto* row = new QHBoxLayout{this};
    const int inset = theme.look.units(measure::segmentInset);
    row->setContentsMargins(inset, inset, inset, inset);
    row->setSpacing(0);
    for (std::size_t index = 0; index < titles.size(); ++index) {
        auto& segment = added(*row, new Segment{theme}, 1);
        segment.setAccessibleName(qtText(titles[index]));
        connect(&segment, &QRadioButton::clicked, this, [this, index] { notify(onChoose, index); });
        segments_.push_back(&segment);
    }
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void SegmentedControl::show(std::size_t index) { segments_.at(index)->setChecked(true); }

void SegmentedControl::paintEvent(QPaintEvent*)
{
    QPainter painter{this};
    drawSegments(painter, rect(), theme_.look.scale(), theme_.look.tokens());
}

} // namespace vespra
