// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// NOLINTNEXTLINE(bugprone-reserved-identifier): the name that its own header declares
typedef struct _GKeyFile GKeyFile;

namespace kelvora {

/// The argument by which the program knows that the session opened it at login.
inline constexpr std::string_view loginLaunchArgument = "--login-launch";

/// The value of an Exec key that runs `program` (an absolute path, UTF-8) at login, quoted as
/// desktop entries have it; not yet escaped as a value of the file.
[[nodiscard]] std::string autostartCommand(std::string_view program);

/// One desktop entry of an autostart directory (freedesktop.org).
class AutostartEntry {
public:
    /// Without any key.
    AutostartEntry();
    /// Absent when the file is none that can be read as a desktop entry.
    [[nodiscard]] static std::optional<AutostartEntry> read(const std::filesystem::path& file);

    /// Is it run in a session of these desktops (XDG_CURRENT_DESKTOP, separated by colons)?
    [[nodiscard]] bool isRun(const std::string& currentDesktops) const;
    /// Was it written by this program, but runs another file than `program`?
    [[nodiscard]] bool isOursForAnother(const std::string& program) const;

    /// Runs `program` from now on, as long as it is there. Everything else stays.
    void setProgram(const std::string& program);
    /// Makes isRun() true; what the user added and what does not stand against it stays.
    void enable(const std::string& currentDesktops);
    /// Makes isRun() false.
    void hide();

    [[nodiscard]] std::string text() const;

private:
    struct Deleter {
        void operator()(GKeyFile* file) const;
    };

    std::unique_ptr<GKeyFile, Deleter> keys_;
};

} // namespace kelvora
