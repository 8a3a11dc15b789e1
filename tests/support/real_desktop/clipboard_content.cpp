// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/clipboard_content.h"

#include "tests/support/real_desktop/x_connection.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <poll.h>
#include <vector>

namespace kelvora::real {

namespace {

using Clock = std::chrono::steady_clock;

/// Takes what owners hand over, with a window of its own to receive it.
class Receiver {
public:
    Receiver(const std::string& display, const std::string& selection,
             std::chrono::milliseconds deadline)
        : connection_(display), selection_(connection_.atom(selection)),
          property_(connection_.atom("KELVORA_TEST_RECEIVED")), window_(connection_.createWindow()),
          end_(Clock::now() + deadline) {}

    /// The bytes of one target; absent when it is refused or the time is over. `type` becomes the
    /// name of the type that came.
    std::optional<std::string> receive(const std::string& target, std::string& type) {
        xcb_delete_property(connection_.get(), window_, property_);
        xcb_convert_selection(connection_.get(), window_, selection_, connection_.atom(target),
                              property_, XCB_CURRENT_TIME);
        xcb_flush(connection_.get());
        const Event answer = waitFor([&](const xcb_generic_event_t& event) {
            return (event.response_type & 0x7fU) == XCB_SELECTION_NOTIFY;
        });
        if (!answer ||
            reinterpret_cast<const xcb_selection_notify_event_t*>(answer.get())->property == 0) {
            return std::nullopt;
        }
        std::string bytes = takeProperty(type);
        if (type != "INCR") {
            return bytes;
        }
        bytes.clear();
        while (waitFor([&](const xcb_generic_event_t& event) { return isNewPiece(event); })) {
            const std::string piece = takeProperty(type);
            if (piece.empty()) {
                return bytes;
            }
            bytes += piece;
        }
        return std::nullopt;
    }

    std::optional<std::vector<std::string>> targets() {
        std::string type;
        const std::optional<std::string> bytes = receive("TARGETS", type);
        if (!bytes) {
            return std::nullopt;
        }
        std::vector<std::string> names;
        for (std::size_t offset = 0; offset + 4 <= bytes->size(); offset += 4) {
            xcb_atom_t atom = 0;
            std::memcpy(&atom, bytes->data() + offset, sizeof atom);
            names.push_back(connection_.atomName(atom));
        }
        return names;
    }

private:
    bool isNewPiece(const xcb_generic_event_t& event) const {
        if ((event.response_type & 0x7fU) != XCB_PROPERTY_NOTIFY) {
            return false;
        }
        const auto& notice = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        return notice.atom == property_ && notice.state == XCB_PROPERTY_NEW_VALUE;
    }

    Event waitFor(const auto& isExpected) {
        while (Clock::now() < end_) {
            while (Event event = connection_.nextEvent()) {
                if (isExpected(*event)) {
                    return event;
                }
            }
            if (xcb_connection_has_error(connection_.get()) != 0) {
                break;
            }
            pollfd readable{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
            poll(&readable, 1, 10);
        }
        return nullptr;
    }

    /// Reads the property and removes it, which asks for the next piece.
    std::string takeProperty(std::string& type) {
        constexpr std::uint32_t everything = 1U << 28U;
        const Reply<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection_.get(),
                                   xcb_get_property(connection_.get(), 1, window_, property_,
                                                    XCB_GET_PROPERTY_TYPE_ANY, 0, everything),
                                   nullptr));
        if (!reply) {
            return {};
        }
        type = connection_.atomName(reply->type);
        const auto* const data = static_cast<const char*>(xcb_get_property_value(reply.get()));
        return {data, static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
    }

    XConnection connection_;
    xcb_atom_t selection_;
    xcb_atom_t property_;
    xcb_window_t window_;
    Clock::time_point end_;
};

bool saysNothingOfTheContent(const std::string& target) {
    constexpr std::array names{"TARGETS", "TIMESTAMP", "MULTIPLE", "SAVE_TARGETS", "DELETE"};
    return std::find(names.begin(), names.end(), target) != names.end();
}

} // namespace

std::optional<ClipboardContent> readClipboard(const std::string& display,
                                              const std::string& selection,
                                              std::chrono::milliseconds deadline) {
    Receiver receiver(display, selection, deadline);
    const auto targets = receiver.targets();
    if (!targets) {
        return std::nullopt;
    }
    ClipboardContent content;
    for (const std::string& target : *targets) {
        if (saysNothingOfTheContent(target)) {
            continue;
        }
        std::string type;
        std::string bytes = receiver.receive(target, type).value_or("(refused)");
        content[target] = type == target ? std::move(bytes) : "(" + type + ") " + bytes;
    }
    return content;
}

std::optional<std::string> readSelectedText(const std::string& display,
                                            const std::string& selection,
                                            std::chrono::milliseconds deadline) {
    std::string type;
    return Receiver(display, selection, deadline).receive("UTF8_STRING", type);
}

} // namespace kelvora::real
