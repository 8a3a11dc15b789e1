// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/update_configuration.h"
#include "host/linux/updates/update_memory.h"
#include "host/linux/updates/update_offer.h"
#include "host/linux/updates/update_schedule.h"
#include "host/linux/updates/update_screen.h"
#include "host/log.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

/// What the flow has done for it. None of these calls the flow back before it has returned.
class UpdateEffects {
public:
    virtual ~UpdateEffects() = default;

    [[nodiscard]] virtual std::chrono::sys_seconds now() = 0;
    /// Has `timeHasCome` called once, in place of what was asked for before.
    virtual void wakeAfter(std::chrono::seconds pause) = 0;
    /// Answered by `feedArrived` or `transferFailed`.
    virtual void fetchFeed(const std::string& url) = 0;
    /// Answered by `packageReceived` again and again, then `packageArrived` or `transferFailed`.
    virtual void fetchPackage(const UpdateOffer& offer) = 0;
    /// Verifies the package that arrived and hands it over; answered by `installationEnded`.
    virtual void installPackage() = 0;
    /// Ends a transfer, which then answers no more, and removes what it has stored.
    virtual void abandonTransfer() = 0;
    /// Removes packages that earlier updates have left.
    virtual void removeLeftovers() = 0;
    virtual void show(const UpdateScreen& screen, UpdatePresentation presentation) = 0;
    virtual void closeWindow() = 0;
    /// Told before an update is shown; answers nothing.
    virtual void willShow(UpdateShowing showing, const UpdateItem& update,
                          UserUpdateState state) = 0;
    virtual void remember(const UpdateMemory& memory) = 0;
    virtual void log(LogLevel level, std::string_view message) = 0;
};

/// The course of an update from the check to the system's installer: decides, and leaves all doing
/// to the effects.
class UpdateFlow {
public:
    struct Setup {
        UpdateConfiguration configuration;
        UpdateVersion installed;
        std::string architecture;
        bool gentleReminders = true;
        double spread = 0; ///< see UpdateSchedule
    };

    /// Without a setup, updates come with the system.
    UpdateFlow(std::optional<Setup> setup, std::optional<UpdateMemory> memory,
               UpdateEffects& effects);

    void start();
    void checkForUpdates();
    void act(UpdateAction action);

    void timeHasCome();
    void feedArrived(std::string_view bytes);
    void packageReceived(std::int64_t bytes);
    void packageArrived();
    void transferFailed(UpdateNotice notice);
    /// `place`: where the package lies, when it was left for the user.
    void installationEnded(UpdateNotice notice, const std::string& place);

private:
    enum class Stage { idle, checking, offering, downloading, installing, telling };

    void beginCheck(UserUpdateState initiator);
    void checkFailed(UpdateNotice notice);
    void takeOffer(const UpdateOffer& offer);
    void install();
    void tell(UpdateNotice notice, const std::string& version, const std::string& place = {});
    void show(const UpdateScreen& screen, UpdatePresentation presentation);
    void dismiss();
    void abandonCheck();
    void backToIdle();
    [[nodiscard]] bool wasRemindedLately(const UpdateVersion& version);

    std::optional<Setup> setup_;
    UpdateMemory memory_;
    UpdateEffects& effects_;
    UpdateSchedule schedule_;
    Stage stage_ = Stage::idle;
    UserUpdateState initiator_ = UserUpdateState::scheduled;
    std::optional<UpdateOffer> offer_;
    UpdateScreen screen_;
    std::int64_t shownPercent_ = 0;
};

} // namespace kelvora
