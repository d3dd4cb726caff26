#pragma once

#include "Core/ClosedLid/SleepOverrideLedger.h"
#include "Helper/SleepSetting.h"

namespace vespra {

/// Keeps the ledger's record across crashes and restarts of the computer. A change that has returned is on the disk;
/// one that was interrupted left either the old record or the new.
class LedgerStorage {
public:
    virtual ~LedgerStorage() = default;
    /// Absent: no override is recorded. Fails when there is something that cannot be understood.
    virtual std::expected<std::optional<SleepOverrideRecord>, std::string> read() = 0;
    virtual HelperResult write(const SleepOverrideRecord& record) = 0;
    virtual HelperResult erase() = 0;
    /// Takes away what `read` could not understand, and keeps it for a person to look at.
    virtual HelperResult setAside() = 0;
};

} // namespace vespra
