// SPDX-License-Identifier: MIT
#pragma once

#include "host/accessibility.h"
#include "host/linux/atspi/atspi_connection.h"
#include "host/linux/atspi/bus_batch.h"
#include "host/linux/atspi/text_units.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>

namespace kelvora {

enum class Toolkit {
    other,
    gtk, ///< also LibreOffice and whatever else speaks through GTK
    qt,
};

[[nodiscard]] AccessibilityError toAccessibilityError(BusError error);

/// A text that an application was asked to put in without answering: it may be there later.
struct UnansweredInsertion {
    AtspiReference object;
    std::int32_t position = 0; ///< where it is put in, in the application's count
    std::u16string before;     ///< what stands right before it
    std::u16string text;
    std::u16string behind;
    std::int32_t lengthBefore = 0; ///< of the object's whole text without it
    BusConnection::Clock::time_point since = BusConnection::Clock::now();
};

/// What all elements share: the connection, made when first needed, and what is known of the
/// applications on it. An application that let a call run out of time is not asked again for a
/// while, so that all the calls of one conversion together wait for it only once. One thread at a
/// time.
class AtspiSession {
public:
    /// How long an application that did not answer is left alone.
    static constexpr std::chrono::milliseconds restAfterTimeout{2000};

    /// Begins one request of a caller: all calls until the next one end within `limit`. False when
    /// there is no accessibility.
    [[nodiscard]] bool begin(std::chrono::milliseconds limit = BusConnection::longestCall);
    /// More time for a request that must not be left half done.
    void extend(std::chrono::milliseconds limit);

    // As those of BusConnection. Without a connection, and for an application that is being left
    // alone, they fail at once.
    template <typename Value>
    [[nodiscard]] BusReply<Value> call(const AtspiReference& object, const char* interface,
                                       const char* method,
                                       const BusConnection::Arguments& arguments = {}) {
        BusReply<Value> reply{mayAsk(object), {}};
        if (reply.error == BusError::none)
            reply = connection_->call<Value>(object, interface, method, arguments);
        note(object, reply.error);
        return reply;
    }
    template <typename Value>
    [[nodiscard]] BusReply<Value> property(const AtspiReference& object, const char* interface,
                                           const char* name) {
        BusReply<Value> reply{mayAsk(object), {}};
        if (reply.error == BusError::none)
            reply = connection_->property<Value>(object, interface, name);
        note(object, reply.error);
        return reply;
    }
    /// Several BusMethod and BusProperty of one object at once: hardly longer than one.
    template <typename... Questions>
    [[nodiscard]] std::tuple<BusReply<typename Questions::Value>...>
    ask(const AtspiReference& object, const Questions&... questions) {
        const BusError refusal = mayAsk(object);
        std::tuple<BusReply<typename Questions::Value>...> replies(
            BusReply<typename Questions::Value>{refusal, {}}...);
        if (refusal != BusError::none)
            return replies;
        std::apply(
            [&](auto&... reply) {
                BusBatch batch(*connection_);
                (batch.add(object, questions, reply), ...);
                batch.awaitReplies();
            },
            replies);
        std::apply([&](const auto&... reply) { (note(object, reply.error), ...); }, replies);
        return replies;
    }
    [[nodiscard]] BusReply<AtspiStates> states(const AtspiReference& object);
    [[nodiscard]] BusReply<Toolkit> toolkit(const AtspiReference& object);

    /// Absent until something in the application's text has told.
    [[nodiscard]] std::optional<OffsetUnit> offsetUnit(const AtspiReference& object);
    void learnOffsetUnit(const AtspiReference& object, OffsetUnit unit);

    /// Only the last one is kept, and not for long.
    void remember(UnansweredInsertion insertion) { unanswered_ = std::move(insertion); }
    /// The one into this object, if any.
    [[nodiscard]] std::optional<UnansweredInsertion> unanswered(const AtspiReference& object);
    void forgetUnanswered() { unanswered_.reset(); }

private:
    using Clock = BusConnection::Clock;

    struct Application {
        std::optional<Toolkit> toolkit;
        std::optional<OffsetUnit> offsetUnit;
        Clock::time_point restsUntil = Clock::time_point::min();
    };

    [[nodiscard]] BusError mayAsk(const AtspiReference& object);
    void note(const AtspiReference& object, BusError error);

    std::unique_ptr<BusConnection> connection_;
    Clock::time_point nextAttempt_ = Clock::time_point::min();
    std::optional<UnansweredInsertion> unanswered_;
    std::map<std::string, Application> applications_; ///< by bus name, which is never used again
};

} // namespace kelvora
