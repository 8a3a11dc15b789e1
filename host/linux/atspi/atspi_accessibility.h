// SPDX-License-Identifier: MIT
#pragma once

#include "host/accessibility.h"

#include <memory>

namespace kelvora {

class AtspiFocus;
class AtspiOptIn;
class AtspiSession;

/// The session's accessibility over D-Bus. Its connection is made on the first question, on the
/// thread that asks it.
class AtspiAccessibility final : public Accessibility {
public:
    /// Both outlive this and all elements.
    AtspiAccessibility(const AtspiFocus& focus, AtspiOptIn& optIn);
    ~AtspiAccessibility() override;

    [[nodiscard]] std::shared_ptr<AccessibilityElement>
    createApplication(std::int32_t processIdentifier) override;
    [[nodiscard]] std::shared_ptr<AccessibilityElement> createSystemWide() override;

private:
    const AtspiFocus& focus_;
    AtspiOptIn& optIn_;
    std::shared_ptr<AtspiSession> session_;
};

/// For a session without a bus: every question is answered with `apiDisabled`. Any thread.
class AbsentAccessibility final : public Accessibility {
public:
    [[nodiscard]] std::shared_ptr<AccessibilityElement>
    createApplication(std::int32_t processIdentifier) override;
    [[nodiscard]] std::shared_ptr<AccessibilityElement> createSystemWide() override;
};

} // namespace kelvora
