// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_memory.h"

#include "host/linux/updates/update_json.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>

namespace kelvora {
namespace {

std::optional<std::chrono::sys_seconds> timeOf(const QJsonObject& object, const char* name) {
    const auto seconds = integerOf(object, name);
    if (!seconds) {
        return std::nullopt;
    }
    return std::chrono::sys_seconds(std::chrono::seconds(*seconds));
}

qint64 secondsOf(std::chrono::sys_seconds time) {
    return time.time_since_epoch().count();
}

} // namespace

std::optional<UpdateMemory> parseUpdateMemory(std::string_view json) {
    const auto object = jsonObject(json);
    const auto key = object ? textOf(*object, "key") : std::nullopt;
    const auto serial = object ? integerOf(*object, "highestSerial") : std::nullopt;
    if (!key || !serial) {
        return std::nullopt;
    }
    return UpdateMemory{.key = *key,
                        .highestSerial = *serial,
                        .lastCheck = timeOf(*object, "lastCheck"),
                        .remindedVersion = textOf(*object, "remindedVersion").value_or(""),
                        .remindedAt = timeOf(*object, "remindedAt")};
}

std::string formatUpdateMemory(const UpdateMemory& memory) {
    QJsonObject object{
        {"key", QString::fromStdString(memory.key)},
        {"highestSerial", static_cast<qint64>(memory.highestSerial)},
        {"remindedVersion", QString::fromStdString(memory.remindedVersion)},
    };
    if (memory.lastCheck) {
        object.insert("lastCheck", secondsOf(*memory.lastCheck));
    }
    if (memory.remindedAt) {
        object.insert("remindedAt", secondsOf(*memory.remindedAt));
    }
    return QJsonDocument(object).toJson().toStdString();
}

std::optional<std::string> readSmallFile(const std::string& path, std::int64_t limit) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray content = file.read(limit + 1);
    if (file.error() != QFileDevice::NoError || content.size() > limit) {
        return std::nullopt;
    }
    return content.toStdString();
}

bool replacePrivateFile(const std::string& path, std::string_view content) {
    const QString name = QString::fromStdString(path);
    if (!QDir().mkpath(QFileInfo(name).path())) {
        return false;
    }
    QSaveFile file(name);
    return file.open(QIODevice::WriteOnly) &&
           file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
           file.write(content.data(), static_cast<qint64>(content.size())) ==
               static_cast<qint64>(content.size()) &&
           file.commit();
}

} // namespace kelvora
