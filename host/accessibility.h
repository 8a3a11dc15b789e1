// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace kelvora {

/// What became of a request to another application's accessibility.
enum class AccessibilityError : std::int32_t {
    success = 0,
    failure = -25200,
    illegalArgument = -25201, ///< the value is of another type than the attribute
    invalidElement = -25202,  ///< what it stood for is gone
    /// The application did not answer in time, or it took a change otherwise than asked. The text
    /// may be changed, now or later: nothing more may be sent after it.
    cannotComplete = -25204,
    attributeUnsupported = -25205, ///< the element has no such attribute, or it is read-only
    apiDisabled = -25211,          ///< the desktop has no accessibility, or it is off
    noValue = -25212,              ///< the attribute has no value now
};

namespace accessibilityAttribute {
inline constexpr std::string_view focusedElement = "AXFocusedUIElement"; ///< an element
inline constexpr std::string_view selectedText = "AXSelectedText";       ///< text; can be set
/// Text. Of one that is very long, the part around the caret.
inline constexpr std::string_view value = "AXValue";
// Both Boolean and set only: the application is asked to show its whole tree.
inline constexpr std::string_view manualAccessibility = "AXManualAccessibility";
inline constexpr std::string_view enhancedUserInterface = "AXEnhancedUserInterface";
} // namespace accessibilityAttribute

class AccessibilityElement;

/// An element is never null.
using AccessibilityValue =
    std::variant<std::monostate, bool, std::u16string, std::shared_ptr<AccessibilityElement>>;

/// The value is std::monostate unless the error is `success`.
struct AccessibilityAttribute {
    AccessibilityError error = AccessibilityError::success;
    AccessibilityValue value;
};

/// What an element is to somebody who types.
enum class TextRole {
    unknown,     ///< not told
    singleLine,  ///< a field of one line
    multiLine,   ///< a document, or a part of one
    password,    ///< secret: nothing of it may be read
    terminal,    ///< Control combinations are commands there
    notEditable, ///< a list, a table cell, a button, a text to read, ...
};

/// A part of an element's text, around the caret.
struct TextStretch {
    std::u16string text;
    std::size_t caret = 0;      ///< UTF-16 units from the start of `text`
    bool beginsAtStart = false; ///< nothing of the element's text is before it
    bool endsAtEnd = false;     ///< nothing is behind it
    std::int64_t location = 0;  ///< where it begins, in the host's own count
};

/// A reference to a user-interface element of another application. Every call asks that application
/// and blocks until it answers: for at most half a second, or a whole one when it writes text, not
/// counting the time to reach the session's accessibility where that is not connected yet. One
/// thread at a time, not the main one except for writing the two opt-in attributes.
class AccessibilityElement {
public:
    virtual ~AccessibilityElement() = default;

    /// Names of accessibilityAttribute; any other is `attributeUnsupported`.
    [[nodiscard]] virtual AccessibilityAttribute copyAttributeValue(std::string_view name) = 0;

    /// Setting the selected text replaces the selection by the new text, with the caret behind it,
    /// and touches nothing outside of it. The selection must be the text that this element gave out
    /// last, if it gave one. Every error but `cannotComplete` leaves the text as it was.
    [[nodiscard]] virtual AccessibilityError setAttributeValue(std::string_view name,
                                                               const AccessibilityValue& value) = 0;

    [[nodiscard]] virtual TextRole role() = 0;

    /// About `reach` UTF-16 units on each side of the caret, whole characters. Absent when there is
    /// no caret, something is selected, or the text cannot be read and written in place.
    [[nodiscard]] virtual std::optional<TextStretch> textAroundCaret(std::size_t reach) = 0;

    /// Replaces the UTF-16 units `begin` to `end` of the stretch's text, which must still be there,
    /// and puts the caret `caret` units behind the start of the replacement. `success` only if read
    /// back so; with any error but `cannotComplete` the text is as it was.
    [[nodiscard]] virtual AccessibilityError replace(const TextStretch& stretch, std::size_t begin,
                                                     std::size_t end,
                                                     std::u16string_view replacement,
                                                     std::size_t caret) = 0;
};

/// The session's accessibility. The calls do not block and never give null: what cannot be reached
/// says so when it is asked. Any thread.
class Accessibility {
public:
    virtual ~Accessibility() = default;

    [[nodiscard]] virtual std::shared_ptr<AccessibilityElement>
    createApplication(std::int32_t processIdentifier) = 0;
    /// Its focused element is that of whatever has the keyboard focus.
    [[nodiscard]] virtual std::shared_ptr<AccessibilityElement> createSystemWide() = 0;
};

} // namespace kelvora
