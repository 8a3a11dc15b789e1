// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/windows.h"

#include "core/text/characters.h"

namespace kelvora::fake {

void TextField::receive(const InputEvent& event) {
    if ((event.flags & (eventFlag::control | eventFlag::command)) != 0) {
        return;
    }
    if (!event.text.empty()) {
        text_ += event.text.view();
    } else if (event.keyCode == keyCode::backspace && !text_.empty()) {
        text_.erase(CharacterSegmenter(text_).previous(text_.size()));
    }
}

void Windows::focus(std::uint64_t window) {
    focused_ = window;
    focusChanged();
}

void Windows::setGrabbed(bool grabbed) {
    grabbed_ = grabbed;
    focusChanged();
}

TextField* Windows::focusedField() {
    return focused_ == 0 || grabbed_ ? nullptr : &fields_[focused_];
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
