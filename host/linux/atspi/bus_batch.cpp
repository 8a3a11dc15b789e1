// SPDX-License-Identifier: MIT
#include "host/linux/atspi/bus_batch.h"

#include "host/linux/atspi/bus_message.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

namespace kelvora {
namespace {

using std::chrono::microseconds;

struct SlotDeleter {
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};

} // namespace

struct BusBatch::Call {
    BusError& error;
    std::function<bool(sd_bus_message*)> read;
    std::unique_ptr<sd_bus_slot, SlotDeleter> slot;
    bool isAnswered = false;

    static int handle(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
        auto& call = *static_cast<Call*>(self);
        // When the connection goes, the library answers in the name of the application.
        if (sd_bus_is_open(sd_bus_message_get_bus(message)) <= 0)
            return 0;
        call.isAnswered = true;
        if (const sd_bus_error* const told = sd_bus_message_get_error(message))
            call.error = errorOf(-sd_bus_message_get_errno(message), *told);
        else
            call.error = call.read(message) ? BusError::none : BusError::refused;
        return 0;
    }
};

BusBatch::BusBatch(BusConnection& connection)
    : connection_(connection),
      end_(BusConnection::Clock::now() + microseconds(connection.timeLeft())) {}

BusBatch::~BusBatch() = default;

void BusBatch::send(const AtspiReference& object, const char* interface, const char* method,
                    const std::vector<BusValue>& arguments, BusError& error,
                    std::function<bool(sd_bus_message*)> read) {
    sd_bus* const bus = connection_.handle();
    const MessageHandle message = newCall(bus, object, interface, method, arguments);
    if (!message) {
        error = sd_bus_is_open(bus) > 0 ? BusError::refused : BusError::lost;
        return;
    }
    if (connection_.timeLeft() == 0) {
        error = BusError::notAsked;
        return;
    }
    Call& call = calls_.emplace_back(Call{error, std::move(read), nullptr});
    sd_bus_slot* slot = nullptr;
    // The library's own limit would look like an answer: `awaitReplies` has one.
    constexpr auto noLimit = std::numeric_limits<std::uint64_t>::max();
    const int result = sd_bus_call_async(bus, &slot, message.get(), Call::handle, &call, noLimit);
    if (result < 0) {
        error = errorOf(result, SD_BUS_ERROR_NULL);
        calls_.pop_back();
        return;
    }
    call.slot.reset(slot);
}

void BusBatch::awaitReplies() {
    sd_bus* const bus = connection_.handle();
    for (;;) {
        std::erase_if(calls_, [](const Call& call) { return call.isAnswered; });
        if (calls_.empty())
            return;
        int progress = sd_bus_process(bus, nullptr);
        if (progress == 0) {
            const auto left =
                std::chrono::ceil<microseconds>(end_ - BusConnection::Clock::now()).count();
            if (left <= 0)
                return giveUp(BusError::timedOut);
            progress = sd_bus_wait(bus, static_cast<std::uint64_t>(left));
        }
        if ((progress < 0 && progress != -EINTR) || sd_bus_is_open(bus) <= 0)
            return giveUp(BusError::lost);
    }
}

void BusBatch::giveUp(BusError error) {
    for (Call& call : calls_) {
        if (!call.isAnswered)
            call.error = error;
    }
    calls_.clear();
}

template <typename Value>
void BusBatch::add(const AtspiReference& object, const BusMethod<Value>& method,
                   BusReply<Value>& reply) {
    send(object, method.interface, method.name, method.arguments, reply.error,
         [&value = reply.value](sd_bus_message* message) { return readValue(message, value); });
}

template <typename Value>
void BusBatch::add(const AtspiReference& object, const BusProperty<Value>& property,
                   BusReply<Value>& reply) {
    send(object, propertiesInterface, "Get",
         {std::string(property.interface), std::string(property.name)}, reply.error,
         [&value = reply.value](sd_bus_message* message) {
             InVariant<Value> variant;
             const bool isRead = readValue(message, variant);
             value = std::move(variant.value);
             return isRead;
         });
}

// The types that may be asked for together.
#define KELVORA_BUS_ADD(Question, ...)                                                             \
    template void BusBatch::add<__VA_ARGS__>(const AtspiReference&, const Question<__VA_ARGS__>&,  \
                                             BusReply<__VA_ARGS__>&)
KELVORA_BUS_ADD(BusMethod, bool);
KELVORA_BUS_ADD(BusMethod, std::int32_t);
KELVORA_BUS_ADD(BusMethod, std::uint32_t);
KELVORA_BUS_ADD(BusMethod, std::string);
KELVORA_BUS_ADD(BusMethod, std::pair<std::int32_t, std::int32_t>);
KELVORA_BUS_ADD(BusMethod, std::vector<std::uint32_t>);
KELVORA_BUS_ADD(BusMethod, std::vector<std::string>);
KELVORA_BUS_ADD(BusProperty, std::int32_t);
#undef KELVORA_BUS_ADD

} // namespace kelvora
