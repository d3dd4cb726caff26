#pragma once

#include "Core/Coding/JSONSource.h"
#include "Core/Scheduling/Instant.h"

#include <optional>

namespace vespra {

/// What the system's disable-sleep setting was before the first override, and when that was applied.
struct SleepOverrideRecord {
    bool originalSleepDisabled = false;
    Instant appliedAt;

    bool operator==(const SleepOverrideRecord&) const = default;
};

JSON toJSON(const SleepOverrideRecord& record);
std::expected<SleepOverrideRecord, DecodingError> sleepOverrideRecord(const JSON& json);

/// Remembers the original setting while an override is in force, so that it can be put back exactly, also after a
/// crash. Holds no file: its user persists what the operations return.
class SleepOverrideLedger {
public:
    SleepOverrideLedger() = default;
    explicit SleepOverrideLedger(std::optional<SleepOverrideRecord> persisted)
        : record_{persisted}
    {
    }

    const std::optional<SleepOverrideRecord>& record() const { return record_; }
    /// An earlier run ended with the setting overridden.
    bool needsRecovery() const { return record_.has_value(); }

    /// To be persisted before the setting is changed. A record that exists is kept: it alone knows the original.
    SleepOverrideRecord prepareApply(bool currentValue, Instant now);

    /// The value to put back, absent when there is none; then the empty ledger is to be persisted.
    std::optional<bool> prepareRestore();

private:
    std::optional<SleepOverrideRecord> record_;
};

} // namespace vespra
