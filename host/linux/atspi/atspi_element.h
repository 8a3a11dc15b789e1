// SPDX-License-Identifier: MIT
#pragma once

#include "host/accessibility.h"
#include "host/linux/atspi/atspi_session.h"
#include "host/linux/atspi/atspi_text.h"

#include <memory>
#include <optional>
#include <string>

namespace kelvora {

/// An accessible object of an application. A request takes at most half a second, one that writes
/// at most another half for finishing or taking back what it has begun.
class AtspiElement final : public AccessibilityElement {
public:
    AtspiElement(std::shared_ptr<AtspiSession> session, AtspiReference object)
        : session_(std::move(session)), object_(std::move(object)) {}

    /// The focused element of a focused object that is only the frame around a text; otherwise
    /// `noValue`.
    [[nodiscard]] AccessibilityAttribute copyAttributeValue(std::string_view name) override;
    [[nodiscard]] AccessibilityError setAttributeValue(std::string_view name,
                                                       const AccessibilityValue& value) override;
    [[nodiscard]] TextRole role() override;
    [[nodiscard]] std::optional<TextStretch> textAroundCaret(std::size_t reach) override;
    [[nodiscard]] AccessibilityError replace(const TextStretch& stretch, std::size_t begin,
                                             std::size_t end, std::u16string_view replacement,
                                             std::size_t caret) override;

private:
    [[nodiscard]] AccessibilityAttribute focusedChild();
    [[nodiscard]] AccessibilityAttribute selectedText();
    [[nodiscard]] AccessibilityAttribute wholeText();
    [[nodiscard]] AccessibilityError replaceSelection(std::u16string_view text);

    [[nodiscard]] BusReply<TextRole> readTextRole();
    [[nodiscard]] BusReply<TextRole> tellTextRole(std::uint32_t role, AtspiStates states);
    [[nodiscard]] bool hasOneLine();
    /// `none` where the text may be read: there is one, and it is not secret.
    [[nodiscard]] BusError mayRead();
    /// `none` where it may also be replaced in place without harm.
    [[nodiscard]] BusError mayWrite();
    [[nodiscard]] AtspiText text() { return {*session_, object_}; }

    std::shared_ptr<AtspiSession> session_;
    AtspiReference object_;
    std::optional<std::u16string> lastSelected_; ///< as last given out
};

} // namespace kelvora
