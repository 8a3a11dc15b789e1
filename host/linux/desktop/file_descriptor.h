// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <utility>

namespace kelvora {

/// Owns a file descriptor; -1: none.
class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
    ~FileDescriptor() {
        if (isValid())
            close(descriptor_);
    }
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }

    [[nodiscard]] int get() const { return descriptor_; }
    [[nodiscard]] bool isValid() const { return descriptor_ >= 0; }
    int release() { return std::exchange(descriptor_, -1); }

private:
    int descriptor_;
};

} // namespace kelvora
