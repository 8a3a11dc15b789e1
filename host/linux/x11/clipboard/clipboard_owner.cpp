// SPDX-License-Identifier: MIT
#include "host/linux/x11/clipboard/clipboard_owner.h"

#include <algorithm>
#include <utility>

namespace kelvora {
namespace {

/// A manager that finds an emptied clipboard may fill it again, so it is not shown the moment
/// between clearing and writing. Requestors wait for seconds.
constexpr std::chrono::milliseconds writeGrace{50};
constexpr std::size_t maximumWaiting = 64;
/// Some programs are clipboard managers by name only and never answer.
constexpr std::chrono::milliseconds handOverStandstill{500};
constexpr std::size_t maximumFetchers = 64;

} // namespace

std::unique_ptr<ClipboardOwner> ClipboardOwner::create(const char* display) {
    std::unique_ptr<ClipboardClient> client = ClipboardClient::create(display);
    if (!client)
        return nullptr;
    client->watchOwner();
    return std::unique_ptr<ClipboardOwner>(new ClipboardOwner(std::move(client)));
}

ClipboardOwner::ClipboardOwner(std::unique_ptr<ClipboardClient> client)
    : client_(std::move(client)) {
    client_->synchronize(handler()); // what is claimed from here on is counted
}

int ClipboardOwner::descriptor() const {
    return client_->isConnected() ? xcb_get_file_descriptor(client_->connection()) : -1;
}

std::optional<ClipboardClient::Clock::time_point> ClipboardOwner::nextDeadline() const {
    const auto transfers = transfers_.nextDeadline();
    if (waitEnd_ && (!transfers || *waitEnd_ < *transfers))
        return waitEnd_;
    return transfers;
}

void ClipboardOwner::process() {
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(client_->connection())})
        handle(*event);
    const auto now = ClipboardClient::Clock::now();
    transfers_.giveUpOverdue(now);
    if (waitEnd_ && *waitEnd_ <= now)
        answerWaiting();
    xcb_flush(client_->connection());
}

ClipboardOwner::State ClipboardOwner::state() {
    client_->synchronize(handler());
    if (!client_->isConnected())
        claim_ = {};
    State state{.changeCount = changeCount_, .contents = claim_.contents, .possibleEcho = {}};
    if (undecided_)
        state.possibleEcho = {undecided_->serial, echoText_};
    return state;
}

std::int64_t ClipboardOwner::claimEmpty() {
    waitEnd_ = ClipboardClient::Clock::now() + writeGrace;
    ClipboardContents nothing;
    nothing.isSecret = true;
    take(std::make_shared<const ClipboardContents>(std::move(nothing)));
    return countOfClaim_;
}

bool ClipboardOwner::write(ClipboardContents contents, std::u16string text) {
    client_->synchronize(handler());
    if (claim_.contents) {
        claim_.contents = std::make_shared<const ClipboardContents>(std::move(contents));
        echoText_ = std::move(text);
    }
    answerWaiting();
    return claim_.contents != nullptr;
}

void ClipboardOwner::claim(ClipboardContents contents) {
    watchers_.lookOut();
    take(std::make_shared<const ClipboardContents>(std::move(contents)));
    answerWaiting();
}

void ClipboardOwner::take(std::shared_ptr<const ClipboardContents> contents) {
    const std::optional<xcb_timestamp_t> time = client_->serverTime(handler());
    const std::int64_t countBefore = countOfClaim_;
    echoText_.clear();
    fetchers_.clear();
    if (time) {
        xcb_set_selection_owner(client_->connection(), client_->window(),
                                client_->atoms().clipboard, *time);
        awaitsOwnNotice_ = true;
        claim_ = {std::move(contents), *time};
        // The notice of our own claim is there once the server has answered what came after it.
        client_->synchronize(handler());
    }
    // Another program has claimed with a later time, or the server is gone.
    if (std::exchange(awaitsOwnNotice_, false) || !time)
        claim_ = {};
    if (countOfClaim_ == countBefore)
        countOfClaim_ = ++changeCount_;
}

void ClipboardOwner::handle(const xcb_generic_event_t& event) {
    if (const auto notice = client_->ownerNotice(event)) {
        onOwnerNotice(*notice);
        return;
    }
    switch (event.response_type & 0x7F) {
    case XCB_SELECTION_REQUEST:
        onRequest(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        break;
    case XCB_PROPERTY_NOTIFY: {
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (property.state == XCB_PROPERTY_DELETE)
            transfers_.onPropertyDeleted(property.window, property.atom);
        break;
    }
    case XCB_DESTROY_NOTIFY:
        transfers_.onWindowDestroyed(
            reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
        break;
    case XCB_SELECTION_NOTIFY:
        if (reinterpret_cast<const xcb_selection_notify_event_t&>(event).selection ==
            client_->atoms().clipboardManager)
            isHandedOver_ = true;
        break;
    default: // SelectionClear tells less than the notices, and not in their order
        break;
    }
}

void ClipboardOwner::onOwnerNotice(const ClipboardClient::OwnerNotice& notice) {
    if (notice.isClaim && notice.owner == client_->window()) {
        settleUndecided();
        awaitsOwnNotice_ = false;
        countOfClaim_ = ++changeCount_;
        return;
    }
    if (!awaitsOwnNotice_) {
        claim_ = {};
        answerWaiting();
    }
    if (notice.isClaim)
        onForeignClaim(notice.owner);
}

void ClipboardOwner::onForeignClaim(xcb_window_t owner) {
    settleUndecided();
    const std::uint32_t client = client_->clientOf(owner);
    if (owner != XCB_WINDOW_NONE && !echoText_.empty() && !fetchers_.empty()) {
        undecided_ = {++lastSerial_, std::ranges::find(fetchers_, client) != fetchers_.end()};
        return;
    }
    ++changeCount_;
    echoText_.clear();
}

/// Nobody can be asked any more: a program that first fetched our text and then claimed the
/// selection is taken for a manager.
void ClipboardOwner::settleUndecided() {
    if (undecided_ && !undecided_->isByFetcher)
        ++changeCount_;
    undecided_.reset();
}

void ClipboardOwner::decideEcho(std::uint64_t serial, bool isEcho) {
    client_->synchronize(handler());
    if (!undecided_ || undecided_->serial != serial)
        return;
    undecided_.reset();
    if (isEcho)
        return;
    ++changeCount_;
    echoText_.clear();
}

void ClipboardOwner::onRequest(const xcb_selection_request_event_t& request) {
    if (waitEnd_ && waiting_.size() < maximumWaiting)
        waiting_.push_back(request);
    else
        answer(request);
}

void ClipboardOwner::answer(const xcb_selection_request_event_t& request) {
    ClipboardClaim claim = claim_;
    const bool isToPaste = claim.contents && claim.contents->forWatchers;
    if (isToPaste && watchers_.hides(request.requestor))
        claim.contents = claim.contents->forWatchers;
    const auto given = responder_.answer(request, claim);
    if (given == SelectionResponder::Result::text)
        watchers_.onTextGiven(request.requestor, isToPaste ? ClipboardWatchers::Purpose::paste
                                                           : ClipboardWatchers::Purpose::keep);
    const std::uint32_t client = client_->clientOf(request.requestor);
    if (given >= SelectionResponder::Result::data && !echoText_.empty() &&
        fetchers_.size() < maximumFetchers &&
        std::ranges::find(fetchers_, client) == fetchers_.end())
        fetchers_.push_back(client);
}

void ClipboardOwner::answerWaiting() {
    waitEnd_.reset();
    for (const xcb_selection_request_event_t& request : std::exchange(waiting_, {}))
        answer(request);
}

ClipboardClient::EventHandler ClipboardOwner::handler() {
    return [this](const xcb_generic_event_t& event) { handle(event); };
}

void ClipboardOwner::handOver(std::chrono::milliseconds limit) {
    if (!claim_.contents || claim_.contents->targets.empty() || claim_.contents->isSecret)
        return;
    const ClipboardAtoms& atoms = client_->atoms();
    if (client_->selectionOwner(atoms.clipboardManager) == XCB_WINDOW_NONE)
        return;
    const auto time = client_->serverTime(handler());
    if (!time)
        return;
    std::vector<xcb_atom_t> targets;
    for (const ClipboardTarget& target : claim_.contents->targets)
        targets.push_back(target.target);
    xcb_change_property(client_->connection(), XCB_PROP_MODE_REPLACE, client_->window(),
                        atoms.transfer, XCB_ATOM_ATOM, 32,
                        static_cast<std::uint32_t>(targets.size()), targets.data());
    xcb_convert_selection(client_->connection(), client_->window(), atoms.clipboardManager,
                          atoms.saveTargets, atoms.transfer, *time);
    isHandedOver_ = false;
    const auto deadline = ClipboardClient::Clock::now() + limit;
    while (!isHandedOver_ || !transfers_.isEmpty()) {
        const auto standstill = ClipboardClient::Clock::now() + handOverStandstill;
        const XcbPtr<xcb_generic_event_t> event =
            client_->nextEvent(std::min(deadline, standstill));
        if (!event)
            return;
        handle(*event);
    }
    xcb_flush(client_->connection());
}

} // namespace kelvora
