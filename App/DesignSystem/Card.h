#pragma once

#include "App/DesignSystem/IconLabel.h"
#include "Core/ClosedLid/ClosedLidStatus.h"

#include <QBoxLayout>

namespace vespra {

/// A surface of rows, with a hairline between those that are shown.
class Card final : public QWidget {
public:
    explicit Card(const Theme& theme);

    /// Above `row` there is a line, unless it is the first that is shown.
    template <class Row> Row& add(Row* row) { return added(*layout_, row); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme theme_;
    QVBoxLayout* layout_;
    FollowsLook follows_;
};

/// A title, what explains it below, and a control at the side, which they name unless it has a name.
class Row final : public QWidget {
public:
    /// `control` may be null; the row owns it.
    Row(const Theme& theme, const std::string& title, QWidget* control);

    /// Empty: no line.
    void showSubtitle(const std::string& text);

private:
    QHBoxLayout* row_;
    QSpacerItem* height_;
    Label* title_;
    Label* subtitle_;
    QWidget* control_;
    FollowsLook follows_;
};

/// What an agent, or a component, does now: a dot and a word in its colour.
class Activity final : public QWidget {
public:
    explicit Activity(const Theme& theme);

    void show(const std::string& text, Ink ink);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme theme_;
    QHBoxLayout* row_;
    Label* text_;
    Ink ink_ = &Tokens::text3;
    FollowsLook follows_;
};

/// One thing of a checklist.
class CheckLine final : public QWidget {
public:
    using State = ClosedLidChecklist::Item;

    explicit CheckLine(const Theme& theme);

    /// Read aloud with the state.
    void show(const std::string& text, State state);

private:
    QHBoxLayout* row_;
    IconLabel* icon_;
    Label* text_;
    FollowsLook follows_;
};

} // namespace vespra
