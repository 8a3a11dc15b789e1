// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <thread>

namespace kelvora::real {

/// What a selection offers: the bytes of each target by its name.
using ClipboardContent = std::map<std::string, std::string>;

/// Asks the owner of the clipboard for everything that it offers, in whole or in pieces, without
/// the targets that say nothing of the content (TARGETS, TIMESTAMP, ...). A target that the owner
/// refuses, or gives as another type than asked for, is told as such. Absent when there is no owner
/// or it does not answer in time.
[[nodiscard]] std::optional<ClipboardContent> readClipboard(const std::string& display);

/// Asks a selection ("CLIPBOARD", "PRIMARY") for the plain text only.
[[nodiscard]] std::optional<std::string>
readSelectedText(const std::string& display, const std::string& selection = "CLIPBOARD");

/// Another program that has copied something: owns the clipboard and hands it over to whoever asks,
/// in pieces where it is large, on a thread of its own, until this object goes.
class ForeignClipboard {
public:
    /// Returns once it owns the clipboard. Every target is handed over as the type of its name.
    ForeignClipboard(const std::string& display, const ClipboardContent& content);
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
