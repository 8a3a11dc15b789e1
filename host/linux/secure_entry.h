// SPDX-License-Identifier: MIT
#pragma once

#include "host/secure_input.h"

#include <chrono>
#include <functional>
#include <utility>
#include <vector>

namespace kelvora {

/// Whether what is typed into the focused element is secret.
enum class FocusSecrecy {
    untold, ///< nobody follows the focus
    ordinary,
    pending, ///< the focus may have moved, and nobody knows yet where to
    secret,  ///< a password field
};

/// News of the focused element; comes some milliseconds after the focus has moved.
struct FocusReport {
    FocusSecrecy secrecy = FocusSecrecy::untold;
    /// The element is a text, and another one than the last text that had the focus.
    bool isOtherText = false;
    bool isText = false; ///< the element is a text
};

class SecureEntryListener {
public:
    virtual ~SecureEntryListener() = default;
    virtual void onFocusReport(const FocusReport& report,
                               std::chrono::steady_clock::time_point now) = 0;
};

/// Where those who follow the focus tell those who see the keys. Main thread only.
class SecureEntry final : public SecureInput {
public:
    [[nodiscard]] bool isSecureEventInputEnabled() const override {
        return secrecy_ == FocusSecrecy::secret;
    }
    [[nodiscard]] FocusSecrecy secrecy() const { return secrecy_; }

    void report(const FocusReport& report, std::chrono::steady_clock::time_point now) {
        secrecy_ = report.secrecy;
        const std::vector<SecureEntryListener*> listeners = listeners_;
        for (SecureEntryListener* listener : listeners)
            listener->onFocusReport(report, now);
    }

    /// `fetch` reports what is known already but waits for the main loop to turn.
    void setFetch(std::function<void()> fetch) { fetch_ = std::move(fetch); }
    void fetch() const {
        if (fetch_)
            fetch_();
    }

    /// `confirm` has it found out, by and by, whether a secret focus is still what it was.
    void setConfirm(std::function<void()> confirm) { confirm_ = std::move(confirm); }
    void confirm() const {
        if (confirm_)
            confirm_();
    }

    /// A listener takes itself away before it goes.
    void add(SecureEntryListener& listener) { listeners_.push_back(&listener); }
    void remove(SecureEntryListener& listener) { std::erase(listeners_, &listener); }

private:
    FocusSecrecy secrecy_ = FocusSecrecy::untold;
    std::function<void()> fetch_;
    std::function<void()> confirm_;
    std::vector<SecureEntryListener*> listeners_;
};

} // namespace kelvora
