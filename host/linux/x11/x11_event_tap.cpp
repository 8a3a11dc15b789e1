// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_event_tap.h"

#include "host/linux/xkb/keysym_text.h"

#include <utility>

namespace kelvora {
namespace {

constexpr int maximumRounds = 8;
constexpr std::uint8_t lastClickButton = 3;
constexpr std::uint8_t firstExtraButton = 8; // 4 to 7 are the wheels

} // namespace

std::unique_ptr<X11EventTap> X11EventTap::create(const char* display, EventLoop& loop,
                                                 X11PostingMarks& marks,
                                                 const X11EventSource::Callbacks& callbacks,
                                                 SecureEntry* secureEntry, EventMask mask,
                                                 EventHandler handler) {
    XcbConnectionPtr connection = connectX11(display);
    if (!connection)
        return nullptr;
    std::unique_ptr<X11Keymap> keymap = X11Keymap::create(connection.get());
    if (!keymap)
        return nullptr;
    std::unique_ptr<X11EventTap> tap(new X11EventTap(std::move(connection), std::move(keymap), loop,
                                                     marks, callbacks, secureEntry, mask,
                                                     std::move(handler)));
    tap->record_ = X11RecordStream::create(display, *tap);
    if (!tap->record_)
        return nullptr;
    X11EventTap& self = *tap;
    tap->recordWatch_ =
        loop.watchReadable(tap->record_->descriptor(), [&self] { self.processRecord(); });
    tap->noticeWatch_ = loop.watchReadable(xcb_get_file_descriptor(tap->connection_.get()),
                                           [&self] { self.processNotices(); });
    return tap;
}

X11EventTap::X11EventTap(XcbConnectionPtr connection, std::unique_ptr<X11Keymap> keymap,
                         EventLoop& loop, X11PostingMarks& marks,
                         const X11EventSource::Callbacks& callbacks, SecureEntry* secureEntry,
                         EventMask mask, EventHandler handler)
    : marks_(marks), callbacks_(callbacks), mask_(mask), handler_(std::move(handler)),
      gate_(
          loop, secureEntry,
          [this](const InputEvent& event) {
              if ((mask_ & eventMaskBit(event.type)) != 0)
                  handler_(event);
          },
          [this] {
              if (callbacks_.onFocusChanged)
                  callbacks_.onFocusChanged();
          },
          [this](std::uint8_t fence) { marks_.fencePassed(fence); }),
      connection_(std::move(connection)), keymap_(std::move(keymap)),
      interpreter_(loadComposeTable(keymap_->context()).get()), focus_(connection_.get()) {
    interpreter_.setKeymap(keymap_->keymap());
}

X11EventTap::~X11EventTap() = default;

void X11EventTap::setEnabled(bool enabled) {
    if (enabled == record_->isEnabled())
        return;
    interpreter_.reset();
    pendingFake_.reset();
    if (enabled) {
        static_cast<void>(record_->enable());
        focus_.start();
        gate_.handleFocusClient(focus_.client());
    } else {
        record_->disable();
        gate_.clear();
    }
}

bool X11EventTap::isEnabled() const {
    return record_->isEnabled();
}

void X11EventTap::processRecord() {
    if (!record_->process() && callbacks_.onServerGone) {
        recordWatch_.reset();
        callbacks_.onServerGone();
    }
}

void X11EventTap::processNotices() {
    // Fetching a keymap may bring in further notices, which the loop cannot see; whoever never
    // stops changing is not awaited.
    XcbPtr<xcb_generic_event_t> event(xcb_poll_for_event(connection_.get()));
    for (int round = 0; round < maximumRounds; ++round) {
        for (; event; event.reset(xcb_poll_for_queued_event(connection_.get())))
            keymap_->handleEvent(event.get());
        // Here and not where keys are handled: it may have to ask the server.
        interpreter_.setKeymap(keymap_->keymap());
        focus_.processReplies();
        gate_.handleFocusClient(focus_.client());
        event.reset(xcb_poll_for_queued_event(connection_.get()));
        if (!event)
            break;
    }
    if (xcb_connection_has_error(connection_.get()) != 0)
        noticeWatch_.reset();
}

void X11EventTap::onFakeInput(const X11FakeInput& request) {
    pendingFake_ = request;
}

void X11EventTap::onDeviceEvent(const X11DeviceEvent& event) {
    // The server makes the event of a synthetic request before it takes up anything else, so only
    // the very next one can be it; a request without an event leaves nothing behind.
    const std::optional<X11FakeInput> fake = std::exchange(pendingFake_, std::nullopt);
    const bool isFake = fake && fake->isKey && event.isKey && fake->detail == event.detail &&
                        fake->isPress == event.isPress;
    const bool isOurs = isFake && fake->client == marks_.markedClient.load();
    if (event.isKey) {
        const bool isReplayed = isFake && fake->client == marks_.replayingClient.load();
        const bool isByUser = !isOurs && !isReplayed;
        if (isByUser && event.isPress)
            marks_.userTypesThroughXTest = isFake && fake->isCoreDevice;
        deliverKey(event, isOurs);
        if (isByUser && !event.isPress && marks_.onUserKeyRelease)
            marks_.onUserKeyRelease(event.detail);
    } else if (!focus_.isKeyboardTaken()) {
        deliverButton(event);
    }
}

void X11EventTap::onFocusEvent(const X11FocusEvent& event) {
    pendingFake_.reset();
    switch (focus_.onFocusEvent(event)) {
    case X11FocusWatch::Change::none:
        return;
    case X11FocusWatch::Change::grab:
        gate_.handleGrab();
        return;
    case X11FocusWatch::Change::window:
        gate_.handleWindowChange();
        return;
    }
}

void X11EventTap::onKeyboardGrabRequest(std::uint32_t client) {
    // Our own questions whether it is grabbed come as requests, too.
    const std::uint32_t own = xcb_get_setup(connection_.get())->resource_id_base;
    if (client != own && client != marks_.markedClient.load() &&
        client != marks_.replayingClient.load())
        focus_.onKeyboardGrabRequest(client);
}

void X11EventTap::onNoOperation(std::uint32_t client, std::uint8_t number) {
    if (client == marks_.markedClient.load())
        gate_.handleFence(number);
}

void X11EventTap::deliverKey(const X11DeviceEvent& event, bool isOurs) {
    const auto interpreted =
        interpreter_.interpret({.keycode = event.detail,
                                .isPress = event.isPress,
                                .modifiers = static_cast<std::uint8_t>(event.state & 0xFF),
                                .group = static_cast<std::uint32_t>((event.state >> 13) & 3),
                                .isSynthetic = isOurs});
    if (!interpreted || focus_.isKeyboardTaken())
        return;
    InputEvent result = *interpreted;
    if (isOurs) {
        // Posting an event with flags makes no modifier change of its own.
        if (result.type == EventType::flagsChanged)
            return;
        result.sourceUserData = marks_.mark.load();
    }
    deliver(result, event.time);
}

void X11EventTap::deliverButton(const X11DeviceEvent& event) {
    InputEvent result;
    if (event.detail == 1)
        result.type = EventType::leftMouseDown;
    else if (event.detail == lastClickButton)
        result.type = EventType::rightMouseDown;
    else if (event.detail == 2 || event.detail >= firstExtraButton)
        result.type = EventType::otherMouseDown;
    else
        return;
    deliver(result, event.time);
}

void X11EventTap::deliver(InputEvent event, std::uint32_t time) {
    event.timestamp = time_.seconds(time);
    gate_.handleEvent(event);
}

} // namespace kelvora
