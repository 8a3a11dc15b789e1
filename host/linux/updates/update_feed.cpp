// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_feed.h"

#include "host/linux/updates/update_configuration.h"
#include "host/linux/updates/update_json.h"

#include <QDateTime>
#include <QJsonArray>

#include <algorithm>
#include <tuple>

namespace kelvora {
namespace {

// The first word of a feed and of what is signed, so that no signature serves for anything else.
constexpr std::string_view feedTitle = "kelvora-updates 1";
constexpr std::string_view packageTitle = "kelvora-package 1";

constexpr std::int64_t supportedFormat = 1;
constexpr qsizetype maximumPackages = 32;
constexpr std::size_t maximumNotes = std::size_t{16} * 1024;

bool consistsOf(std::string_view text, std::string_view alphabet) {
    return text.find_first_not_of(alphabet) == std::string_view::npos;
}

std::optional<std::chrono::sys_seconds> timeOf(const QJsonObject& object, const char* name) {
    const std::optional<std::string> text = textOf(object, name);
    if (!text) {
        return std::nullopt;
    }
    const QDateTime time = QDateTime::fromString(QString::fromStdString(*text), Qt::ISODate);
    // Exactly 2030-01-31T12:00:00Z: a time without its zone would mean another moment elsewhere,
    // and Qt reads much else that only looks like this, fractions of minutes and hour 24 included.
    if (time.timeSpec() != Qt::UTC || time.toString(Qt::ISODate).toStdString() != *text) {
        return std::nullopt;
    }
    return std::chrono::sys_seconds(std::chrono::seconds(time.toSecsSinceEpoch()));
}

std::optional<UpdateVersion> versionOf(const QJsonObject& object, const char* name) {
    const std::optional<std::string> text = textOf(object, name);
    return text ? UpdateVersion::parse(*text) : std::nullopt;
}

std::optional<UpdatePackage> packageOf(const QJsonObject& object) {
    const auto architecture = textOf(object, "architecture");
    const auto url = textOf(object, "url");
    const auto size = integerOf(object, "size");
    const auto sha256 = textOf(object, "sha256");
    const auto encoded = textOf(object, "signature");
    const auto signature =
        encoded ? decodeBase64<std::tuple_size_v<Ed25519Signature>>(*encoded) : std::nullopt;
    // The architecture becomes part of a file name.
    const bool isGood = architecture && !architecture->empty() && architecture->size() <= 32 &&
                        consistsOf(*architecture, "abcdefghijklmnopqrstuvwxyz0123456789-") && url &&
                        isUpdateUrl(*url) && size && *size > 0 && *size <= maximumPackageSize &&
                        sha256 && sha256->size() == 64 && consistsOf(*sha256, "0123456789abcdef") &&
                        signature;
    if (!isGood) {
        return std::nullopt;
    }
    return UpdatePackage{.architecture = *architecture,
                         .url = *url,
                         .size = *size,
                         .sha256 = *sha256,
                         .signature = *signature};
}

std::optional<std::vector<UpdatePackage>> packagesOf(const QJsonObject& object) {
    const QJsonValue value = object.value(QLatin1String("packages"));
    const QJsonArray array = value.toArray();
    if (!value.isArray() || array.size() > maximumPackages) {
        return std::nullopt;
    }
    std::vector<UpdatePackage> packages;
    for (const QJsonValue element : array) {
        std::optional<UpdatePackage> package = packageOf(element.toObject());
        if (!package) {
            return std::nullopt;
        }
        packages.push_back(std::move(*package));
    }
    return packages;
}

} // namespace

std::optional<UpdateFeed> parseUpdateFeed(std::string_view document) {
    if (document.size() > maximumFeedSize) {
        return std::nullopt;
    }
    const std::optional<QJsonObject> object = jsonObject(document);
    if (!object || integerOf(*object, "format") != supportedFormat) {
        return std::nullopt;
    }
    const auto serial = integerOf(*object, "serial");
    const auto expires = timeOf(*object, "expires");
    const auto version = versionOf(*object, "version");
    const auto minimumVersion = versionOf(*object, "minimumVersion");
    const auto notes = textOf(*object, "notes");
    auto packages = packagesOf(*object);
    const bool isMinimumGood = minimumVersion || !object->contains(QLatin1String("minimumVersion"));
    if (!serial || !expires || !version || !isMinimumGood || !notes ||
        notes->size() > maximumNotes || !packages) {
        return std::nullopt;
    }
    return UpdateFeed{.serial = *serial,
                      .expires = *expires,
                      .version = *version,
                      .minimumVersion = minimumVersion,
                      .notes = *notes,
                      .packages = std::move(*packages)};
}

std::variant<UpdateFeed, UpdateNotice> openUpdateFeed(std::string_view bytes,
                                                      const Ed25519PublicKey& key) {
    if (bytes.size() > maximumFeedSize) {
        return UpdateNotice::oversized;
    }
    const std::size_t lineEnd = bytes.find('\n');
    const std::string_view line = bytes.substr(0, lineEnd);
    if (lineEnd == std::string_view::npos || !line.starts_with(feedTitle) ||
        !line.substr(feedTitle.size()).starts_with(' ')) {
        return UpdateNotice::forged;
    }
    const auto signature =
        decodeBase64<std::tuple_size_v<Ed25519Signature>>(line.substr(feedTitle.size() + 1));
    const std::string_view document = bytes.substr(lineEnd + 1);
    std::string statement(feedTitle);
    statement.append("\n").append(document);
    if (!signature || !isSignedBy(key, statement, *signature)) {
        return UpdateNotice::forged;
    }
    if (auto feed = parseUpdateFeed(document)) {
        return std::move(*feed);
    }
    return UpdateNotice::malformed;
}

std::string packageStatement(const UpdateVersion& version, const UpdatePackage& package) {
    std::string statement(packageTitle);
    for (const std::string& line :
         {version.text(), package.architecture, std::to_string(package.size), package.sha256}) {
        statement.append("\n").append(line);
    }
    return statement.append("\n");
}

} // namespace kelvora
