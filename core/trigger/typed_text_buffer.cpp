// SPDX-License-Identifier: MIT
#include "core/trigger/typed_text_buffer.h"

#include <algorithm>
#include <utility>

#include "core/text/character_class.h"
#include "core/text/characters.h"
#include "core/text/normalization.h"

namespace kelvora {
namespace {

constexpr char16_t space = 0x20;

bool isRecordable(std::u16string_view text) {
    if (text.empty() || containsControl(text)) {
        return false;
    }
    for (const std::u16string_view character : Characters(text)) {
        // A space that carries a mark is whitespace other than the plain space.
        const bool isPlainSpace = character.size() == 1 && character.front() == space;
        if (!isPlainSpace && isWhitespace(character)) {
            return false;
        }
    }
    return true;
}

/// Overwrites memory that the compiler knows nobody reads any more.
void overwrite(char16_t* units, std::size_t count) {
    volatile char16_t* memory = units;
    for (std::size_t i = 0; i < count; ++i) {
        memory[i] = 0;
    }
}

} // namespace

TypedTextBuffer::TypedTextBuffer() {
    text_.reserve(2 * maximumLength);
    lengths_.reserve(2 * maximumLength);
}

TypedTextBuffer::~TypedTextBuffer() {
    clear();
}

std::u16string TypedTextBuffer::text() const {
    const std::lock_guard lock(mutex_);
    return text_;
}

void TypedTextBuffer::reset() {
    const std::lock_guard lock(mutex_);
    clear();
}

bool TypedTextBuffer::record(std::u16string_view text) {
    const std::lock_guard lock(mutex_);
    if (!isRecordable(text)) {
        clear();
        return false;
    }
    append(text);
    if (lengths_.size() > maximumLength) {
        dropOldest(lengths_.size() - maximumLength);
    }
    return true;
}

void TypedTextBuffer::deleteBackward() {
    const std::lock_guard lock(mutex_);
    if (!lengths_.empty()) {
        truncate(text_.size() - lengths_.back());
        lengths_.pop_back();
    }
}

void TypedTextBuffer::replace(std::u16string_view expected, std::u16string_view replacement) {
    const std::lock_guard lock(mutex_);
    if (canonicallyEqual(text_, expected)) {
        clear();
        append(replacement);
    }
}

void TypedTextBuffer::append(std::u16string_view text) {
    const std::size_t needed = text_.size() + text.size();
    if (needed > text_.capacity()) {
        // Growing by itself would hand the old memory back with the text in it.
        std::u16string grown;
        grown.reserve(std::max(needed, 2 * text_.capacity()));
        grown = text_;
        truncate(0);
        text_ = std::move(grown);
    }
    text_.append(text);
    for (const std::u16string_view character : Characters(text)) {
        lengths_.push_back(static_cast<std::uint32_t>(character.size()));
    }
}

void TypedTextBuffer::dropOldest(std::size_t count) {
    const auto kept = lengths_.begin() + static_cast<std::ptrdiff_t>(count);
    std::size_t units = 0;
    for (auto length = lengths_.begin(); length != kept; ++length) {
        units += *length;
    }
    std::copy(text_.begin() + static_cast<std::ptrdiff_t>(units), text_.end(), text_.begin());
    truncate(text_.size() - units);
    lengths_.erase(lengths_.begin(), kept);
}

void TypedTextBuffer::truncate(std::size_t units) {
    overwrite(text_.data() + units, text_.size() - units);
    text_.resize(units);
}

void TypedTextBuffer::clear() {
    truncate(0);
    lengths_.clear();
}

} // namespace kelvora
