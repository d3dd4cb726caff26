#pragma once

#include "Core/Updates/UpdateMessage.h"
#include "UpdateTool/Signature.h"

#include <expected>
#include <optional>
#include <QString>
#include <string>
#include <string_view>

namespace vespra {

/// The feed of Sparkle's kind, which all systems share.
namespace appcast {

    /// Without the comment at its end that holds its signature; absent unless the owner of `key` signed it.
    std::optional<QByteArray> verified(const QByteArray& feed, const SigningKey& key);

    /// The newest version that `feed` has for this system and machine, and that is newer than `current`; absent if
    /// there is none. Fails with a sentence for the log if the feed is malformed.
    std::expected<std::optional<UpdateOffer>, std::string> newest(const QByteArray& feed, std::string_view current);

    /// HTML as plain text.
    QString plainText(const QString& html);

} // namespace appcast

} // namespace vespra
