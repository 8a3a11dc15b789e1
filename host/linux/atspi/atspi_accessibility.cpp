// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_accessibility.h"

#include "host/linux/atspi/atspi_element.h"
#include "host/linux/atspi/atspi_focus.h"
#include "host/linux/atspi/atspi_opt_in.h"

namespace kelvora {
namespace {

/// What has neither a text nor a role of its own.
class RootElement : public AccessibilityElement {
public:
    [[nodiscard]] AccessibilityError
    setAttributeValue(std::string_view /*name*/, const AccessibilityValue& /*value*/) override {
        return AccessibilityError::attributeUnsupported;
    }
    [[nodiscard]] TextRole role() override { return TextRole::unknown; }
    [[nodiscard]] std::optional<TextStretch> textAroundCaret(std::size_t /*reach*/) override {
        return std::nullopt;
    }
    [[nodiscard]] AccessibilityError replace(const TextStretch& /*stretch*/, std::size_t /*begin*/,
                                             std::size_t /*end*/,
                                             std::u16string_view /*replacement*/,
                                             std::size_t /*caret*/) override {
        return AccessibilityError::attributeUnsupported;
    }
};

class AbsentElement final : public RootElement {
public:
    [[nodiscard]] AccessibilityAttribute copyAttributeValue(std::string_view /*name*/) override {
        return {AccessibilityError::apiDisabled, {}};
    }
    [[nodiscard]] AccessibilityError
    setAttributeValue(std::string_view /*name*/, const AccessibilityValue& /*value*/) override {
        return AccessibilityError::apiDisabled;
    }
};

/// The whole desktop.
class SystemWideElement : public RootElement {
public:
    SystemWideElement(const AtspiFocus& focus, std::shared_ptr<AtspiSession> session)
        : focus_(focus), session_(std::move(session)) {}

    [[nodiscard]] AccessibilityAttribute copyAttributeValue(std::string_view name) override {
        if (name != accessibilityAttribute::focusedElement)
            return {AccessibilityError::attributeUnsupported, {}};
        const auto object = known();
        if (!object)
            return {AccessibilityError::noValue, {}};
        if (!session_->begin())
            return {AccessibilityError::apiDisabled, {}};
        // The notices may lag behind: the object itself knows.
        const auto states = session_->states(*object);
        if (isWithoutAnswer(states.error))
            return {AccessibilityError::cannotComplete, {}};
        if (!states || !isCredible(states.value))
            return {AccessibilityError::noValue, {}};
        return {AccessibilityError::success, std::make_shared<AtspiElement>(session_, *object)};
    }

protected:
    [[nodiscard]] virtual std::optional<AtspiReference> known() const {
        return focus_.focusedElement();
    }
    /// An application may keep a focus in a window that it has hidden, while another one, which
    /// tells nothing of itself, has the keyboard.
    [[nodiscard]] virtual bool isCredible(const AtspiStates& states) const {
        return states.has(AtspiState::focused) && states.has(AtspiState::visible);
    }

    const AtspiFocus& focus_;

private:
    std::shared_ptr<AtspiSession> session_;
};

class ApplicationElement final : public SystemWideElement {
public:
    ApplicationElement(const AtspiFocus& focus, std::shared_ptr<AtspiSession> session,
                       AtspiOptIn& optIn, std::int32_t process)
        : SystemWideElement(focus, std::move(session)), optIn_(optIn), process_(process) {}

    /// The two opt-in attributes only; does not block.
    [[nodiscard]] AccessibilityError setAttributeValue(std::string_view name,
                                                       const AccessibilityValue& value) override {
        if (name != accessibilityAttribute::manualAccessibility &&
            name != accessibilityAttribute::enhancedUserInterface)
            return AccessibilityError::attributeUnsupported;
        const bool* const isOn = std::get_if<bool>(&value);
        if (isOn == nullptr)
            return AccessibilityError::illegalArgument;
        // Nobody may take it away from the others by asking for less.
        if (*isOn)
            optIn_.request();
        return AccessibilityError::success;
    }

protected:
    [[nodiscard]] std::optional<AtspiReference> known() const override {
        return focus_.focusedElement(process_);
    }
    /// Its process is known to have the keyboard.
    [[nodiscard]] bool isCredible(const AtspiStates& states) const override {
        return states.has(AtspiState::focused);
    }

private:
    AtspiOptIn& optIn_;
    std::int32_t process_;
};

} // namespace

AtspiAccessibility::AtspiAccessibility(const AtspiFocus& focus, AtspiOptIn& optIn)
    : focus_(focus), optIn_(optIn), session_(std::make_shared<AtspiSession>()) {}

AtspiAccessibility::~AtspiAccessibility() = default;

std::shared_ptr<AccessibilityElement>
AtspiAccessibility::createApplication(std::int32_t processIdentifier) {
    return std::make_shared<ApplicationElement>(focus_, session_, optIn_, processIdentifier);
}

std::shared_ptr<AccessibilityElement> AtspiAccessibility::createSystemWide() {
    return std::make_shared<SystemWideElement>(focus_, session_);
}

std::shared_ptr<AccessibilityElement>
AbsentAccessibility::createApplication(std::int32_t /*processIdentifier*/) {
    return std::make_shared<AbsentElement>();
}

std::shared_ptr<AccessibilityElement> AbsentAccessibility::createSystemWide() {
    return std::make_shared<AbsentElement>();
}

} // namespace kelvora
