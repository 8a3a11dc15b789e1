// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora::soak {

/// The two layouts of the soak's desktop, by their place in its list.
enum class Layout : unsigned { us = 0, ru = 1 };

[[nodiscard]] constexpr Layout other(Layout layout) {
    return layout == Layout::us ? Layout::ru : Layout::us;
}
/// As the X server names it.
[[nodiscard]] std::string nameOf(Layout layout);

/// The keys with a letter in both layouts or in the second only, by what they type in the first.
inline constexpr std::string_view letterKeys = "abcdefghijklmnopqrstuvwxyz";
inline constexpr std::string_view signKeys = ";'[],.";

/// What must stand in a line that is typed at its end only: keys, each with the layout that it was
/// pressed in or converted to since. It has tables of its own, so that it shares no fault with the
/// program.
class TypedLine {
public:
    [[nodiscard]] bool isEmpty() const { return cells_.empty(); }
    [[nodiscard]] std::size_t length() const { return cells_.size(); }
    /// UTF-8.
    [[nodiscard]] std::string text() const;

    void type(char key, Layout layout);
    void deleteBackward();
    /// The program no longer knows what stands before the caret: a click, another window.
    void forget() { known_ = 0; }
    /// The line's last word changes its layout: the last that was typed since `forget`, or, where
    /// the program can read the line, the last of the line. False when there is no such word; else
    /// `layout` becomes the one that the word has now.
    [[nodiscard]] bool convertLastWord(bool canReadLine, Layout& layout);
    void clear();

private:
    struct Cell {
        char key;
        Layout layout;
    };

    [[nodiscard]] bool convertAmong(std::size_t last, Layout& layout);

    std::vector<Cell> cells_;
    std::size_t known_ = 0; // at the end of the line, typed since `forget`
};

} // namespace kelvora::soak
