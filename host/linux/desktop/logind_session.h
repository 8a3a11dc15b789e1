// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/desktop/main_loop_bus.h"
#include "host/session_events.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

struct sd_bus_message;

namespace kelvora {

/// The session as systemd-logind (or elogind) tells of it on the system bus. Main thread only.
class LogindSession : public SessionEvents {
public:
    /// `sessionId` is $XDG_SESSION_ID; without one, or with one that is not known, logind's own
    /// choice holds: the session of this process, else the user's graphical one.
    LogindSession(EventLoop& loop, const std::string& sessionId);

    [[nodiscard]] bool isLocked() const override { return isLocked_; }
    void setOnWake(std::function<void()> handler) override { onWake_ = std::move(handler); }
    void setOnBecameActive(std::function<void()> handler) override {
        onBecameActive_ = std::move(handler);
    }
    void setOnResignedActive(std::function<void()> handler) override {
        onResignedActive_ = std::move(handler);
    }

private:
    struct Callbacks; ///< what the bus calls

    void findOwnSession();
    void findSession(const char* id);
    void watchSession(const char* path);
    /// From a dictionary of properties, which may lack some.
    void readProperties(sd_bus_message* message);

    bool isForeground_ = true;
    bool isLocked_ = false;
    bool isActive_ = true; ///< what of the two was told last
    bool isFallback_ = false;
    std::function<void()> onWake_;
    std::function<void()> onBecameActive_;
    std::function<void()> onResignedActive_;
    std::unique_ptr<MainLoopBus> bus_; ///< null: no system bus
};

} // namespace kelvora
