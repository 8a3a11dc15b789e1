// SPDX-License-Identifier: MIT
#include "host/linux/x11/clipboard/clipboard_reader.h"

#include "host/linux/x11/clipboard/clipboard_formats.h"

#include <algorithm>
#include <utility>

namespace kelvora {
namespace {

constexpr std::size_t maximumTargets = 512;
constexpr std::size_t maximumAbandoned = 4;

} // namespace

std::unique_ptr<ClipboardReader> ClipboardReader::create(const char* display,
                                                         const ClipboardLimits& limits) {
    std::unique_ptr<ClipboardClient> client = ClipboardClient::create(display);
    if (!client)
        return nullptr;
    return std::unique_ptr<ClipboardReader>(new ClipboardReader(std::move(client), limits));
}

ClipboardReader::ClipboardReader(std::unique_ptr<ClipboardClient> client,
                                 const ClipboardLimits& limits)
    : client_(std::move(client)), limits_(limits),
      textAtoms_(internAtoms(connection(), textTargets)) {}

std::optional<std::u16string> ClipboardReader::text() {
    client_->watchOwner();
    auto text = awaitText();
    // Nobody reads this connection in between.
    if (!pendingText_)
        client_->unwatchOwner();
    return text;
}

std::optional<PasteboardSnapshot> ClipboardReader::snapshot() {
    client_->watchOwner();
    abandonText();
    auto snapshot = awaitSnapshot();
    client_->unwatchOwner();
    return snapshot;
}

std::optional<std::u16string> ClipboardReader::awaitText() {
    hasOwnerChanged_ = false;
    client_->synchronize(handler());
    if (hasOwnerChanged_)
        abandonText();
    const bool isNew = !pendingText_;
    if (isNew) {
        const auto time = client_->serverTime(handler());
        if (!time)
            return std::nullopt;
        askForText(0, *time);
    }
    hasOwnerChanged_ = false; // up to the time of the request
    const std::chrono::milliseconds limit = isNew ? limits_.text : limits_.textAgain;
    const TimePoint deadline = ClipboardClient::Clock::now() + limit;
    while (pendingText_) {
        IncomingTransfer& transfer = pendingText_->transfer;
        await(transfer, deadline, limit);
        switch (transfer.state()) {
        case IncomingTransfer::State::underWay:
            if (hasOwnerChanged_)
                abandonText();
            return std::nullopt;
        case IncomingTransfer::State::complete:
            if (transfer.format() == 8) {
                std::u16string text = textOf(transfer.bytes(), transfer.type() == XCB_ATOM_STRING);
                abandonText();
                return text;
            }
            [[fallthrough]];
        case IncomingTransfer::State::refused:
            askForText(pendingText_->candidate + 1, pendingText_->time);
            break;
        case IncomingTransfer::State::failed:
            abandonText();
            break;
        }
    }
    return std::nullopt;
}

void ClipboardReader::askForText(std::size_t candidate, xcb_timestamp_t time) {
    abandonText();
    if (candidate < textAtoms_.size())
        pendingText_.emplace(
            PendingText{candidate, time, ask(textAtoms_[candidate], time, limits_.bytes)});
}

std::optional<PasteboardSnapshot> ClipboardReader::awaitSnapshot() {
    const TimePoint deadline = ClipboardClient::Clock::now() + limits_.snapshot;
    while (true) {
        auto snapshot = trySnapshot(deadline);
        client_->synchronize(handler());
        // What two owners gave does not belong together, and an owner that is gone gives nothing.
        if (!hasOwnerChanged_)
            return snapshot;
        if (!client_->isConnected() || ClipboardClient::Clock::now() >= deadline)
            return std::nullopt;
    }
}

std::optional<PasteboardSnapshot> ClipboardReader::trySnapshot(TimePoint deadline) {
    const auto time = client_->serverTime(handler());
    hasOwnerChanged_ = false; // up to that time
    if (!time)
        return std::nullopt;
    if (client_->selectionOwner(client_->atoms().clipboard) == XCB_WINDOW_NONE)
        return client_->isConnected() ? std::optional(PasteboardSnapshot{}) : std::nullopt;
    const auto targets = this->targets(*time, deadline);
    if (!targets)
        return std::nullopt;

    std::vector<std::string> names = atomNames(connection(), *targets);
    std::vector<PasteboardData> data;
    std::vector<xcb_atom_t> types;
    std::vector<std::uint8_t> formats;
    std::size_t bytesLeft = limits_.bytes;
    for (std::size_t i = 0; i < targets->size(); ++i) {
        if (isNeverAskedFor(names[i]))
            continue;
        IncomingTransfer transfer = ask((*targets)[i], *time, bytesLeft);
        await(transfer, deadline, limits_.standstill);
        finish(transfer);
        if (transfer.state() == IncomingTransfer::State::refused)
            continue;
        if (transfer.state() != IncomingTransfer::State::complete)
            return std::nullopt;
        bytesLeft -= transfer.bytes().size();
        types.push_back(transfer.type());
        formats.push_back(transfer.format());
        data.push_back(
            {std::move(names[i]),
             {},
             std::make_shared<const std::vector<std::byte>>(std::move(transfer.bytes()))});
    }
    const std::vector<std::string> typeNames = atomNames(connection(), types);
    PasteboardItem item;
    for (std::size_t i = 0; i < data.size(); ++i) {
        if (isNeverAskedFor(typeNames[i]))
            continue;
        data[i].encoding = propertyEncoding(formats[i], typeNames[i]);
        item.data.push_back(std::move(data[i]));
    }
    return PasteboardSnapshot{std::move(item)};
}

std::optional<std::vector<xcb_atom_t>> ClipboardReader::targets(xcb_timestamp_t time,
                                                                TimePoint deadline) {
    IncomingTransfer transfer =
        ask(client_->atoms().targets, time, maximumTargets * sizeof(xcb_atom_t));
    await(transfer, deadline, limits_.standstill);
    finish(transfer);
    if (transfer.state() == IncomingTransfer::State::refused)
        return textAtoms_; // an owner from before there were lists
    if (transfer.state() != IncomingTransfer::State::complete || transfer.format() != 32)
        return std::nullopt;
    return atomsIn(transfer.bytes());
}

IncomingTransfer ClipboardReader::ask(xcb_atom_t target, xcb_timestamp_t time,
                                      std::size_t maximumBytes) {
    xcb_window_t window = std::exchange(freeWindow_, XCB_WINDOW_NONE);
    if (window == XCB_WINDOW_NONE)
        window = client_->createWindow();
    return {*client_, window, target, time, maximumBytes};
}

void ClipboardReader::await(IncomingTransfer& transfer, TimePoint deadline,
                            std::chrono::milliseconds standstill) {
    while (transfer.state() == IncomingTransfer::State::underWay && !hasOwnerChanged_) {
        const TimePoint limit = std::min(deadline, transfer.lastProgress() + standstill);
        const auto event = client_->nextEvent(limit);
        if (!event)
            return;
        handle(*event);
        transfer.onEvent(*event);
        // An owner that never ends keeps events coming.
        if (ClipboardClient::Clock::now() >= deadline)
            return;
    }
}

void ClipboardReader::finish(const IncomingTransfer& transfer) {
    const bool hasEnded = transfer.state() == IncomingTransfer::State::complete ||
                          transfer.state() == IncomingTransfer::State::refused;
    if (hasEnded && freeWindow_ == XCB_WINDOW_NONE) {
        freeWindow_ = transfer.window();
        return;
    }
    abandoned_.push_back(transfer.window());
    if (abandoned_.size() > maximumAbandoned) {
        xcb_destroy_window(connection(), abandoned_.front());
        abandoned_.pop_front();
    }
}

void ClipboardReader::abandonText() {
    if (!pendingText_)
        return;
    finish(pendingText_->transfer);
    pendingText_.reset();
}

void ClipboardReader::handle(const xcb_generic_event_t& event) {
    if (client_->ownerNotice(event))
        hasOwnerChanged_ = true;
}

ClipboardClient::EventHandler ClipboardReader::handler() {
    return [this](const xcb_generic_event_t& event) {
        handle(event);
        if (pendingText_)
            pendingText_->transfer.onEvent(event);
    };
}

} // namespace kelvora
