// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/windows.h"

namespace kelvora::fake {

void Windows::focus(std::uint64_t window) {
    focused_ = window;
    focusChanged();
}

void Windows::setGrabbed(bool grabbed) {
    grabbed_ = grabbed;
    focusChanged();
}

TextField* Windows::focusedField() {
    return focused_ == 0 || grabbed_ ? nullptr : &field(focused_);
}

std::optional<FrontmostApplication> Windows::frontmostApplication() {
    const auto application = applications.find(focused_);
    return application == applications.end() ? std::nullopt : std::optional(application->second);
}

void Windows::focusChanged() {
    notifyInOrder([this] {
        if (onFocusChanged_) {
            onFocusChanged_();
        }
    });
}

} // namespace kelvora::fake
