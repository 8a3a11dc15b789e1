// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/bus_connection.h"

#include <functional>
#include <list>
#include <memory>
#include <vector>

struct sd_bus_message;

namespace kelvora {

/// A method and its arguments, to be asked of any object.
template <typename Result>
struct BusMethod {
    using Value = Result;

    const char* interface;
    const char* name;
    std::vector<BusValue> arguments = {};
};

template <typename Result>
struct BusProperty {
    using Value = Result;

    const char* interface;
    const char* name;
};

/// Calls that are all sent before the first answer is awaited: together they take hardly longer
/// than one. Calls to the same application arrive there in their order. Not from within a handler
/// of the connection; at its thread.
class BusBatch {
public:
    /// The connection outlives the batch.
    explicit BusBatch(BusConnection& connection);
    /// What is not answered by now is not awaited.
    ~BusBatch();
    BusBatch(const BusBatch&) = delete;
    BusBatch& operator=(const BusBatch&) = delete;

    /// Sends a call. `reply` outlives the batch; it is set by `awaitReplies`. Value is one of bool,
    /// int32_t, uint32_t, std::string, std::pair<int32_t, int32_t> (two results), std::vector of
    /// uint32_t or std::string.
    template <typename Value>
    void add(const AtspiReference& object, const BusMethod<Value>& method, BusReply<Value>& reply);
    /// Value is int32_t.
    template <typename Value>
    void add(const AtspiReference& object, const BusProperty<Value>& property,
             BusReply<Value>& reply);

    /// Returns when all are answered, or the connection's deadline or `longestCall` is over.
    void awaitReplies();

private:
    struct Call;

    void send(const AtspiReference& object, const char* interface, const char* method,
              const std::vector<BusValue>& arguments, BusError& error,
              std::function<bool(sd_bus_message*)> read);
    /// Those that are still open come to this.
    void giveUp(BusError error);

    BusConnection& connection_;
    BusConnection::Clock::time_point end_;
    std::list<Call> calls_; ///< open ones; the bus library refers to them
};

} // namespace kelvora
