// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

using Ed25519PublicKey = std::array<std::uint8_t, 32>;
using Ed25519Signature = std::array<std::uint8_t, 64>;

/// Is `signature` the Ed25519 signature (RFC 8032) of exactly `message`, made with the private half
/// of `key`?
[[nodiscard]] bool isSignedBy(const Ed25519PublicKey& key, std::string_view message,
                              const Ed25519Signature& signature);

/// Absent unless `text` is base64 of exactly as many bytes, with nothing before, between or after.
template <std::size_t size>
[[nodiscard]] std::optional<std::array<std::uint8_t, size>> decodeBase64(std::string_view text);
extern template std::optional<Ed25519PublicKey> decodeBase64(std::string_view text);
extern template std::optional<Ed25519Signature> decodeBase64(std::string_view text);

[[nodiscard]] std::string encodeBase64(const Ed25519PublicKey& key);

/// The SHA-256 of what comes in pieces.
class Sha256 {
public:
    Sha256();
    ~Sha256();
    Sha256(const Sha256&) = delete;
    Sha256& operator=(const Sha256&) = delete;

    void add(std::string_view bytes);
    /// Lower-case hexadecimal; empty when the library failed on the way. Once.
    [[nodiscard]] std::string finish();

private:
    struct Context;
    std::unique_ptr<Context> context_;
};

} // namespace kelvora
