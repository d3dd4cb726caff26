#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>

namespace vespra {

/// Cuts bytes that arrive in pieces into lines, and keeps no more than the beginning of the one that is arriving: what
/// a line is about stands there, and a line may be megabytes long.
class LineHeads {
public:
    static constexpr std::size_t limit = 4096; // bytes of a line

    struct Line {
        std::string_view head;
        /// The head is all of it.
        bool isWhole;
    };

    /// Forgets the line that was arriving. `isInsideLine`: up to the next line feed comes the rest of one whose
    /// beginning is not known; it is left out.
    void restart(bool isInsideLine)
    {
        head_.clear();
        isWhole_ = true;
        isSkipping_ = isInsideLine;
    }

    /// Calls `use` with each line that has arrived up to its line feed.
    template <std::invocable<Line> Use> void take(std::string_view bytes, Use use)
    {
        while (!bytes.empty()) {
            const auto length = std::min(bytes.find('\n'), bytes.size());
            add(bytes.substr(0, length));
            if (length == bytes.size())
                return;
            if (!isSkipping_)
                use(Line{.head = head_, .isWhole = isWhole_});
            restart(false);
            bytes.remove_prefix(length + 1);
        }
    }

private:
    void add(std::string_view bytes)
    {
        if (isSkipping_)
            return;
        const auto room = limit - head_.size();
        isWhole_ = isWhole_ && bytes.size() <= room;
        head_ += bytes.substr(0, room);
    }

    std::string head_;
    bool isWhole_ = true;
    bool isSkipping_ = false;
};

} // namespace vespra
