#pragma once

#include <optional>
#include <QByteArray>

namespace vespra {

/// A public Ed25519 key, as Sparkle's tools write it.
class SigningKey {
public:
    /// Absent unless `base64` is a key of 32 bytes.
    static std::optional<SigningKey> read(const QByteArray& base64);

    /// Whether the owner of the key has signed exactly `bytes`.
    bool hasSigned(const QByteArray& bytes, const QByteArray& base64Signature) const;

private:
    explicit SigningKey(QByteArray key)
        : key_{std::move(key)}
    {
    }

    QByteArray key_;
};

} // namespace vespra
