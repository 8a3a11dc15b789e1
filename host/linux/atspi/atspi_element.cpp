// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_element.h"

#include "host/linux/atspi/atspi_questions.h"
#include "host/linux/atspi/text_roles.h"

#include <algorithm>

namespace kelvora {
namespace {

constexpr std::size_t mostChildren = 32;
constexpr std::int32_t longestValue = 1'000'000;
/// How much of an unmarked text is looked at for a line break.
constexpr std::int32_t lineBreakReach = 10'000;

AccessibilityAttribute failed(AccessibilityError error) {
    return {error, {}};
}

AccessibilityAttribute failed(BusError error) {
    return failed(toAccessibilityError(error));
}

AccessibilityAttribute textValue(std::u16string text) {
    return {AccessibilityError::success, std::move(text)};
}

bool contains(const std::vector<std::string>& interfaces, const char* name) {
    return std::find(interfaces.begin(), interfaces.end(), name) != interfaces.end();
}

bool isSecret(std::uint32_t role) {
    return textRoleOf(role, {}, TextRole::unknown) == TextRole::password;
}

} // namespace

AccessibilityAttribute AtspiElement::copyAttributeValue(std::string_view name) {
    if (!session_->begin())
        return failed(AccessibilityError::apiDisabled);
    if (name == accessibilityAttribute::focusedElement)
        return focusedChild();
    if (name == accessibilityAttribute::selectedText)
        return selectedText();
    if (name == accessibilityAttribute::value)
        return wholeText();
    return failed(AccessibilityError::attributeUnsupported);
}

AccessibilityError AtspiElement::setAttributeValue(std::string_view name,
                                                   const AccessibilityValue& value) {
    if (name != accessibilityAttribute::selectedText)
        return AccessibilityError::attributeUnsupported;
    const auto* const newText = std::get_if<std::u16string>(&value);
    if (newText == nullptr || !canBeSent(*newText))
        return AccessibilityError::illegalArgument;
    if (!session_->begin())
        return AccessibilityError::apiDisabled;
    return replaceSelection(*newText);
}

AccessibilityAttribute AtspiElement::focusedChild() {
    const auto [stateWords, interfaces] = session_->ask(object_, atspi::states, atspi::interfaces);
    if (!stateWords || !interfaces)
        return failed(stateWords ? interfaces.error : stateWords.error);
    const AtspiStates states(stateWords.value);
    if (!states.has(AtspiState::focused) || contains(interfaces.value, atspi::text) ||
        states.has(AtspiState::managesDescendants))
        return failed(AccessibilityError::noValue);
    const auto count = session_->property<std::int32_t>(object_, atspi::accessible, "ChildCount");
    if (!count || count.value > static_cast<std::int32_t>(mostChildren))
        return failed(count ? AccessibilityError::noValue : toAccessibilityError(count.error));
    const auto children =
        session_->call<std::vector<AtspiReference>>(object_, atspi::accessible, "GetChildren");
    for (const AtspiReference& child : children.value) {
        const auto childStates = session_->states(child);
        if (isWithoutAnswer(childStates.error))
            return failed(childStates.error);
        if (!childStates || !childStates.value.has(AtspiState::focused))
            continue;
        if (session_->property<std::int32_t>(child, atspi::text, "CharacterCount"))
            return {AccessibilityError::success, std::make_shared<AtspiElement>(session_, child)};
    }
    return failed(AccessibilityError::noValue);
}

AccessibilityAttribute AtspiElement::selectedText() {
    if (session_->unanswered(object_)) {
        if (const BusError error = mayRead(); error != BusError::none)
            return failed(error);
        text().takeOutUnanswered();
    }
    const auto place = text().place();
    if (!place)
        return failed(place.error);
    if (isSecret(place.value.role))
        return failed(BusError::unsupported);
    auto selected = text().read(place.value.selection);
    if (!selected)
        return failed(selected.error);
    // What is inside such an object is selected too, and not in this text.
    if (selected.value.find(objectReplacement) != std::u16string::npos)
        return failed(AccessibilityError::attributeUnsupported);
    lastSelected_ = selected.value;
    return textValue(std::move(selected.value));
}

AccessibilityAttribute AtspiElement::wholeText() {
    const auto [role, length, caret] =
        session_->ask(object_, atspi::role, atspi::length, atspi::caret);
    if (!role || !length)
        return failed(role ? length.error : role.error);
    if (isSecret(role.value))
        return failed(BusError::unsupported);
    AtspiRange range{0, length.value};
    if (length.value > longestValue) {
        if (!caret)
            return failed(caret.error);
        range.begin = std::clamp(caret.value - longestValue / 2, 0, length.value - longestValue);
        range.end = range.begin + longestValue;
    }
    auto whole = text().read(range);
    if (!whole)
        return failed(whole.error);
    return textValue(std::move(whole.value));
}

AccessibilityError AtspiElement::replaceSelection(std::u16string_view newText) {
    if (const BusError error = mayWrite(); error != BusError::none)
        return toAccessibilityError(error);
    const auto place = text().place();
    if (!place)
        return toAccessibilityError(place.error);
    const AtspiRange range = place.value.selection;
    if (range.begin == range.end)
        return AccessibilityError::noValue;
    // It must still be what the new text was made from.
    if (lastSelected_)
        return text().replace(range, *lastSelected_, newText, {}, newText.size());
    const auto old = text().read(range);
    if (!old)
        return toAccessibilityError(old.error);
    if (old.value.find(objectReplacement) != std::u16string::npos)
        return AccessibilityError::attributeUnsupported;
    return text().replace(range, old.value, newText, {}, newText.size());
}

TextRole AtspiElement::role() {
    // What does not tell may be a document, whatever it is.
    if (!session_->begin())
        return TextRole::multiLine;
    const BusReply<TextRole> role = readTextRole();
    return role ? role.value : TextRole::multiLine;
}

BusReply<TextRole> AtspiElement::readTextRole() {
    const auto [role, states] = session_->ask(object_, atspi::role, atspi::states);
    if (!role || !states)
        return {role ? states.error : role.error, TextRole::unknown};
    return tellTextRole(role.value, AtspiStates(states.value));
}

BusReply<TextRole> AtspiElement::tellTextRole(std::uint32_t role, AtspiStates states) {
    const TextRole found = textRoleOf(role, states, TextRole::singleLine);
    if (found != TextRole::singleLine || states.has(AtspiState::singleLine))
        return {BusError::none, found};
    // Qt and GTK 4 leave their fields of one line unmarked. So do others their documents.
    const auto toolkit = session_->toolkit(object_);
    const TextRole unmarked =
        toolkit.value == Toolkit::other ? TextRole::multiLine : TextRole::singleLine;
    const TextRole told = textRoleOf(role, states, unmarked);
    if (told != TextRole::singleLine)
        return {BusError::none, told};
    return {BusError::none, hasOneLine() ? TextRole::singleLine : TextRole::multiLine};
}

/// False where it cannot be told: the whole text of a field may be replaced, that of a document
/// never.
bool AtspiElement::hasOneLine() {
    const auto length = text().length();
    if (!length)
        return false;
    const std::int32_t reach = std::min(length.value, lineBreakReach);
    auto begin = text().read({0, reach});
    // Half a character cannot be given: one that counts in UTF-16 units refuses.
    if (begin.error == BusError::refused && reach < length.value)
        begin = text().read({0, reach + 1});
    return begin && begin.value.find_first_of(u"\n\x2029") == std::u16string::npos;
}

BusError AtspiElement::mayRead() {
    const auto role = session_->call<std::uint32_t>(object_, atspi::accessible, "GetRole");
    return role && isSecret(role.value) ? BusError::unsupported : role.error;
}

BusError AtspiElement::mayWrite() {
    const auto [roleNumber, stateWords, interfaces] =
        session_->ask(object_, atspi::role, atspi::states, atspi::interfaces);
    for (const BusError error : {roleNumber.error, stateWords.error, interfaces.error}) {
        if (error != BusError::none)
            return error;
    }
    const AtspiStates states(stateWords.value);
    const auto role = tellTextRole(roleNumber.value, states);
    if (!role)
        return role.error;
    if (role.value != TextRole::singleLine && role.value != TextRole::multiLine)
        return BusError::unsupported;
    // GTK 4 knows only the second of the two.
    const bool isEnabled = states.has(AtspiState::enabled) || states.has(AtspiState::sensitive);
    if (!isEnabled || states.has(AtspiState::defunct))
        return BusError::unsupported;
    // Qt's line edits (5.15, 6.4) take such a change for a new text, and forget what could be
    // undone: pasted text is taken as an edit.
    const auto toolkit = session_->toolkit(object_);
    if (!toolkit)
        return toolkit.error;
    if (toolkit.value == Toolkit::qt && !states.has(AtspiState::multiLine))
        return BusError::unsupported;
    return contains(interfaces.value, atspi::editableText) ? BusError::none : BusError::unsupported;
}

} // namespace kelvora
