// SPDX-License-Identifier: MIT
#include "host/linux/atspi/bus_connection.h"

#include "host/linux/atspi/bus_message.h"

#include <poll.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <deque>
#include <limits>

namespace kelvora {
namespace {

using std::chrono::microseconds;

struct ErrorGuard {
    sd_bus_error error = SD_BUS_ERROR_NULL;

    ErrorGuard() = default;
    ErrorGuard(const ErrorGuard&) = delete;
    ErrorGuard& operator=(const ErrorGuard&) = delete;
    ~ErrorGuard() { sd_bus_error_free(&error); }
};

const AtspiReference busDriver{"org.freedesktop.DBus", "/org/freedesktop/DBus"};
constexpr const char* driverInterface = "org.freedesktop.DBus";

struct BusDeleter {
    // What is still to be sent is flushed by nobody: the peer may have stopped reading.
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
using BusHandle = std::unique_ptr<sd_bus, BusDeleter>;

/// Starts the connection and sees it through its greeting.
bool start(sd_bus* bus) {
    if (sd_bus_set_method_call_timeout(bus, microseconds(BusConnection::longestCall).count()) < 0 ||
        sd_bus_start(bus) < 0)
        return false;
    const auto end = BusConnection::Clock::now() + BusConnection::longestCall;
    for (;;) {
        const int ready = sd_bus_is_ready(bus);
        if (ready != 0)
            return ready > 0;
        const int progress = sd_bus_process(bus, nullptr);
        if (progress < 0)
            return false;
        if (progress > 0)
            continue;
        const auto left =
            std::chrono::duration_cast<microseconds>(end - BusConnection::Clock::now());
        if (left.count() <= 0 || sd_bus_wait(bus, static_cast<std::uint64_t>(left.count())) < 0)
            return false;
    }
}

} // namespace

struct BusConnection::Bus {
    using Handler = std::function<void(const BusSignal&)>;

    std::deque<Handler> handlers; // the handle refers to them: it goes first, and they stay put
    BusHandle handle;
};

namespace {

int handOver(sd_bus_message* message, void* handler, sd_bus_error* /*error*/) {
    (*static_cast<std::function<void(const BusSignal&)>*>(handler))(readSignal(message));
    return 0;
}

} // namespace

BusConnection::BusConnection(std::unique_ptr<Bus> bus) : bus_(std::move(bus)) {}

BusConnection::~BusConnection() = default;

sd_bus* BusConnection::handle() const {
    return bus_->handle.get();
}

std::unique_ptr<BusConnection> BusConnection::open(const std::string& address) {
    sd_bus* raw = nullptr;
    if (sd_bus_new(&raw) < 0)
        return nullptr;
    BusHandle handle(raw);
    if (sd_bus_set_address(raw, address.c_str()) < 0 || sd_bus_set_bus_client(raw, 1) < 0 ||
        !start(raw))
        return nullptr;
    auto bus = std::make_unique<Bus>();
    bus->handle = std::move(handle);
    return std::unique_ptr<BusConnection>(new BusConnection(std::move(bus)));
}

std::uint64_t BusConnection::timeLeft() const {
    const auto now = Clock::now();
    if (deadline_ <= now)
        return 0;
    const auto left = std::min<Clock::duration>(deadline_ - now, longestCall);
    return static_cast<std::uint64_t>(
        std::max<std::int64_t>(std::chrono::duration_cast<microseconds>(left).count(), 1));
}

std::unique_ptr<BusConnection> BusConnection::openSession() {
    sd_bus* raw = nullptr;
    // Only for the address that it finds: opening does not wait, but its greeting has no deadline.
    if (sd_bus_open_user(&raw) < 0)
        return nullptr;
    const BusHandle handle(raw);
    const char* address = nullptr;
    if (sd_bus_get_address(raw, &address) < 0)
        return nullptr;
    return open(address);
}

template <typename Value>
BusReply<Value> BusConnection::call(const AtspiReference& object, const char* interface,
                                    const char* method, const Arguments& arguments) {
    const MessageHandle message = newCall(handle(), object, interface, method, arguments);
    if (!message)
        return {sd_bus_is_open(handle()) > 0 ? BusError::refused : BusError::lost, {}};
    const std::uint64_t time = timeLeft();
    if (time == 0)
        return {BusError::notAsked, {}};
    ErrorGuard guard;
    sd_bus_message* rawReply = nullptr;
    const int result = sd_bus_call(handle(), message.get(), time, &guard.error, &rawReply);
    const MessageHandle reply(rawReply);
    if (result < 0)
        return {errorOf(result, guard.error), {}};
    BusReply<Value> answer;
    if (!readValue(reply.get(), answer.value))
        return {BusError::refused, {}};
    return answer;
}

template <typename Value>
BusReply<Value> BusConnection::property(const AtspiReference& object, const char* interface,
                                        const char* name) {
    const auto reply = call<InVariant<Value>>(object, propertiesInterface, "Get",
                                              {std::string(interface), std::string(name)});
    return {reply.error, reply.value.value};
}

BusError BusConnection::setProperty(const AtspiReference& object, const char* interface,
                                    const char* name, bool value) {
    const MessageHandle message = newPropertySet(handle(), object, interface, name, value);
    if (!message)
        return BusError::lost;
    const std::uint64_t time = timeLeft();
    if (time == 0)
        return BusError::notAsked;
    ErrorGuard guard;
    const int result = sd_bus_call(handle(), message.get(), time, &guard.error, nullptr);
    return errorOf(result, guard.error);
}

BusReply<std::uint32_t> BusConnection::processOf(const std::string& busName) {
    return call<std::uint32_t>(busDriver, driverInterface, "GetConnectionUnixProcessID", {busName});
}

bool BusConnection::subscribe(const std::string& rule,
                              std::function<void(const BusSignal&)> handler) {
    bus_->handlers.push_back(std::move(handler));
    return sd_bus_add_match(handle(), nullptr, rule.c_str(), handOver, &bus_->handlers.back()) >= 0;
}

bool BusConnection::dispatch() {
    constexpr int mostMessages = 256;
    for (int message = 0; message < mostMessages; ++message) {
        const int progress = sd_bus_process(handle(), nullptr);
        if (progress < 0 || sd_bus_is_open(handle()) <= 0)
            return false;
        if (progress == 0)
            break;
    }
    return true;
}

void BusConnection::wait(std::chrono::milliseconds timeout, int wakeDescriptor) {
    sd_bus* const bus = handle();
    const int descriptor = sd_bus_get_fd(bus);
    const int events = sd_bus_get_events(bus);
    if (descriptor < 0 || events < 0)
        return;
    std::uint64_t libraryDeadline = std::numeric_limits<std::uint64_t>::max();
    if (sd_bus_get_timeout(bus, &libraryDeadline) < 0)
        return;
    // Zero: there is work that has been read already.
    if (libraryDeadline == 0)
        return;
    std::array<pollfd, 2> watched{
        {{descriptor, static_cast<short>(events), 0}, {wakeDescriptor, POLLIN, 0}}};
    const auto milliseconds =
        std::min<std::int64_t>(timeout.count(), std::numeric_limits<int>::max());
    poll(watched.data(), watched.size(), static_cast<int>(milliseconds));
}

// The types that may be asked for.
#define KELVORA_BUS_CALL(...)                                                                      \
    template BusReply<__VA_ARGS__> BusConnection::call<__VA_ARGS__>(                               \
        const AtspiReference&, const char*, const char*, const Arguments&)
#define KELVORA_BUS_PROPERTY(...)                                                                  \
    template BusReply<__VA_ARGS__> BusConnection::property<__VA_ARGS__>(const AtspiReference&,     \
                                                                        const char*, const char*)
KELVORA_BUS_CALL(BusNothing);
KELVORA_BUS_CALL(bool);
KELVORA_BUS_CALL(std::int32_t);
KELVORA_BUS_CALL(std::uint32_t);
KELVORA_BUS_CALL(std::string);
KELVORA_BUS_CALL(AtspiReference);
KELVORA_BUS_CALL(std::vector<std::uint32_t>);
KELVORA_BUS_CALL(std::vector<std::string>);
KELVORA_BUS_CALL(std::vector<AtspiReference>);
KELVORA_BUS_PROPERTY(bool);
KELVORA_BUS_PROPERTY(std::int32_t);
KELVORA_BUS_PROPERTY(std::string);
KELVORA_BUS_PROPERTY(AtspiReference);
#undef KELVORA_BUS_CALL
#undef KELVORA_BUS_PROPERTY

} // namespace kelvora
