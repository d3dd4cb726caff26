#include "Helper/SleepOverride.h"

namespace vespra {

SleepOverride::SleepOverride(SleepSetting& setting, LedgerStorage& storage, const WallClock& clock, SystemLog log)
    : setting_{setting}
    , storage_{storage}
    , clock_{clock}
    , log_{std::move(log)}
{
}

bool SleepOverride::recover()
{
    const auto persisted = storage_.read();
    if (!persisted) {
        log_.error("Registre illisible, la veille est rétablie : " + persisted.error());
        isLedgerBad_ = true;
        ledger_.prepareApply(false, clock_.now());
    } else
        ledger_ = SleepOverrideLedger{*persisted};
    if (!ledger_.needsRecovery())
        return false;
    log_.notice("Reprise après un arrêt imprévu");
    if (const auto restored = restore(); !restored)
        log_.error("Reprise impossible pour l'instant : " + restored.error());
    return true;
}

HelperResult SleepOverride::apply()
{
    if (isInForce_)
        return setting_.setSleepDisabled(true);
    if (isOwing())
        if (const auto settled = restore(); !settled)
            return settled;
    const auto original = setting_.isSleepDisabled();
    if (!original)
        return std::unexpected{original.error()};
    if (const auto written = storage_.write(ledger_.prepareApply(*original, clock_.now())); !written) {
        // Nothing has been overridden, but the record may have reached the disk.
        ledger_.prepareRestore();
        isEraseOwed_ = !storage_.erase();
        return written;
    }
    isInForce_ = true;
    isEraseOwed_ = isLedgerBad_ = false;
    if (const auto set = setting_.setSleepDisabled(true); !set) {
        if (const auto restored = restore(); !restored)
            log_.error("Restauration impossible pour l'instant : " + restored.error());
        return set;
    }
    return {};
}

HelperResult SleepOverride::restore()
{
    const auto before = ledger_;
    isInForce_ = false;
    if (const auto original = ledger_.prepareRestore()) {
        if (const auto set = setting_.setSleepDisabled(*original); !set) {
            ledger_ = before;
            return set;
        }
        isEraseOwed_ = true;
    }
    return settleStorage();
}

/// Takes the record away once the setting is back. A failure costs the user nothing: what the record says is true until
/// the next change of the setting, and it is taken away later.
HelperResult SleepOverride::settleStorage()
{
    if (!isEraseOwed_ && !isLedgerBad_)
        return {};
    const auto settled = isLedgerBad_ ? storage_.setAside() : storage_.erase();
    if (!settled)
        log_.error("Registre non effacé : " + settled.error());
    else
        isEraseOwed_ = isLedgerBad_ = false;
    return {};
}

} // namespace vespra
