// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <string_view>

#include "core/text/code_unit_traits.h"

namespace kelvora {

/// Finds the boundaries between the characters of one text: extended grapheme clusters (UAX #29),
/// CR LF being one, an unpaired surrogate being a character of its own. The text must outlive it.
/// One thread at a time.
class CharacterSegmenter {
public:
    explicit CharacterSegmenter(std::u16string_view text);
    ~CharacterSegmenter();
    CharacterSegmenter(CharacterSegmenter&&) noexcept;
    CharacterSegmenter& operator=(CharacterSegmenter&&) noexcept;

    [[nodiscard]] std::u16string_view text() const { return text_; }

    /// The first boundary after `boundary`, which is a boundary before the end of the text.
    [[nodiscard]] std::size_t next(std::size_t boundary) {
        const std::size_t following = boundary + 1;
        if (traits_->isStandalone(text_[boundary]) &&
            (following == text_.size() || traits_->isStandalone(text_[following]))) {
            return following;
        }
        return nextByRules(boundary);
    }

    /// The last boundary before `boundary`, which is a boundary after the start of the text.
    [[nodiscard]] std::size_t previous(std::size_t boundary);

    /// True at the start and end of the text and between any two characters; false beyond the end.
    [[nodiscard]] bool isBoundary(std::size_t offset);

private:
    class Rules;

    std::size_t nextByRules(std::size_t boundary);
    Rules& rules();

    std::u16string_view text_;
    const CodeUnitTraits* traits_;
    std::unique_ptr<Rules> rules_; // made when a text first needs more than the traits
};

/// The characters of a text in order, for range-for:
/// `for (std::u16string_view character : Characters(text))`. Single pass; the text must outlive it.
class Characters {
public:
    class Iterator {
    public:
        using value_type = std::u16string_view;
        using difference_type = std::ptrdiff_t;

        explicit Iterator(CharacterSegmenter* segmenter) : segmenter_(segmenter) { advance(); }

        std::u16string_view operator*() const {
            return segmenter_->text().substr(begin_, end_ - begin_);
        }
        Iterator& operator++() {
            begin_ = end_;
            advance();
            return *this;
        }
        void operator++(int) { ++*this; }
        bool operator==(std::default_sentinel_t) const {
            return begin_ == segmenter_->text().size();
        }

    private:
        void advance() {
            if (begin_ < segmenter_->text().size()) {
                end_ = segmenter_->next(begin_);
            }
        }

        CharacterSegmenter* segmenter_;
        std::size_t begin_ = 0;
        std::size_t end_ = 0;
    };

    explicit Characters(std::u16string_view text) : segmenter_(text) {}

    [[nodiscard]] Iterator begin() { return Iterator(&segmenter_); }
    [[nodiscard]] static std::default_sentinel_t end() { return {}; }

private:
    CharacterSegmenter segmenter_;
};

/// Number of characters (grapheme clusters) of the text.
[[nodiscard]] std::size_t characterCount(std::u16string_view text);

} // namespace kelvora
