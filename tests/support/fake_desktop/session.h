// SPDX-License-Identifier: MIT
#pragma once

#include "host/address_opener.h"
#include "host/login_item.h"
#include "host/permissions.h"
#include "host/secure_input.h"
#include "host/user_defaults.h"

#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace kelvora::fake {

/// What the program has asked of its session, in order: "store KEY", "prompt KIND", "open ADDRESS",
/// and what lifecycle.h adds.
using SessionCalls = std::vector<std::string>;

/// Poses as these, and notes what is asked of them.
template <typename... Interfaces>
struct Recorder : Interfaces... {
    explicit Recorder(SessionCalls& calls) : calls_(calls) {}
    SessionCalls& calls_;
};

struct Permissions final : Recorder<kelvora::Permissions> {
    using Recorder::Recorder;
    bool accessibility = true;
    bool inputMonitoring = true;

    [[nodiscard]] bool isAccessibilityTrusted() override { return accessibility; }
    [[nodiscard]] bool mayListenToEvents() override { return inputMonitoring; }
    void requestAccessibilityTrust() override { calls_.emplace_back("prompt accessibility"); }
    void requestListeningToEvents() override { calls_.emplace_back("prompt listening"); }
};

struct Defaults final : Recorder<UserDefaults> {
    using Recorder::Recorder;
    using Value = std::variant<bool, double, std::string>;

    std::map<std::string, Value, std::less<>> values;

    [[nodiscard]] std::optional<bool> boolean(std::string_view key) override {
        const std::optional<double> value = number(key);
        return value == 0 || value == 1 ? std::optional(value == 1) : std::nullopt;
    }
    [[nodiscard]] std::optional<double> number(std::string_view key) override {
        if (const auto* value = find<bool>(key))
            return *value ? 1 : 0;
        const auto* value = find<double>(key);
        return value ? std::optional(*value) : std::nullopt;
    }
    [[nodiscard]] std::optional<std::string> string(std::string_view key) override {
        const auto* value = find<std::string>(key);
        return value ? std::optional(*value) : std::nullopt;
    }
    void setBoolean(std::string_view key, bool value) override { store(key, value); }
    void setNumber(std::string_view key, double value) override { store(key, value); }
    void setString(std::string_view key, std::string_view value) override {
        store(key, std::string(value));
    }

private:
    template <typename T>
    const T* find(std::string_view key) const {
        const auto value = values.find(key);
        return value == values.end() ? nullptr : std::get_if<T>(&value->second);
    }
    void store(std::string_view key, Value value) {
        calls_.push_back("store " + std::string(key));
        values.insert_or_assign(std::string(key), std::move(value));
    }
};

class Secrecy final : public SecureInput {
public:
    bool isOn = false;

    [[nodiscard]] bool isSecureEventInputEnabled() const override { return isOn; }
};

class Login final : public LoginItem {
public:
    bool enabled = false;
    std::optional<std::string> refusal; ///< absent: changes are taken

    [[nodiscard]] bool isEnabled() override { return enabled; }
    [[nodiscard]] std::optional<std::string> setEnabled(bool isEnabled) override {
        if (!refusal)
            enabled = isEnabled;
        return refusal;
    }
};

struct Addresses final : Recorder<AddressOpener> {
    using Recorder::Recorder;
    bool open(std::string_view address) override {
        calls_.push_back("open " + std::string(address));
        return true;
    }
};

} // namespace kelvora::fake
