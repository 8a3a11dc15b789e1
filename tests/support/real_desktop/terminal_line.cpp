// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/terminal_line.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <vector>

namespace kelvora::real {

namespace {

/// One line of cells, each a UTF-8 character of width 1, and a cursor.
struct Line {
    std::vector<std::string> cells;
    std::size_t cursor = 0;

    void put(std::string_view character) {
        cells.resize(std::max(cells.size(), cursor + 1), " ");
        cells[cursor++] = character;
    }
    void control(char character) {
        if (character == '\r')
            cursor = 0;
        else if (character == '\b')
            cursor -= cursor > 0 ? 1 : 0;
        else if (character != '\a')
            put("\uFFFD");
    }
    void sequence(std::string_view parameters, char final) {
        const std::size_t number = std::strtoul(std::string(parameters).c_str(), nullptr, 10);
        const std::size_t count = std::max<std::size_t>(number, 1);
        const std::size_t end = std::max(cells.size(), cursor);
        const auto at = [this](std::size_t index) {
            return cells.begin() + static_cast<std::ptrdiff_t>(index);
        };
        if (final == 'C') {
            cursor += count;
        } else if (final == 'D') {
            cursor -= std::min(cursor, count);
        } else if ((final == 'K' || final == 'J') && number == 0) {
            // To the end of the line; the other two kinds are not sent by line editors.
            cells.resize(std::min(cells.size(), cursor));
        } else if (final == 'P') {
            cells.resize(end, " ");
            cells.erase(at(cursor), at(std::min(cursor + count, end)));
        } else if (final == '@') {
            cells.resize(end, " ");
            cells.insert(at(cursor), count, " ");
        } else if (final != 'm' && final != 'h' && final != 'l') { // colours and modes show nothing
            put("\uFFFD");
        }
    }
};

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
            if (final == output.size())
                break; // the rest is still to come
            line.sequence(output.substr(index + 2, final - index - 2), output[final]);
            index = final + 1;
        } else if (static_cast<unsigned char>(byte) < 0x20U) {
            line.control(byte);
            ++index;
        } else {
            const std::size_t start = index++;
            while (index < output.size() &&
                   (static_cast<unsigned char>(output[index]) & 0xc0U) == 0x80U)
                ++index;
            line.put(output.substr(start, index - start));
        }
    }
    return std::accumulate(line.cells.begin(), line.cells.end(), std::string());
}

} // namespace kelvora::real
