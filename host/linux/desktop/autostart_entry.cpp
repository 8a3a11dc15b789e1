// SPDX-License-Identifier: MIT
#include "host/linux/desktop/autostart_entry.h"

#include "host/linux/desktop/atomic_file.h"

#include <glib.h>

#include <algorithm>
#include <vector>

namespace kelvora {
namespace {

constexpr std::size_t longestFile = std::size_t{1} << 20; // real ones have a few kilobytes
constexpr const char* group = G_KEY_FILE_DESKTOP_GROUP;
constexpr const char* gnomeEnabled = "X-GNOME-Autostart-enabled";

struct GlibFree {
    void operator()(void* memory) const { g_free(memory); }
};
struct StringVectorDeleter {
    void operator()(gchar** strings) const { g_strfreev(strings); }
};
using StringVectorPtr = std::unique_ptr<gchar*, StringVectorDeleter>;

std::string stringOf(GKeyFile* keys, const char* key) {
    const std::unique_ptr<gchar, GlibFree> value(g_key_file_get_string(keys, group, key, nullptr));
    return value ? value.get() : std::string();
}

bool has(GKeyFile* keys, const char* key) {
    return g_key_file_has_key(keys, group, key, nullptr) != FALSE;
}

bool isTrue(GKeyFile* keys, const char* key) {
    return g_key_file_get_boolean(keys, group, key, nullptr) != FALSE;
}

/// Does the key list one of the session's desktops?
bool listsOne(GKeyFile* keys, const char* key, const std::string& currentDesktops) {
    const StringVectorPtr listed(g_key_file_get_string_list(keys, group, key, nullptr, nullptr));
    const StringVectorPtr current(g_strsplit(currentDesktops.c_str(), ":", -1));
    for (gchar** desktop = current.get(); *desktop != nullptr; ++desktop)
        if (listed && **desktop != '\0' &&
            g_strv_contains(const_cast<const gchar**>(listed.get()), *desktop) != FALSE)
            return true;
    return false;
}

bool isMeantFor(GKeyFile* keys, const std::string& currentDesktops) {
    return (!has(keys, G_KEY_FILE_DESKTOP_KEY_ONLY_SHOW_IN) ||
            listsOne(keys, G_KEY_FILE_DESKTOP_KEY_ONLY_SHOW_IN, currentDesktops)) &&
           !listsOne(keys, G_KEY_FILE_DESKTOP_KEY_NOT_SHOW_IN, currentDesktops);
}

bool canBeTried(GKeyFile* keys) {
    const std::string program = stringOf(keys, G_KEY_FILE_DESKTOP_KEY_TRY_EXEC);
    return program.empty() ||
           std::unique_ptr<gchar, GlibFree>(g_find_program_in_path(program.c_str())) != nullptr;
}

std::vector<std::string> words(const std::string& command) {
    gchar** found = nullptr;
    if (g_shell_parse_argv(command.c_str(), nullptr, &found, nullptr) == FALSE)
        return {};
    const StringVectorPtr owner(found);
    std::vector<std::string> result;
    for (; *found != nullptr; ++found)
        result.emplace_back(*found);
    return result;
}

} // namespace

std::string autostartCommand(std::string_view program) {
    // The characters that make quotes necessary, and those that even quotes do not cover.
    const bool isQuoted =
        program.find_first_of(" \t\n\"'\\><~|&;$*?#()`") != std::string_view::npos;
    std::string command(isQuoted ? "\"" : "");
    for (const char character : program) {
        if (std::string_view("\"`$\\").find(character) != std::string_view::npos)
            command += '\\';
        if (character == '%') // begins a field code
            command += '%';
        command += character;
    }
    command.append(isQuoted ? "\" " : " ").append(loginLaunchArgument);
    return command;
}

void AutostartEntry::Deleter::operator()(GKeyFile* file) const {
    g_key_file_unref(file);
}

AutostartEntry::AutostartEntry() : keys_(g_key_file_new()) {}

std::optional<AutostartEntry> AutostartEntry::read(const std::filesystem::path& file) {
    constexpr auto everything =
        static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
    const FileContent content = readFile(file, longestFile);
    AutostartEntry entry;
    if (content.error != 0 || content.bytes.empty() ||
        g_key_file_load_from_data(entry.keys_.get(), content.bytes.data(), content.bytes.size(),
                                  everything, nullptr) == FALSE ||
        g_key_file_has_group(entry.keys_.get(), group) == FALSE)
        return std::nullopt;
    return entry;
}

bool AutostartEntry::isRun(const std::string& currentDesktops) const {
    GKeyFile* const keys = keys_.get();
    return !isTrue(keys, G_KEY_FILE_DESKTOP_KEY_HIDDEN) &&
           (!has(keys, gnomeEnabled) || isTrue(keys, gnomeEnabled)) &&
           !stringOf(keys, G_KEY_FILE_DESKTOP_KEY_EXEC).empty() &&
           isMeantFor(keys, currentDesktops) && canBeTried(keys);
}

bool AutostartEntry::isOursForAnother(const std::string& program) const {
    const std::vector<std::string> arguments =
        words(stringOf(keys_.get(), G_KEY_FILE_DESKTOP_KEY_EXEC));
    const auto mark = std::ranges::find(arguments, loginLaunchArgument);
    // People put `env`, `nice` and the like before the program: that is no reason to touch it.
    const std::vector<std::string> ours = words(autostartCommand(program));
    return mark != arguments.end() && mark != arguments.begin() && !ours.empty() &&
           *std::prev(mark) != ours.front();
}

void AutostartEntry::setProgram(const std::string& program) {
    GKeyFile* const keys = keys_.get();
    g_key_file_set_string(keys, group, G_KEY_FILE_DESKTOP_KEY_EXEC,
                          autostartCommand(program).c_str());
    // The entry outlives the program when that is uninstalled: sessions are then to pass it over.
    g_key_file_set_string(keys, group, G_KEY_FILE_DESKTOP_KEY_TRY_EXEC, program.c_str());
}

void AutostartEntry::enable(const std::string& currentDesktops) {
    GKeyFile* const keys = keys_.get();
    g_key_file_set_string(keys, group, G_KEY_FILE_DESKTOP_KEY_TYPE, "Application");
    if (!has(keys, G_KEY_FILE_DESKTOP_KEY_NAME))
        g_key_file_set_string(keys, group, G_KEY_FILE_DESKTOP_KEY_NAME, "Kelvora");
    for (const char* key : {G_KEY_FILE_DESKTOP_KEY_HIDDEN, gnomeEnabled})
        g_key_file_remove_key(keys, group, key, nullptr);
    if (!isMeantFor(keys, currentDesktops))
        for (const char* key :
             {G_KEY_FILE_DESKTOP_KEY_ONLY_SHOW_IN, G_KEY_FILE_DESKTOP_KEY_NOT_SHOW_IN})
            g_key_file_remove_key(keys, group, key, nullptr);
}

void AutostartEntry::hide() {
    g_key_file_set_string(keys_.get(), group, G_KEY_FILE_DESKTOP_KEY_TYPE, "Application");
    g_key_file_set_boolean(keys_.get(), group, G_KEY_FILE_DESKTOP_KEY_HIDDEN, TRUE);
}

std::string AutostartEntry::text() const {
    gsize length = 0;
    const std::unique_ptr<gchar, GlibFree> data(g_key_file_to_data(keys_.get(), &length, nullptr));
    return {data.get(), length};
}

} // namespace kelvora
