// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/clipboard_content.h"

#include <atomic>
#include <string>
#include <thread>

namespace kelvora::real {

/// Another program that has copied something: owns a selection and hands it over to whoever asks,
/// in pieces where it is large, on a thread of its own, until this object goes.
class ForeignClipboard {
public:
    /// Returns once it owns the selection. Every target is handed over as the type of its name.
    ForeignClipboard(const std::string& display, ClipboardContent content);
    ~ForeignClipboard();
    ForeignClipboard(const ForeignClipboard&) = delete;
    ForeignClipboard& operator=(const ForeignClipboard&) = delete;

    /// Whether another owner has come since. Any thread.
    [[nodiscard]] bool isReplaced() const { return isReplaced_; }
    /// Whether some program has asked for more than the list of targets. Any thread.
    [[nodiscard]] bool isTaken() const { return isTaken_; }

private:
    class Server;

    std::atomic<bool> isReplaced_ = false;
    std::atomic<bool> isTaken_ = false;
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

} // namespace kelvora::real
