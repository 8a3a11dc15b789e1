// SPDX-License-Identifier: MIT
#pragma once

#include "host/workspace.h"
#include "tests/support/fake_desktop/text_field.h"

#include <functional>
#include <map>
#include <string>

namespace kelvora::fake {

/// The windows of the session, each an application of its own, and the focus.
class Windows final : public Workspace {
public:
    Windows(Pasteboard& pasteboard, Scheduler& scheduler)
        : pasteboard_(pasteboard), scheduler_(scheduler) {}

    static constexpr std::uint64_t editor = 1; ///< what has the focus at first
    static constexpr std::uint64_t otherEditor = 2;

    /// How a notice of the focus reaches the main thread: in order with the events of the tap.
    std::function<void(std::function<void()>)> notifyInOrder;

    std::map<std::uint64_t, FrontmostApplication> applications{
        {editor, {.bundleIdentifier = "org.example.editor", .processIdentifier = 101}},
        {otherEditor, {.bundleIdentifier = "org.example.other", .processIdentifier = 102}},
    };

    /// 0: nothing has the focus.
    void focus(std::uint64_t window) {
        focused_ = window;
        focusChanged(FocusChange::keysSeen);
    }
    /// The desktop cannot tell what has the focus; keys go there all the same.
    void setNameless(bool isNameless) { isNameless_ = isNameless; }
    /// Another client takes the whole keyboard, as a locker does, or gives it back.
    void setGrabbed(bool grabbed) {
        grabbed_ = grabbed;
        focusChanged(FocusChange::keysMissed);
    }
    [[nodiscard]] bool isGrabbed() const { return grabbed_; }

    /// Where keys go now; null when they go nowhere.
    [[nodiscard]] TextField* focusedField() {
        return focused_ == 0 || grabbed_ ? nullptr : &field(focused_);
    }
    [[nodiscard]] TextField& field(std::uint64_t window = editor) {
        return fields_.try_emplace(window, pasteboard_, scheduler_).first->second;
    }
    [[nodiscard]] std::u16string text(std::uint64_t window = editor) {
        return field(window).text();
    }

    [[nodiscard]] std::optional<FrontmostApplication> frontmostApplication() override {
        const auto found = applications.find(focused_);
        return found == applications.end() ? std::nullopt : std::optional(found->second);
    }
    [[nodiscard]] FocusTarget focusTarget() override { return {isNameless_ ? 0 : focused_}; }
    void setOnFocusChanged(std::function<void(FocusChange)> handler) override {
        onFocusChanged_ = std::move(handler);
    }

private:
    void focusChanged(FocusChange change) {
        notifyInOrder([this, change] {
            if (onFocusChanged_)
                onFocusChanged_(change);
        });
    }

    Pasteboard& pasteboard_;
    Scheduler& scheduler_;
    std::map<std::uint64_t, TextField> fields_;
    std::uint64_t focused_ = editor;
    bool grabbed_ = false;
    bool isNameless_ = false;
    std::function<void(FocusChange)> onFocusChanged_;
};

} // namespace kelvora::fake
