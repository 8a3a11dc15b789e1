// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

/// Any thread may call any operation; each is atomic. The tail of the line that is being typed:
/// whoever loses sight of the tail empties the buffer. What leaves the buffer is overwritten in
/// its memory, since it is what somebody typed; what text() gave out is the caller's.
class TypedTextBuffer {
public:
    /// Most characters held after `record`.
    static constexpr std::size_t maximumLength = 200;

    TypedTextBuffer();
    ~TypedTextBuffer();
    TypedTextBuffer(const TypedTextBuffer&) = delete;
    TypedTextBuffer& operator=(const TypedTextBuffer&) = delete;

    /// The characters held, joined.
    [[nodiscard]] std::u16string text() const;

    void reset();

    /// Appends the characters of one keystroke's text and drops the oldest past `maximumLength`.
    /// Empties the buffer instead, and returns false, when the text is empty or holds a control or
    /// format scalar or a whitespace character other than U+0020.
    bool record(std::u16string_view text);

    /// Removes the last character as it was recorded, if there is one.
    void deleteBackward();

    /// Installs `replacement`, unchecked and of any length, if the text held is canonically equal
    /// to `expected`; otherwise changes nothing.
    void replace(std::u16string_view expected, std::u16string_view replacement);

private:
    void append(std::u16string_view text);
    void dropOldest(std::size_t count);
    void truncate(std::size_t units);
    void clear();

    mutable std::mutex mutex_;
    std::u16string text_;
    std::vector<std::uint32_t> lengths_; // units of each character as recorded, oldest first
};

} // namespace kelvora
