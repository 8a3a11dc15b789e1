// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/update_signature.h"

#include <QCryptographicHash>

#include <openssl/evp.h>

#include <array>
#include <memory>
#include <string>

namespace kelvora::test {

[[nodiscard]] inline std::string sha256(const std::string& bytes) {
    return QCryptographicHash::hash(QByteArray::fromStdString(bytes), QCryptographicHash::Sha256)
        .toHex()
        .toStdString();
}

/// Somebody with a key of their own who signs what they like. Written against docs/updates.md, not
/// with the program's own constants.
class Maintainer {
public:
    [[nodiscard]] Ed25519PublicKey publicKey() const {
        Ed25519PublicKey key{};
        std::size_t size = key.size();
        EVP_PKEY_get_raw_public_key(key_.get(), key.data(), &size);
        return key;
    }
    /// base64
    [[nodiscard]] std::string sign(const std::string& message) const {
        std::array<unsigned char, 64> signature{};
        std::size_t size = signature.size();
        const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                              &EVP_MD_CTX_free);
        EVP_DigestSignInit(context.get(), nullptr, nullptr, nullptr, key_.get());
        EVP_DigestSign(context.get(), signature.data(), &size,
                       reinterpret_cast<const unsigned char*>(message.data()), message.size());
        return QByteArray(reinterpret_cast<const char*>(signature.data()), signature.size())
            .toBase64()
            .toStdString();
    }
    /// `document` under its line with the signature.
    [[nodiscard]] std::string feed(const std::string& document) const {
        return "kelvora-updates 1 " + sign("kelvora-updates 1\n" + document) + "\n" + document;
    }
    [[nodiscard]] std::string packageSignature(const std::string& version,
                                               const std::string& package) const {
        return sign("kelvora-package 1\n" + version + "\namd64\n" + std::to_string(package.size()) +
                    "\n" + sha256(package) + "\n");
    }

private:
    std::shared_ptr<EVP_PKEY> key_{EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"), EVP_PKEY_free};
};

/// What stands in a feed; the defaults are those of a good one.
struct Document {
    std::string serial = "7";
    std::string expires = "2999-01-01T00:00:00Z";
    std::string version = "1.2.0";
    std::string more = {}; ///< members put in front
    std::string url = "https://127.0.0.1/kelvora.deb";
    std::string package = "the package";
    std::string signature = {}; ///< of the package; made by `signer` when empty
};

[[nodiscard]] inline std::string json(const Document& document, const Maintainer& signer) {
    const std::string signature = document.signature.empty()
                                      ? signer.packageSignature(document.version, document.package)
                                      : document.signature;
    return "{" + document.more + R"("format": 1, "serial": )" + document.serial +
           R"(, "expires": ")" + document.expires + R"(", "version": ")" + document.version +
           R"(", "notes": "What <b>is</b> new", "packages": [{"architecture": "amd64", "url": ")" +
           document.url + R"(", "size": )" + std::to_string(document.package.size()) +
           R"(, "sha256": ")" + sha256(document.package) + R"(", "signature": ")" + signature +
           R"("}]})";
}

} // namespace kelvora::test
