// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/timed_secure_entry_gate.h"
#include "host/linux/x11/x11_event_source.h"
#include "host/linux/x11/x11_focus_watch.h"
#include "host/linux/x11/x11_keymap.h"
#include "host/linux/x11/x11_record_stream.h"
#include "host/linux/x11/x11_time.h"
#include "host/linux/xkb/key_interpreter.h"

#include <optional>
#include <string>

namespace kelvora {

/// The tap over RECORD. What is typed while another client holds the keyboard, or into a password
/// field, is not delivered.
class X11EventTap : public EventTap, private X11RecordListener {
public:
    /// Null when the server lacks RECORD or XKB, or cannot be reached.
    [[nodiscard]] static std::unique_ptr<X11EventTap>
    create(const char* display, EventLoop& loop, X11PostingMarks& marks,
           const X11EventSource::Callbacks& callbacks, SecureEntry* secureEntry, EventMask mask,
           EventHandler handler);
    ~X11EventTap() override;

    void setEnabled(bool enabled) override;
    [[nodiscard]] bool isEnabled() const override;

private:
    X11EventTap(const char* display, XcbConnectionPtr connection, std::unique_ptr<X11Keymap> keymap,
                EventLoop& loop, X11PostingMarks& marks, const X11EventSource::Callbacks& callbacks,
                SecureEntry* secureEntry, EventMask mask, EventHandler handler);

    void onDeviceEvent(const X11DeviceEvent& event) override;
    void onFakeInput(const X11FakeInput& request) override;
    void onFocusEvent(const X11FocusEvent& event) override;
    void onKeyboardGrabRequest(std::uint32_t client) override;
    void onNoOperation(std::uint32_t client, std::uint8_t number) override;

    bool openRecord();
    void disable();
    void forget();
    void processRecord();
    void processNotices();
    void deliverKey(const X11DeviceEvent& event, bool isOurs);
    void deliverButton(const X11DeviceEvent& event);
    void noteInput(const InputEvent& event, bool isOurs);
    void deliver(InputEvent event, std::uint32_t time);

    X11PostingMarks& marks_;
    X11EventSource::Callbacks callbacks_;
    EventMask mask_;
    EventHandler handler_;
    TimedSecureEntryGate gate_;

    XcbConnectionPtr connection_; ///< for notices
    std::unique_ptr<X11Keymap> keymap_;
    KeyInterpreter interpreter_;
    X11FocusWatch focus_;
    X11Time time_;
    std::string display_;
    EventLoop& loop_;
    std::unique_ptr<X11RecordStream> record_;
    /// The request whose device event comes next, if it comes at all.
    std::optional<X11FakeInput> pendingFake_;
    std::unique_ptr<DescriptorWatch> recordWatch_;
    std::unique_ptr<DescriptorWatch> noticeWatch_;
};

} // namespace kelvora
