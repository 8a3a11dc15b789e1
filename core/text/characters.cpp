// SPDX-License-Identifier: MIT
#include "core/text/characters.h"

#include <unicode/ubrk.h>

#include <algorithm>
#include <cassert>
#include <cstdint>

namespace kelvora {
namespace {

struct BreakIteratorCloser {
    void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
};
using BreakIterator = std::unique_ptr<UBreakIterator, BreakIteratorCloser>;

BreakIterator newBreakIterator() {
    // Opening one reads locale data; cloning one does not. The prototype is never moved, so that
    // several threads may clone it.
    static const BreakIterator prototype = [] {
        UErrorCode error = U_ZERO_ERROR;
        BreakIterator opened(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &error));
        assert(U_SUCCESS(error));
        return opened;
    }();
    UErrorCode error = U_ZERO_ERROR;
    BreakIterator clone(ubrk_clone(prototype.get(), &error));
    assert(U_SUCCESS(error));
    return clone;
}

} // namespace

/// The rules of UAX #29 over a window of the text, since ICU counts units in 32 bits.
class CharacterSegmenter::Rules {
public:
    explicit Rules(std::u16string_view text) : text_(text), iterator_(newBreakIterator()) {
        show(0);
    }

    std::size_t next(std::size_t boundary) {
        const std::int32_t found = ubrk_following(iterator_.get(), show(boundary));
        return found == UBRK_DONE ? text_.size() : begin_ + static_cast<std::size_t>(found);
    }

    std::size_t previous(std::size_t boundary) {
        const std::int32_t found = ubrk_preceding(iterator_.get(), show(boundary));
        return found == UBRK_DONE ? 0 : begin_ + static_cast<std::size_t>(found);
    }

    bool isBoundary(std::size_t offset) {
        return ubrk_isBoundary(iterator_.get(), show(offset)) != 0;
    }

private:
    static constexpr std::size_t windowSize = std::size_t{1} << 30;
    static constexpr std::size_t margin = windowSize / 4;

    /// Makes the surroundings of `offset` visible; returns the offset in the window.
    std::int32_t show(std::size_t offset) {
        const bool startSeen = begin_ == 0 || offset >= begin_ + margin;
        const bool endSeen = end_ == text_.size() || offset + margin <= end_;
        if (end_ == 0 || offset < begin_ || offset > end_ || !startSeen || !endSeen) {
            begin_ =
                offset > windowSize / 2 && text_.size() > windowSize ? offset - windowSize / 2 : 0;
            end_ = std::min(text_.size(), begin_ + windowSize);
            UErrorCode error = U_ZERO_ERROR;
            ubrk_setText(iterator_.get(), text_.data() + begin_,
                         static_cast<std::int32_t>(end_ - begin_), &error);
            assert(U_SUCCESS(error));
        }
        return static_cast<std::int32_t>(offset - begin_);
    }

    std::u16string_view text_;
    BreakIterator iterator_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
};

CharacterSegmenter::CharacterSegmenter(std::u16string_view text)
    : text_(text), traits_(&CodeUnitTraits::table()) {}

CharacterSegmenter::~CharacterSegmenter() = default;
CharacterSegmenter::CharacterSegmenter(CharacterSegmenter&&) noexcept = default;
CharacterSegmenter& CharacterSegmenter::operator=(CharacterSegmenter&&) noexcept = default;

CharacterSegmenter::Rules& CharacterSegmenter::rules() {
    if (!rules_) {
        rules_ = std::make_unique<Rules>(text_);
    }
    return *rules_;
}

std::size_t CharacterSegmenter::nextByRules(std::size_t boundary) {
    return rules().next(boundary);
}

std::size_t CharacterSegmenter::previous(std::size_t boundary) {
    const std::size_t before = boundary - 1;
    if (traits_->isStandalone(text_[before]) &&
        (before == 0 || traits_->isStandalone(text_[before - 1]))) {
        return before;
    }
    return rules().previous(boundary);
}

bool CharacterSegmenter::isBoundary(std::size_t offset) {
    if (offset == 0 || offset >= text_.size()) {
        return offset == 0 || offset == text_.size();
    }
    if (traits_->isStandalone(text_[offset - 1]) && traits_->isStandalone(text_[offset])) {
        return true;
    }
    return rules().isBoundary(offset);
}

std::size_t characterCount(std::u16string_view text) {
    CharacterSegmenter segmenter(text);
    std::size_t count = 0;
    for (std::size_t boundary = 0; boundary < text.size(); boundary = segmenter.next(boundary)) {
        ++count;
    }
    return count;
}

} // namespace kelvora
