// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/update_signature.h"

#include <memory>
#include <string>
#include <string_view>

namespace kelvora::test {

/// Somebody with a key of their own who signs what they like. Written against docs/updates.md, not
/// with the program's own constants.
class Maintainer {
public:
    Maintainer();
    ~Maintainer();

    [[nodiscard]] Ed25519PublicKey publicKey() const;
    /// base64
    [[nodiscard]] std::string sign(std::string_view message) const;
    /// `document` under its line with the signature.
    [[nodiscard]] std::string feed(std::string_view document) const;
    [[nodiscard]] std::string packageSignature(const std::string& version,
                                               const std::string& architecture,
                                               std::string_view package) const;

private:
    struct Key;
    std::unique_ptr<Key> key_;
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
[[nodiscard]] std::string json(const Document& document, const Maintainer& signer);

[[nodiscard]] std::string sha256(std::string_view bytes);

} // namespace kelvora::test
