#include "App/DesignSystem/Accessibility.h"

#include "App/DesignSystem/Buttons.h"
#include "App/DesignSystem/Ring.h"
#include "App/DesignSystem/Stepper.h"

#include <QAccessibleWidget>

namespace vespra::accessibility {

namespace {

    /// A value that is raised and lowered; its buttons are there as well.
    class AccessibleStepper final : public QAccessibleWidget {
    public:
        explicit AccessibleStepper(Stepper& stepper)
            : QAccessibleWidget{&stepper, QAccessible::SpinBox}
            , stepper_{stepper}
        {
        }
        QString text(QAccessible::Text kind) const override
        {
            return kind == QAccessible::Value ? qtText(stepper_.facts().spokenValue) : QAccessibleWidget::text(kind);
        }
        QStringList actionNames() const override { return {increaseAction(), decreaseAction()}; }
        void doAction(const QString& action) override
        {
            if (action == increaseAction())
                stepper_.increment();
            else if (action == decreaseAction())
                stepper_.decrement();
        }

    private:
        Stepper& stepper_;
    };

    QAccessibleInterface* make(const QString&, QObject* object)
    {
        if (auto* stepper = dynamic_cast<Stepper*>(object))
            return new AccessibleStepper{*stepper};
        if (auto* segments = dynamic_cast<SegmentedControl*>(object))
            return new QAccessibleWidget{segments, QAccessible::Grouping};
        if (auto* ring = dynamic_cast<Ring*>(object))
            return new QAccessibleWidget{ring, QAccessible::StaticText};
        return nullptr;
    }

} // namespace

void install() { QAccessible::installFactory(make); }

} // namespace vespra::accessibility
