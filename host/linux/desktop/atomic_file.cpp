// SPDX-License-Identifier: MIT
#include "host/linux/desktop/atomic_file.h"

#include "host/linux/desktop/file_descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

/// Gone at the end, unless it has become the file.
struct TemporaryFile {
    std::string path;
    ~TemporaryFile() {
        if (!path.empty())
            unlink(path.c_str());
    }
};

/// The file behind a chain of links, which need not exist; empty when the links go round.
fs::path targetOf(fs::path file) {
    constexpr int mostLinks = 40; // as in the kernel
    for (int i = 0; i < mostLinks; ++i) {
        std::error_code error;
        const fs::path link = fs::read_symlink(file, error);
        if (error)
            return file;
        file = file.parent_path() / link;
    }
    return {};
}

int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return errno;
        if (written > 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return fsync(descriptor) == 0 ? 0 : errno;
}

/// A directory or a device in the file's place is nothing that a write may do away with.
int checkReplaceable(const fs::path& target) {
    struct stat status {};
    if (lstat(target.c_str(), &status) != 0)
        return errno == ENOENT ? 0 : errno;
    if (S_ISREG(status.st_mode))
        return 0;
    return S_ISDIR(status.st_mode) ? EISDIR : EEXIST;
}

} // namespace

FileContent readFile(const fs::path& file, std::size_t limit) {
    const FileDescriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!descriptor.isValid() || fstat(descriptor.get(), &status) != 0)
        return {.bytes = {}, .error = errno};
    if (!S_ISREG(status.st_mode))
        return {.bytes = {}, .error = S_ISDIR(status.st_mode) ? EISDIR : EINVAL};

    FileContent content;
    std::array<char, 4096> part{};
    for (;;) {
        const ssize_t count = read(descriptor.get(), part.data(), part.size());
        if (count == 0)
            return content;
        if (count < 0 && errno != EINTR)
            return {.bytes = {}, .error = errno};
        if (count > 0)
            content.bytes.append(part.data(), static_cast<std::size_t>(count));
        if (content.bytes.size() > limit)
            return {.bytes = {}, .error = EFBIG};
    }
}

int replaceFile(const fs::path& file, std::string_view bytes, PreviousContent previous) {
    const fs::path target = targetOf(file);
    if (target.empty())
        return ELOOP;
    if (const int error = makePrivateDirectories(target.parent_path()); error != 0)
        return error;
    if (const int error = checkReplaceable(target); error != 0)
        return error;

    TemporaryFile temporary;
    std::string name = target.parent_path() / ".";
    name.append(target.filename().string()).append(".XXXXXX");
    FileDescriptor descriptor(mkostemp(name.data(), O_CLOEXEC)); // with mode 0600
    if (!descriptor.isValid())
        return errno;
    temporary.path = name;
    if (const int error = writeAll(descriptor.get(), bytes); error != 0)
        return error;
    if (close(descriptor.release()) != 0)
        return errno;

    const fs::path aside = target.string() + ".damaged";
    if (previous == PreviousContent::keptAside && rename(target.c_str(), aside.c_str()) != 0)
        return errno;
    if (rename(name.c_str(), target.c_str()) != 0) {
        const int error = errno;
        if (previous == PreviousContent::keptAside)
            rename(aside.c_str(), target.c_str());
        return error;
    }
    temporary.path.clear();
    // The new name is on the disk only after this; where it cannot be done nothing is lost yet.
    const FileDescriptor directory(
        open(target.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.isValid())
        fsync(directory.get());
    return 0;
}

int makePrivateDirectories(const fs::path& directory) {
    if (mkdir(directory.c_str(), S_IRWXU) == 0)
        return 0;
    const int error = errno;
    std::error_code ignored;
    if (error == EEXIST || fs::is_directory(directory, ignored))
        return 0; // what is there and no directory shows when it is used
    if (error != ENOENT || !directory.has_relative_path())
        return error;
    if (const int parentError = makePrivateDirectories(directory.parent_path()); parentError != 0)
        return parentError;
    return mkdir(directory.c_str(), S_IRWXU) == 0 || errno == EEXIST ? 0 : errno;
}

} // namespace kelvora
