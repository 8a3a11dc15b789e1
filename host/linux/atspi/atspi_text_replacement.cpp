// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_text.h"

#include "core/text/encoding.h"

#include <algorithm>
#include <limits>

namespace kelvora {
namespace {

/// So much of the text behind the place tells whether it is still the same place.
constexpr std::int32_t contextLength = 32;
constexpr std::size_t longestText = 50'000'000;

std::u16string joined(std::u16string_view first, std::u16string_view second) {
    std::u16string text(first);
    return text.append(second);
}

} // namespace

BusError AtspiText::replace(AtspiRange range, std::u16string_view old,
                            std::u16string_view replacement, std::u16string_view following,
                            std::size_t caret) {
    if (!canBeSent(replacement) || replacement.size() > longestText)
        return BusError::refused;
    const auto lengthBefore = length();
    if (!lengthBefore)
        return lengthBefore.error;
    const auto found = read(range);
    if (!found || found.value != old)
        return found ? BusError::refused : found.error;
    const std::int32_t behindEnd =
        range.end + std::clamp(lengthBefore.value - range.end, 0, contextLength);
    const auto behind = read({range.end, behindEnd});
    if (!behind)
        return behind.error;
    if (const auto toolkit = session_.toolkit(object_); !toolkit)
        return toolkit.error;

    // From here on it is finished or taken back, whatever time the questions took.
    session_.extend(BusConnection::longestCall);
    const Insertion insertion = insert(range, old, replacement);
    if (insertion.error != BusError::none) {
        takeOut(range, old, lengthBefore.value, behind.value);
        return insertion.error;
    }
    const BusError erased = erase(range);
    if (isWithoutAnswer(erased))
        return erased;
    const auto lengthNow = length();
    if (lengthNow && lengthNow.value == lengthBefore.value + insertion.length) {
        // It keeps its old text, for a reason of its own.
        takeOut(range, old, lengthBefore.value, behind.value);
        return BusError::refused;
    }
    if (!holds({range.begin, range.begin + insertion.length}, replacement))
        return BusError::refused;
    const std::u16string line = joined(replacement, following);
    placeCaret(range.begin + static_cast<std::int32_t>(
                                 lengthIn(unit(), std::u16string_view(line).substr(0, caret))));
    return BusError::none;
}

AtspiText::Insertion AtspiText::insert(AtspiRange range, std::u16string_view old,
                                       std::u16string_view text) {
    const std::string utf8 = toUtf8(text);
    // The interface counts this in bytes, and so do GTK and LibreOffice. Qt counts UTF-16 units.
    // An unknown toolkit is taken by the interface's word; what comes out is read back anyway.
    const auto toolkit = session_.toolkit(object_);
    const std::size_t size = toolkit.value == Toolkit::qt ? text.size() : utf8.size();
    const auto lengthBefore = length();
    if (!lengthBefore)
        return {BusError::notAsked, 0};
    const auto inserted = session_.call<bool>(object_, atspi::editableText, "InsertText",
                                              {range.end, utf8, static_cast<std::int32_t>(size)});
    if (inserted.error == BusError::timedOut)
        takeOutLater(range.end, text);
    if (!inserted)
        return {inserted.error, 0};
    const auto lengthAfter = length();
    if (!lengthAfter) {
        takeOutLater(range.end, text);
        return {lengthAfter.error, 0};
    }
    const std::int32_t growth = lengthAfter.value - lengthBefore.value;
    const auto check = growth > 0 ? read({range.begin, range.end + growth})
                                  : BusReply<std::u16string>{BusError::refused, {}};
    if (isWithoutAnswer(check.error))
        takeOutLater(range.end, text);
    if (!check)
        return {check.error, 0};
    return {check.value == joined(old, text) ? BusError::none : BusError::refused, growth};
}

BusError AtspiText::erase(AtspiRange range) {
    const auto reply =
        session_.call<bool>(object_, atspi::editableText, "DeleteText", {range.begin, range.end});
    return reply.error;
}

/// Takes out what an insertion behind the range brought, if all around it is as it was.
void AtspiText::takeOut(AtspiRange range, std::u16string_view old, std::int32_t lengthBefore,
                        std::u16string_view behind) {
    const auto lengthNow = length();
    if (!lengthNow || lengthNow.value <= lengthBefore)
        return;
    const std::int32_t end = range.end + lengthNow.value - lengthBefore;
    const auto behindEnd = end + static_cast<std::int32_t>(lengthIn(unit(), behind));
    if (holds(range, old) && holds({end, behindEnd}, behind))
        static_cast<void>(erase({range.end, end}));
}

/// The insertion stands in the queue of an application that does not answer, and will take effect
/// when it goes on. What stands right behind it in that queue takes it back.
void AtspiText::takeOutLater(std::int32_t position, std::u16string_view text) {
    const auto end = position + static_cast<std::int32_t>(lengthIn(unit(), text));
    session_.send(object_, atspi::editableText, "DeleteText", {position, end});
}

void AtspiText::placeCaret(std::int32_t position) {
    for (int attempt = 0; attempt < 2; ++attempt) {
        const auto moved = session_.call<bool>(object_, atspi::text, "SetCaretOffset", {position});
        if (!moved)
            return;
        if (const auto now = caret(); now && now.value == position)
            break;
    }
    // Some applications keep what is left of the selection.
    const auto range = selection();
    if (range && range.value.begin != range.value.end)
        static_cast<void>(session_.call<bool>(object_, atspi::text, "RemoveSelection", {0}));
}

} // namespace kelvora
