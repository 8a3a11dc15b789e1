// SPDX-License-Identifier: MIT
#include "tests/host/x11/clipboard_peer.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kelvora {
namespace {

constexpr std::size_t pieceSize = 64UL * 1024;

} // namespace

ClipboardPeer::ClipboardPeer(const std::string& display, std::vector<Offer> offers, Manner manner)
    : client_(ClipboardClient::create(display.c_str())), offers_(std::move(offers)),
      manner_(manner) {
    client_->watchOwner();
}

ClipboardPeer::~ClipboardPeer() {
    isEnding_ = true;
    if (thread_.joinable())
        thread_.join();
}

void ClipboardPeer::own(std::string_view selection) {
    const auto time = client_->serverTime([](const xcb_generic_event_t&) {});
    xcb_set_selection_owner(client_->connection(), client_->window(), atom(selection), *time);
    client_->synchronize([](const xcb_generic_event_t&) {});
    thread_ = std::thread([this] { serve(); });
}

void ClipboardPeer::serve() {
    while (!isEnding_ && client_->isConnected()) {
        if (const auto event =
                client_->nextEvent(ClipboardClient::Clock::now() + std::chrono::milliseconds(5)))
            onEvent(*event);
        if (mayAnswer_)
            for (const auto& request : std::exchange(unanswered_, {}))
                answer(request);
    }
    client_.reset(); // gone, as a program that has ended
}

void ClipboardPeer::onEvent(const xcb_generic_event_t& event) {
    if (const auto notice = client_->ownerNotice(event)) {
        if (notice->owner != client_->window() && onTaken_)
            onTaken_();
        return;
    }
    const int type = event.response_type & 0x7F;
    if (type == XCB_SELECTION_REQUEST) {
        ++requestCount_;
        const auto& request = reinterpret_cast<const xcb_selection_request_event_t&>(event);
        const bool isHeldBack =
            manner_ == Manner::silent ||
            (manner_ == Manner::listOnly && request.target != client_->atoms().targets);
        if (isHeldBack && !mayAnswer_)
            unanswered_.push_back(request);
        else
            answer(request);
    } else if (type == XCB_PROPERTY_NOTIFY) {
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        const auto sending = std::ranges::find_if(sendings_, [&](const Sending& each) {
            return each.requestor == property.window && each.property == property.atom;
        });
        if (property.state == XCB_PROPERTY_DELETE && sending != sendings_.end())
            sendPiece(*sending);
    }
}

void ClipboardPeer::answer(const xcb_selection_request_event_t& request) {
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = give(request) ? request.property : xcb_atom_t{XCB_ATOM_NONE};
    xcb_send_event(client_->connection(), 0, request.requestor, 0,
                   reinterpret_cast<const char*>(&notify));
}

bool ClipboardPeer::give(const xcb_selection_request_event_t& request) {
    xcb_connection_t* connection = client_->connection();
    if (request.target == client_->atoms().saveTargets) {
        onSave_();
        return true;
    }
    if (request.target == client_->atoms().targets) {
        // With what every list has, and what nobody should ask for.
        std::vector<xcb_atom_t> list{client_->atoms().targets, atom("DELETE"), atom("PIXMAP")};
        for (const Offer& offer : offers_)
            list.push_back(atom(offer.target));
        list.push_back(list.back());
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                            XCB_ATOM_ATOM, 32, static_cast<std::uint32_t>(list.size()),
                            list.data());
        return true;
    }
    const auto offer = std::ranges::find_if(
        offers_, [&](const Offer& each) { return atom(each.target) == request.target; });
    if (offer == offers_.end() || offer->isRefused)
        return false;
    if (offer->bytes.size() <= pieceSize) {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                            atom(offer->type), offer->format,
                            static_cast<std::uint32_t>(offer->bytes.size() / (offer->format / 8)),
                            offer->bytes.data());
        return true;
    }
    const std::uint32_t eventMask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection, request.requestor, XCB_CW_EVENT_MASK, &eventMask);
    const std::uint32_t announced = 1;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                        client_->atoms().incr, 32, 1, &announced);
    std::erase_if(sendings_,
                  [&](const Sending& each) { return each.requestor == request.requestor; });
    sendings_.push_back({request.requestor, request.property, &*offer});
    return true;
}

void ClipboardPeer::sendPiece(Sending& sending) {
    const Offer& offer = *sending.offer;
    const bool isLater = sending.sent > 0;
    if (isLater && manner_ == Manner::stopsMidway)
        return;
    if (isLater && manner_ == Manner::vanishes) {
        isEnding_ = true;
        return;
    }
    const std::size_t start = manner_ == Manner::neverEnds ? 0 : sending.sent;
    const std::size_t size = std::min(pieceSize, offer.bytes.size() - start);
    const auto format =
        isLater && manner_ == Manner::changesFormat ? std::uint8_t{32} : offer.format;
    xcb_change_property(client_->connection(), XCB_PROP_MODE_REPLACE, sending.requestor,
                        sending.property, atom(offer.type), format,
                        static_cast<std::uint32_t>(size / (format / 8)),
                        offer.bytes.data() + start);
    sending.sent += size;
    if (size == 0)
        std::erase_if(sendings_,
                      [&](const Sending& each) { return each.requestor == sending.requestor; });
}

xcb_atom_t ClipboardPeer::atom(std::string_view name) {
    return internAtoms(client_->connection(), std::array{name}).front();
}

} // namespace kelvora
