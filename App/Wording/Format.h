#pragma once

#include "App/Wording/DurationFormatter.h"
#include "Core/Session/TimeOfDay.h"

#include <QLocale>

namespace vespra {

/// Durations and times of day as the user reads them. What a format needs is built at its first use and kept. Main
/// thread only.
class Format {
public:
    /// `words` is the language of durations, `clock` says how times of day are written.
    Format(const QLocale& words, const QLocale& clock);

    /// That of the user, for the process's life.
    static const Format& current();

    /// In hours and whole minutes, seconds dropped: "1h 30m", "4h", "0m"; in other languages than English with units a
    /// little longer. Empty for a length that is negative or not a finite number.
    std::string briefDuration(Seconds length) const;
    /// The same written out, as it is read aloud: "1 hour, 30 minutes".
    std::string spokenDuration(Seconds length) const;

    /// `time` on the day of `reference`, short: "18:00", "6:00 PM". Where that day skips it, the next time that exists.
    std::string time(TimeOfDay time, const Calendar& calendar, Instant reference) const;
    /// The time on the clocks of `calendar` at `instant`, short.
    std::string time(Instant instant, const Calendar& calendar) const;

private:
    using KeptFormatter = std::unique_ptr<const DurationFormatter>;
    std::string duration(Seconds length, KeptFormatter& kept, DurationUnits units) const;

    QLocale words_;
    QLocale clock_;
    mutable KeptFormatter brief_;
    mutable KeptFormatter spoken_;
};

/// A time on the user's clock in the user's locale, short: "18:30".
std::string timeText(Instant instant);

} // namespace vespra
