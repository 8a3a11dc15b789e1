// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/clipboard/clipboard_client.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace kelvora {

enum class Manner {
    proper,
    silent,        ///< answers once it is told to
    listOnly,      ///< answers what it has, and nothing else
    stopsMidway,   ///< in large data
    vanishes,      ///< in large data
    neverEnds,     ///< large data
    changesFormat, ///< in large data
};

struct Offer {
    std::string target;
    std::string type;
    std::uint8_t format;
    std::string bytes;
    bool isRefused = false;
};

/// Another program that owns a selection, on a thread and connection of its own. Data of more than
/// 64 KiB it sends in pieces, and announces as one byte.
class ClipboardPeer {
public:
    ClipboardPeer(const std::string& display, std::vector<Offer> offers,
                  Manner manner = Manner::proper);
    ~ClipboardPeer();

    void answerNow() { mayAnswer_ = true; }
    [[nodiscard]] int requestCount() const { return requestCount_; }
    /// Called on the peer's thread when another program takes the clipboard.
    void setOnTaken(std::function<void()> onTaken) { onTaken_ = std::move(onTaken); }
    /// Called on the peer's thread before a request for SAVE_TARGETS is answered.
    void setOnSave(std::function<void()> onSave) { onSave_ = std::move(onSave); }
    /// Serves from here on, as the owner of that selection.
    void own(std::string_view selection);

private:
    struct Sending {
        xcb_window_t requestor;
        xcb_atom_t property;
        const Offer* offer;
        std::size_t sent = 0;
    };

    void serve();
    void onEvent(const xcb_generic_event_t& event);
    void answer(const xcb_selection_request_event_t& request);
    [[nodiscard]] bool give(const xcb_selection_request_event_t& request);
    void sendPiece(Sending& sending);
    [[nodiscard]] xcb_atom_t atom(std::string_view name);

    std::unique_ptr<ClipboardClient> client_;
    std::vector<Offer> offers_;
    Manner manner_;
    std::function<void()> onTaken_;
    std::function<void()> onSave_;
    std::vector<xcb_selection_request_event_t> unanswered_;
    std::vector<Sending> sendings_;
    std::atomic<bool> mayAnswer_ = false;
    std::atomic<bool> isEnding_ = false;
    std::atomic<int> requestCount_ = 0;
    std::thread thread_;
};

} // namespace kelvora
