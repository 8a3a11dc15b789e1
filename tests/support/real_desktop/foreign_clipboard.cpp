// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/foreign_clipboard.h"

#include "host/linux/x11/clipboard/clipboard_client.h"

#include <array>
#include <cstring>
#include <memory>
#include <set>
#include <string_view>
#include <vector>

namespace kelvora::real {

namespace {

using std::chrono::milliseconds;

constexpr std::size_t pieceSize = 200'000;

int typeOf(const xcb_generic_event_t& event) {
    return event.response_type & 0x7f;
}

// Of the program only the connection is borrowed: what is sent and what is understood is decided
// here.
using Client = std::unique_ptr<ClipboardClient>;

xcb_atom_t atomOf(const Client& client, std::string_view name) {
    return internAtoms(client->connection(), std::array{name}).front();
}

std::string nameOf(const Client& client, xcb_atom_t atom) {
    return atomNames(client->connection(), std::array{atom}).front();
}

/// Takes what owners hand over.
class Receiver {
public:
    Receiver(const std::string& display, const std::string& selection, milliseconds patience)
        : client_(ClipboardClient::create(display.c_str())), selection_(atomOf(client_, selection)),
          property_(atomOf(client_, "KELVORA_TEST_RECEIVED")), window_(client_->window()),
          end_(ClipboardClient::Clock::now() + patience) {}

    /// The bytes of one target; absent when it is refused or the time is over. `type` becomes the
    /// name of the type that came.
    std::optional<std::string> receive(const std::string& target, std::string& type) {
        xcb_delete_property(client_->connection(), window_, property_);
        xcb_convert_selection(client_->connection(), window_, selection_, atomOf(client_, target),
                              property_, XCB_CURRENT_TIME);
        bool isGiven = false;
        const bool isAnswered = waitFor([&](const xcb_generic_event_t& event) {
            isGiven = reinterpret_cast<const xcb_selection_notify_event_t&>(event).property != 0;
            return typeOf(event) == XCB_SELECTION_NOTIFY;
        });
        if (!isAnswered || !isGiven)
            return std::nullopt;
        std::string bytes = takeProperty(type);
        if (type != "INCR")
            return bytes;
        bytes.clear();
        while (waitFor([this](const xcb_generic_event_t& event) {
            const auto& notice = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            return typeOf(event) == XCB_PROPERTY_NOTIFY && notice.atom == property_ &&
                   notice.state == XCB_PROPERTY_NEW_VALUE;
        })) {
            const std::string piece = takeProperty(type);
            if (piece.empty())
                return bytes;
            bytes += piece;
        }
        return std::nullopt;
    }

    std::optional<ClipboardContent> receiveAll() {
        const std::set<std::string> aboutNoContent{"TARGETS", "TIMESTAMP", "MULTIPLE",
                                                   "SAVE_TARGETS", "DELETE"};
        std::string type;
        const auto targets = receive("TARGETS", type);
        if (!targets)
            return std::nullopt;
        ClipboardContent content;
        for (std::size_t offset = 0; offset + 4 <= targets->size(); offset += 4) {
            xcb_atom_t atom = 0;
            std::memcpy(&atom, targets->data() + offset, sizeof atom);
            const std::string target = nameOf(client_, atom);
            if (!aboutNoContent.contains(target)) {
                std::string bytes = receive(target, type).value_or("(refused)");
                content[target] = type == target ? std::move(bytes) : "(" + type + ") " + bytes;
            }
        }
        return content;
    }

private:
    bool waitFor(const auto& isExpected) {
        while (const auto event = client_->nextEvent(end_))
            if (isExpected(*event))
                return true;
        return false;
    }

    /// Reads the property and removes it, which asks for the next piece.
    std::string takeProperty(std::string& type) {
        constexpr std::uint32_t everything = 1U << 28U;
        const XcbPtr<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(client_->connection(),
                                   xcb_get_property(client_->connection(), 1, window_, property_,
                                                    XCB_GET_PROPERTY_TYPE_ANY, 0, everything),
                                   nullptr));
        if (!reply)
            return {};
        type = nameOf(client_, reply->type);
        const auto* const data = static_cast<const char*>(xcb_get_property_value(reply.get()));
        return {data, static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
    }

    Client client_;
    xcb_atom_t selection_;
    xcb_atom_t property_;
    xcb_window_t window_;
    ClipboardClient::Clock::time_point end_;
};

} // namespace

std::optional<ClipboardContent> readClipboard(const std::string& display) {
    return Receiver(display, "CLIPBOARD", milliseconds(20'000)).receiveAll();
}

std::optional<std::string> readSelectedText(const std::string& display,
                                            const std::string& selection) {
    std::string type;
    return Receiver(display, selection, milliseconds(2'000)).receive("UTF8_STRING", type);
}

class ForeignClipboard::Server {
public:
    Server(ForeignClipboard& clipboard, const std::string& display, const ClipboardContent& content)
        : clipboard_(clipboard), client_(ClipboardClient::create(display.c_str())) {
        for (const auto& [target, bytes] : content)
            content_.emplace(atomOf(client_, target), bytes);
        time_ = client_->serverTime([](const auto&) {}).value_or(XCB_CURRENT_TIME);
        xcb_set_selection_owner(client_->connection(), client_->window(), atoms_.clipboard, time_);
        client_->synchronize([](const auto&) {});
    }

    void serve() {
        while (!clipboard_.isEnding_ && client_->isConnected())
            if (const auto event =
                    client_->nextEvent(ClipboardClient::Clock::now() + milliseconds(10)))
                handle(*event);
    }

private:
    struct Transfer {
        xcb_window_t requestor;
        xcb_atom_t property;
        xcb_atom_t type;
        std::string_view remaining;
    };

    void handle(const xcb_generic_event_t& event) {
        const int type = typeOf(event);
        if (type == XCB_SELECTION_CLEAR)
            clipboard_.isReplaced_ = true;
        else if (type == XCB_SELECTION_REQUEST)
            answer(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        else if (type == XCB_PROPERTY_NOTIFY)
            proceed(reinterpret_cast<const xcb_property_notify_event_t&>(event));
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
        xcb_send_event(client_->connection(), 0, request.requestor, 0,
                       reinterpret_cast<const char*>(&notice));
    }

    bool handOver(const xcb_selection_request_event_t& request, xcb_atom_t property) {
        if (request.target == atoms_.targets) {
            std::vector<xcb_atom_t> names{atoms_.targets, atoms_.timestamp};
            for (const auto& [target, bytes] : content_)
                names.push_back(target);
            put(request.requestor, property, XCB_ATOM_ATOM, 32, names.data(), names.size());
            return true;
        }
        if (request.target == atoms_.timestamp) {
            put(request.requestor, property, XCB_ATOM_INTEGER, 32, &time_, 1);
            return true;
        }
        const auto found = content_.find(request.target);
        if (found == content_.end())
            return false;
        clipboard_.isTaken_ = true;
        const std::string_view bytes = found->second;
        if (bytes.size() <= pieceSize) {
            put(request.requestor, property, request.target, 8, bytes.data(), bytes.size());
            return true;
        }
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(client_->connection(), request.requestor, XCB_CW_EVENT_MASK,
                                     &events);
        transfers_.push_back({request.requestor, property, request.target, bytes});
        const auto size = static_cast<std::uint32_t>(bytes.size());
        put(request.requestor, property, atoms_.incr, 32, &size, 1);
        return true;
    }

    /// The requestor has taken a piece: hands over the next, an empty one being the end.
    void proceed(const xcb_property_notify_event_t& notice) {
        for (auto transfer = transfers_.begin(); transfer != transfers_.end(); ++transfer) {
            auto& [requestor, property, type, remaining] = *transfer;
            if (notice.state != XCB_PROPERTY_DELETE || requestor != notice.window ||
                property != notice.atom)
                continue;
            const std::string_view piece = remaining.substr(0, pieceSize);
            put(requestor, property, type, 8, piece.data(), piece.size());
            remaining.remove_prefix(piece.size());
            if (piece.empty())
                transfers_.erase(transfer);
            return;
        }
    }

    void put(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, std::uint8_t format,
             const void* data, std::size_t count) {
        xcb_change_property(client_->connection(), XCB_PROP_MODE_REPLACE, window, property, type,
                            format, static_cast<std::uint32_t>(count), data);
    }

    ForeignClipboard& clipboard_;
    Client client_;
    const ClipboardAtoms& atoms_ = client_->atoms();
    xcb_timestamp_t time_ = XCB_CURRENT_TIME;
    std::map<xcb_atom_t, std::string> content_;
    std::vector<Transfer> transfers_;
};

ForeignClipboard::ForeignClipboard(const std::string& display, const ClipboardContent& content) {
    auto server = std::make_unique<Server>(*this, display, content);
    thread_ = std::thread([owned = std::move(server)] { owned->serve(); });
}

ForeignClipboard::~ForeignClipboard() {
    isEnding_ = true;
    thread_.join();
}

} // namespace kelvora::real
