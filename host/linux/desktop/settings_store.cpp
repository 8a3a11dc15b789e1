// SPDX-License-Identifier: MIT
#include "host/linux/desktop/settings_store.h"

#include "host/linux/desktop/atomic_file.h"
#include "host/linux/desktop/config_directories.h"
#include "host/linux/desktop/file_descriptor.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <system_error>
#include <thread>
#include <utility>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view category = "Settings"; // of the log lines
/// Five small values; whatever is longer is none of our files.
constexpr std::size_t longestFile = std::size_t{1} << 20;

QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string describe(int error) {
    return std::generic_category().message(error);
}

/// Kept by whoever reads, merges and writes. An invalid descriptor: `error` says why.
struct Lock {
    FileDescriptor descriptor;
    int error = 0;
};

Lock lockSettings(const fs::path& file) {
    Lock lock{FileDescriptor(
        open((file.string() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR))};
    if (!lock.descriptor.isValid())
        return {FileDescriptor(), errno};
    // Another copy holds it for one write to the disk. One that hangs must not hang this one.
    constexpr int mostTries = 100;
    for (int i = 0; flock(lock.descriptor.get(), LOCK_EX | LOCK_NB) != 0; ++i) {
        if (errno == ENOLCK || errno == EOPNOTSUPP)
            return lock; // a file system without locks: the step that replaces the file is enough
        if (errno != EINTR && (errno != EWOULDBLOCK || i == mostTries))
            return {FileDescriptor(), errno};
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    return lock;
}

} // namespace

struct SettingsStore::Values {
    QJsonObject stored;  ///< as last read from the file
    QJsonObject unsaved; ///< set, but not in the file yet; goes before `stored`

    [[nodiscard]] QJsonValue value(std::string_view key) const {
        const QString name = toQString(key);
        return unsaved.contains(name) ? unsaved.value(name) : stored.value(name);
    }
    [[nodiscard]] QJsonObject merged() const {
        QJsonObject all = stored;
        for (auto item = unsaved.begin(); item != unsaved.end(); ++item)
            all.insert(item.key(), item.value());
        return all;
    }
};

fs::path standardSettingsFile() {
    const auto home = configHome();
    return home ? *home / "kelvora" / "settings.json" : fs::path();
}

SettingsStore::SettingsStore(fs::path file, LogSink& log)
    : file_(std::move(file)), log_(log), watch_({file_}), values_(std::make_unique<Values>()) {}

SettingsStore::~SettingsStore() {
    if (!values_->unsaved.isEmpty())
        save();
}

std::optional<bool> SettingsStore::boolean(std::string_view key) {
    refresh();
    const QJsonValue value = values_->value(key);
    if (value.isBool())
        return value.toBool();
    if (value.isDouble() && (value.toDouble() == 0 || value.toDouble() == 1))
        return value.toDouble() == 1;
    return std::nullopt;
}

std::optional<double> SettingsStore::number(std::string_view key) {
    refresh();
    const QJsonValue value = values_->value(key);
    if (value.isBool())
        return value.toBool() ? 1 : 0;
    if (value.isDouble() && std::isfinite(value.toDouble()))
        return value.toDouble();
    return std::nullopt;
}

std::optional<std::string> SettingsStore::string(std::string_view key) {
    refresh();
    const QJsonValue value = values_->value(key);
    return value.isString() ? std::optional(value.toString().toStdString()) : std::nullopt;
}

void SettingsStore::setBoolean(std::string_view key, bool value) {
    values_->unsaved.insert(toQString(key), value);
    save();
}

void SettingsStore::setNumber(std::string_view key, double value) {
    if (!std::isfinite(value)) // JSON has none of these
        return;
    values_->unsaved.insert(toQString(key), value);
    save();
}

void SettingsStore::setString(std::string_view key, std::string_view value) {
    values_->unsaved.insert(toQString(key), toQString(value));
    save();
}

void SettingsStore::refresh() {
    if (!file_.empty() && watch_.mayHaveChanged())
        load();
}

void SettingsStore::load() {
    const FileContent content = readFile(file_, longestFile);
    if (content.error != 0 && content.error != ENOENT && content.error != EFBIG) {
        state_ = FileState::unreadable;
        readError_ = content.error;
        logOnce(content.error, "The settings cannot be read: " + describe(content.error));
        return;
    }
    if (content.error == ENOENT) {
        state_ = FileState::absent;
        values_->stored = {};
        return;
    }
    const auto size = static_cast<qsizetype>(content.bytes.size());
    const QJsonDocument document =
        QJsonDocument::fromJson(QByteArray::fromRawData(content.bytes.data(), size));
    if (document.isObject()) {
        state_ = FileState::good;
        values_->stored = document.object();
    } else if (content.error == 0 && content.bytes.empty()) {
        state_ = FileState::empty; // perhaps somebody is about to write it
    } else {
        state_ = FileState::damaged;
        logOnce(EBADMSG, "The settings file is damaged and will be kept aside.");
    }
}

void SettingsStore::save() {
    const int error = trySave();
    if (error == 0) {
        values_->unsaved = {};
        loggedErrors_.clear();
    } else {
        logOnce(error, "The settings cannot be saved: " + describe(error));
    }
}

int SettingsStore::trySave() {
    if (file_.empty())
        return ENOENT;
    if (const int error = makePrivateDirectories(file_.parent_path()); error != 0)
        return error;
    const Lock lock = lockSettings(file_);
    if (lock.error != 0)
        return lock.error;
    load();
    if (state_ == FileState::unreadable)
        return readError_; // there may be good values in it
    QJsonObject merged = values_->merged();
    if (state_ == FileState::good && merged == values_->stored)
        return 0;
    const QByteArray bytes = QJsonDocument(merged).toJson();
    const int error = replaceFile(file_, {bytes.data(), static_cast<std::size_t>(bytes.size())},
                                  state_ == FileState::damaged ? PreviousContent::keptAside
                                                               : PreviousContent::replaced);
    if (error == 0) {
        values_->stored = std::move(merged);
        state_ = FileState::good;
    }
    return error;
}

void SettingsStore::logOnce(int error, const std::string& message) {
    if (loggedErrors_.insert(error).second)
        log_.write(LogLevel::error, category, message);
}

} // namespace kelvora
