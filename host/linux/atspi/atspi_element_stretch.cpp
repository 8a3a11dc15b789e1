// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_element.h"

#include <algorithm>

namespace kelvora {
namespace {

/// Asked for beyond the reach, so that what is left after cutting to whole characters is enough.
constexpr std::size_t cuttingReach = 16;
constexpr std::size_t furthestReach = 1'000'000;

} // namespace

std::optional<TextStretch> AtspiElement::textAroundCaret(std::size_t reach) {
    if (!session_->begin() || mayWrite() != BusError::none)
        return std::nullopt;
    text().takeOutUnanswered();
    const auto place = text().place();
    const auto [role, length, caret, selection] = place.value;
    if (!place || selection.begin != selection.end || caret < 0 || caret > length)
        return std::nullopt;
    const auto span = static_cast<std::int32_t>(std::min(reach, furthestReach) + cuttingReach);
    const std::int32_t begin = std::max(caret - span, 0);
    const std::int32_t end = caret + std::min(length - caret, span);
    // Read in two, so that where the caret is does not depend on how the application counts.
    const auto before = text().read({begin, caret});
    const auto behind = text().read({caret, end});
    if (!before || !behind)
        return std::nullopt;

    TextStretch stretch;
    stretch.beginsAtStart = begin == 0;
    stretch.endsAtEnd = end == length;
    const std::size_t cutBefore = stretch.beginsAtStart ? 0 : firstCertainBoundary(before.value);
    const std::size_t cutBehind =
        stretch.endsAtEnd ? behind.value.size() : lastCertainBoundary(behind.value);
    stretch.text = before.value.substr(cutBefore) + behind.value.substr(0, cutBehind);
    stretch.caret = before.value.size() - cutBefore;
    stretch.location =
        begin + lengthIn(text().unit(), std::u16string_view(before.value).substr(0, cutBefore));
    return stretch;
}

AccessibilityError AtspiElement::replace(const TextStretch& stretch, std::size_t begin,
                                         std::size_t end, std::u16string_view replacement,
                                         std::size_t caret) {
    const std::u16string_view whole = stretch.text;
    if (begin > end || end > whole.size() || stretch.caret > whole.size() ||
        caret > replacement.size() + (whole.size() - end) || !canBeSent(replacement))
        return AccessibilityError::illegalArgument;
    const std::u16string_view old = whole.substr(begin, end - begin);
    if (old.find(objectReplacement) != std::u16string_view::npos)
        return AccessibilityError::attributeUnsupported;
    if (!session_->begin())
        return AccessibilityError::apiDisabled;
    if (const BusError error = mayWrite(); error != BusError::none)
        return toAccessibilityError(error);

    const auto offsetOf = [&](std::size_t index) {
        return static_cast<std::int32_t>(stretch.location +
                                         lengthIn(text().unit(), whole.substr(0, index)));
    };
    const auto found = text().read({offsetOf(0), offsetOf(whole.size())});
    const auto place = text().place();
    if (!found || !place)
        return toAccessibilityError(found ? place.error : found.error);
    // Typed on, moved or selected meanwhile: it is another text now.
    if (found.value != whole || place.value.selection.begin != place.value.selection.end ||
        place.value.caret != offsetOf(stretch.caret))
        return AccessibilityError::failure;
    return text().replace({offsetOf(begin), offsetOf(end)}, old, replacement, whole.substr(end),
                          caret);
}

} // namespace kelvora
