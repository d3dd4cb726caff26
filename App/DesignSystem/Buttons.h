#pragma once

#include "App/DesignSystem/Drawing.h"
#include "App/DesignSystem/Theme.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVariantAnimation>

namespace vespra {

enum class ButtonSize { regular, small };

/// A button with a text.
class Button final : public QPushButton {
public:
    Button(const Theme& theme, ButtonKind kind, ButtonSize size = ButtonSize::regular);

    void show(const std::string& text);
    /// The same, read aloud as `spoken`.
    void show(const std::string& text, const std::string& spoken);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double radius() const;
    TextStyle textStyle() const;

    const Theme theme_;
    ButtonKind kind_;
    ButtonSize size_;
    QString label_;
    FollowsLook follows_;
};

/// A button with an icon, or with a sign of its own; its name is for those who do not see it.
class IconButton final : public QPushButton {
public:
    /// `icon` is one of Resources/icons. With a `ground` it is drawn on the surface of a button.
    IconButton(const Theme& theme, std::string_view icon, double size, bool hasGround);

    void setName(const std::string& name);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme theme_;
    std::string_view icon_;
    double size_;
    bool hasGround_;
    FollowsLook follows_;
};

/// On or off. Its knob slides unless motion is reduced.
class Switch final : public QCheckBox {
public:
    explicit Switch(const Theme& theme);

    /// Follows the model: tells nobody.
    void show(bool isOn);
    /// Called when the user has switched it.
    std::function<void(bool isOn)> onSwitch;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& place) const override { return rect().contains(place); }

private:
    void slide();

    const Theme theme_;
    QVariantAnimation knob_;
    FollowsLook follows_;
};

/// One of few choices that exclude each other, side by side.
class Segment final : public QRadioButton {
public:
    explicit Segment(const Theme& theme);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& place) const override { return rect().contains(place); }

private:
    const Theme theme_;
    FollowsLook follows_;
};

/// Segments in one row on one ground.
class SegmentedControl final : public QWidget {
public:
    SegmentedControl(const Theme& theme, const std::vector<std::string>& titles);

    /// Follows the model: tells nobody. `index` is that of a title.
    void show(std::size_t index);
    /// Called when the user has chosen another one.
    std::function<void(std::size_t index)> onChoose;

    /// Narrower than its titles: they are drawn smaller then.
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme theme_;
    QHBoxLayout* row_;
    std::vector<Segment*> segments_;
    FollowsLook follows_;
};

} // namespace vespra
