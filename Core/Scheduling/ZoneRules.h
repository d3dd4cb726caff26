#pragma once

#include "Core/Scheduling/PosixZoneRule.h"

#include <memory>
#include <string>
#include <string_view>

namespace vespra {

/// The clock of one time zone. The zone files of many systems list no transitions to come, only the rule that makes
/// them, which the date library passes over: so this takes the library's transitions as far as they go, and the rule
/// from there on. Main thread only.
class ZoneRules {
public:
    /// UTC, without looking at any file.
    static const ZoneRules& utc();
    /// Nothing for an unknown name, or without a zone database.
    static const ZoneRules* find(std::string_view name);

    const std::string& name() const { return name_; }
    date::local_seconds toLocal(date::sys_seconds date) const;
    /// The first moment at which clocks show `time`; of a time that they skip, the moment of the skip.
    date::sys_seconds firstAt(date::local_seconds time) const;

private:
    ZoneRules(std::string name, const date::time_zone* zone);

    std::string name_;
    /// Nothing for UTC.
    const date::time_zone* zone_;
    /// The last transition that the library knows; its rule goes on from there.
    date::sys_seconds lastTransition_{};
    date::local_seconds ruleStart_{};
    std::unique_ptr<const PosixZoneRule> rule_;
};

} // namespace vespra
