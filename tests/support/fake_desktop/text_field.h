// SPDX-License-Identifier: MIT
#pragma once

#include "host/input_event.h"
#include "tests/support/fake_desktop/pasteboard.h"
#include "tests/support/fake_desktop/scheduler.h"

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace kelvora::fake {

/// The text of one window, as an ordinary editor keeps it, and what it makes of keys.
class TextField {
public:
    TextField(Pasteboard& pasteboard, Scheduler& scheduler)
        : pasteboard_(pasteboard), scheduler_(scheduler) {}

    // How an application may differ from an ordinary one.
    bool ignoresShortcuts = false;
    double copyDelay = 0;  ///< seconds from Command-C to the copy
    double pasteDelay = 0; ///< seconds from Command-V to the paste
    /// What is copied of a selection, instead of its text.
    std::function<std::u16string(std::u16string_view)> copies;

    /// A key went down in the window, and types `event.text` if it types anything.
    void receive(const InputEvent& event);

    /// Replaces everything; the caret is at the end.
    void set(std::u16string text);
    void select(std::size_t anchor, std::size_t caret);
    /// Replaces the selection; the caret is behind the new text.
    void insert(std::u16string_view text);

    [[nodiscard]] const std::u16string& text() const { return text_; }
    [[nodiscard]] std::size_t caret() const { return caret_; }
    [[nodiscard]] std::u16string selectedText() const {
        return text_.substr(range().first, range().second - range().first);
    }
    /// The selection's ends, the same for a caret.
    [[nodiscard]] std::pair<std::size_t, std::size_t> range() const {
        return std::minmax({anchor_, caret_});
    }

private:
    void receiveShortcut(KeyCode keyCode);
    /// The boundary one character from the caret.
    [[nodiscard]] std::size_t neighbour(KeyCode arrow) const;
    void moveCaret(KeyCode arrow, bool extend);

    Pasteboard& pasteboard_;
    Scheduler& scheduler_;
    std::u16string text_;
    std::size_t anchor_ = 0;
    std::size_t caret_ = 0;
};

} // namespace kelvora::fake
