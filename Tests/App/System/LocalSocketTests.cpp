#include "App/System/LocalSocket.h"

#include "Tests/Support/DescriptorFamine.h"
#include "Tests/Support/LocalClient.h"
#include "Tests/Support/QtApplication.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <QAbstractEventDispatcher>
#include <QElapsedTimer>

namespace vespra {

TEST(LocalSocketServer, RestsWhileDescriptorsHaveRunOut)
{
    const QtApplication application;
    const TemporaryDirectory folder;
    const std::string path = folder / "a.sock";
    int accepted = 0;
    LocalSocketServer server{[&](const FileDescriptor&) { ++accepted; }};
    ASSERT_TRUE(server.listen(path));
    const LocalClient before{path};
    QtApplication::runUntil([&] { return accepted == 1; });
    LocalClient client;
    std::optional<DescriptorFamine> famine{std::in_place};
    ASSERT_TRUE(client.connect(path));
    int turns = 0;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, [&] { ++turns; });
    QElapsedTimer watch;
    watch.start();
    QtApplication::runUntil([&] { return watch.hasExpired(350); });
    EXPECT_LT(turns, 30);
    EXPECT_EQ(accepted, 1);
    famine.reset();
    QtApplication::runUntil([&] { return accepted == 2; });
}

} // namespace vespra
