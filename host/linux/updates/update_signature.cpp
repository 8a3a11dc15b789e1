// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_signature.h"

#include <QByteArray>

#include <openssl/evp.h>

#include <algorithm>

namespace kelvora {
namespace {

struct FreeKey {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct FreeContext {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using Key = std::unique_ptr<EVP_PKEY, FreeKey>;
using DigestContext = std::unique_ptr<EVP_MD_CTX, FreeContext>;

const unsigned char* octets(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

} // namespace

bool isSignedBy(const Ed25519PublicKey& key, std::string_view message,
                const Ed25519Signature& signature) {
    const Key publicKey(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, key.data(), key.size()));
    const DigestContext context(EVP_MD_CTX_new());
    return publicKey && context &&
           EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, publicKey.get()) == 1 &&
           EVP_DigestVerify(context.get(), signature.data(), signature.size(), octets(message),
                            message.size()) == 1;
}

template <std::size_t size>
std::optional<std::array<std::uint8_t, size>> decodeBase64(std::string_view text) {
    if (text.size() != (size + 2) / 3 * 4) {
        return std::nullopt;
    }
    const auto decoded = QByteArray::fromBase64Encoding(
        QByteArray(text.data(), static_cast<qsizetype>(text.size())),
        QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || (*decoded).size() != static_cast<qsizetype>(size)) {
        return std::nullopt;
    }
    std::array<std::uint8_t, size> bytes{};
    std::ranges::transform(*decoded, bytes.begin(),
                           [](char byte) { return static_cast<std::uint8_t>(byte); });
    return bytes;
}
template std::optional<Ed25519PublicKey> decodeBase64(std::string_view text);
template std::optional<Ed25519Signature> decodeBase64(std::string_view text);

std::string encodeBase64(const Ed25519PublicKey& key) {
    return QByteArray(reinterpret_cast<const char*>(key.data()), static_cast<qsizetype>(key.size()))
        .toBase64()
        .toStdString();
}

struct Sha256::Context {
    DigestContext digest{EVP_MD_CTX_new()};
    bool isGood = false;
};

Sha256::Sha256() : context_(std::make_unique<Context>()) {
    context_->isGood =
        context_->digest && EVP_DigestInit_ex(context_->digest.get(), EVP_sha256(), nullptr) == 1;
}

Sha256::~Sha256() = default;

void Sha256::add(std::string_view bytes) {
    context_->isGood = context_->isGood &&
                       EVP_DigestUpdate(context_->digest.get(), bytes.data(), bytes.size()) == 1;
}

std::string Sha256::finish() {
    std::array<unsigned char, 32> digest{};
    if (!context_->isGood ||
        EVP_DigestFinal_ex(context_->digest.get(), digest.data(), nullptr) != 1) {
        return {};
    }
    return QByteArray::fromRawData(reinterpret_cast<const char*>(digest.data()), digest.size())
        .toHex()
        .toStdString();
}

} // namespace kelvora
