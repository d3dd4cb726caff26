#pragma once

#include <QCoreApplication>

namespace vespra {

/// Qt's event loop for one test; of a `QApplication`, there are windows too.
template <class Application> class QtApplicationOf {
public:
    /// Takes turns until `isDone`. A test that waits for what never comes ends by ctest's time limit.
    template <class Predicate> static void runUntil(Predicate isDone)
    {
        while (!isDone())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

private:
    int argumentCount_ = 1;
    char program_[6] = "tests";
    char* arguments_[2] = {program_, nullptr};
    Application application_{argumentCount_, arguments_};
};
using QtApplication = QtApplicationOf<QCoreApplication>;

} // namespace vespra
