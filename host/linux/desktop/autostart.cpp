// SPDX-License-Identifier: MIT
#include "host/linux/desktop/autostart.h"

#include "host/linux/desktop/atomic_file.h"
#include "host/linux/desktop/autostart_entry.h"
#include "host/linux/desktop/config_directories.h"

#include <glib.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

constexpr const char* directoryName = "autostart";
constexpr const char* entryName = "kelvora.desktop";

std::vector<fs::path> entriesOf(const AutostartPlaces& places) {
    std::vector<fs::path> entries;
    entries.reserve(places.systemDirectories.size() + 1);
    if (!places.userDirectory.empty())
        entries.push_back(places.userDirectory / entryName);
    for (const fs::path& directory : places.systemDirectories)
        entries.push_back(directory / entryName);
    return entries;
}

bool isThere(const fs::path& file) {
    std::error_code error;
    return fs::symlink_status(file, error).type() != fs::file_type::not_found;
}

/// A link to /dev/null is a way to switch an entry off, not a file to write to.
void removeMaskingLink(const fs::path& file) {
    std::error_code error;
    if (fs::is_symlink(file, error) && fs::exists(file, error) && !fs::is_regular_file(file, error))
        fs::remove(file, error);
}

} // namespace

AutostartPlaces AutostartPlaces::ofSession() {
    AutostartPlaces places;
    if (const auto home = configHome())
        places.userDirectory = *home / directoryName;
    for (const fs::path& directory : systemConfigDirectories())
        places.systemDirectories.push_back(directory / directoryName);
    const char* desktops = std::getenv("XDG_CURRENT_DESKTOP");
    places.currentDesktops = desktops != nullptr ? desktops : "";
    return places;
}

fs::path programFile() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error);
}

Autostart::Autostart(const AutostartPlaces& places, const fs::path& program)
    : currentDesktops_(places.currentDesktops), program_(program.string()),
      entries_(entriesOf(places)),
      userEntry_(places.userDirectory.empty() ? fs::path() : entries_.front()), watch_(entries_) {}

bool Autostart::isEnabled() {
    if (watch_.mayHaveChanged())
        isEnabled_ = readIsEnabled();
    return isEnabled_;
}

std::optional<std::string> Autostart::setEnabled(bool isEnabled) {
    const int error = userEntry_.empty() ? ENOENT : isEnabled ? enable() : disable();
    if (error == 0)
        return std::nullopt;
    return std::generic_category().message(error) + " (" + directoryName + "/" + entryName + ")";
}

void Autostart::repair() {
    if (userEntry_.empty())
        return;
    auto entry = AutostartEntry::read(userEntry_);
    if (!entry || !entry->isOursForAnother(program_))
        return;
    entry->setProgram(program_);
    // Where it cannot be written the user finds the entry as it was; nothing depends on it now.
    [[maybe_unused]] const int error = replaceFile(userEntry_, entry->text());
}

bool Autostart::readIsEnabled() const {
    for (const fs::path& file : entries_) {
        if (!isThere(file))
            continue;
        // The first one stands for all, also when it cannot be understood.
        const auto entry = AutostartEntry::read(file);
        return entry && entry->isRun(currentDesktops_);
    }
    return false;
}

int Autostart::enable() const {
    if (g_utf8_validate(program_.c_str(), -1, nullptr) == FALSE || program_.empty())
        return EILSEQ; // an entry is text
    auto entry = AutostartEntry::read(userEntry_);
    if (!entry)
        entry.emplace();
    entry->enable(currentDesktops_);
    entry->setProgram(program_);
    removeMaskingLink(userEntry_);
    return replaceFile(userEntry_, entry->text());
}

int Autostart::disable() const {
    const auto isSystemEntry = [this](const fs::path& file) {
        return file != userEntry_ && isThere(file);
    };
    if (std::ranges::none_of(entries_, isSystemEntry))
        return unlink(userEntry_.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR ? 0 : errno;
    // Without an entry of the user's own the system's would hold.
    auto entry = AutostartEntry::read(userEntry_);
    if (!entry)
        entry.emplace();
    entry->hide();
    removeMaskingLink(userEntry_);
    return replaceFile(userEntry_, entry->text());
}

} // namespace kelvora
