// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_json.h"

#include <QJsonDocument>

namespace kelvora {

std::optional<QJsonObject> jsonObject(std::string_view json) {
    const QJsonDocument document =
        QJsonDocument::fromJson(QByteArray(json.data(), static_cast<qsizetype>(json.size())));
    if (!document.isObject()) {
        return std::nullopt;
    }
    return document.object();
}

std::optional<std::string> textOf(const QJsonObject& object, const char* name) {
    const QJsonValue value = object.value(QLatin1String(name));
    if (!value.isString()) {
        return std::nullopt;
    }
    return value.toString().toStdString();
}

std::optional<std::int64_t> integerOf(const QJsonObject& object, const char* name) {
    constexpr std::int64_t largest = (std::int64_t{1} << 53) - 1;
    const std::int64_t value = object.value(QLatin1String(name)).toInteger(-1);
    if (value < 0 || value > largest) {
        return std::nullopt;
    }
    return value;
}

} // namespace kelvora
