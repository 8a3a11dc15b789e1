// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/clipboard/clipboard_client.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace kelvora {

/// The programs that fetch every text as it comes, with nobody pasting: clipboard managers. Most
/// keep what they get whatever mark it bears, so they are told by what they do. One thread at a
/// time.
class ClipboardWatchers {
public:
    explicit ClipboardWatchers(ClipboardClient& client) : client_(client) {}

    /// What a text is for.
    enum class Purpose {
        paste, ///< one program, now
        keep,  ///< nobody has a reason to paste it at once
    };

    /// A text to keep is about to be claimed.
    void lookOut();
    void onTextGiven(xcb_window_t requestor, Purpose purpose);

    /// Whether a text to paste is nothing for this requestor. It is always something for the
    /// program that has the keyboard focus: there somebody may be pasting.
    [[nodiscard]] bool hides(xcb_window_t requestor);

private:
    [[nodiscard]] bool isKnown(std::uint32_t client) const;
    void remember(std::uint32_t client);
    /// Absent where no client has the focus.
    [[nodiscard]] std::optional<std::uint32_t> focusedClient() const;

    ClipboardClient& client_;
    std::vector<std::uint32_t> clients_; ///< the oldest first
    std::optional<ClipboardClient::Clock::time_point> lookoutEnd_;
    // Of the text to paste since the last lookOut():
    std::vector<std::uint32_t> suspects_; ///< got it without the focus
    bool wasHidden_ = false;              ///< from a watcher
    bool wasPasted_ = false;              ///< by the program that has the focus
};

} // namespace kelvora
