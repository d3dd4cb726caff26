#pragma once

#include "Core/ClosedRange.h"
#include "Core/Session/TimeOfDay.h"

#include <expected>
#include <optional>
#include <string>

/// Values as they are written on command lines. Each fails with a sentence that says what was expected.
namespace vespra::arguments {

/// "25m", "1h30m", "90s", within `range`; what it fails with has examples from there.
std::expected<Seconds, std::string> length(std::string_view text, ClosedRange<Seconds> range);

/// A length in whole seconds as `length` reads it: "1h30m"; "0s" for none.
std::string lengthText(Seconds length);

/// "18:30" or "6:05", from 00:00 to 23:59.
std::expected<TimeOfDay, std::string> timeOfDay(std::string_view text);

/// As `timeOfDay` reads it: "06:05".
std::string timeOfDayText(TimeOfDay time);

/// The whole of the file at `path`; "-" is standard input. Fails with "cannot read PATH: ...".
std::expected<std::string, std::string> fileContents(const std::string& path);

} // namespace vespra::arguments
