// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_connection.h"
#include "host/linux/atspi/bus_batch.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// What an accessible object is asked, for AtspiSession::ask.
namespace kelvora::atspi {

inline const BusMethod<std::uint32_t> role{accessible, "GetRole"};
inline const BusMethod<std::vector<std::uint32_t>> states{accessible, "GetState"};
inline const BusMethod<std::vector<std::string>> interfaces{accessible, "GetInterfaces"};

// Of a text; positions and lengths in the application's count.
inline const BusProperty<std::int32_t> length{text, "CharacterCount"};
inline const BusProperty<std::int32_t> caret{text, "CaretOffset"};
inline const BusMethod<std::int32_t> selectionCount{text, "GetNSelections"};
/// Begin and end; anything when nothing is selected.
inline const BusMethod<std::pair<std::int32_t, std::int32_t>> firstSelection{
    text, "GetSelection", {std::int32_t{0}}};

[[nodiscard]] inline BusMethod<std::string> textBetween(std::int32_t begin, std::int32_t end) {
    return {text, "GetText", {begin, end}};
}
[[nodiscard]] inline BusMethod<bool> setCaret(std::int32_t position) {
    return {text, "SetCaretOffset", {position}};
}
/// `size` is the text's length as the toolkit counts it here.
[[nodiscard]] inline BusMethod<bool> insertText(std::int32_t position, std::string utf8,
                                                std::int32_t size) {
    return {editableText, "InsertText", {position, std::move(utf8), size}};
}
[[nodiscard]] inline BusMethod<bool> deleteText(std::int32_t begin, std::int32_t end) {
    return {editableText, "DeleteText", {begin, end}};
}

} // namespace kelvora::atspi
