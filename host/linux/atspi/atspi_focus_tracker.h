// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_reference.h"
#include "host/linux/secure_entry.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace kelvora {

/// What an object is to somebody who types.
struct AtspiObjectKind {
    bool isText = false;
    bool isSecret = false;
};

/// Which object has the focus in each application, and which application is the active one. Values
/// only; asks nobody. One thread.
class AtspiFocusTracker {
public:
    void windowActivated(const AtspiReference& window);
    /// It is active, and was not told to be: perhaps its application never tells.
    void windowFound(const AtspiReference& window);
    void windowDeactivated(const AtspiReference& window);
    void focusGained(const AtspiReference& object, AtspiObjectKind kind);
    void focusLost(const AtspiReference& object);
    /// The application's last text has the focus after all.
    void returnToText(const std::string& busName);
    void applicationGone(const std::string& busName);
    void setProcess(const std::string& busName, std::int32_t processIdentifier);

    [[nodiscard]] bool knowsProcess(const std::string& busName) const;
    /// Bus name of the active application; empty when none is.
    [[nodiscard]] const std::string& active() const { return active_; }
    [[nodiscard]] bool isActive(const std::string& busName) const { return busName == active_; }
    [[nodiscard]] bool hasFocus(const AtspiReference& object) const;
    [[nodiscard]] bool hasAnyFocus(const std::string& busName) const;
    /// The text that has the focus in the application's active window, or is said to have lost it
    /// last, with nothing focused since.
    [[nodiscard]] std::optional<AtspiReference> lastText(const std::string& busName) const;

    [[nodiscard]] std::optional<AtspiReference> focusedElement(std::int32_t process) const;
    [[nodiscard]] std::optional<AtspiReference> focusedElement() const;
    /// The secret object that has the focus of the active application.
    [[nodiscard]] std::optional<AtspiReference> secretFocus() const;
    /// Of the active application. Each call compares with the text of the call before.
    [[nodiscard]] FocusReport report();

private:
    struct Focus {
        AtspiReference object;
        AtspiObjectKind kind;
    };
    struct Application {
        std::int32_t process = 0;    ///< 0 when unknown
        bool tellsOfWindows = false; ///< it has told of one at some time
        std::string activeWindow;    ///< path; empty when none is
        std::optional<Focus> focus;
        std::optional<Focus> leftText; ///< it was the focus before that was lost
        std::uint64_t focusedAt = 0;   ///< in the order of what happened
    };

    void activate(const std::string& busName);
    void deactivate();

    [[nodiscard]] const Application* activeApplication() const;

    std::map<std::string, Application> applications_; ///< by bus name
    std::string active_;
    std::uint64_t activeSince_ = 0;
    std::uint64_t lastEvent_ = 0;
    std::optional<AtspiReference> lastText_;
};

} // namespace kelvora
