#pragma once

#include "App/DesignSystem/Theme.h"
#include "App/Launch/AppSurfaces.h"
#include "Tests/Support/LaunchedApplication.h"

#include <QAbstractButton>
#include <QApplication>

namespace vespra {

/// The whole application, and what its windows are made with.
class ShownSurfaces : public LaunchedApplicationOf<QApplication> {
protected:
    // Before any application is made.
    static inline const bool isOffscreen = qputenv("QT_QPA_PLATFORM", "offscreen");

    void SetUp() override { launch(); }

    SurfaceContext context()
    {
        return {.model = model(),
            .mainLoop = laptop.mainLoop,
            .tasks = *laptop.platform.time.tasks,
            .clock = model().clock(),
            .appearance = *laptop.platform.appearance};
    }
    /// Lets the windows follow.
    void settle()
    {
        for (int turn = 0; turn < 3; ++turn) {
            laptop.settle();
            QApplication::processEvents();
        }
    }
    /// The button in `window` that reads so, if one is to be seen.
    static QAbstractButton* button(const QWidget* window, const char* text)
    {
        for (auto* each : window->findChildren<QAbstractButton*>())
            if (each->isVisible() && each->text() == QString::fromUtf8(text))
                return each;
        return nullptr;
    }
    void press(const QWidget* window, const char* text)
    {
        auto* const found = button(window, text);
        ASSERT_TRUE(found) << text;
        found->click();
        settle();
    }

    Look look{{.reducesMotion = true}, QFont{}};
    Theme theme{laptop.mainLoop, look};
};

} // namespace vespra
