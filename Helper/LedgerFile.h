#pragma once

#include "Helper/LedgerStorage.h"
#include "HelperProtocol/FileDescriptor.h"

namespace vespra {

/// The ledger as "sleep-override.json" in a directory of the daemon's own, which is made, for its owner alone, when the
/// first record is written. What cannot be understood is kept beside it as "sleep-override.json.bad".
class LedgerFile final : public LedgerStorage {
public:
    explicit LedgerFile(std::string directory);

    /// Makes the ledger this process's own until the object ends; to be called first where nothing else sees to it that
    /// there is one process only. False: another has it, and must not be disturbed.
    bool claim();

    std::expected<std::optional<SleepOverrideRecord>, std::string> read() override;
    HelperResult write(const SleepOverrideRecord& record) override;
    HelperResult erase() override;
    HelperResult setAside() override;

private:
    HelperResult writeAndSync(const std::string& path, const std::string& text) const;
    HelperResult makeDirectory() const;
    static HelperResult syncDirectory(const std::string& path);

    std::string directory_;
    std::string path_;
    FileDescriptor claim_;
};

} // namespace vespra
