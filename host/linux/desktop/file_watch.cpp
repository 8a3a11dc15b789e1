// SPDX-License-Identifier: MIT
#include "host/linux/desktop/file_watch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <system_error>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t watchedChanges = IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE |
                                         IN_CLOSE_WRITE | IN_DELETE_SELF | IN_MOVE_SELF |
                                         IN_ONLYDIR;
/// What concerns the directory itself, or everything.
constexpr std::uint32_t wholeDirectory =
    IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_UNMOUNT | IN_Q_OVERFLOW;

} // namespace

bool FileWatch::mayHaveChanged() {
    if (notices_.isValid() && !isNoticed())
        return false;
    watchAll();
    return true;
}

bool FileWatch::isNoticed() {
    alignas(inotify_event) std::array<char, 4096> buffer;
    bool isOurs = false;
    for (;;) {
        const ssize_t count = read(notices_.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return isOurs || errno != EAGAIN;
        for (std::size_t at = 0; at < static_cast<std::size_t>(count);) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + at, sizeof event);
            const char* const name = buffer.data() + at + sizeof event;
            at += sizeof event + event.len;
            isOurs = isOurs || (event.mask & wholeDirectory) != 0 ||
                     (event.len > 0 && names_[event.wd].contains(name));
        }
    }
}

void FileWatch::watchAll() {
    // A new start, as directories may have come, gone, or been replaced by others.
    notices_ = FileDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    names_.clear();
    for (const fs::path& file : files_) {
        std::error_code error;
        bool isWatched = watch(file);
        if (fs::is_symlink(file, error))
            isWatched = watch(fs::weakly_canonical(file, error)) && isWatched;
        if (!isWatched) {
            notices_ = FileDescriptor();
            return;
        }
    }
}

bool FileWatch::watch(const fs::path& file) {
    fs::path entry = file;
    while (entry.has_relative_path()) {
        const fs::path directory = entry.parent_path();
        const int watch = inotify_add_watch(notices_.get(), directory.c_str(), watchedChanges);
        if (watch < 0 && errno != ENOENT && errno != ENOTDIR)
            return false;
        if (watch >= 0) {
            names_[watch].insert(entry.filename().string());
            // What was missing may have been made before the watch was there.
            std::error_code error;
            if (entry == file || !fs::is_directory(entry, error))
                return true;
            entry = file;
            continue;
        }
        entry = directory;
    }
    return false;
}

} // namespace kelvora
