// SPDX-License-Identifier: MIT
#include "tests/host/updates/maintainer.h"

#include <QCryptographicHash>

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

namespace kelvora::test {

struct Maintainer::Key {
    EVP_PKEY* pair = EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519");
    ~Key() { EVP_PKEY_free(pair); }
};

Maintainer::Maintainer() : key_(std::make_unique<Key>()) {}
Maintainer::~Maintainer() = default;

Ed25519PublicKey Maintainer::publicKey() const {
    Ed25519PublicKey key{};
    std::size_t size = key.size();
    EVP_PKEY_get_raw_public_key(key_->pair, key.data(), &size);
    return key;
}

std::string Maintainer::sign(std::string_view message) const {
    std::array<unsigned char, 64> signature{};
    std::size_t size = signature.size();
    EVP_MD_CTX* context = EVP_MD_CTX_new();
    EVP_DigestSignInit(context, nullptr, nullptr, nullptr, key_->pair);
    const int isDone =
        EVP_DigestSign(context, signature.data(), &size,
                       reinterpret_cast<const unsigned char*>(message.data()), message.size());
    EVP_MD_CTX_free(context);
    if (isDone != 1)
        throw std::runtime_error("cannot sign");
    return QByteArray(reinterpret_cast<const char*>(signature.data()), signature.size())
        .toBase64()
        .toStdString();
}

std::string Maintainer::feed(std::string_view document) const {
    const std::string text(document);
    return "kelvora-updates 1 " + sign("kelvora-updates 1\n" + text) + "\n" + text;
}

std::string Maintainer::packageSignature(const std::string& version,
                                         const std::string& architecture,
                                         std::string_view package) const {
    return sign("kelvora-package 1\n" + version + "\n" + architecture + "\n" +
                std::to_string(package.size()) + "\n" + sha256(package) + "\n");
}

std::string json(const Document& document, const Maintainer& signer) {
    const std::string signature =
        document.signature.empty()
            ? signer.packageSignature(document.version, "amd64", document.package)
            : document.signature;
    return "{" + document.more + R"("format": 1, "serial": )" + document.serial +
           R"(, "expires": ")" + document.expires + R"(", "version": ")" + document.version +
           R"(", "notes": "What <b>is</b> new", "packages": [{"architecture": "amd64", "url": ")" +
           document.url + R"(", "size": )" + std::to_string(document.package.size()) +
           R"(, "sha256": ")" + sha256(document.package) + R"(", "signature": ")" + signature +
           R"("}]})";
}

std::string sha256(std::string_view bytes) {
    return QCryptographicHash::hash(QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())),
                                    QCryptographicHash::Sha256)
        .toHex()
        .toStdString();
}

} // namespace kelvora::test
