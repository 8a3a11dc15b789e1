// SPDX-License-Identifier: MIT
#pragma once

#include "app/io/event_posting.h"
#include "host/event_poster.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace kelvora {

/// Posts through the desktop, and marks every event as this program's own.
class SystemEventPoster final : public EventPosting {
public:
    /// The mark of every event posted here: the bytes of "ROVLEK", least significant first.
    static constexpr std::int64_t userData = 0x4B454C564F52;

    /// `now` tells the seconds of a clock that never goes back and that the poster's sleep moves.
    explicit SystemEventPoster(EventPoster& poster, std::function<double()> now = steadyTime);

    void sendKey(KeyCode keyCode, EventFlags flags, double delay) override;
    void typeText(std::u16string_view text) override;
    void waitForModifiersReleased(double timeout) override;
    void sleep(double seconds) override;

private:
    [[nodiscard]] static double steadyTime();

    void post(KeyCode keyCode, KeyDirection direction, EventFlags flags, const EventText& text,
              double delay);

    EventPoster& poster_;
    std::function<double()> now_;
};

} // namespace kelvora
