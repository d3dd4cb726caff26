#include "Core/Agents/CodexRollout.h"

#include <array>
#include <utility>

namespace vespra {

namespace {

    constexpr std::array<std::pair<std::string_view, CodexRollout::Turn>, 3> markers{{
        {"task_started\"", CodexRollout::Turn::open},
        {"task_complete\"", CodexRollout::Turn::closed},
        {"turn_aborted\"", CodexRollout::Turn::closed},
    }};

    /// Only as the line's own type: quotes within texts are escaped, and an object before this one would be part of
    /// something else.
    std::optional<CodexRollout::Turn> marker(std::string_view head)
    {
        constexpr std::string_view event = R"("type":"event_msg","payload":{"type":")";
        const auto payload = head.find('{', 1);
        const auto found = head.find(event);
        if (!head.starts_with('{') || found == std::string_view::npos || payload != found + event.find('{'))
            return {};
        const auto type = head.substr(found + event.size());
        for (const auto& [word, turn] : markers)
            if (type.starts_with(word))
                return turn;
        return {};
    }

    std::optional<Instant> date(std::string_view head)
    {
        constexpr std::string_view key = R"({"timestamp":")";
        if (!head.starts_with(key))
            return {};
        head.remove_prefix(key.size());
        return Instant::fromISO8601(head.substr(0, head.find('"')));
    }

} // namespace

void CodexRollout::take(std::string_view bytes)
{
    lines_.take(bytes, [this](const LineHeads::Line& line) { takeLine(line.head); });
}

void CodexRollout::restart(bool isInsideLine)
{
    *this = {};
    lines_.restart(isInsideLine);
}

void CodexRollout::skip()
{
    lines_.restart(true);
    if (turn_ == Turn::closed)
        turn_ = Turn::unknown;
}

void CodexRollout::takeLine(std::string_view head)
{
    const auto at = date(head);
    if (at)
        grownUntil_ = std::max(*at, grownUntil_.value_or(*at));
    if (const auto turn = marker(head)) {
        turn_ = *turn;
        turnSince_ = at;
    }
}

} // namespace vespra
