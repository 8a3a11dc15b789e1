// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/clipboard/clipboard_client.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace kelvora {

enum class Manner {
    proper,
    silent,      ///< answers once it is told to
    stopsMidway, ///< in large data
    vanishes,    ///< in large data
    neverEnds,   ///< large data
};

struct Offer {
    std::string target;
    std::string type;
    std::uint8_t format; ///< 0: listed, but refused
    std::string bytes;
};

/// Another program that owns a selection, on a thread and connection of its own. Data of more than
/// 64 KiB it sends in pieces, and announces as one byte.
class ClipboardPeer {
public:
    /// Called on the peer's thread.
    struct Hooks {
        std::function<void()> onTaken; ///< another program takes the clipboard
        std::function<void()> onSave;  ///< before a request for SAVE_TARGETS is answered
    };

    ClipboardPeer(const std::string& display, std::vector<Offer> offers,
                  Manner manner = Manner::proper, const char* selection = "CLIPBOARD",
                  Hooks hooks = {})
        : client_(ClipboardClient::create(display.c_str())), offers_(std::move(offers)),
          manner_(manner), hooks_(std::move(hooks)) {
        client_->watchOwner();
        const auto ignore = [](const xcb_generic_event_t&) {};
        xcb_set_selection_owner(x(), client_->window(), atom(selection),
                                *client_->serverTime(ignore));
        client_->synchronize(ignore);
        thread_ = std::thread([this] { serve(); });
    }
    ~ClipboardPeer() {
        isEnding_ = true;
        thread_.join();
    }

    void answerNow() { mayAnswer_ = true; }
    [[nodiscard]] int requestCount() const { return requestCount_; }

private:
    struct Sending {
        xcb_atom_t property;
        const Offer* offer;
        std::size_t sent = 0;
    };
    static constexpr std::size_t pieceSize = 64UL * 1024;

    [[nodiscard]] xcb_connection_t* x() const { return client_->connection(); }
    [[nodiscard]] xcb_atom_t atom(std::string_view name) const {
        return internAtoms(x(), std::array{name}).front();
    }

    void serve() {
        while (!isEnding_ && client_->isConnected()) {
            if (const auto event = client_->nextEvent(ClipboardClient::Clock::now() +
                                                      std::chrono::milliseconds(5)))
                onEvent(*event);
            if (mayAnswer_)
                for (const auto& request : std::exchange(unanswered_, {}))
                    answer(request);
        }
        client_.reset(); // gone, as a program that has ended
    }

    void onEvent(const xcb_generic_event_t& event) {
        const int type = event.response_type & 0x7F;
        if (const auto notice = client_->ownerNotice(event)) {
            if (notice->owner != client_->window() && hooks_.onTaken)
                hooks_.onTaken();
        } else if (type == XCB_SELECTION_REQUEST) {
            ++requestCount_;
            const auto& request = reinterpret_cast<const xcb_selection_request_event_t&>(event);
            if (manner_ == Manner::silent && !mayAnswer_)
                unanswered_.push_back(request);
            else
                answer(request);
        } else if (type == XCB_PROPERTY_NOTIFY) {
            const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            const auto sending = sendings_.find(notify.window);
            if (notify.state == XCB_PROPERTY_DELETE && sending != sendings_.end() &&
                sending->second.property == notify.atom)
                sendPiece(notify.window, sending->second);
        }
    }

    void answer(const xcb_selection_request_event_t& request) {
        xcb_selection_notify_event_t notify{XCB_SELECTION_NOTIFY,
                                            0,
                                            0,
                                            request.time,
                                            request.requestor,
                                            request.selection,
                                            request.target,
                                            give(request) ? request.property
                                                          : xcb_atom_t{XCB_ATOM_NONE}};
        xcb_send_event(x(), 0, request.requestor, 0, reinterpret_cast<const char*>(&notify));
    }

    bool give(const xcb_selection_request_event_t& request) {
        const auto write = [&](xcb_atom_t type, std::uint8_t format, std::size_t size,
                               const void* bytes) {
            xcb_change_property(x(), XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                                type, format, static_cast<std::uint32_t>(size / (format / 8)),
                                bytes);
        };
        if (request.target == client_->atoms().saveTargets)
            return hooks_.onSave(), true;
        if (request.target == client_->atoms().targets) {
            // With what every list has, and what nobody should ask for.
            std::vector<xcb_atom_t> list{client_->atoms().targets, atom("DELETE"), atom("PIXMAP")};
            for (const Offer& offer : offers_)
                list.push_back(atom(offer.target));
            list.push_back(list.back());
            write(XCB_ATOM_ATOM, 32, list.size() * sizeof list[0], list.data());
            return true;
        }
        const auto offer = std::ranges::find_if(
            offers_, [&](const Offer& each) { return atom(each.target) == request.target; });
        if (offer == offers_.end() || offer->format == 0)
            return false;
        if (offer->bytes.size() <= pieceSize) {
            write(atom(offer->type), offer->format, offer->bytes.size(), offer->bytes.data());
            return true;
        }
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(x(), request.requestor, XCB_CW_EVENT_MASK, &events);
        write(client_->atoms().incr, 32, 4, &events); // a number, no matter which
        sendings_[request.requestor] = {request.property, &*offer};
        return true;
    }

    void sendPiece(xcb_window_t requestor, Sending& sending) {
        const Offer& offer = *sending.offer;
        const bool isLater = sending.sent > 0;
        isEnding_ = isEnding_ || (isLater && manner_ == Manner::vanishes);
        if (isEnding_ || (isLater && manner_ == Manner::stopsMidway))
            return;
        const std::size_t start = manner_ == Manner::neverEnds ? 0 : sending.sent;
        const std::size_t size = std::min(pieceSize, offer.bytes.size() - start);
        xcb_change_property(
            x(), XCB_PROP_MODE_REPLACE, requestor, sending.property, atom(offer.type), offer.format,
            static_cast<std::uint32_t>(size / (offer.format / 8)), offer.bytes.data() + start);
        sending.sent += size;
        if (size == 0)
            sendings_.erase(requestor);
    }

    std::unique_ptr<ClipboardClient> client_;
    std::vector<Offer> offers_;
    Manner manner_;
    Hooks hooks_;
    std::vector<xcb_selection_request_event_t> unanswered_;
    std::map<xcb_window_t, Sending> sendings_;
    std::atomic<bool> mayAnswer_ = false;
    std::atomic<bool> isEnding_ = false;
    std::atomic<int> requestCount_ = 0;
    std::thread thread_;
};

} // namespace kelvora
