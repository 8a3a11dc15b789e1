// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_version.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace kelvora {
namespace {

constexpr std::size_t maximumLength = 64;

// The C library's classes would follow the locale.
bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isPlain(std::string_view text) {
    return std::ranges::all_of(text, [](char character) {
        return isDigit(character) || isLetter(character) || character == '.' || character == '+' ||
               character == '~' || character == '-';
    });
}

/// Where a character sorts among what is no digit: a tilde before the end, letters before others.
int weight(std::string_view text, std::size_t position) {
    if (position >= text.size() || isDigit(text[position])) {
        return 0;
    }
    const char character = text[position];
    if (character == '~') {
        return -1;
    }
    return isLetter(character) ? character : character + 256;
}

std::string_view takeDigits(std::string_view text, std::size_t& position) {
    while (position < text.size() && text[position] == '0') {
        ++position;
    }
    const std::size_t begin = position;
    while (position < text.size() && isDigit(text[position])) {
        ++position;
    }
    return text.substr(begin, position - begin);
}

std::weak_ordering compareParts(std::string_view left, std::string_view right) {
    std::size_t l = 0;
    std::size_t r = 0;
    while (l < left.size() || r < right.size()) {
        while ((l < left.size() && !isDigit(left[l])) || (r < right.size() && !isDigit(right[r]))) {
            if (const auto order = weight(left, l) <=> weight(right, r); std::is_neq(order)) {
                return order;
            }
            ++l;
            ++r;
        }
        const std::string_view leftNumber = takeDigits(left, l);
        const std::string_view rightNumber = takeDigits(right, r);
        if (const auto order = leftNumber.size() <=> rightNumber.size(); std::is_neq(order)) {
            return order;
        }
        if (const auto order = leftNumber <=> rightNumber; std::is_neq(order)) {
            return order;
        }
    }
    return std::weak_ordering::equivalent;
}

} // namespace

std::optional<UpdateVersion> UpdateVersion::parse(std::string_view text) {
    if (text.size() > maximumLength) {
        return std::nullopt;
    }
    UpdateVersion version;
    version.text_ = text;
    std::string_view rest = text;
    if (const std::size_t colon = rest.find(':'); colon != std::string_view::npos) {
        const char* end = rest.data() + colon;
        const auto read = std::from_chars(rest.data(), end, version.epoch_);
        if (read.ec != std::errc{} || read.ptr != end) {
            return std::nullopt;
        }
        rest.remove_prefix(colon + 1);
    }
    if (const std::size_t dash = rest.rfind('-'); dash != std::string_view::npos) {
        version.revision_ = rest.substr(dash + 1);
        rest = rest.substr(0, dash);
        if (version.revision_.empty()) {
            return std::nullopt;
        }
    }
    version.upstream_ = rest;
    if (rest.empty() || !isDigit(rest.front()) || !isPlain(rest) || !isPlain(version.revision_)) {
        return std::nullopt;
    }
    return version;
}

std::weak_ordering operator<=>(const UpdateVersion& left, const UpdateVersion& right) {
    if (const auto order = left.epoch_ <=> right.epoch_; std::is_neq(order)) {
        return order;
    }
    if (const auto order = compareParts(left.upstream_, right.upstream_); std::is_neq(order)) {
        return order;
    }
    return compareParts(left.revision_, right.revision_);
}

} // namespace kelvora
