// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/text_field.h"

#include "core/text/characters.h"

namespace kelvora::fake {

void TextField::receive(const InputEvent& event) {
    if ((event.flags & (eventFlag::control | eventFlag::command)) != 0) {
        receiveShortcut(event.keyCode);
    } else if (event.keyCode == keyCode::leftArrow || event.keyCode == keyCode::rightArrow) {
        moveCaret(event.keyCode, (event.flags & eventFlag::shift) != 0);
    } else if (!event.text.empty()) {
        insert(event.text.view());
    } else if (event.keyCode == keyCode::backspace) {
        if (anchor_ == caret_) {
            anchor_ = neighbour(keyCode::leftArrow);
        }
        insert(u"");
    }
}

void TextField::receiveShortcut(KeyCode keyCode) {
    if (ignoresShortcuts) {
        return;
    }
    if (keyCode == keyCode::a) {
        select(0, text_.size());
    } else if (keyCode == keyCode::c && anchor_ != caret_) {
        scheduler_.at(copyDelay, [this] {
            pasteboard_.copyText(copies ? copies(selectedText()) : selectedText(),
                                 Pasteboard::Program::focused);
        });
    } else if (keyCode == keyCode::v) {
        const auto paste = [this] { insert(pasteboard_.paste().value_or(u"")); };
        pasteDelay > 0 ? scheduler_.at(pasteDelay, paste) : paste();
    }
}

void TextField::set(std::u16string text) {
    text_ = std::move(text);
    select(text_.size(), text_.size());
}

void TextField::select(std::size_t anchor, std::size_t caret) {
    anchor_ = anchor;
    caret_ = caret;
}

void TextField::insert(std::u16string_view text) {
    const auto [begin, end] = range();
    text_.replace(begin, end - begin, text);
    select(begin + text.size(), begin + text.size());
}

std::size_t TextField::neighbour(KeyCode arrow) const {
    CharacterSegmenter characters(text_);
    if (arrow == keyCode::leftArrow) {
        return caret_ == 0 ? 0 : characters.previous(caret_);
    }
    return caret_ == text_.size() ? caret_ : characters.next(caret_);
}

void TextField::moveCaret(KeyCode arrow, bool extend) {
    const auto [begin, end] = range();
    if (extend) {
        caret_ = neighbour(arrow);
    } else if (begin != end) {
        select(arrow == keyCode::leftArrow ? begin : end,
               arrow == keyCode::leftArrow ? begin : end);
    } else {
        select(neighbour(arrow), neighbour(arrow));
    }
}

} // namespace kelvora::fake
