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
    std::vector<std::unique_ptr<LocalSocket>> accepted;
    LocalSocketServer server{[&](FileDescriptor connection) {
        accepted.push_back(std::make_unique<LocalSocket>(std::move(connection), 100));
    }};
    ASSERT_TRUE(server.listen(path));
    const LocalClient before{path};
    QtApplication::runUntil([&] { return accepted.size() == 1; });
    LocalClient client;
    std::optional<DescriptorFamine> famine{std::in_place};
    ASSERT_TRUE(client.connect(path));
    int turns = 0;
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, [&] { ++turns; });
    QElapsedTimer watch;
    watch.start();
    QtApplication::runUntil([&] { return watch.hasExpired(350); });
    EXPECT_LT(turns, 30);
    EXPECT_EQ(accepted.size(), 1u);
    famine.reset();
    QtApplication::runUntil([&] { return accepted.size() == 2; });
}

} // namespace vespra
