// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_text.h"

#include "core/text/encoding.h"
#include "host/linux/atspi/atspi_questions.h"
#include "host/linux/atspi/text_roles.h"

namespace kelvora {
namespace {

constexpr int mostEmptyNeighbours = 16;

} // namespace

BusReply<std::int32_t> AtspiText::length() {
    return session_.property<std::int32_t>(object_, atspi::text, "CharacterCount");
}

OffsetUnit AtspiText::unit() {
    return session_.offsetUnit(object_).value_or(OffsetUnit::codePoint);
}

BusReply<AtspiTextPlace> AtspiText::place() {
    const auto [count, selection, total, position, role] =
        session_.ask(object_, atspi::selectionCount, atspi::firstSelection, atspi::length,
                     atspi::caret, atspi::role);
    for (const BusError error : {count.error, total.error}) {
        if (error != BusError::none)
            return {error, {}};
    }
    if (isWithoutAnswer(position.error))
        return {position.error, {}};
    AtspiTextPlace found{role.value, total.value, position ? position.value : -1, {}};
    if (count.value > 0) {
        if (!selection)
            return {selection.error, {}};
        const auto [begin, end] = selection.value;
        if (count.value > 1 || begin < 0 || end < begin)
            return {BusError::unsupported, {}};
        found.selection = {begin, end};
    }
    AtspiRange edges = found.selection;
    // With the caret at an edge, the selection may end there and be in the neighbour only.
    if (edges.begin == edges.end)
        edges = {found.caret, found.caret};
    for (const auto& [isAtEdge, step] :
         {std::pair{edges.begin == 0, -1}, std::pair{edges.end == total.value, 1}}) {
        if (!isAtEdge)
            continue;
        const auto goesOn =
            role ? isSelectedBeyond(step, role.value) : BusReply<bool>{role.error, false};
        if (!goesOn || goesOn.value)
            return {goesOn ? BusError::unsupported : goesOn.error, {}};
    }
    return {BusError::none, found};
}

/// Whether the texts of the same document before (-1) or behind (1) have a part of the selection.
BusReply<bool> AtspiText::isSelectedBeyond(int step, std::uint32_t role) {
    if (!isPartOfDocument(role))
        return {};
    const auto index = session_.call<std::int32_t>(object_, atspi::accessible, "GetIndexInParent");
    const auto parent = session_.property<AtspiReference>(object_, atspi::accessible, "Parent");
    if (!index || !parent)
        return {index ? parent.error : index.error, false};
    // An empty paragraph never has one, but the next may.
    for (int distance = 1; distance <= mostEmptyNeighbours; ++distance) {
        const std::int32_t place = index.value + step * distance;
        if (place < 0)
            return {};
        const auto sibling = session_.call<AtspiReference>(parent.value, atspi::accessible,
                                                           "GetChildAtIndex", {place});
        if (isWithoutAnswer(sibling.error))
            return {sibling.error, false};
        if (!sibling || sibling.value.path == atspi::nullPath)
            return {};
        const auto count =
            session_.call<std::int32_t>(sibling.value, atspi::text, "GetNSelections");
        const auto length =
            session_.property<std::int32_t>(sibling.value, atspi::text, "CharacterCount");
        if (isWithoutAnswer(count.error) || isWithoutAnswer(length.error))
            return {BusError::timedOut, false};
        if (count.value > 0)
            return {BusError::none, true};
        if (!length || length.value > 0)
            return {};
    }
    return {BusError::none, true}; // as far as one could see
}

BusReply<std::u16string> AtspiText::read(AtspiRange range) {
    // An end of -1, "all", is not understood everywhere: GTK 4's entries then give nothing.
    if (range.begin < 0 || range.end < range.begin)
        return {BusError::refused, {}};
    if (range.begin == range.end)
        return {};
    return received(range, session_.call<std::string>(object_, atspi::text, "GetText",
                                                      {range.begin, range.end}));
}

BusReply<std::u16string> AtspiText::received(AtspiRange range, const BusReply<std::string>& reply) {
    if (!reply)
        return {reply.error, {}};
    BusReply<std::u16string> text{BusError::none, toUtf16(reply.value)};
    const std::int64_t length = range.end - range.begin;
    if (const auto evidence = unitOf(text.value, length))
        session_.learnOffsetUnit(object_, *evidence);
    else if (static_cast<std::int64_t>(text.value.size()) != length)
        return {BusError::refused, {}};
    return text;
}

bool AtspiText::holds(AtspiRange range, std::u16string_view text) {
    const auto reply = read(range);
    return reply && reply.value == text;
}

} // namespace kelvora
