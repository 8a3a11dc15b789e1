// SPDX-License-Identifier: MIT
#include "host/linux/desktop/desktop_entries.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

namespace kelvora {

namespace fs = std::filesystem;

namespace {

struct KeyFileDeleter {
    void operator()(GKeyFile* file) const { g_key_file_unref(file); }
};
struct GlibFree {
    void operator()(void* memory) const { g_free(memory); }
};
struct StringVectorDeleter {
    void operator()(gchar** strings) const { g_strfreev(strings); }
};
using KeyFilePtr = std::unique_ptr<GKeyFile, KeyFileDeleter>;
using StringVectorPtr = std::unique_ptr<gchar*, StringVectorDeleter>;

/// Real entries have a few kilobytes, most of them translations.
constexpr std::uintmax_t maximumFileSize = std::uintmax_t{1} << 20;
constexpr std::string_view suffix = ".desktop";
/// Times of files are at worst as coarse as this.
constexpr auto timeGranularity = std::chrono::seconds(2);

/// Programs that run others: a process of theirs tells nothing about the application.
bool runsOtherPrograms(std::string_view program) {
    static constexpr std::array names{
        std::string_view("bash"), std::string_view("dash"),     std::string_view("electron"),
        std::string_view("env"),  std::string_view("exo-open"), std::string_view("flatpak"),
        std::string_view("java"), std::string_view("mono"),     std::string_view("node"),
        std::string_view("perl"), std::string_view("pkexec"),   std::string_view("ruby"),
        std::string_view("sh"),   std::string_view("snap"),     std::string_view("steam"),
        std::string_view("wine"), std::string_view("xdg-open"),
    };
    return program.starts_with("python") || program.starts_with("gjs") ||
           std::ranges::find(names, program) != names.end();
}

std::string stringValue(GKeyFile* file, const char* key) {
    const std::unique_ptr<gchar, GlibFree> value(
        g_key_file_get_string(file, G_KEY_FILE_DESKTOP_GROUP, key, nullptr));
    return value ? value.get() : std::string();
}

bool isTrue(GKeyFile* file, const char* key) {
    return g_key_file_get_boolean(file, G_KEY_FILE_DESKTOP_GROUP, key, nullptr) != FALSE;
}

std::string executableOf(const std::string& commandLine) {
    gchar** words = nullptr;
    if (g_shell_parse_argv(commandLine.c_str(), nullptr, &words, nullptr) == FALSE)
        return {};
    const StringVectorPtr owner(words);
    if (fileName(*words) == "env") {
        ++words;
        while (*words != nullptr && (**words == '-' || g_strrstr(*words, "=") != nullptr))
            ++words;
    }
    if (*words == nullptr || runsOtherPrograms(fileName(*words)))
        return {};
    return std::string(fileName(*words));
}

std::vector<std::string> categoriesOf(GKeyFile* file) {
    const StringVectorPtr list(g_key_file_get_string_list(
        file, G_KEY_FILE_DESKTOP_GROUP, G_KEY_FILE_DESKTOP_KEY_CATEGORIES, nullptr, nullptr));
    std::vector<std::string> categories;
    for (gchar** category = list.get(); category != nullptr && *category != nullptr; ++category)
        categories.emplace_back(*category);
    return categories;
}

/// Absent when the file is no desktop entry that can be read.
KeyFilePtr loadEntry(const fs::path& path) {
    std::error_code error;
    if (!fs::is_regular_file(path, error))
        return nullptr;
    const std::uintmax_t size = fs::file_size(path, error);
    if (error || size > maximumFileSize)
        return nullptr;
    KeyFilePtr file(g_key_file_new());
    if (g_key_file_load_from_file(file.get(), path.c_str(), G_KEY_FILE_NONE, nullptr) == FALSE ||
        g_key_file_has_group(file.get(), G_KEY_FILE_DESKTOP_GROUP) == FALSE)
        return nullptr;
    return file;
}

bool equalsInAnyCase(const std::string& one, const std::string& other) {
    return !one.empty() && g_ascii_strcasecmp(one.c_str(), other.c_str()) == 0;
}

std::string lastDottedPart(const std::string& id) {
    const std::size_t dot = id.rfind('.');
    return dot == std::string::npos ? std::string() : id.substr(dot + 1);
}

enum class Several { firstIsBest, noneIsBetter };

template <typename Predicate>
std::optional<DesktopEntryMatch> collect(const std::vector<DesktopEntry>& entries, Several several,
                                         Predicate&& matches) {
    std::optional<DesktopEntryMatch> match;
    for (const DesktopEntry& entry : entries) {
        if (!matches(entry))
            continue;
        if (!match)
            match = DesktopEntryMatch{.id = entry.id, .categories = {}};
        else if (several == Several::noneIsBetter)
            match->id.reset();
        match->categories.insert(match->categories.end(), entry.categories.begin(),
                                 entry.categories.end());
    }
    return match;
}

} // namespace

std::string_view fileName(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

std::vector<fs::path> standardApplicationDirectories() {
    std::vector<fs::path> directories;
    // Relative paths in these variables are to be ignored.
    const auto add = [&](const fs::path& base) {
        if (base.is_absolute())
            directories.push_back(base / "applications");
    };
    const auto variable = [](const char* name) -> std::string_view {
        const char* value = std::getenv(name);
        return value == nullptr ? std::string_view() : std::string_view(value);
    };

    const std::string_view dataHome = variable("XDG_DATA_HOME");
    if (!dataHome.empty())
        add(dataHome);
    else
        add(fs::path(variable("HOME")) / ".local/share");

    std::string_view rest = variable("XDG_DATA_DIRS");
    if (rest.empty())
        rest = "/usr/local/share:/usr/share";
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        add(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return directories;
}

/// One pass over all directories.
class DesktopEntries::Scan {
public:
    void directory(const fs::path& path, const std::string& idPrefix);

    std::vector<ScannedDirectory> scanned;
    std::vector<DesktopEntry> entries;

private:
    void file(const fs::path& path, std::string id);

    std::set<std::string> decided_; ///< IDs that an earlier directory has
    std::set<fs::path> visited_;    ///< so that a link to a parent does not go round for ever
};

void DesktopEntries::Scan::directory(const fs::path& path, const std::string& idPrefix) {
    std::error_code error;
    const fs::path canonical = fs::canonical(path, error);
    if (!error && !visited_.insert(canonical).second)
        return;
    // The time is taken before the content: what changes meanwhile is read again next time.
    scanned.push_back(look(path));

    const auto options = fs::directory_options::skip_permission_denied;
    for (auto item = fs::directory_iterator(path, options, error);
         !error && item != fs::directory_iterator(); item.increment(error)) {
        const std::string name = item->path().filename().string();
        if (g_utf8_validate(name.c_str(), -1, nullptr) == FALSE)
            continue;
        std::error_code unreadable;
        if (item->is_directory(unreadable))
            directory(item->path(), idPrefix + name + "-");
        else if (name.ends_with(suffix) && name.size() > suffix.size())
            file(item->path(), idPrefix + name.substr(0, name.size() - suffix.size()));
    }
}

void DesktopEntries::Scan::file(const fs::path& path, std::string id) {
    if (decided_.contains(id))
        return;
    const KeyFilePtr keyFile = loadEntry(path);
    if (!keyFile || stringValue(keyFile.get(), G_KEY_FILE_DESKTOP_KEY_TYPE) !=
                        G_KEY_FILE_DESKTOP_TYPE_APPLICATION)
        return;
    decided_.insert(id);
    // A program that runs in a terminal has no window of its own.
    if (isTrue(keyFile.get(), G_KEY_FILE_DESKTOP_KEY_HIDDEN) ||
        isTrue(keyFile.get(), G_KEY_FILE_DESKTOP_KEY_TERMINAL))
        return;
    entries.push_back({
        .id = std::move(id),
        .startupWmClass = stringValue(keyFile.get(), G_KEY_FILE_DESKTOP_KEY_STARTUP_WM_CLASS),
        .executable = executableOf(stringValue(keyFile.get(), G_KEY_FILE_DESKTOP_KEY_EXEC)),
        .categories = categoriesOf(keyFile.get()),
        .isShown = !isTrue(keyFile.get(), G_KEY_FILE_DESKTOP_KEY_NO_DISPLAY),
    });
}

DesktopEntries::DesktopEntries(std::vector<fs::path> directories)
    : directories_(std::move(directories)) {}

DesktopEntries::ScannedDirectory DesktopEntries::look(const fs::path& directory) {
    ScannedDirectory result{.path = directory, .changed = std::nullopt, .isRecent = false};
    std::error_code error;
    const fs::file_time_type changed = fs::last_write_time(directory, error);
    if (!error) {
        const auto age = fs::file_time_type::clock::now() - changed;
        result.changed = changed;
        result.isRecent = age >= decltype(age)::zero() && age < timeGranularity;
    }
    return result;
}

bool DesktopEntries::isCurrent() const {
    return !scanned_.empty() && std::ranges::all_of(scanned_, [](const ScannedDirectory& seen) {
        return !seen.isRecent && look(seen.path).changed == seen.changed;
    });
}

std::optional<DesktopEntryMatch> DesktopEntries::find(const ApplicationTraits& application) {
    if (!isCurrent()) {
        Scan scan;
        for (const fs::path& directory : directories_)
            scan.directory(directory, {});
        scanned_ = std::move(scan.scanned);
        entries_ = std::move(scan.entries);
        // A variant of an application ("editor-settings") is worse than the application ("editor").
        std::ranges::sort(entries_, {}, [](const DesktopEntry& entry) {
            return std::tuple(!entry.isShown, entry.id.size(), entry.id);
        });
    }

    const std::string& windowClass = application.windowClass;
    const std::string& instance = application.windowInstance;
    const std::string_view executable = fileName(application.executable);

    auto match = collect(entries_, Several::firstIsBest, [&](const DesktopEntry& entry) {
        return entry.id == application.gtkApplicationId;
    });
    for (const std::string* name : {&windowClass, &instance}) {
        if (!match && !name->empty())
            match = collect(entries_, Several::firstIsBest, [&](const DesktopEntry& entry) {
                return entry.startupWmClass == *name;
            });
    }
    if (!match)
        match = collect(entries_, Several::firstIsBest, [&](const DesktopEntry& entry) {
            return equalsInAnyCase(entry.id, windowClass) || equalsInAnyCase(entry.id, instance);
        });
    // Different makers give the same last name, and several entries may run one program.
    if (!match)
        match = collect(entries_, Several::noneIsBetter, [&](const DesktopEntry& entry) {
            return equalsInAnyCase(lastDottedPart(entry.id), windowClass);
        });
    if (!match && !executable.empty())
        match = collect(entries_, Several::noneIsBetter,
                        [&](const DesktopEntry& entry) { return entry.executable == executable; });
    return match;
}

} // namespace kelvora
