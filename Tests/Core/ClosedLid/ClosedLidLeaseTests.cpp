#include "Core/ClosedLid/ClosedLidLease.h"

#include <gtest/gtest.h>

using namespace vespra;

namespace {

TEST(ClosedLidLease, ExpiresAtItsEndAndNeverMovesBack)
{
    const Instant start;
    ClosedLidLease lease{start};
    EXPECT_FALSE(lease.isExpired(start + 25s - Seconds{1e-9}));
    EXPECT_TRUE(lease.isExpired(start + 25s));
    lease.renew(start + 10s);
    lease.renew(start + 5s);
    EXPECT_EQ(lease.expiresAt(), start + 35s);
}

} // namespace
