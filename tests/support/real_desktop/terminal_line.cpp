// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/terminal_line.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace kelvora::real {

namespace {

/// One line of cells, each a UTF-8 character of width 1, and a cursor.
class Line {
public:
    void put(std::string character) {
        if (cursor_ >= cells_.size()) {
            cells_.resize(cursor_ + 1, " ");
        }
        cells_[cursor_++] = std::move(character);
    }
    void control(char character) {
        switch (character) {
        case '\r':
            cursor_ = 0;
            break;
        case '\b':
            cursor_ -= cursor_ > 0 ? 1 : 0;
            break;
        case '\a':
            break;
        default:
            put("\uFFFD");
        }
    }
    void sequence(std::string_view parameters, char final) {
        const std::size_t number =
            static_cast<std::size_t>(std::strtoul(std::string(parameters).c_str(), nullptr, 10));
        const std::size_t count = std::max<std::size_t>(number, 1);
        const std::size_t end = std::max(cells_.size(), cursor_);
        switch (final) {
        case 'C':
            cursor_ += count;
            break;
        case 'D':
            cursor_ -= std::min(cursor_, count);
            break;
        case 'K': // to the end of the line; the other two kinds are not sent by line editors
        case 'J':
            if (number == 0) {
                cells_.resize(std::min(cells_.size(), cursor_));
            } else {
                put("\uFFFD");
            }
            break;
        case 'P':
            cells_.resize(end, " ");
            cells_.erase(at(cursor_), at(std::min(cursor_ + count, end)));
            break;
        case '@':
            cells_.resize(end, " ");
            cells_.insert(at(cursor_), count, " ");
            break;
        case 'm': // colours and modes show nothing
        case 'h':
        case 'l':
            break;
        default:
            put("\uFFFD");
        }
    }
    [[nodiscard]] std::string text() const {
        std::string result;
        for (const std::string& cell : cells_) {
            result += cell;
        }
        return result;
    }

private:
    [[nodiscard]] std::vector<std::string>::iterator at(std::size_t index) {
        return cells_.begin() + static_cast<std::ptrdiff_t>(index);
    }

    std::vector<std::string> cells_;
    std::size_t cursor_ = 0;
};

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U;
}

bool isControl(char byte) {
    return static_cast<unsigned char>(byte) < 0x20U;
}

} // namespace

std::string lastTerminalLine(std::string_view output) {
    output.remove_prefix(output.rfind('\n') + 1); // npos + 1 is 0
    Line line;
    std::size_t index = 0;
    while (index < output.size()) {
        const char byte = output[index];
        if (byte == '\x1b' && index + 1 < output.size() && output[index + 1] == '[') {
            const std::size_t final =
                std::min(output.find_first_not_of("0123456789;?", index + 2), output.size());
            if (final == output.size()) {
                break; // the rest is still to come
            }
            line.sequence(output.substr(index + 2, final - index - 2), output[final]);
            index = final + 1;
        } else if (isControl(byte)) {
            line.control(byte);
            ++index;
        } else {
            std::size_t end = index + 1;
            while (end < output.size() && isContinuation(output[end])) {
                ++end;
            }
            line.put(std::string(output.substr(index, end - index)));
            index = end;
        }
    }
    return line.text();
}

} // namespace kelvora::real
