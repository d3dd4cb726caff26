#pragma once

#include "Core/Scheduling/WallClock.h"
#include "Helper/LedgerStorage.h"
#include "Log/SystemLog.h"

namespace vespra {

/// Overrides the system's disable-sleep setting so that the original always comes back: the ledger is on the disk
/// before the setting is touched, and leaves it only after the setting is back. Wherever it is interrupted, `recover`
/// at the next start puts the original back.
class SleepOverride {
public:
    SleepOverride(SleepSetting& setting, LedgerStorage& storage, const WallClock& clock, SystemLog log);

    /// Puts back what an earlier run left behind; to be called before anything else. A ledger that cannot be understood
    /// leads to sleep being allowed. What fails stays owed. False: there was nothing.
    bool recover();

    /// Puts the override into force; if it is already, sets it once more. After a failure the original setting is in
    /// force, or `isOwing` and will be put back.
    HelperResult apply();
    /// Puts the original setting back; without an override it does nothing. After a failure the original is still owed.
    HelperResult restore();

    bool isInForce() const { return isInForce_; }
    /// Something could not be put back; `restore` tries again.
    bool isOwing() const { return (ledger_.needsRecovery() && !isInForce_) || isEraseOwed_ || isLedgerBad_; }

private:
    HelperResult settleStorage();

    SleepSetting& setting_;
    LedgerStorage& storage_;
    const WallClock& clock_;
    SystemLog log_;
    SleepOverrideLedger ledger_;
    bool isInForce_ = false;
    bool isEraseOwed_ = false;
    bool isLedgerBad_ = false;
};

} // namespace vespra
