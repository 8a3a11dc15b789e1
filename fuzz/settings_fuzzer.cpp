// SPDX-License-Identifier: MIT
// The settings file with any content. An input is the file, and behind its last zero byte what is
// done with it.
#include "fuzz/input.h"
#include "host/linux/desktop/settings_store.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <bit>
#include <cerrno>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

namespace kelvora::fuzz {
namespace {

namespace fs = std::filesystem;

class CountingLog final : public LogSink {
public:
    void write(LogLevel /*level*/, std::string_view /*category*/,
               std::string_view /*message*/) override {
        ++lines;
    }
    int lines = 0;
};

/// Of this process; the system's temporary directory may be emptied as a whole.
fs::path settingsFile() {
    static const fs::path directory =
        fs::temp_directory_path() / ("kelvora-settings-" + std::to_string(getpid()));
    fs::create_directories(directory);
    return directory / "settings.json";
}

fs::path asideFile() {
    return settingsFile().string() + ".damaged";
}

void write(const fs::path& file, std::string_view content) {
    std::ofstream(file, std::ios::binary) << content;
}

std::optional<std::string> read(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

std::optional<QJsonObject> objectIn(const std::optional<std::string>& content) {
    const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(content.value_or("")));
    return document.isObject() ? std::optional(document.object()) : std::nullopt;
}

/// What each way of reading a key gives.
struct Reading {
    std::optional<bool> boolean;
    std::optional<double> number;
    std::optional<std::string> string;
    bool operator==(const Reading&) const = default;
};

Reading readingOf(UserDefaults& defaults, std::string_view key) {
    return {defaults.boolean(key), defaults.number(key), defaults.string(key)};
}

/// The same from the JSON itself: what is of another type has no value.
Reading expectedReading(const QJsonValue& value) {
    Reading reading;
    if (value.isBool())
        reading = {value.toBool(), value.toBool() ? 1 : 0, std::nullopt};
    else if (value.isDouble() && (value.toDouble() == 0 || value.toDouble() == 1))
        reading = {value.toDouble() == 1, value.toDouble(), std::nullopt};
    else if (value.isDouble())
        reading.number = value.toDouble();
    else if (value.isString())
        reading.string = value.toString().toStdString();
    return reading;
}

constexpr auto keys = std::to_array<std::string_view>(
    {"firstSourceID", "secondSourceID", "sensitivity", "enabled", "", "a", "\xC3\xA9", "x\xFF"});

void checkReading(UserDefaults& defaults, const QJsonObject& object) {
    for (const std::string_view key : keys) {
        const auto name = QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
        require(readingOf(defaults, key) == expectedReading(object.value(name)),
                "a value is read as what it is, and nothing else is");
    }
}

struct Change {
    std::string_view key;
    Reading value; // with one of the three
};

Change takeChange(Input& input) {
    Change change{keys[input.below(keys.size())], {}};
    switch (input.below(3)) {
    case 0:
        change.value.boolean = input.flag();
        break;
    case 1:
        change.value.number = input.flag() ? std::bit_cast<double>(input.number<std::uint64_t>())
                                           : input.byte() * 0.25;
        break;
    default:
        change.value.string = input.bytes(input.below(24));
        break;
    }
    return change;
}

void set(UserDefaults& defaults, const Change& change) {
    if (change.value.boolean)
        defaults.setBoolean(change.key, *change.value.boolean);
    if (change.value.number)
        defaults.setNumber(change.key, *change.value.number);
    if (change.value.string)
        defaults.setString(change.key, *change.value.string);
}

/// What is read back: a text without what is no UTF-8, and no number that JSON does not have.
Reading readBack(const Change& change) {
    if (change.value.boolean)
        return expectedReading(QJsonValue(*change.value.boolean));
    if (change.value.number)
        return expectedReading(QJsonValue(*change.value.number));
    return expectedReading(QJsonValue(QString::fromStdString(*change.value.string)));
}

bool isStored(const Change& change) {
    return !change.value.number || std::isfinite(*change.value.number);
}

void checkChange(SettingsStore& store, CountingLog& log, const Change& change) {
    const std::optional<std::string> before = read(settingsFile());
    const std::optional<QJsonObject> known = objectIn(before);
    const Reading old = readingOf(store, change.key);
    set(store, change);
    if (!isStored(change)) {
        require(readingOf(store, change.key) == old, "no number is stored that JSON does not have");
        require(read(settingsFile()) == before, "what is not stored is not written");
        return;
    }
    require(readingOf(store, change.key) == readBack(change), "what was set is read");
    CountingLog otherLog;
    SettingsStore other(settingsFile(), otherLog);
    require(readingOf(other, change.key) == readBack(change), "what was set is in the file");
    require(otherLog.lines == 0, "what was written is good");

    const std::optional<QJsonObject> written = objectIn(read(settingsFile()));
    require(written.has_value(), "an object is written");
    if (known) {
        const auto name =
            QString::fromUtf8(change.key.data(), static_cast<qsizetype>(change.key.size()));
        QJsonObject others = *known;
        others.insert(name, written->value(name));
        require(others == *written, "the keys of others are kept");
    } else if (!before.value_or("").empty()) {
        require(read(asideFile()) == before, "a file that is not understood is kept aside");
        require(log.lines > 0, "a damaged file is told of");
    }
}

} // namespace
} // namespace kelvora::fuzz

/// In place of the system's. Without notices every read looks at the file, which is what is tried
/// here; with them the kernel takes milliseconds to close each watch.
extern "C" int inotify_init1(int /*flags*/) noexcept {
    errno = ENOSYS;
    return -1;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kelvora::fuzz;
    const std::string_view all(reinterpret_cast<const char*>(data), size);
    const std::size_t end = all.rfind('\0');
    const std::string content(all.substr(0, end));
    Input actions(data, size);
    actions.bytes(end == std::string_view::npos ? size : end + 1);

    write(settingsFile(), content);
    std::filesystem::remove(asideFile());
    CountingLog log;
    kelvora::SettingsStore store(settingsFile(), log);
    checkReading(store, objectIn(content).value_or(QJsonObject()));
    require(read(settingsFile()) == content, "reading writes nothing");
    for (int changes = 0; changes < 4 && (changes == 0 || !actions.isEmpty()); ++changes)
        checkChange(store, log, takeChange(actions));
    return 0;
}
