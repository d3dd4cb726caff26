#include "App/System/SessionMarker.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace vespra {

TEST(SessionMarker, ShowsASessionExactlyWhileItRuns)
{
    const TemporaryDirectory folder;
    const auto path = (folder / "Vespra/session.lock").string();
    EXPECT_FALSE(SessionMarker::read(path));
    {
        SessionMarker marker{path, "linux"};
        marker.sessionRuns(true);
        marker.sessionRuns(true);
        const auto session = SessionMarker::read(path);
        ASSERT_TRUE(session);
        EXPECT_EQ(session->pid, getpid());
        EXPECT_EQ(session->platform, "linux");
        SessionMarker{path, "simulated"}.sessionRuns(true); // another one changes nothing
        EXPECT_EQ(SessionMarker::read(path)->platform, "linux");
        marker.sessionRuns(false);
        EXPECT_FALSE(SessionMarker::read(path));
        marker.sessionRuns(true);
    }
    EXPECT_FALSE(SessionMarker::read(path));
}

} // namespace vespra
