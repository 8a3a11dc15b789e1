// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_flow.h"

#include <utility>

namespace kelvora {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds pauseWhileBusy = 1h;
constexpr std::chrono::seconds reminderPause = std::chrono::days(7);

UpdateItem itemOf(const UpdateOffer& offer) {
    return {.version = offer.version.text(), .notes = offer.notes};
}

} // namespace

UpdateFlow::UpdateFlow(std::optional<Setup> setup, std::optional<UpdateMemory> memory,
                       UpdateEffects& effects)
    : setup_(std::move(setup)), memory_(std::move(memory).value_or(UpdateMemory{})),
      effects_(effects),
      schedule_(setup_ ? setup_->configuration.interval : 0s, setup_ ? setup_->spread : 0) {
    if (setup_) {
        const std::string key = encodeBase64(setup_->configuration.publicKey);
        if (memory_.key != key) {
            memory_ = UpdateMemory{.key = key};
        }
    }
}

void UpdateFlow::start() {
    if (setup_) {
        schedule_.start(effects_.now(), memory_.lastCheck);
        effects_.wakeAfter(schedule_.wait(effects_.now()));
    }
}

void UpdateFlow::checkForUpdates() {
    switch (stage_) {
    case Stage::idle:
    case Stage::offering: // days may have passed since
    case Stage::telling:
        beginCheck(UserUpdateState::userInitiated);
        return;
    case Stage::checking:
        initiator_ = UserUpdateState::userInitiated;
        show(CheckingScreen{}, UpdatePresentation::inFront);
        return;
    case Stage::downloading:
    case Stage::installing:
        effects_.willShow(UpdateShowing::byController, itemOf(*offer_),
                          UserUpdateState::userInitiated);
        show(screen_, UpdatePresentation::inFront);
        return;
    }
}

void UpdateFlow::timeHasCome() {
    const auto now = effects_.now();
    if (!schedule_.isDue(now)) {
        effects_.wakeAfter(schedule_.wait(now));
    } else if (stage_ != Stage::idle) {
        effects_.wakeAfter(pauseWhileBusy);
    } else {
        beginCheck(UserUpdateState::scheduled);
    }
}

void UpdateFlow::beginCheck(UserUpdateState initiator) {
    initiator_ = initiator;
    offer_.reset();
    stage_ = Stage::checking;
    if (!setup_) {
        tell(UpdateNotice::systemManaged, {});
        return;
    }
    if (initiator == UserUpdateState::userInitiated) {
        show(CheckingScreen{}, UpdatePresentation::inFront);
    }
    effects_.fetchFeed(setup_->configuration.feedUrl);
}

void UpdateFlow::feedArrived(std::string_view bytes) {
    const auto opened = openUpdateFeed(bytes, setup_->configuration.publicKey);
    if (const auto* refusal = std::get_if<UpdateNotice>(&opened)) {
        checkFailed(*refusal);
        return;
    }
    const auto& feed = std::get<UpdateFeed>(opened);
    const auto now = effects_.now();
    if (const auto refusal = staleness(feed, memory_.highestSerial, now)) {
        checkFailed(*refusal);
        return;
    }
    memory_.highestSerial = feed.serial;
    memory_.lastCheck = now;
    effects_.remember(memory_);
    schedule_.succeed(now);
    effects_.wakeAfter(schedule_.wait(now));

    const auto found = offerOf(feed, setup_->installed, setup_->architecture);
    if (const auto* offer = std::get_if<UpdateOffer>(&found)) {
        takeOffer(*offer);
        return;
    }
    const UpdateNotice notice = std::get<UpdateNotice>(found);
    effects_.log(LogLevel::info, nameOf(notice));
    effects_.removeLeftovers();
    if (initiator_ == UserUpdateState::userInitiated) {
        tell(notice, (notice == UpdateNotice::upToDate ? setup_->installed : feed.version).text());
    } else {
        backToIdle();
    }
}

void UpdateFlow::takeOffer(const UpdateOffer& offer) {
    effects_.log(LogLevel::info, "version " + offer.version.text() + " is available");
    const bool isGentle = initiator_ == UserUpdateState::scheduled && setup_->gentleReminders;
    if (initiator_ == UserUpdateState::scheduled && wasRemindedLately(offer.version)) {
        backToIdle();
        return;
    }
    memory_.remindedVersion = offer.version.text();
    memory_.remindedAt = effects_.now();
    effects_.remember(memory_);
    offer_ = offer;
    stage_ = Stage::offering;
    effects_.willShow(isGentle ? UpdateShowing::asReminder : UpdateShowing::byController,
                      itemOf(offer), initiator_);
    show(OfferScreen{.update = itemOf(offer),
                     .installedVersion = setup_->installed.text(),
                     .size = offer.package.size},
         isGentle ? UpdatePresentation::asReminder : UpdatePresentation::inFront);
}

bool UpdateFlow::wasRemindedLately(const UpdateVersion& version) {
    const auto now = effects_.now();
    return memory_.remindedVersion == version.text() && memory_.remindedAt &&
           *memory_.remindedAt <= now && now < *memory_.remindedAt + reminderPause;
}

void UpdateFlow::checkFailed(UpdateNotice notice) {
    effects_.log(LogLevel::error, std::string("check failed: ").append(nameOf(notice)));
    const auto now = effects_.now();
    schedule_.fail(now);
    effects_.wakeAfter(schedule_.wait(now));
    if (initiator_ == UserUpdateState::userInitiated) {
        tell(notice, setup_->installed.text());
    } else {
        backToIdle();
    }
}

void UpdateFlow::act(UpdateAction action) {
    switch (action) {
    case UpdateAction::install:
        if (stage_ == Stage::offering) {
            install();
        }
        return;
    case UpdateAction::retry:
        if (stage_ == Stage::telling) {
            beginCheck(UserUpdateState::userInitiated);
        }
        return;
    case UpdateAction::dismiss:
        dismiss();
        return;
    }
}

void UpdateFlow::install() {
    if (offer_->expires <= effects_.now()) { // it has stood there for long
        beginCheck(UserUpdateState::userInitiated);
        return;
    }
    stage_ = Stage::downloading;
    shownPercent_ = 0;
    show(DownloadingScreen{.version = offer_->version.text(), .size = offer_->package.size},
         UpdatePresentation::inPlace);
    effects_.fetchPackage(*offer_);
}

void UpdateFlow::dismiss() {
    switch (stage_) {
    case Stage::checking:
        abandonCheck();
        return;
    case Stage::downloading:
        effects_.abandonTransfer();
        backToIdle();
        return;
    case Stage::idle:
    case Stage::offering:
    case Stage::telling:
        backToIdle();
        return;
    case Stage::installing: // goes on; its end is told
        effects_.closeWindow();
        return;
    }
}

void UpdateFlow::abandonCheck() {
    effects_.abandonTransfer();
    const auto now = effects_.now();
    if (schedule_.isDue(now)) { // it was the scheduled one: nothing else would begin the next
        schedule_.fail(now);
        effects_.wakeAfter(schedule_.wait(now));
    }
    backToIdle();
}

void UpdateFlow::packageReceived(std::int64_t bytes) {
    const std::int64_t percent = bytes * 100 / offer_->package.size;
    if (percent != shownPercent_) {
        shownPercent_ = percent;
        show(DownloadingScreen{.version = offer_->version.text(),
                               .received = bytes,
                               .size = offer_->package.size},
             UpdatePresentation::inPlace);
    }
}

void UpdateFlow::packageArrived() {
    stage_ = Stage::installing;
    show(InstallingScreen{.version = offer_->version.text()}, UpdatePresentation::inPlace);
    effects_.installPackage();
}

void UpdateFlow::transferFailed(UpdateNotice notice) {
    if (stage_ == Stage::checking) {
        checkFailed(notice);
        return;
    }
    effects_.log(LogLevel::error, std::string("download failed: ").append(nameOf(notice)));
    tell(notice, offer_->version.text());
}

void UpdateFlow::installationEnded(UpdateNotice notice, const std::string& place) {
    const bool isGood = notice == UpdateNotice::installed || notice == UpdateNotice::handedOver;
    effects_.log(isGood ? LogLevel::info : LogLevel::error,
                 "version " + offer_->version.text() + ": " + std::string(nameOf(notice)));
    tell(notice, offer_->version.text(), place);
}

void UpdateFlow::tell(UpdateNotice notice, const std::string& version, const std::string& place) {
    const bool isAnswer = stage_ == Stage::checking;
    stage_ = Stage::telling;
    show(NoticeScreen{.notice = notice, .version = version, .place = place},
         isAnswer ? UpdatePresentation::inFront : UpdatePresentation::inPlace);
}

void UpdateFlow::show(const UpdateScreen& screen, UpdatePresentation presentation) {
    screen_ = screen;
    effects_.show(screen_, presentation);
}

void UpdateFlow::backToIdle() {
    stage_ = Stage::idle;
    offer_.reset();
    effects_.closeWindow();
}

} // namespace kelvora
