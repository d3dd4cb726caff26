#include "Core/ClosedLid/SleepOverrideLedger.h"

#include <nlohmann/json.hpp>

namespace vespra {

JSON toJSON(const SleepOverrideRecord& record)
{
    return {{"originalSleepDisabled", record.originalSleepDisabled},
        {"appliedAt", numberJSON(record.appliedAt.sinceReferenceDate())}};
}

std::expected<SleepOverrideRecord, DecodingError> sleepOverrideRecord(const JSON& json)
{
    return decoded(JSONSource{json}, [](const JSONSource& source) {
        return SleepOverrideRecord{
            .originalSleepDisabled = source.required("originalSleepDisabled").boolean(),
            .appliedAt = Instant::fromReferenceDate(Seconds{source.required("appliedAt").number()}),
        };
    });
}

SleepOverrideRecord SleepOverrideLedger::prepareApply(bool currentValue, Instant now)
{
    if (!record_)
        record_ = SleepOverrideRecord{.originalSleepDisabled = currentValue, .appliedAt = now};
    return *record_;
}

std::optional<bool> SleepOverrideLedger::prepareRestore()
{
    if (!record_)
        return {};
    const bool original = record_->originalSleepDisabled;
    record_.reset();
    return original;
}

} // namespace vespra
