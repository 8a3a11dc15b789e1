// SPDX-License-Identifier: MIT
#include "tests/host/atspi/field.h"

#include "core/text/encoding.h"
#include "tests/applications/title_text.h"

#include <cstdlib>

namespace kelvora {

using namespace accessibilityAttribute;

AccessibleDesktop::AccessibleDesktop() {
    setenv("DBUS_SESSION_BUS_ADDRESS", busAddress().c_str(), 1);
}

Field::Field(AccessibleDesktop& desktop, std::vector<std::string> command)
    : desktop_(desktop), program_(command, {.environment = desktop.environment()}) {
    const bool hasWindow = real::waitUntil([&] {
        const auto window = real::windowOfProcess(desktop_.display(), program_.pid());
        window_ = window.value_or(0);
        return window.has_value();
    });
    isReady_ = hasWindow && real::activateWindow(desktop_.display(), window_) &&
               real::waitUntil([&] { return focused() != nullptr; });
}

std::shared_ptr<AccessibilityElement> Field::focused() {
    const auto reply =
        accessibility_.createApplication(program_.pid())->copyAttributeValue(focusedElement);
    const auto* const element = std::get_if<std::shared_ptr<AccessibilityElement>>(&reply.value);
    return element != nullptr ? *element : nullptr;
}

bool Field::write(const std::u16string& text) {
    desktop_.keyboard().controlWith('a');
    desktop_.keyboard().type("x");
    desktop_.keyboard().controlWith('a');
    return holds(u"x") && replaceSelection(u"x", text) == AccessibilityError::success &&
           holds(text);
}

bool Field::holds(const std::u16string& text) {
    const std::string expected = applications::titleFor(toUtf8(text));
    const auto isShown = [&] { return real::windowTitle(desktop_.display(), window_) == expected; };
    return real::waitUntil(isShown, std::chrono::seconds(5)) &&
           real::staysTrue(isShown, std::chrono::milliseconds(100));
}

void Field::tap(const char* keys, std::size_t times) {
    for (std::size_t count = 0; count < times; ++count)
        desktop_.keyboard().chord(keys);
}

std::u16string Field::selected() {
    const auto element = focused();
    if (!element)
        return u"(no element)";
    const auto reply = element->copyAttributeValue(selectedText);
    const auto* const text = std::get_if<std::u16string>(&reply.value);
    return text != nullptr ? *text : u"(no value)";
}

AccessibilityError Field::replaceSelection(const std::u16string& selection,
                                           const std::u16string& replacement) {
    if (!real::waitUntil([&] { return selected() == selection; }))
        return AccessibilityError::noValue;
    return answerTo([&] {
        const auto element = focused();
        return element ? element->setAttributeValue(selectedText, replacement)
                       : AccessibilityError::cannotComplete;
    });
}

} // namespace kelvora
