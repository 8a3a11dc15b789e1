// SPDX-License-Identifier: MIT
// What another program may put on the clipboard: any properties in any order, of any type and size.
#include "core/text/encoding.h"
#include "fuzz/input.h"
#include "host/linux/x11/clipboard/clipboard_formats.h"
#include "host/linux/x11/clipboard/incoming_data.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace kelvora::fuzz {
namespace {

using State = IncomingData::State;

constexpr xcb_atom_t incr = 7;

std::span<const std::byte> asBytes(std::string_view text) {
    return std::as_bytes(std::span(text));
}

/// As the server hands properties out: none, or whole units of one of the three formats.
IncomingProperty takeProperty(Input& input) {
    IncomingProperty property;
    property.type = static_cast<xcb_atom_t>(input.below(9));
    property.isWhole = input.below(16) != 0;
    if (property.type == XCB_ATOM_NONE)
        return property;
    property.format = std::array<std::uint8_t, 3>{8, 16, 32}[input.below(3)];
    const std::string_view bytes = input.bytes(input.below(64));
    property.bytes = asBytes(bytes.substr(0, bytes.size() - bytes.size() % (property.format / 8)));
    return property;
}

/// What a transfer should have come to, kept beside it.
struct Expected {
    State state = State::underWay;
    std::optional<IncomingProperty> first; ///< that had bytes, or ended it
    std::vector<std::byte> bytes;
    bool isInPieces = false;
};

void take(Expected& expected, const IncomingProperty& property, std::size_t limit) {
    if (!property.isWhole || expected.bytes.size() + property.bytes.size() > limit) {
        expected.state = State::failed;
    } else if (property.type == XCB_ATOM_NONE) {
        expected.state = expected.isInPieces ? State::underWay : State::refused;
    } else if (!expected.isInPieces && property.type == incr) {
        expected.isInPieces = true;
    } else {
        const bool isEnd = !expected.isInPieces || property.bytes.empty();
        if (!expected.first)
            expected.first = property;
        else if (!property.bytes.empty() && (expected.first->type != property.type ||
                                             expected.first->format != property.format))
            expected.state = State::failed;
        if (expected.state == State::failed)
            return;
        expected.bytes.insert(expected.bytes.end(), property.bytes.begin(), property.bytes.end());
        expected.state = isEnd ? State::complete : State::underWay;
    }
}

void checkTransfer(Input& input) {
    const std::size_t limit = input.byte() * std::size_t{2};
    IncomingData data(incr, limit);
    Expected expected;
    for (std::size_t steps = input.below(16); steps > 0 && !input.isEmpty(); --steps) {
        const std::size_t action = input.below(16);
        const IncomingProperty property = takeProperty(input);
        const bool isUnderWay = expected.state == State::underWay;
        if (action == 0) {
            data.refuse();
            expected.state = isUnderWay ? State::refused : expected.state;
        } else if (action == 1) {
            data.fail();
            expected.state = isUnderWay ? State::failed : expected.state;
        } else if (action < 6) {
            data.takeAnswer(property);
            if (isUnderWay && !expected.isInPieces)
                take(expected, property, limit);
        } else {
            data.takePiece(property);
            if (isUnderWay && expected.isInPieces)
                take(expected, property, limit);
        }
        require(data.state() == expected.state, "the state follows from what came");
        require(data.isInPieces() == expected.isInPieces, "pieces come only when announced");
        require(data.bytes().size() + data.bytesLeft() == limit, "the limit holds");
        require(data.state() == State::failed || data.bytes() == expected.bytes,
                "the pieces are put together in order");
        if (data.state() == State::complete) {
            require(data.type() == expected.first->type && data.format() == expected.first->format,
                    "type and format are those of the data");
            require(data.bytes().size() % (data.format() / 8) == 0, "units are whole");
        }
    }
}

void checkTargets(std::string_view bytes) {
    const std::vector<xcb_atom_t> atoms = atomsIn(asBytes(bytes));
    std::set<xcb_atom_t> expected;
    std::vector<xcb_atom_t> inOrder;
    for (std::size_t at = 0; at + sizeof(xcb_atom_t) <= bytes.size(); at += sizeof(xcb_atom_t)) {
        Input unit(reinterpret_cast<const std::uint8_t*>(bytes.data()) + at, sizeof(xcb_atom_t));
        const auto atom = unit.number<xcb_atom_t>();
        if (expected.insert(atom).second)
            inOrder.push_back(atom);
    }
    require(atoms == inOrder, "each target comes once, in the owner's order");
}

void checkText(std::string_view bytes) {
    const std::string_view inner =
        bytes.ends_with('\0') ? bytes.substr(0, bytes.size() - 1) : bytes;
    require(textOf(asBytes(bytes), false) == toUtf16(inner), "UTF-8 is read without its last NUL");
    const std::u16string latin1 = textOf(asBytes(bytes), true);
    require(std::ranges::equal(latin1, inner, {}, {},
                               [](char unit) { return static_cast<unsigned char>(unit); }),
            "Latin-1 is read unit by unit");
}

/// Names of targets and types come from the owner, too, and may look like anything.
void checkKind(Input& input) {
    const auto format = std::array<std::uint8_t, 3>{8, 16, 32}[input.below(3)];
    const std::size_t size = input.below(8) * (format / 8U);
    PasteboardData data{std::string(input.bytes(input.below(32))), {}, nullptr};
    const std::string type(input.rest());
    data.bytes = std::make_shared<const std::vector<std::byte>>(size);
    data.encoding = propertyEncoding(format, type);
    require(propertyKind(data) == PropertyKind{format, type}, "data is given out as it came");
    data.encoding = type;
    const PropertyKind kind = propertyKind(data);
    require(kind.format == 8 || kind.format == 16 || kind.format == 32, "there are three formats");
    require(size % (kind.format / 8U) == 0, "data is given out in whole units");
    require(!isText(type) || !isNeverAskedFor(type), "plain text is asked for");
}

} // namespace
} // namespace kelvora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kelvora::fuzz;
    Input input(data, size);
    checkTargets(input.rest());
    checkText(input.rest());
    checkTransfer(input);
    checkKind(input);
    return 0;
}
