#include "Core/Scheduling/ZoneRules.h"

#include <fstream>
#include <map>

namespace vespra {

namespace {

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

} // namespace

ZoneRules::ZoneRules(std::string name, const date::time_zone* zone)
    : name_{std::move(name)}
    , zone_{zone}
{
    if (!zone_)
        return;
    const auto last = zone_->get_info(date::sys_days{date::January / 1 / 2199});
    lastTransition_ = last.begin;
    // Around the transition itself the library knows both sides.
    ruleStart_ = date::local_seconds{(last.begin + last.offset + date::days{1}).time_since_epoch()};
    rule_ = PosixZoneRule::parsed(ruleText(name_));
}

const ZoneRules& ZoneRules::utc()
{
    static const ZoneRules rules{"UTC", nullptr};
    return rules;
}

const ZoneRules* ZoneRules::find(std::string_view name)
{
    if (name == "UTC")
        return &utc();
    static std::map<std::string, std::unique_ptr<const ZoneRules>, std::less<>> known;
    if (const auto found = known.find(name); found != known.end())
        return found->second.get();
    const std::string key{name};
    try {
        const auto* zone = date::locate_zone(key);
        return known.emplace(key, new ZoneRules{key, zone}).first->second.get();
    } catch (const std::exception&) {
        return nullptr;
    }
}

date::local_seconds ZoneRules::toLocal(date::sys_seconds date) const
{
    if (!zone_)
        return date::local_seconds{date.time_since_epoch()};
    return rule_ && date >= lastTransition_ ? rule_->toLocal(date) : zone_->to_local(date);
}

date::sys_seconds ZoneRules::firstAt(date::local_seconds time) const
{
    if (!zone_)
        return date::sys_seconds{time.time_since_epoch()};
    constexpr auto first = date::choose::earliest;
    return rule_ && time >= ruleStart_ ? rule_->firstAt(time) : zone_->to_sys(time, first);
}

} // namespace vespra
