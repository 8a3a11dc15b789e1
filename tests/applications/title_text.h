// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kelvora::applications {

/// How the windows here tell what the focused field holds, for readers that know nothing of the
/// toolkit: as their title, one word of ASCII. A text that is too long for a title is told by its
/// length in bytes and a sum over them (64-bit FNV-1a).
[[nodiscard]] inline std::string titleFor(std::string_view utf8) {
    constexpr std::size_t longest = 300;
    if (utf8.size() > longest) {
        constexpr std::uint64_t prime = 1099511628211ULL;
        std::uint64_t sum = 14695981039346656037ULL;
        for (const char byte : utf8)
            sum = (sum ^ static_cast<unsigned char>(byte)) * prime;
        return "long:" + std::to_string(utf8.size()) + ":" + std::to_string(sum);
    }
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string title = "text:";
    for (const char byte : utf8) {
        const auto value = static_cast<unsigned char>(byte);
        title += {'%', digits[value / 16U], digits[value % 16U]};
    }
    return title;
}

/// The text that a title tells; the title itself when it tells none or only its sum.
[[nodiscard]] inline std::string textOfTitle(const std::string& title) {
    constexpr std::string_view prefix = "text:";
    if (!title.starts_with(prefix))
        return title;
    std::string text;
    for (std::size_t index = prefix.size(); index + 2 < title.size(); index += 3)
        text.push_back(static_cast<char>(std::stoi(title.substr(index + 1, 2), nullptr, 16)));
    return text;
}

} // namespace kelvora::applications
