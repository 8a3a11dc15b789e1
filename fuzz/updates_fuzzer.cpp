// SPDX-License-Identifier: MIT
// What the update server may send and the files of the updater may hold: any bytes, unsigned and
// signed.
#include "fuzz/input.h"
#include "host/linux/updates/update_configuration.h"
#include "host/linux/updates/update_feed.h"
#include "host/linux/updates/update_memory.h"
#include "host/linux/updates/update_offer.h"

#include <QByteArray>
#include <QDateTime>

#include <openssl/evp.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <string>
#include <vector>

namespace kelvora::fuzz {
namespace {

/// A maintainer whose key is no secret.
class Signer {
public:
    Signer() {
        std::array<unsigned char, 32> seed{};
        seed.fill(7);
        pair_ = EVP_PKEY_new_raw_private_key(EVP_PKEY_ED25519, nullptr, seed.data(), seed.size());
        std::size_t size = key.size();
        require(EVP_PKEY_get_raw_public_key(pair_, key.data(), &size) == 1, "there is a key");
    }

    [[nodiscard]] std::string sign(std::string_view message) const {
        Ed25519Signature signature{};
        std::size_t size = signature.size();
        EVP_MD_CTX* context = EVP_MD_CTX_new();
        EVP_DigestSignInit(context, nullptr, nullptr, nullptr, pair_);
        const int isSigned =
            EVP_DigestSign(context, signature.data(), &size,
                           reinterpret_cast<const unsigned char*>(message.data()), message.size());
        EVP_MD_CTX_free(context);
        require(isSigned == 1, "the key signs");
        return QByteArray(reinterpret_cast<const char*>(signature.data()), signature.size())
            .toBase64()
            .toStdString();
    }

    Ed25519PublicKey key{};

private:
    EVP_PKEY* pair_ = nullptr; // as long as the process
};

const Signer& signer() {
    static const Signer signer;
    return signer;
}

bool consistsOf(std::string_view text, std::string_view alphabet) {
    return text.find_first_not_of(alphabet) == std::string_view::npos;
}

void checkUrl(std::string_view url) {
    constexpr std::string_view scheme = "https://";
    require(std::ranges::equal(url.substr(0, scheme.size()), scheme, {},
                               [](unsigned char unit) { return std::tolower(unit); }),
            "an address is HTTPS");
    require(url.size() <= 2048 && url.find_first_of("\n\r \"<>") == std::string_view::npos,
            "an address is one word");
}

void checkOffer(const UpdateFeed& feed, std::string_view installedText) {
    const auto installed = UpdateVersion::parse(installedText).value_or(feed.version);
    for (const char* architecture : {"amd64", "riscv64"}) {
        const auto offer = offerOf(feed, installed, architecture);
        if (const auto* update = std::get_if<UpdateOffer>(&offer)) {
            require(installed < update->version, "only what is newer is offered");
            require(!feed.minimumVersion || *feed.minimumVersion <= installed,
                    "what is too old is not replaced");
            require(update->package.architecture == architecture ||
                        update->package.architecture == "all",
                    "a package is for this computer");
        }
    }
    require(staleness(feed, feed.serial, feed.expires) == UpdateNotice::expired &&
                staleness(feed, feed.serial + 1, feed.expires) == UpdateNotice::replayed &&
                !staleness(feed, feed.serial, feed.expires - std::chrono::seconds(1)),
            "a feed holds up to its date, and until there was a newer one");
}

void checkFeed(std::string_view document, const UpdateFeed& feed) {
    constexpr std::int64_t largest = (std::int64_t{1} << 53) - 1;
    require(feed.serial >= 0 && feed.serial <= largest, "serials are exact numbers");
    const auto expires =
        QDateTime::fromSecsSinceEpoch(feed.expires.time_since_epoch().count(), Qt::UTC);
    const QByteArray written = expires.toString(Qt::ISODate).toUtf8();
    require(document.find(written.toStdString()) != std::string_view::npos ||
                document.find('\\') != std::string_view::npos,
            "a date means what it says");
    require(feed.notes.size() <= 16 * 1024, "notes have an end");
    require(feed.packages.size() <= 32, "the list of packages has an end");
    for (const UpdatePackage& package : feed.packages) {
        require(!package.architecture.empty() && package.architecture.size() <= 32 &&
                    consistsOf(package.architecture, "abcdefghijklmnopqrstuvwxyz0123456789-"),
                "an architecture may be part of a file name");
        require(isUpdateUrl(package.url), "a package comes from an address that is allowed");
        checkUrl(package.url);
        require(package.size > 0 && package.size <= maximumPackageSize, "a package has a size");
        require(package.sha256.size() == 64 && consistsOf(package.sha256, "0123456789abcdef"),
                "a checksum is one");
        const std::string statement = packageStatement(feed.version, package);
        require(std::ranges::count(statement, '\n') == 5, "a statement has five lines");
    }
    checkOffer(feed, document.substr(0, 8));
}

void checkSigned(std::string_view document) {
    const auto feed = parseUpdateFeed(document);
    if (feed)
        checkFeed(document, *feed);
    const std::string title = "kelvora-updates 1";
    std::string bytes = title + " " + signer().sign(title + "\n" + std::string(document)) + "\n";
    const std::size_t header = bytes.size();
    bytes += document;
    const auto opened = openUpdateFeed(bytes, signer().key);
    if (bytes.size() > maximumFeedSize) {
        require(opened.index() == 1 && std::get<1>(opened) == UpdateNotice::oversized,
                "what is too long is not looked at");
        return;
    }
    require(feed ? opened.index() == 0
                 : opened.index() == 1 && std::get<1>(opened) == UpdateNotice::malformed,
            "what is signed is read");
    if (feed)
        require(std::get<UpdateFeed>(opened).serial == feed->serial &&
                    std::get<UpdateFeed>(opened).packages.size() == feed->packages.size(),
                "what is signed is what is read");
    // One bit of the document, wherever it is.
    if (!document.empty()) {
        const std::size_t chosen = static_cast<unsigned char>(document.back()) % document.size();
        bytes[header + chosen] ^= 1;
        const auto changed = openUpdateFeed(bytes, signer().key);
        require(changed.index() == 1 && std::get<1>(changed) == UpdateNotice::forged,
                "a signature is for what was signed alone");
    }
}

void checkVersions(std::string_view text) {
    std::vector<UpdateVersion> versions;
    while (!text.empty() && versions.size() < 3) {
        const std::size_t end = std::min(text.find_first_of(" \n"), text.size());
        if (const auto version = UpdateVersion::parse(text.substr(0, end))) {
            require(version->text() == text.substr(0, end), "a version is its text");
            require(
                consistsOf(version->text(),
                           "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.+~-:"),
                "a version may be part of a file name");
            versions.push_back(*version);
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    for (const UpdateVersion& a : versions) {
        require(a == a, "a version is as new as itself");
        for (const UpdateVersion& b : versions) {
            require((a < b) == (b > a) && (a == b) == (b == a) && !(a < b && b < a),
                    "of two versions one is newer, or neither");
            for (const UpdateVersion& c : versions) {
                require(!(a <= b && b <= c) || a <= c, "versions are in one order");
                require(!(a < b && b <= c) || a < c, "versions are in one strict order");
            }
        }
        // deb-version(7): a tilde sorts before the end of a part, anything else after it.
        if (a.text().size() < 60) {
            const auto before = UpdateVersion::parse(a.text() + "~");
            const auto after = UpdateVersion::parse(a.text() + "z");
            require(before && *before < a && after && a < *after,
                    "a tilde makes older, a letter newer");
        }
    }
}

void checkFiles(std::string_view text) {
    if (const auto configuration = parseUpdateConfiguration(text)) {
        require(isUpdateUrl(configuration->feedUrl), "the feed comes from an address allowed");
        checkUrl(configuration->feedUrl);
        require(configuration->interval >= shortestUpdateInterval &&
                    configuration->interval <= longestUpdateInterval,
                "checks are neither too often nor too seldom");
        require(decodeBase64<32>(encodeBase64(configuration->publicKey)) ==
                    configuration->publicKey,
                "a key is written as it is read");
    }
    if (const auto memory = parseUpdateMemory(text)) {
        require(memory->highestSerial >= 0, "serials are counted from 0");
        require(parseUpdateMemory(formatUpdateMemory(*memory)) == memory,
                "what is remembered is written and read alike");
    }
}

} // namespace
} // namespace kelvora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kelvora;
    using namespace kelvora::fuzz;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto unsignedFeed = openUpdateFeed(text, signer().key);
    require(unsignedFeed.index() == 1, "nothing is read that is not signed");
    checkSigned(text);
    checkVersions(text);
    checkFiles(text);
    return 0;
}
