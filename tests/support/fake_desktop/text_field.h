// SPDX-License-Identifier: MIT
#pragma once

#include "core/text/characters.h"
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
    double copyDelay = 0;  ///< seconds from Command-C to the copy
    double pasteDelay = 0; ///< seconds from Command-V to the paste
    /// What is copied of a selection, instead of its text.
    std::function<PasteboardSnapshot(std::u16string_view)> copies;
    bool copiesWithoutSelection = false;

    /// A key went down in the window, and types `event.text` if it types anything.
    void receive(const InputEvent& event) {
        if ((event.flags & (eventFlag::control | eventFlag::command)) != 0) {
            receiveShortcut(event.keyCode);
        } else if (event.keyCode == keyCode::leftArrow || event.keyCode == keyCode::rightArrow) {
            moveCaret(event.keyCode, (event.flags & eventFlag::shift) != 0);
        } else if (!event.text.empty()) {
            insert(event.text.view());
        } else if (event.keyCode == keyCode::backspace) {
            if (anchor_ == caret_)
                anchor_ = neighbour(keyCode::leftArrow);
            insert(u"");
        }
    }

    /// Replaces everything; the caret is at the end.
    void set(std::u16string text) {
        text_ = std::move(text);
        select(text_.size(), text_.size());
    }
    void select(std::size_t anchor, std::size_t caret) {
        anchor_ = anchor;
        caret_ = caret;
    }
    /// Replaces the selection; the caret is behind the new text.
    void insert(std::u16string_view text) {
        const auto [begin, end] = range();
        text_.replace(begin, end - begin, text);
        select(begin + text.size(), begin + text.size());
    }

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
    void receiveShortcut(KeyCode keyCode) {
        if (keyCode == keyCode::a) {
            select(0, text_.size());
        } else if (keyCode == keyCode::c && (anchor_ != caret_ || copiesWithoutSelection)) {
            scheduler_.at(copyDelay, [this] {
                pasteboard_.copy(copies ? copies(selectedText()) : textItem(selectedText()),
                                 Pasteboard::Program::focused);
            });
        } else if (keyCode == keyCode::v) {
            const auto paste = [this] { insert(pasteboard_.paste().value_or(u"")); };
            pasteDelay > 0 ? scheduler_.at(pasteDelay, paste) : paste();
        }
    }
    /// The boundary one character from the caret.
    [[nodiscard]] std::size_t neighbour(KeyCode arrow) const {
        CharacterSegmenter characters(text_);
        if (arrow == keyCode::leftArrow)
            return caret_ == 0 ? 0 : characters.previous(caret_);
        return caret_ == text_.size() ? caret_ : characters.next(caret_);
    }
    void moveCaret(KeyCode arrow, bool extend) {
        const auto [begin, end] = range();
        if (extend || begin == end)
            caret_ = neighbour(arrow);
        else
            caret_ = arrow == keyCode::leftArrow ? begin : end;
        anchor_ = extend ? anchor_ : caret_;
    }

    Pasteboard& pasteboard_;
    Scheduler& scheduler_;
    std::u16string text_;
    std::size_t anchor_ = 0;
    std::size_t caret_ = 0;
};

} // namespace kelvora::fake
