// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

namespace kelvora {

/// A directory of the test's own, gone at its end.
struct TemporaryDirectory {
    TemporaryDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "kelvora-XXXXXX").string();
        path = mkdtemp(name.data());
    }
    ~TemporaryDirectory() { std::filesystem::remove_all(path); }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// Makes a file and the directories that it needs.
    void write(const std::filesystem::path& file, std::string_view content) const {
        std::filesystem::create_directories((path / file).parent_path());
        std::ofstream(path / file, std::ios::binary) << content;
    }
    [[nodiscard]] std::string read(const std::filesystem::path& file) const {
        std::ostringstream content;
        content << std::ifstream(path / file, std::ios::binary).rdbuf();
        return content.str();
    }

    std::filesystem::path path;
};

/// Sets a variable of the environment until the end of the scope; null: not there.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : name_(name) {
        if (const char* previous = std::getenv(name))
            previous_ = previous;
        value != nullptr ? setenv(name, value, 1) : unsetenv(name);
    }
    ~ScopedVariable() { previous_ ? setenv(name_, previous_->c_str(), 1) : unsetenv(name_); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    const char* name_;
    std::optional<std::string> previous_;
};

} // namespace kelvora
