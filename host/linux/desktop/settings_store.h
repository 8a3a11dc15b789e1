// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/desktop/file_watch.h"
#include "host/log.h"
#include "host/user_defaults.h"

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>

namespace kelvora {

/// $XDG_CONFIG_HOME/kelvora/settings.json; empty when the user has no home directory.
[[nodiscard]] std::filesystem::path standardSettingsFile();

/// The settings as one JSON object in a file, for its owner only. Several copies of the program may
/// use it at once, and people may edit it: each key is merged by itself, keys of others are kept,
/// and what others write is seen at the next read. A file that cannot be understood is kept aside
/// at the next write; until then what was last read of it holds. Main thread only.
class SettingsStore : public UserDefaults {
public:
    /// With an empty path the values hold as long as the program runs.
    SettingsStore(std::filesystem::path file, LogSink& log);
    /// Tries once more to write what could not be written.
    ~SettingsStore() override;
    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;

    [[nodiscard]] std::optional<bool> boolean(std::string_view key) override;
    [[nodiscard]] std::optional<double> number(std::string_view key) override;
    [[nodiscard]] std::optional<std::string> string(std::string_view key) override;
    void setBoolean(std::string_view key, bool value) override;
    void setNumber(std::string_view key, double value) override;
    void setString(std::string_view key, std::string_view value) override;

private:
    struct Values;
    enum class FileState { absent, empty, good, damaged, unreadable };

    void refresh();
    void load();
    void save();
    /// 0 or an errno value.
    [[nodiscard]] int trySave();
    void logOnce(int error, const std::string& message);

    std::filesystem::path file_;
    LogSink& log_;
    FileWatch watch_;
    FileState state_ = FileState::absent;
    int readError_ = 0;          ///< errno value while `state_` is unreadable
    std::set<int> loggedErrors_; ///< since the last success
    std::unique_ptr<Values> values_;
};

} // namespace kelvora
