#include "Core/Scheduling/ZoneRules.h"

#include "Core/Scheduling/PosixZoneRule.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <map>

namespace vespra {

namespace {

    using date::local_seconds;
    using date::sys_seconds;

    /// The moment at which clocks would show `time` if their zone were UTC.
    sys_seconds asUTC(local_seconds time) { return sys_seconds{time.time_since_epoch()}; }

    class UTC final : public ZoneRules {
    public:
        local_seconds toLocal(sys_seconds date) const override { return local_seconds{date.time_since_epoch()}; }
    };

    class LocalZone final : public ZoneRules {
    public:
        local_seconds toLocal(sys_seconds date) const override
        {
            // localtime_r alone would not notice that the zone has changed.
            tzset();
            const std::time_t seconds = date.time_since_epoch().count();
            std::tm fields{};
            localtime_r(&seconds, &fields);
            return local_seconds{date.time_since_epoch() + std::chrono::seconds{fields.tm_gmtoff}};
        }
    };

    constexpr const char* zoneFiles = "/usr/share/zoneinfo/";

    /// The line at the end of a zone file: "CET-1CEST,M3.5.0,M10.5.0/3". Empty in files of the oldest form.
    std::string ruleText(const std::string& name)
    {
        std::ifstream file{zoneFiles + name, std::ios::binary};
        const std::string content{std::istreambuf_iterator<char>{file}, {}};
        if (content.size() < 2 || content.back() != '\n')
            return {};
        const auto start = content.rfind('\n', content.size() - 2);
        return start == std::string::npos ? "" : content.substr(start + 1, content.size() - start - 2);
    }

    /// The zone files of many systems list no transitions to come, only the rule that makes them, which the date
    /// library passes over: so this takes the library's transitions as far as they go, and the rule from there on.
    class NamedZone final : public ZoneRules {
    public:
        NamedZone(const std::string& name, const date::time_zone* zone)
            : zone_{zone}
            , lastTransition_{zone->get_info(date::sys_days{date::January / 1 / 2199}).begin}
            , rule_{PosixZoneRule::parsed(ruleText(name))}
        {
        }

        local_seconds toLocal(sys_seconds date) const override
        {
            return rule_ && date >= lastTransition_ ? rule_->toLocal(date) : zone_->to_local(date);
        }

    private:
        const date::time_zone* zone_;
        /// The last one that the library knows.
        sys_seconds lastTransition_;
        std::unique_ptr<const PosixZoneRule> rule_;
    };

} // namespace

const ZoneRules& ZoneRules::utc()
{
    static const UTC rules;
    return rules;
}

const ZoneRules& ZoneRules::local()
{
    static const LocalZone rules;
    return rules;
}

const ZoneRules* ZoneRules::find(std::string_view name)
{
    if (name == "UTC")
        return &utc();
    static std::map<std::string, NamedZone, std::less<>> known;
    if (const auto found = known.find(name); found != known.end())
        return &found->second;
    const std::string key{name};
    try {
        return &known.try_emplace(key, key, date::locate_zone(key)).first->second;
    } catch (const std::exception&) {
        return nullptr;
    }
}

date::sys_seconds ZoneRules::firstAt(local_seconds time) const
{
    // Zones are less than a day ahead of UTC or behind it, and change their offset more seldom than every other day.
    const auto dayBefore = asUTC(time) - date::days{1}, dayAfter = asUTC(time) + date::days{1};
    const auto offset = [this](sys_seconds date) { return asUTC(toLocal(date)) - date; };
    const auto early = asUTC(time) - std::max(offset(dayBefore), offset(dayAfter));
    const auto late = asUTC(time) - std::min(offset(dayBefore), offset(dayAfter));
    for (const auto candidate : {early, late})
        if (toLocal(candidate) == time)
            return candidate;
    // Clocks skip it, at some moment after `early` and not after `late`.
    auto before = early, after = late;
    while (after - before > std::chrono::seconds{1}) {
        const auto middle = before + (after - before) / 2;
        (toLocal(middle) < time ? before : after) = middle;
    }
    return after;
}

} // namespace vespra
