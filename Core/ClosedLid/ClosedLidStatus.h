#pragma once

// Core/ClosedLid: what closed-lid mode would do and why not, and the lease and the ledger with which the sleep setting
// is always put back.

#include "Core/ClosedLid/ClosedLidBlocker.h"
#include "Core/Energy/HelperStatus.h"

namespace vespra {

namespace closedLid {
    struct Unsupported {
        static constexpr std::string_view name = "unsupported";
        ClosedLidUnsupportedReason reason;
        bool operator==(const Unsupported&) const = default;
    };
    struct Blocked {
        static constexpr std::string_view name = "blocked";
        ClosedLidBlocker blocker;
        bool operator==(const Blocked&) const = default;
    };
    /// The component is not installed.
    struct NotConfigured : Case {
        static constexpr std::string_view name = "notConfigured";
    };
    /// Installed, waiting for the user's approval.
    struct AwaitingApproval : Case {
        static constexpr std::string_view name = "awaitingApproval";
    };
    /// The component could not be registered or reached.
    struct HelperFailed : Case {
        static constexpr std::string_view name = "helperFailed";
    };
    /// Not wanted for the current session.
    struct Off : Case {
        static constexpr std::string_view name = "off";
    };
    /// Wanted and everything in place, but not in force yet.
    struct Ready : Case {
        static constexpr std::string_view name = "ready";
    };
    /// Requested and being confirmed.
    struct Verifying : Case {
        static constexpr std::string_view name = "verifying";
    };
    /// In force: the lid may be closed.
    struct CanCloseLid : Case {
        static constexpr std::string_view name = "canCloseLid";
    };
} // namespace closedLid

/// What closed-lid mode would do now.
using ClosedLidStatus
    = std::variant<closedLid::Unsupported, closedLid::Blocked, closedLid::NotConfigured, closedLid::AwaitingApproval,
        closedLid::HelperFailed, closedLid::Off, closedLid::Ready, closedLid::Verifying, closedLid::CanCloseLid>;

/// The conditions of closed-lid mode, a row each.
struct ClosedLidChecklist {
    enum class Item { ok, pending, failed };

    Item helper = Item::failed;
    Item power = Item::ok;
    Item thermal = Item::ok;
    Item session = Item::pending;

    bool isAllClear() const
    {
        return helper == Item::ok && power == Item::ok && thermal == Item::ok && session == Item::ok;
    }
    bool operator==(const ClosedLidChecklist&) const = default;
};

template <>
inline constexpr auto rawValues<ClosedLidChecklist::Item> = RawValueTable<ClosedLidChecklist::Item, 3>{{
    {ClosedLidChecklist::Item::ok, "ok"},
    {ClosedLidChecklist::Item::pending, "pending"},
    {ClosedLidChecklist::Item::failed, "failed"},
}};

} // namespace vespra
