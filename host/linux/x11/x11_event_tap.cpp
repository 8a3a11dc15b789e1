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
    std::unique_ptr<X11EventTap> tap(new X11EventTap(display, std::move(connection),
                                                     std::move(keymap), loop, marks, callbacks,
                                                     secureEntry, mask, std::move(handler)));
    if (!tap->openRecord())
        return nullptr;
    X11EventTap& self = *tap;
    tap->noticeWatch_ = loop.watchReadable(xcb_get_file_descriptor(tap->connection_.get()),
                                           [&self] { self.processNotices(); });
    return tap;
}

X11EventTap::X11EventTap(const char* display, XcbConnectionPtr connection,
                         std::unique_ptr<X11Keymap> keymap, EventLoop& loop, X11PostingMarks& marks,
                         const X11EventSource::Callbacks& callbacks, SecureEntry* secureEntry,
                         EventMask mask, EventHandler handler)
    : marks_(marks), callbacks_(callbacks), mask_(mask), handler_(std::move(handler)),
      gate_(
          loop, secureEntry,
          [this](const InputEvent& event) {
              if ((mask_ & eventMaskBit(event.type)) != 0)
                  handler_(event);
          },
          [this](FocusChange change) {
              if (callbacks_.onFocusChanged)
                  callbacks_.onFocusChanged(change);
          },
          [this](std::uint8_t fence) { marks_.fencePassed(fence); }),
      connection_(std::move(connection)), keymap_(std::move(keymap)),
      interpreter_(loadComposeTable(keymap_->context()).get()), focus_(connection_.get()),
      display_(display), loop_(loop) {
    interpreter_.setKeymap(keymap_->keymap());
}

X11EventTap::~X11EventTap() {
    if (record_ && record_->isEnabled())
        disable();
}

bool X11EventTap::openRecord() {
    std::unique_ptr<X11RecordStream> record = X11RecordStream::create(display_.c_str(), *this);
    if (!record)
        return false;
    recordWatch_ = loop_.watchReadable(record->descriptor(), [this] { processRecord(); });
    record_ = std::move(record);
    return true;
}

void X11EventTap::setEnabled(bool enabled) {
    if (enabled == record_->isEnabled())
        return;
    if (enabled) {
        // After an error of the stream the server may have forgotten what it was.
        if (!record_->enable() && openRecord())
            static_cast<void>(record_->enable());
        marks_.hasTap = record_->isEnabled();
        interpreter_.reset();
        pendingFake_.reset();
        focus_.start();
        gate_.handleFocusClient(focus_.client());
    } else {
        disable();
    }
}

void X11EventTap::disable() {
    record_->disable();
    forget();
}

void X11EventTap::forget() {
    marks_.hasTap = false;
    marks_.isPopupOpen = false;
    gate_.setTextRequired(false);
    interpreter_.reset();
    pendingFake_.reset();
    gate_.clear();
}

bool X11EventTap::isEnabled() const {
    return record_->isEnabled();
}

void X11EventTap::processRecord() {
    const bool wasEnabled = record_->isEnabled();
    record_->process();
    if (wasEnabled && !record_->isEnabled()) {
        forget();
        if (callbacks_.onFocusChanged)
            callbacks_.onFocusChanged(FocusChange::keysMissed);
    }
    if (!record_->isConnected()) {
        recordWatch_.reset();
        if (callbacks_.onServerGone)
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
    const X11FocusWatch::Change change = focus_.onFocusEvent(event);
    marks_.isPopupOpen = focus_.isPopupOpen();
    gate_.setTextRequired(focus_.isKeyboardReserved());
    switch (change) {
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
    if (!interpreted)
        return;
    noteInput(*interpreted, isOurs);
    if (focus_.isKeyboardTaken())
        return;
    if (!isOurs && focus_.followsPointer() && focus_.hasPointerMovedOn()) {
        gate_.handleWindowChange();
        processNotices(); // the loop cannot see what came along with the answer
    }
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
    noteInput(result, false);
    deliver(result, event.time);
}

void X11EventTap::noteInput(const InputEvent& event, bool isOurs) {
    // Alt alone opens a menu; Shift only makes a capital letter. A key that comes up says nothing:
    // the dialog that it has brought up may be there already. Our own keys come without their text.
    const bool isShortcut = (event.flags & (eventFlag::control | eventFlag::command)) != 0;
    if (event.type == EventType::flagsChanged ? isShortcut : !isOurs && mayMoveFocus(event))
        focus_.onInput(false);
    else if (event.type == EventType::keyDown)
        focus_.onInput(!isShortcut);
}

void X11EventTap::deliver(InputEvent event, std::uint32_t time) {
    event.timestamp = time_.seconds(time);
    gate_.handleEvent(event);
}

} // namespace kelvora
