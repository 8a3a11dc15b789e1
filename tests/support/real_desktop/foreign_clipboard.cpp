// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/foreign_clipboard.h"

#include "tests/support/real_desktop/x_connection.h"

#include <future>
#include <poll.h>
#include <string_view>
#include <utility>
#include <vector>

namespace kelvora::real {

namespace {

constexpr std::size_t pieceSize = 200'000;

const char* dataOf(const std::vector<xcb_atom_t>& atoms) {
    return reinterpret_cast<const char*>(atoms.data());
}

} // namespace

class ForeignClipboard::Server {
public:
    Server(ForeignClipboard& clipboard, const std::string& display, const ClipboardContent& content)
        : clipboard_(clipboard), connection_(display), window_(connection_.createWindow()),
          selection_(connection_.atom("CLIPBOARD")), targets_(connection_.atom("TARGETS")),
          timestamp_(connection_.atom("TIMESTAMP")), incremental_(connection_.atom("INCR")) {
        for (const auto& [target, bytes] : content) {
            content_.emplace(connection_.atom(target), bytes);
        }
        time_ = serverTime();
        xcb_set_selection_owner(connection_.get(), window_, selection_, time_);
        const Reply<xcb_get_selection_owner_reply_t> sync(xcb_get_selection_owner_reply(
            connection_.get(), xcb_get_selection_owner(connection_.get(), selection_), nullptr));
    }

    void serve() {
        while (!clipboard_.isEnding_ && xcb_connection_has_error(connection_.get()) == 0) {
            while (const Event event = connection_.nextEvent()) {
                handle(*event);
            }
            xcb_flush(connection_.get());
            pollfd readable{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
            poll(&readable, 1, 10);
        }
    }

private:
    struct Transfer {
        xcb_window_t requestor;
        xcb_atom_t property;
        xcb_atom_t type;
        std::string_view remaining;
    };

    /// The server tells its time with a change of a property.
    xcb_timestamp_t serverTime() {
        put(window_, timestamp_, XCB_ATOM_INTEGER, 32, "", 0);
        xcb_flush(connection_.get());
        while (const Event event = Event(xcb_wait_for_event(connection_.get()))) {
            if ((event->response_type & 0x7fU) == XCB_PROPERTY_NOTIFY) {
                return reinterpret_cast<const xcb_property_notify_event_t&>(*event).time;
            }
        }
        return XCB_CURRENT_TIME;
    }

    void handle(const xcb_generic_event_t& event) {
        switch (event.response_type & 0x7fU) {
        case XCB_SELECTION_CLEAR:
            clipboard_.isReplaced_ = true;
            break;
        case XCB_SELECTION_REQUEST:
            answer(reinterpret_cast<const xcb_selection_request_event_t&>(event));
            break;
        case XCB_PROPERTY_NOTIFY:
            proceed(reinterpret_cast<const xcb_property_notify_event_t&>(event));
            break;
        default:
            break;
        }
    }

    void answer(const xcb_selection_request_event_t& request) {
        const xcb_atom_t property = request.property != 0 ? request.property : request.target;
        xcb_selection_notify_event_t notice{};
        notice.response_type = XCB_SELECTION_NOTIFY;
        notice.time = request.time;
        notice.requestor = request.requestor;
        notice.selection = request.selection;
        notice.target = request.target;
        notice.property = handOver(request, property) ? property : xcb_atom_t{XCB_ATOM_NONE};
        xcb_send_event(connection_.get(), 0, request.requestor, 0,
                       reinterpret_cast<const char*>(&notice));
    }

    bool handOver(const xcb_selection_request_event_t& request, xcb_atom_t property) {
        if (request.target == targets_) {
            std::vector<xcb_atom_t> atoms{targets_, timestamp_};
            for (const auto& [target, bytes] : content_) {
                atoms.push_back(target);
            }
            put(request.requestor, property, XCB_ATOM_ATOM, 32, dataOf(atoms), atoms.size());
            return true;
        }
        if (request.target == timestamp_) {
            put(request.requestor, property, XCB_ATOM_INTEGER, 32, dataOf({time_}), 1);
            return true;
        }
        const auto found = content_.find(request.target);
        if (found == content_.end()) {
            return false;
        }
        clipboard_.isTaken_ = true;
        const std::string& bytes = found->second;
        if (bytes.size() <= pieceSize) {
            put(request.requestor, property, request.target, 8, bytes.data(), bytes.size());
            return true;
        }
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(connection_.get(), request.requestor, XCB_CW_EVENT_MASK,
                                     &events);
        transfers_.push_back({request.requestor, property, request.target, bytes});
        put(request.requestor, property, incremental_, 32,
            dataOf({static_cast<xcb_atom_t>(bytes.size())}), 1);
        return true;
    }

    /// The requestor has taken a piece: hands over the next, an empty one being the end.
    void proceed(const xcb_property_notify_event_t& notice) {
        for (auto transfer = transfers_.begin(); transfer != transfers_.end(); ++transfer) {
            if (notice.state != XCB_PROPERTY_DELETE || transfer->requestor != notice.window ||
                transfer->property != notice.atom) {
                continue;
            }
            const std::string_view piece = transfer->remaining.substr(0, pieceSize);
            put(transfer->requestor, transfer->property, transfer->type, 8, piece.data(),
                piece.size());
            transfer->remaining.remove_prefix(piece.size());
            if (piece.empty()) {
                transfers_.erase(transfer);
            }
            return;
        }
    }

    void put(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, std::uint8_t format,
             const char* data, std::size_t count) {
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window, property, type,
                            format, static_cast<std::uint32_t>(count), data);
    }

    ForeignClipboard& clipboard_;
    XConnection connection_;
    xcb_window_t window_;
    xcb_atom_t selection_;
    xcb_atom_t targets_;
    xcb_atom_t timestamp_;
    xcb_atom_t incremental_;
    xcb_timestamp_t time_ = XCB_CURRENT_TIME;
    std::map<xcb_atom_t, std::string> content_;
    std::vector<Transfer> transfers_;
};

ForeignClipboard::ForeignClipboard(const std::string& display, ClipboardContent content) {
    std::promise<void> owned;
    std::future<void> isOwned = owned.get_future();
    thread_ = std::thread([this, display, content = std::move(content), &owned] {
        Server server(*this, display, content);
        owned.set_value();
        server.serve();
    });
    isOwned.wait();
}

ForeignClipboard::~ForeignClipboard() {
    isEnding_ = true;
    thread_.join();
}

} // namespace kelvora::real
