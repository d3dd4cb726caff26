#pragma once

#include "App/DesignSystem/Buttons.h"
#include "App/DesignSystem/Label.h"

namespace vespra {

/// A value between a button that lowers it and one that raises it. Holding a button goes on.
class Stepper final : public QWidget {
public:
    /// What is shown. Names are for those who do not see the row.
    struct Facts {
        std::string name;
        std::string value;
        std::string spokenValue;
        bool canDecrement = true;
        bool canIncrement = true;
        bool operator==(const Facts&) const = default;
    };

    explicit Stepper(const Theme& theme);

    void show(const Facts& facts);
    const Facts& facts() const { return facts_; }
    /// As if the user had pressed the button; nothing where that is disabled.
    void decrement() { decrement_->click(); }
    void increment() { increment_->click(); }

    std::function<void()> onDecrement;
    std::function<void()> onIncrement;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    Facts facts_;
    IconButton* decrement_;
    Label* value_;
    IconButton* increment_;
    FollowsLook follows_;
};

} // namespace vespra
