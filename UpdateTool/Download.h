#pragma once

#include "Core/Scheduling/Instant.h"
#include "Core/Updates/UpdateMessage.h"

#include <expected>
#include <functional>
#include <QByteArray>
#include <QIODevice>
#include <QSslCertificate>
#include <QUrl>

namespace vespra {

/// What a download may cost, and whom it trusts.
struct DownloadLimits {
    std::int64_t bytes;
    /// For all of it.
    Seconds total;
    /// Without a byte.
    Seconds silence = 30s;
    /// Authorities in the place of the system's; empty: the system's.
    QList<QSslCertificate> authorities;
};

/// Fetches `url` by HTTPS into `target`, and tells what has come so far, in bytes. At most five redirects, none of them
/// to anything but HTTPS. Sends nothing that tells users apart, and keeps nothing of what it is sent besides.
std::expected<void, updateMessage::Failed> download(const QUrl& url, QIODevice& target, const DownloadLimits& limits,
    const std::function<void(std::int64_t)>& onProgress = {});

} // namespace vespra
