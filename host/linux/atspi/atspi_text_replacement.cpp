// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_text.h"

#include "core/text/encoding.h"
#include "host/linux/atspi/atspi_questions.h"

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

AccessibilityError AtspiText::replace(AtspiRange range, std::u16string_view old,
                                      std::u16string_view replacement,
                                      std::u16string_view following, std::size_t caret) {
    if (!canBeSent(replacement) || replacement.size() > longestText)
        return AccessibilityError::failure;
    const auto [lengthBefore, oldText] =
        session_.ask(object_, atspi::length, atspi::textBetween(range.begin, range.end));
    if (!lengthBefore)
        return toAccessibilityError(lengthBefore.error);
    const auto found = received(range, oldText);
    if (!found || found.value != old)
        return toAccessibilityError(found ? BusError::refused : found.error);
    const std::int32_t behindEnd =
        range.end + std::clamp(lengthBefore.value - range.end, 0, contextLength);
    const auto behind = read({range.end, behindEnd});
    if (!behind)
        return toAccessibilityError(behind.error);
    if (const auto toolkit = session_.toolkit(object_); !toolkit)
        return toAccessibilityError(toolkit.error);

    const std::int32_t before = lengthBefore.value;
    const auto leaveUnanswered = [&] {
        session_.remember({object_, range.end, std::u16string(old), std::u16string(replacement),
                           behind.value, before});
        return AccessibilityError::cannotComplete;
    };
    const auto takeBack = [&](BusError error) {
        return takeOut(range, old, before, behind.value) ? toAccessibilityError(error)
                                                         : AccessibilityError::cannotComplete;
    };
    // From here on it is finished or taken back, whatever time the questions took.
    session_.extend(BusConnection::longestCall);
    const Insertion insertion = insert(range, old, replacement, before);
    if (isWithoutAnswer(insertion.error))
        return leaveUnanswered();
    if (insertion.error != BusError::none)
        return takeBack(insertion.error);
    const AtspiRange replaced{range.begin, range.begin + insertion.length};
    const auto [erased, lengthNow, newText] =
        session_.ask(object_, atspi::deleteText(range.begin, range.end), atspi::length,
                     atspi::textBetween(replaced.begin, replaced.end));
    if (isWithoutAnswer(erased.error))
        return leaveUnanswered(); // if it was asked it will do so, and then nothing is left
    // It keeps its old text, for a reason of its own.
    if (lengthNow && lengthNow.value == before + insertion.length)
        return takeBack(BusError::refused);
    // An application that corrects what it is given would do the same to the old text.
    if (const auto now = received(replaced, newText);
        !lengthNow || !now || now.value != replacement)
        return AccessibilityError::cannotComplete;
    const std::u16string line = joined(replacement, following);
    placeCaret(range.begin + static_cast<std::int32_t>(
                                 lengthIn(unit(), std::u16string_view(line).substr(0, caret))));
    return AccessibilityError::success;
}

AtspiText::Insertion AtspiText::insert(AtspiRange range, std::u16string_view old,
                                       std::u16string_view text, std::int32_t lengthBefore) {
    const std::string utf8 = toUtf8(text);
    // The interface counts this in bytes, and so do GTK and LibreOffice. Qt counts UTF-16 units.
    // An unknown toolkit is taken by the interface's word; what comes out is read back anyway.
    const auto toolkit = session_.toolkit(object_);
    const std::size_t size = toolkit.value == Toolkit::qt ? text.size() : utf8.size();
    // As far as it is known how the application counts.
    const auto expected = static_cast<std::int32_t>(lengthIn(unit(), text));
    const AtspiRange both{range.begin, range.end + expected};
    const auto [inserted, lengthAfter, bothText] =
        session_.ask(object_, atspi::insertText(range.end, utf8, static_cast<std::int32_t>(size)),
                     atspi::length, atspi::textBetween(both.begin, both.end));
    if (!inserted)
        return {inserted.error, 0};
    if (!lengthAfter)
        return {lengthAfter.error, 0};
    const std::int32_t growth = lengthAfter.value - lengthBefore;
    auto check = BusReply<std::u16string>{BusError::refused, {}};
    if (growth > 0)
        check =
            growth == expected ? received(both, bothText) : read({range.begin, range.end + growth});
    if (!check)
        return {check.error, 0};
    return {check.value == joined(old, text) ? BusError::none : BusError::refused, growth};
}

BusError AtspiText::erase(AtspiRange range) {
    const auto reply =
        session_.call<bool>(object_, atspi::editableText, "DeleteText", {range.begin, range.end});
    return reply.error;
}

/// Takes out what an insertion behind the range brought, if all around it is as it was. Whether
/// the text is as it was then.
bool AtspiText::takeOut(AtspiRange range, std::u16string_view old, std::int32_t lengthBefore,
                        std::u16string_view behind) {
    const auto lengthNow = length();
    if (!lengthNow || lengthNow.value < lengthBefore)
        return false;
    const std::int32_t end = range.end + lengthNow.value - lengthBefore;
    const auto behindLength = static_cast<std::int32_t>(lengthIn(unit(), behind));
    if (!holds(range, old) || !holds({end, end + behindLength}, behind))
        return false;
    if (end == range.end)
        return true;
    if (erase({range.end, end}) != BusError::none)
        return false;
    const auto lengthAfter = length();
    return lengthAfter && lengthAfter.value == lengthBefore &&
           holds({range.begin, range.end + behindLength}, joined(old, behind));
}

void AtspiText::takeOutUnanswered() {
    const auto insertion = session_.unanswered(object_);
    if (!insertion)
        return;
    const auto lengthNow = length();
    if (!lengthNow)
        return; // the application still does not answer
    session_.forgetUnanswered();
    const auto sizeOf = [this](std::u16string_view text) {
        return static_cast<std::int32_t>(lengthIn(unit(), text));
    };
    const AtspiRange added{insertion->position, insertion->position + sizeOf(insertion->text)};
    const AtspiRange around{added.begin - sizeOf(insertion->before),
                            added.end + sizeOf(insertion->behind)};
    if (lengthNow.value == insertion->lengthBefore + added.end - added.begin &&
        holds(around, insertion->before + insertion->text + insertion->behind))
        static_cast<void>(erase(added));
}

void AtspiText::placeCaret(std::int32_t position) {
    bool isSelected = false;
    for (int attempt = 0; attempt < 2; ++attempt) {
        const auto [moved, now, count, selection] =
            session_.ask(object_, atspi::setCaret(position), atspi::caret, atspi::selectionCount,
                         atspi::firstSelection);
        if (!moved)
            return;
        isSelected = count.value == 1 && selection.value.first != selection.value.second;
        if (now && now.value == position)
            break;
    }
    // Some applications keep what is left of the selection.
    if (isSelected)
        static_cast<void>(session_.call<bool>(object_, atspi::text, "RemoveSelection", {0}));
}

} // namespace kelvora
