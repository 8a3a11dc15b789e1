// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/x11_connection.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace kelvora {

/// Key or button event as the server processed it (the core protocol's numbers).
struct X11DeviceEvent {
    std::uint8_t detail = 0; ///< key code or button
    bool isPress = false;
    bool isKey = false;
    std::uint16_t state = 0; ///< modifiers and group before the event
    std::uint32_t time = 0;  ///< the server's millisecond clock, 32 bits, wrapping
};

/// A synthetic event that a client asked for; its device event follows at once, if there is one.
struct X11FakeInput {
    std::uint32_t client = 0; ///< resource id base of the client
    std::uint8_t detail = 0;
    bool isPress = false;
    bool isKey = false;
    bool isCoreDevice = false; ///< through the XTEST devices, not through another slave device
};

/// A focus event that some client was sent.
struct X11FocusEvent {
    bool isIn = false;
    std::uint8_t mode = 0;   ///< NotifyNormal 0, Grab 1, Ungrab 2, WhileGrabbed 3
    std::uint8_t detail = 0; ///< NotifyAncestor 0 ... NotifyPointer 5 ...
    xcb_window_t window = 0;
};

/// What the server tells of all its clients, in the order in which it happened.
class X11RecordListener {
public:
    virtual ~X11RecordListener() = default;
    virtual void onDeviceEvent(const X11DeviceEvent& event) = 0;
    virtual void onFakeInput(const X11FakeInput& request) = 0;
    virtual void onFocusEvent(const X11FocusEvent& event) = 0;
    /// A client asked for the keyboard for itself; focus events tell whether it got it.
    virtual void onKeyboardGrabRequest(std::uint32_t client) = 0;
    /// A client sent a NoOperation: a place in the stream that it can find again, by the number
    /// that it wrote into the request's unused byte.
    virtual void onNoOperation(std::uint32_t client, std::uint8_t number) = 0;
};

/// The RECORD extension as one stream over two connections of its own. Main thread only.
class X11RecordStream {
public:
    /// Null when the server has no RECORD extension or cannot be reached. The listener outlives the
    /// stream.
    [[nodiscard]] static std::unique_ptr<X11RecordStream> create(const char* display,
                                                                 X11RecordListener& listener);
    ~X11RecordStream();

    /// Starts the stream; waits until it runs. False when the server refuses.
    [[nodiscard]] bool enable();
    /// Ends the stream; what is under way is dropped.
    void disable();
    [[nodiscard]] bool isEnabled() const { return enabled_; }

    [[nodiscard]] int descriptor() const;
    /// False when the server is gone.
    [[nodiscard]] bool isConnected() const;
    /// Hands everything that has arrived to the listener. Does not wait. The stream is not enabled
    /// any more when the server has ended it.
    void process();

private:
    struct Majors {
        std::uint8_t xtest = 0;
        std::uint8_t xinput = 0;      ///< 0 without the XInput extension
        std::uint8_t xinputEvent = 0; ///< first event code of XInput
    };

    X11RecordStream(XcbConnectionPtr control, XcbConnectionPtr data, Majors majors,
                    X11RecordListener& listener);

    bool createContext();
    void dispatchEvents(std::span<const std::byte> data);
    void dispatchRequests(std::uint32_t client, std::span<const std::byte> data);
    void dispatchRequest(std::uint32_t client, std::span<const std::byte> request);

    XcbConnectionPtr control_;
    XcbConnectionPtr data_;
    Majors majors_;
    X11RecordListener& listener_;
    std::uint32_t context_ = 0;
    unsigned sequence_ = 0; ///< of the request whose answers are the stream
    bool enabled_ = false;
};

} // namespace kelvora
