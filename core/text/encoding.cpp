// SPDX-License-Identifier: MIT
#include "core/text/encoding.h"

#include <array>
#include <cstdint>

namespace kelvora {
namespace {

constexpr char32_t replacement = 0xFFFD;

bool isSurrogate(char32_t scalar) {
    return scalar >= 0xD800 && scalar <= 0xDFFF;
}

void appendUtf8(char32_t scalar, std::string& result) {
    std::array<char, 4> bytes{};
    std::size_t length = 0;
    const auto put = [&](char32_t value) {
        bytes[length++] = static_cast<char>(static_cast<unsigned char>(value));
    };
    if (scalar < 0x80) {
        put(scalar);
    } else if (scalar < 0x800) {
        put(0xC0 | scalar >> 6);
        put(0x80 | (scalar & 0x3F));
    } else if (scalar < 0x10000) {
        put(0xE0 | scalar >> 12);
        put(0x80 | (scalar >> 6 & 0x3F));
        put(0x80 | (scalar & 0x3F));
    } else {
        put(0xF0 | scalar >> 18);
        put(0x80 | (scalar >> 12 & 0x3F));
        put(0x80 | (scalar >> 6 & 0x3F));
        put(0x80 | (scalar & 0x3F));
    }
    result.append(bytes.data(), length);
}

/// How a well-formed UTF-8 sequence goes on after its first byte (Unicode standard, table 3-7).
struct Utf8Form {
    std::size_t length = 0; ///< bytes in all; 0 when no sequence starts so
    char32_t bits = 0;      ///< what the first byte gives to the scalar
    unsigned char secondLow = 0x80;
    unsigned char secondHigh = 0xBF;
};

Utf8Form utf8Form(unsigned char lead) {
    if (lead < 0x80) {
        return {1, lead};
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        return {2, lead & 0x1Fu};
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned char low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned char high = lead == 0xED ? 0x9F : 0xBF;
        return {3, lead & 0x0Fu, low, high};
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned char low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned char high = lead == 0xF4 ? 0x8F : 0xBF;
        return {4, lead & 0x07u, low, high};
    }
    return {};
}

/// The scalar at `offset`, or U+FFFD for the longest start of one; `length` counts bytes.
DecodedScalar decodeUtf8(std::string_view text, std::size_t offset) {
    const Utf8Form form = utf8Form(static_cast<unsigned char>(text[offset]));
    if (form.length == 0) {
        return {replacement, 1};
    }
    char32_t scalar = form.bits;
    for (std::size_t taken = 1; taken < form.length; ++taken) {
        if (offset + taken == text.size()) {
            return {replacement, taken};
        }
        const auto byte = static_cast<unsigned char>(text[offset + taken]);
        const bool isSecond = taken == 1;
        if (byte < (isSecond ? form.secondLow : 0x80) ||
            byte > (isSecond ? form.secondHigh : 0xBF)) {
            return {replacement, taken};
        }
        scalar = scalar << 6 | (byte & 0x3Fu);
    }
    return {scalar, form.length};
}

void appendUtf16(char32_t scalar, std::u16string& result) {
    if (scalar <= 0xFFFF) {
        result.push_back(static_cast<char16_t>(scalar));
        return;
    }
    const char32_t offset = scalar - 0x10000;
    result.push_back(static_cast<char16_t>(0xD800 + (offset >> 10)));
    result.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FF)));
}

} // namespace

std::string toUtf8(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        const DecodedScalar scalar = decodeScalar(text, offset);
        appendUtf8(isSurrogate(scalar.value) ? replacement : scalar.value, result);
        offset += scalar.length;
    }
    return result;
}

std::u16string toUtf16(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        const DecodedScalar scalar = decodeUtf8(text, offset);
        appendUtf16(scalar.value, result);
        offset += scalar.length;
    }
    return result;
}

std::u16string toWellFormed(std::u16string_view text) {
    std::u16string result(text);
    for (std::size_t offset = 0; offset < text.size();) {
        const DecodedScalar scalar = decodeScalar(text, offset);
        if (isSurrogate(scalar.value)) {
            result[offset] = static_cast<char16_t>(replacement);
        }
        offset += scalar.length;
    }
    return result;
}

} // namespace kelvora
