#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vespra {

/// What the user chose, by key, from one launch to the next. What cannot be written stays in memory until the next
/// write, leaves what is stored as it was, and is logged. Main thread only.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// Absent where nothing or something else than data is stored.
    virtual std::optional<std::string> data(std::string_view key) const = 0;
    /// Absent where nothing or something else than a boolean is stored: a text "true" is none.
    virtual std::optional<bool> boolean(std::string_view key) const = 0;

    /// Both replace what is stored, at once.
    virtual void setData(std::string_view key, std::string_view data) = 0;
    virtual void setBoolean(std::string_view key, bool value) = 0;

    /// Whether the last write was stored. On a system that does not tell, true.
    virtual bool isStored() const { return true; }
};

/// The application's own: on macOS its defaults domain, on Linux "$XDG_CONFIG_HOME/Vespra/Vespra.ini".
std::unique_ptr<UserDefaults> makeUserDefaults();

} // namespace vespra
