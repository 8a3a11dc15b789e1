// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_configuration.h"

#include "host/linux/updates/update_json.h"

#include <QUrl>

#include <algorithm>

namespace kelvora {

bool isUpdateUrl(std::string_view url) {
    if (url.size() > 2048) {
        return false;
    }
    const QUrl parsed(QString::fromUtf8(url.data(), static_cast<qsizetype>(url.size())),
                      QUrl::StrictMode);
    return parsed.isValid() && parsed.scheme() == QLatin1String("https") &&
           !parsed.host().isEmpty() && parsed.userInfo().isEmpty() && !parsed.hasFragment();
}

std::optional<UpdateConfiguration> parseUpdateConfiguration(std::string_view json) {
    const std::optional<QJsonObject> object = jsonObject(json);
    if (!object) {
        return std::nullopt;
    }
    const std::optional<std::string> feedUrl = textOf(*object, "feed");
    const std::optional<std::string> encodedKey = textOf(*object, "publicKey");
    if (!feedUrl || !isUpdateUrl(*feedUrl) || !encodedKey) {
        return std::nullopt;
    }
    const std::optional<Ed25519PublicKey> key =
        decodeBase64<std::tuple_size_v<Ed25519PublicKey>>(*encodedKey);
    std::optional<std::int64_t> seconds = integerOf(*object, "interval");
    if (!object->contains(QLatin1String("interval"))) {
        seconds = defaultUpdateInterval.count();
    }
    if (!key || !seconds) {
        return std::nullopt;
    }
    return UpdateConfiguration{.feedUrl = *feedUrl,
                               .publicKey = *key,
                               .interval =
                                   std::clamp(std::chrono::seconds(*seconds),
                                              shortestUpdateInterval, longestUpdateInterval)};
}

} // namespace kelvora
