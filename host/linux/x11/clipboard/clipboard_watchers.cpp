// SPDX-License-Identifier: MIT
#include "host/linux/x11/clipboard/clipboard_watchers.h"

#include <algorithm>

namespace kelvora {
namespace {

/// Some managers look twice a second instead of being told.
constexpr std::chrono::milliseconds lookout{600};
constexpr std::size_t maximumClients = 16;

} // namespace

void ClipboardWatchers::lookOut() {
    if (wasPasted_) {
        // Nobody else had to fetch it, then.
        for (const std::uint32_t client : suspects_)
            remember(client);
    } else if (wasHidden_) {
        // Maybe from a helper that pastes on behalf of the application. A manager that is forgotten
        // here gives itself away again at once.
        clients_.clear();
    }
    suspects_.clear();
    wasHidden_ = false;
    wasPasted_ = false;
    lookoutEnd_ = ClipboardClient::Clock::now() + lookout;
}

void ClipboardWatchers::onTextGiven(xcb_window_t requestor, Purpose purpose) {
    const bool isLookingOut = lookoutEnd_ && ClipboardClient::Clock::now() <= *lookoutEnd_;
    if (purpose == Purpose::keep && !isLookingOut)
        return;
    const std::uint32_t client = client_.clientOf(requestor);
    const std::optional<std::uint32_t> focused = focusedClient();
    if (purpose == Purpose::keep) {
        if (focused && client != *focused)
            remember(client);
    } else if (client == focused) {
        wasPasted_ = true;
    } else if (focused && suspects_.size() < maximumClients) {
        suspects_.push_back(client);
    }
}

bool ClipboardWatchers::hides(xcb_window_t requestor) {
    const std::uint32_t client = client_.clientOf(requestor);
    if (!isKnown(client))
        return false;
    const std::optional<std::uint32_t> focused = focusedClient();
    const bool isHidden = focused && client != *focused;
    wasHidden_ = wasHidden_ || isHidden;
    return isHidden;
}

bool ClipboardWatchers::isKnown(std::uint32_t client) const {
    return std::ranges::find(clients_, client) != clients_.end();
}

void ClipboardWatchers::remember(std::uint32_t client) {
    if (isKnown(client))
        return;
    if (clients_.size() == maximumClients)
        clients_.erase(clients_.begin());
    clients_.push_back(client);
}

std::optional<std::uint32_t> ClipboardWatchers::focusedClient() const {
    const XcbPtr<xcb_get_input_focus_reply_t> focus(xcb_get_input_focus_reply(
        client_.connection(), xcb_get_input_focus(client_.connection()), nullptr));
    // The focus may be nowhere, follow the pointer, or be on the root window.
    const std::uint32_t client = focus ? client_.clientOf(focus->focus) : 0;
    return client != 0 ? std::optional(client) : std::nullopt;
}

} // namespace kelvora
