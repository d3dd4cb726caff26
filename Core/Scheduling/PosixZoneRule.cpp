#include "Core/Scheduling/PosixZoneRule.h"

// Does not compile as C++20 or later, where names of the standard library's own calendar clash with it.
#include <date/ptz.h>

#include <regex>

namespace vespra {

namespace {

    /// `change`, such as "M3.5.0/-1", at 24 hours later: "M3.5.0/23".
    std::string aDayLater(const std::string& change)
    {
        static const std::regex form{R"(([^/]+)(?:/([+-]?)(\d+)(?::(\d+))?(?::(\d+))?)?)"};
        std::smatch parts;
        if (!std::regex_match(change, parts, form))
            return change;
        const auto number = [&](std::size_t part) { return parts[part].matched ? std::stoi(parts[part]) : 0; };
        const int seconds = number(3) * 3600 + number(4) * 60 + number(5);
        const int later = 86'400 + (!parts[3].matched ? 7'200 : parts[2] == "-" ? -seconds : seconds);
        return parts[1].str() + "/" + std::to_string(later / 3600) + ":" + std::to_string(later / 60 % 60) + ":"
            + std::to_string(later % 60);
    }

    /// Clocks may change before midnight of a day that the rule names ("M3.5.0/-1": the eve of the last Sunday in
    /// March), which the library cannot read. So both changes are made a day late, and it is asked about a day later.
    class Rule final : public PosixZoneRule {
    public:
        explicit Rule(const std::string& text)
            : delay_{text.find("/-") == std::string::npos ? 0 : 1}
            , zone_{delay_.count() == 0 ? text : delayed(text)}
        {
        }
        date::local_seconds toLocal(date::sys_seconds date) const override
        {
            return zone_.to_local(date + delay_) - delay_;
        }

    private:
        static std::string delayed(const std::string& text)
        {
            const auto first = text.find(','), second = text.rfind(',');
            return text.substr(0, first + 1) + aDayLater(text.substr(first + 1, second - first - 1)) + ","
                + aDayLater(text.substr(second + 1));
        }

        date::days delay_;
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
