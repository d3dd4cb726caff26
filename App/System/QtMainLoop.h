#pragma once

#include "Core/Scheduling/MainLoop.h"

#include <QObject>

namespace vespra {

/// The event loop of the thread that makes it.
class QtMainLoop final : public MainLoop {
public:
    void post(std::function<void()> task) override
    {
        QMetaObject::invokeMethod(&receiver_, std::move(task), Qt::QueuedConnection);
    }

private:
    /// Tasks are events of this object: what is still waiting goes with it.
    QObject receiver_;
};

} // namespace vespra
