// SPDX-License-Identifier: MIT
#include "app/io/system_event_poster.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <optional>
#include <utility>

namespace kelvora {

namespace {

constexpr std::size_t chunkSize = EventText::capacity;
constexpr double textEventPause = 0.01;
constexpr double modifierPollInterval = 0.005;
constexpr EventFlags awaitedModifiers =
    eventFlag::shift | eventFlag::control | eventFlag::option | eventFlag::command;
static_assert(chunkSize == 20 && awaitedModifiers == 0x1E0000);

/// The key that carries typed text; the desktop types the text and ignores the key.
constexpr KeyCode textCarrier = 0;

bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

std::size_t chunkLength(std::u16string_view rest) {
    if (rest.size() <= chunkSize) {
        return rest.size();
    }
    return isHighSurrogate(rest[chunkSize - 1]) ? chunkSize - 1 : chunkSize;
}

} // namespace

SystemEventPoster::SystemEventPoster(EventPoster& poster, std::function<double()> now)
    : poster_(poster), now_(std::move(now)) {}

double SystemEventPoster::steadyTime() {
    const auto sinceEpoch = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(sinceEpoch).count();
}

void SystemEventPoster::sendKey(KeyCode keyCode, EventFlags flags, double delay) {
    post(keyCode, KeyDirection::down, flags, {}, delay);
    post(keyCode, KeyDirection::up, flags, {}, delay);
}

void SystemEventPoster::typeText(std::u16string_view text) {
    while (!text.empty()) {
        const std::size_t length = chunkLength(text);
        const EventText chunk(text.substr(0, length));
        post(textCarrier, KeyDirection::down, 0, chunk, textEventPause);
        post(textCarrier, KeyDirection::up, 0, chunk, textEventPause);
        text.remove_prefix(length);
    }
}

void SystemEventPoster::waitForModifiersReleased(double timeout) {
    const double deadline = now_() + timeout;
    while (now_() < deadline) {
        if ((poster_.modifierState() & awaitedModifiers) == 0) {
            return;
        }
        sleep(modifierPollInterval);
    }
}

void SystemEventPoster::sleep(double seconds) {
    poster_.sleep(seconds);
}

void SystemEventPoster::post(KeyCode keyCode, KeyDirection direction, EventFlags flags,
                             const EventText& text, double delay) {
    std::optional<InputEvent> event = poster_.createKeyEvent(keyCode, direction);
    if (!event) {
        return;
    }
    event->flags = flags;
    event->sourceUserData = userData;
    event->text = text;
    poster_.post(*event);
    sleep(delay);
}

} // namespace kelvora
