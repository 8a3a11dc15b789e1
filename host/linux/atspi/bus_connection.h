// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_reference.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

struct sd_bus;

namespace kelvora {

/// Why a call on a message bus has no result.
enum class BusError {
    none,
    timedOut,    ///< no answer before the deadline; it may still take effect later
    notAsked,    ///< the deadline had passed before; nothing was sent
    lost,        ///< the connection itself is gone, or there never was one
    gone,        ///< the application or the object is not there any more
    unsupported, ///< the object has no such method, property or interface
    refused,     ///< any other error reply, or an answer of an unexpected type
};

template <typename Value>
struct BusReply {
    BusError error = BusError::none;
    Value value{}; ///< as made by its constructor unless `error` is `none`

    [[nodiscard]] explicit operator bool() const { return error == BusError::none; }
};

/// The application or the bus did not answer: asking on has no sense.
[[nodiscard]] constexpr bool isWithoutAnswer(BusError error) {
    return error == BusError::timedOut || error == BusError::notAsked || error == BusError::lost;
}

/// A reply without content, or whose content does not matter.
struct BusNothing {};

/// Text is UTF-8. A reference stands for a structure of bus name and object path.
using BusValue = std::variant<std::monostate, bool, std::int32_t, std::uint32_t, std::string,
                              std::vector<std::string>, AtspiReference>;

struct BusSignal {
    std::string sender; ///< unique name
    std::string path;
    std::string interface;
    std::string member;
    /// In their order, what is inside a variant in its place; std::monostate for what has no place
    /// in BusValue, dictionaries included.
    std::vector<BusValue> arguments;
    /// The entries of all dictionaries from text to variant.
    std::map<std::string, BusValue> properties;
};

/// A connection of its own to a message bus, with blocking calls that end at a deadline. One thread
/// at a time.
class BusConnection {
public:
    using Clock = std::chrono::steady_clock;
    using Arguments = std::vector<BusValue>;

    /// No call takes longer.
    static constexpr std::chrono::milliseconds longestCall{500};

    /// Connects to a bus by its address; null when it is not reached within `longestCall`.
    [[nodiscard]] static std::unique_ptr<BusConnection> open(const std::string& address);
    /// To the bus of the user's session, found as every program finds it (DBUS_SESSION_BUS_ADDRESS,
    /// else the one in XDG_RUNTIME_DIR).
    [[nodiscard]] static std::unique_ptr<BusConnection> openSession();

    ~BusConnection();
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    /// No call after this ends later than `deadline`; one that begins later fails with
    /// `notAsked`.
    void setDeadline(Clock::time_point deadline) { deadline_ = deadline; }
    void clearDeadline() { deadline_ = Clock::time_point::max(); }

    /// Value is one of BusNothing, bool, int32_t, uint32_t, std::string, AtspiReference,
    /// std::vector of uint32_t, std::string or AtspiReference.
    template <typename Value>
    [[nodiscard]] BusReply<Value> call(const AtspiReference& object, const char* interface,
                                       const char* method, const Arguments& arguments = {});

    /// Value is one of bool, int32_t, std::string, AtspiReference.
    template <typename Value>
    [[nodiscard]] BusReply<Value> property(const AtspiReference& object, const char* interface,
                                           const char* name);
    [[nodiscard]] BusError setProperty(const AtspiReference& object, const char* interface,
                                       const char* name, bool value);

    /// The process that a bus name belongs to.
    [[nodiscard]] BusReply<std::uint32_t> processOf(const std::string& busName);

    /// Hands every signal that matches the rule ("type='signal',interface='...',...") to `handler`
    /// from within `dispatch`, until the connection goes. False when the bus refuses the rule.
    [[nodiscard]] bool subscribe(const std::string& rule,
                                 std::function<void(const BusSignal&)> handler);
    /// Runs the handlers of what has arrived, without waiting, at most of the next 256 messages:
    /// `wait` does not wait while there are more. False when the connection is lost. Handlers may
    /// call.
    [[nodiscard]] bool dispatch();
    /// Waits until something arrives, `wakeDescriptor` becomes readable (-1: none) or the time is
    /// over (negative: no end).
    void wait(std::chrono::milliseconds timeout, int wakeDescriptor = -1);

private:
    friend class BusBatch;
    struct Bus; // the library's handle, and the subscriptions

    explicit BusConnection(std::unique_ptr<Bus> bus);

    [[nodiscard]] sd_bus* handle() const;
    /// Microseconds that a call may take now; 0 when the deadline has passed.
    [[nodiscard]] std::uint64_t timeLeft() const;

    std::unique_ptr<Bus> bus_;
    Clock::time_point deadline_ = Clock::time_point::max();
};

} // namespace kelvora
