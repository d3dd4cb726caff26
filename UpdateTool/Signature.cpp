#include "UpdateTool/Signature.h"

#include <sodium.h>

namespace vespra {

namespace {

    QByteArray fromBase64(const QByteArray& text, qsizetype size)
    {
        const auto read = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
        return read && read.decoded.size() == size ? read.decoded : QByteArray{};
    }

    const unsigned char* bytes(const QByteArray& array) { return reinterpret_cast<const unsigned char*>(array.data()); }

} // namespace

std::optional<SigningKey> SigningKey::read(const QByteArray& base64)
{
    auto key = fromBase64(base64, crypto_sign_PUBLICKEYBYTES);
    if (sodium_init() < 0 || key.isEmpty())
        return {};
    return SigningKey{std::move(key)};
}

bool SigningKey::hasSigned(const QByteArray& message, const QByteArray& base64Signature) const
{
    const auto signature = fromBase64(base64Signature, crypto_sign_BYTES);
    return !signature.isEmpty()
        && crypto_sign_verify_detached(
               bytes(signature), bytes(message), static_cast<unsigned long long>(message.size()), bytes(key_))
        == 0;
}

} // namespace vespra
