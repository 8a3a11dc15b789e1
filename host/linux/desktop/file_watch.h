// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/desktop/file_descriptor.h"

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace kelvora {

/// Tells whether files may have changed, from the system's notices (inotify): nothing is read to
/// find out, and nothing wakes the program. The files need not exist, nor their directories. One
/// thread at a time.
class FileWatch {
public:
    explicit FileWatch(std::vector<std::filesystem::path> files) : files_(std::move(files)) {}

    /// May one of the files have been made, written, replaced or removed since the last call that
    /// answered true? True at first, and always where the system gives no notices. What is read
    /// after the call is covered by the next.
    [[nodiscard]] bool mayHaveChanged();

private:
    [[nodiscard]] bool isNoticed();
    void watchAll();
    [[nodiscard]] bool watch(const std::filesystem::path& file);

    std::vector<std::filesystem::path> files_;
    FileDescriptor notices_;
    std::map<int, std::set<std::string>> names_; ///< by watched directory: what matters in it
};

} // namespace kelvora
