// SPDX-License-Identifier: MIT
#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

namespace kelvora {

/// A descriptor that any thread may make readable, to wake whoever waits for it. -1 when the system
/// has none left.
class WakeDescriptor {
public:
    WakeDescriptor() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~WakeDescriptor() {
        if (descriptor_ >= 0)
            close(descriptor_);
    }
    WakeDescriptor(const WakeDescriptor&) = delete;
    WakeDescriptor& operator=(const WakeDescriptor&) = delete;

    [[nodiscard]] int descriptor() const { return descriptor_; }
    void wake() const { static_cast<void>(eventfd_write(descriptor_, 1)); }
    void clear() const {
        eventfd_t count = 0;
        static_cast<void>(eventfd_read(descriptor_, &count));
    }

private:
    int descriptor_;
};

} // namespace kelvora
