#include "Core/Scheduling/PosixZoneRule.h"

// Does not compile as C++20 or later, where names of the standard library's own calendar clash with it.
#include <date/ptz.h>

namespace vespra {

namespace {

    class Rule final : public PosixZoneRule {
    public:
        explicit Rule(const std::string& text)
            : zone_{text}
        {
        }
        date::local_seconds toLocal(date::sys_seconds date) const override { return zone_.to_local(date); }
        date::sys_seconds firstAt(date::local_seconds time) const override
        {
            return zone_.to_sys(time, date::choose::earliest);
        }

    private:
        Posix::time_zone zone_;
    };

} // namespace

std::unique_ptr<const PosixZoneRule> PosixZoneRule::parsed(const std::string& text)
{
    try {
        return std::make_unique<const Rule>(text);
    } catch (const std::exception&) {
        return nullptr;
    }
}

} // namespace vespra
