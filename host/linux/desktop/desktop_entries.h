// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

/// What a window tells about its application. Bytes as the application gave them, which need not be
/// UTF-8; empty: not known.
struct ApplicationTraits {
    std::string gtkApplicationId{}; ///< _GTK_APPLICATION_ID, or a Wayland surface's app_id
    std::string windowClass{};      ///< second string of WM_CLASS
    std::string windowInstance{};   ///< first string of WM_CLASS
    std::string executable{};       ///< path or name of the program file
    bool isDesktopWindow = false;   ///< the desktop's own window, with the icons
};

/// An installed application, by its desktop entry. UTF-8.
struct DesktopEntry {
    std::string id; ///< desktop file ID without ".desktop"
    std::string startupWmClass;
    std::string executable; ///< file name of the program; empty when that is only an interpreter
    std::vector<std::string> categories;
    bool isShown = true; ///< false: NoDisplay
};

/// What the installed entries tell about an application.
struct DesktopEntryMatch {
    std::optional<std::string> id;       ///< absent when several entries match and none is better
    std::vector<std::string> categories; ///< of every entry that matches
};

/// The last component of a path; the path itself when it has none.
[[nodiscard]] std::string_view fileName(std::string_view path);

/// $XDG_DATA_HOME/applications and those of $XDG_DATA_DIRS, the most important first, with the
/// defaults of the XDG base directories. Reads the environment.
[[nodiscard]] std::vector<std::filesystem::path> standardApplicationDirectories();

/// The desktop entries of some directories. One thread at a time.
class DesktopEntries {
public:
    /// Reads nothing yet. Of two entries with the same ID that of the earlier directory holds.
    explicit DesktopEntries(std::vector<std::filesystem::path> directories);

    /// The application that a window belongs to; absent when no entry is known. Looks at the
    /// directories' times first and reads the entries again when one has changed.
    [[nodiscard]] std::optional<DesktopEntryMatch> find(const ApplicationTraits& application);

private:
    struct ScannedDirectory {
        std::filesystem::path path;
        std::optional<std::filesystem::file_time_type> changed; ///< absent: there is none
        bool isRecent = false; ///< so new that a further change might leave the same time

        friend bool operator==(const ScannedDirectory&, const ScannedDirectory&) = default;
    };
    class Scan;

    [[nodiscard]] bool isCurrent() const;
    [[nodiscard]] static ScannedDirectory look(const std::filesystem::path& directory);

    std::vector<std::filesystem::path> directories_;
    std::vector<ScannedDirectory> scanned_; ///< with the subdirectories
    std::vector<DesktopEntry> entries_;     ///< of equally good matches the better first
};

} // namespace kelvora
