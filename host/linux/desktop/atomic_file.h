// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace kelvora {

struct FileContent {
    std::string bytes;
    int error = 0; ///< errno value; ENOENT: there is no such file, EFBIG: it is past the limit
};

/// The whole of a regular file; anything else (a directory, a pipe) is an error. Never blocks on
/// one.
[[nodiscard]] FileContent readFile(const std::filesystem::path& file, std::size_t limit);

/// What becomes of the content that a file had.
enum class PreviousContent {
    replaced,
    keptAside, ///< in a file of the same name and ".damaged" behind it, the only one of its kind
};

/// Replaces a file in one step that survives a loss of power: other programs see the old content or
/// the new one. A symbolic link stays one, its target is replaced. The file can be read and written
/// by its owner only; missing directories are made so, too. 0, or the errno value of what failed;
/// then the file is as it was.
[[nodiscard]] int replaceFile(const std::filesystem::path& file, std::string_view bytes,
                              PreviousContent previous = PreviousContent::replaced);

/// Makes a directory and its parents, for their owner only. 0 or an errno value.
[[nodiscard]] int makePrivateDirectories(const std::filesystem::path& directory);

} // namespace kelvora
