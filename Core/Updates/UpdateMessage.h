#pragma once

#include "Core/Match.h"
#include "Core/RawValue.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace vespra {

/// A version that is newer than the one that runs.
struct UpdateOffer {
    /// By which versions are ordered.
    std::string version;
    /// As users read it.
    std::string displayVersion;
    /// What is new: plain text with line breaks, may be empty.
    std::string notes;
    /// Of the package: its address, its signature in Base64, and its length in bytes.
    std::string url;
    std::string signature;
    std::int64_t length = 0;

    bool operator==(const UpdateOffer&) const = default;
};

enum class UpdateFailure {
    unreachable,
    /// What came is not what its makers signed, or cannot be read.
    untrusted,
    tooLarge,
    notSaved,
    /// The package is there, and no program takes it.
    notOpened,
};

template <>
inline constexpr auto rawValues<UpdateFailure> = RawValueTable<UpdateFailure, 5>{{
    {UpdateFailure::unreachable, "unreachable"},
    {UpdateFailure::untrusted, "untrusted"},
    {UpdateFailure::tooLarge, "tooLarge"},
    {UpdateFailure::notSaved, "notSaved"},
    {UpdateFailure::notOpened, "notOpened"},
}};

/// What the program that fetches updates tells, a line of JSON each; the last one is its answer.
namespace updateMessage {

    struct UpToDate : Case { };
    /// From 0 to 1.
    struct Progress {
        double fraction;
    };
    /// The path of a package whose length and signature are right.
    struct Package {
        std::string path;
    };
    struct Failed {
        UpdateFailure reason;
        /// For the log.
        std::string detail;
    };

} // namespace updateMessage

using UpdateMessage = std::variant<updateMessage::UpToDate, UpdateOffer, updateMessage::Progress,
    updateMessage::Package, updateMessage::Failed>;

/// Without the line's end.
std::string encoded(const UpdateMessage& message);
/// Absent if the line is not one of these.
std::optional<UpdateMessage> updateMessageFrom(std::string_view line);

} // namespace vespra
