// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_record_stream.h"

#include <xcb/record.h>
#include <xcb/xcbext.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <array>
#include <cstring>
#include <type_traits>

namespace kelvora {
namespace {

// Values of the RECORD protocol's reply categories.
constexpr std::uint8_t fromServer = 0;
constexpr std::uint8_t fromClient = 1;
constexpr std::uint8_t endOfData = 5;

constexpr std::uint8_t extensionDeviceKeyPress = 1; // offsets from XInput's first event code
constexpr std::uint8_t extensionDeviceKeyRelease = 2;

template <typename T>
T readAs(std::span<const std::byte> bytes) {
    static_assert(std::is_trivially_copyable_v<T>);
    T value{};
    std::memcpy(&value, bytes.data(), std::min(sizeof(T), bytes.size()));
    return value;
}

xcb_record_range_t deviceRange(std::uint8_t first, std::uint8_t last) {
    xcb_record_range_t range{};
    range.device_events = {first, last};
    return range;
}

xcb_record_range_t coreRequestRange(std::uint8_t request) {
    xcb_record_range_t range{};
    range.core_requests = {request, request};
    return range;
}

xcb_record_range_t extensionRequestRange(std::uint8_t major, std::uint16_t minor) {
    xcb_record_range_t range{};
    range.ext_requests = {{major, major}, {minor, minor}};
    return range;
}

} // namespace

std::unique_ptr<X11RecordStream> X11RecordStream::create(const char* display,
                                                         X11RecordListener& listener) {
    XcbConnectionPtr control = connectX11(display);
    XcbConnectionPtr data = connectX11(display);
    if (!control || !data)
        return nullptr;
    const auto* record = xcb_get_extension_data(control.get(), &xcb_record_id);
    const auto* xtest = xcb_get_extension_data(control.get(), &xcb_test_id);
    const auto* xinput = xcb_get_extension_data(control.get(), &xcb_input_id);
    if (record == nullptr || record->present == 0 || xtest == nullptr || xtest->present == 0)
        return nullptr;
    // RECORD wants its version asked for on the connection that will carry the data, too.
    for (xcb_connection_t* connection : {control.get(), data.get()}) {
        const XcbPtr<xcb_record_query_version_reply_t> version(xcb_record_query_version_reply(
            connection,
            xcb_record_query_version(connection, XCB_RECORD_MAJOR_VERSION,
                                     XCB_RECORD_MINOR_VERSION),
            nullptr));
        if (!version)
            return nullptr;
    }
    Majors majors;
    majors.xtest = xtest->major_opcode;
    if (xinput != nullptr && xinput->present != 0) {
        majors.xinput = xinput->major_opcode;
        majors.xinputEvent = xinput->first_event;
    }
    std::unique_ptr<X11RecordStream> stream(
        new X11RecordStream(std::move(control), std::move(data), majors, listener));
    if (!stream->createContext())
        return nullptr;
    return stream;
}

X11RecordStream::X11RecordStream(XcbConnectionPtr control, XcbConnectionPtr data, Majors majors,
                                 X11RecordListener& listener)
    : control_(std::move(control)), data_(std::move(data)), majors_(majors), listener_(listener) {}

X11RecordStream::~X11RecordStream() {
    disable();
    if (context_ != 0) {
        xcb_record_free_context(control_.get(), context_);
        xcb_flush(control_.get());
    }
}

bool X11RecordStream::createContext() {
    xcb_record_range_t focus{};
    focus.delivered_events = {XCB_FOCUS_IN, XCB_FOCUS_OUT};
    const std::uint8_t xinputMajor = majors_.xinput != 0 ? majors_.xinput : majors_.xtest;
    const std::array ranges{
        deviceRange(XCB_KEY_PRESS, XCB_BUTTON_PRESS),
        extensionRequestRange(majors_.xtest, XCB_TEST_FAKE_INPUT),
        focus,
        coreRequestRange(XCB_GRAB_KEYBOARD),
        coreRequestRange(XCB_NO_OPERATION),
        // Without XInput this repeats the XTEST range, which changes nothing.
        extensionRequestRange(xinputMajor,
                              majors_.xinput != 0 ? XCB_INPUT_XI_GRAB_DEVICE : XCB_TEST_FAKE_INPUT),
    };
    const xcb_record_client_spec_t everyClient = XCB_RECORD_CS_ALL_CLIENTS;
    context_ = xcb_generate_id(control_.get());
    const XcbPtr<xcb_generic_error_t> error(xcb_request_check(
        control_.get(),
        xcb_record_create_context_checked(control_.get(), context_, 0, 1, ranges.size(),
                                          &everyClient, ranges.data())));
    if (error) {
        context_ = 0;
        return false;
    }
    return xcb_connection_has_error(control_.get()) == 0;
}

bool X11RecordStream::enable() {
    if (enabled_)
        return true;
    sequence_ = xcb_record_enable_context(data_.get(), context_).sequence;
    // The first answer says that everything from here on is seen.
    xcb_generic_error_t* rawError = nullptr;
    const XcbPtr<void> started(xcb_wait_for_reply(data_.get(), sequence_, &rawError));
    const XcbPtr<xcb_generic_error_t> error(rawError);
    enabled_ = started != nullptr;
    return enabled_;
}

void X11RecordStream::disable() {
    if (!enabled_)
        return;
    enabled_ = false;
    xcb_record_disable_context(control_.get(), context_);
    xcb_flush(control_.get());
    xcb_discard_reply(data_.get(), sequence_);
}

int X11RecordStream::descriptor() const {
    return xcb_get_file_descriptor(data_.get());
}

bool X11RecordStream::isConnected() const {
    return xcb_connection_has_error(control_.get()) == 0 &&
           xcb_connection_has_error(data_.get()) == 0;
}

void X11RecordStream::process() {
    // MappingNotify comes unasked to every connection.
    for (xcb_connection_t* connection : {control_.get(), data_.get()})
        while (XcbPtr<xcb_generic_event_t>(xcb_poll_for_event(connection)))
            continue;
    while (enabled_) {
        void* rawReply = nullptr;
        xcb_generic_error_t* rawError = nullptr;
        const int known = xcb_poll_for_reply(data_.get(), sequence_, &rawReply, &rawError);
        const XcbPtr<xcb_record_enable_context_reply_t> reply(
            static_cast<xcb_record_enable_context_reply_t*>(rawReply));
        const XcbPtr<xcb_generic_error_t> error(rawError);
        if (known == 0)
            return;
        if (!reply || reply->category == endOfData) {
            enabled_ = false;
            return;
        }
        if (reply->client_swapped != 0)
            continue;
        const std::span bytes(
            reinterpret_cast<const std::byte*>(xcb_record_enable_context_data(reply.get())),
            static_cast<std::size_t>(xcb_record_enable_context_data_length(reply.get())));
        if (reply->category == fromServer)
            dispatchEvents(bytes);
        else if (reply->category == fromClient)
            dispatchRequests(reply->xid_base, bytes);
    }
}

void X11RecordStream::dispatchEvents(std::span<const std::byte> data) {
    for (; data.size() >= sizeof(xcb_key_press_event_t);
         data = data.subspan(sizeof(xcb_key_press_event_t))) {
        const auto event = readAs<xcb_key_press_event_t>(data);
        const std::uint8_t type = event.response_type & 0x7F;
        if (type == XCB_FOCUS_IN || type == XCB_FOCUS_OUT) {
            const auto focus = readAs<xcb_focus_in_event_t>(data);
            listener_.onFocusEvent({.isIn = type == XCB_FOCUS_IN,
                                    .mode = focus.mode,
                                    .detail = focus.detail,
                                    .window = focus.event});
        } else if (type >= XCB_KEY_PRESS && type <= XCB_BUTTON_PRESS) {
            listener_.onDeviceEvent({.detail = event.detail,
                                     .isPress = type != XCB_KEY_RELEASE,
                                     .isKey = type != XCB_BUTTON_PRESS,
                                     .state = event.state,
                                     .time = event.time});
        }
    }
}

void X11RecordStream::dispatchRequests(std::uint32_t client, std::span<const std::byte> data) {
    while (data.size() >= 4) {
        std::size_t length = std::size_t{readAs<std::uint16_t>(data.subspan(2))} * 4;
        if (length == 0 && data.size() >= 8) // a big request has its length in the next word
            length = std::size_t{readAs<std::uint32_t>(data.subspan(4))} * 4;
        if (length < 4 || length > data.size())
            return;
        dispatchRequest(client, data.first(length));
        data = data.subspan(length);
    }
}

void X11RecordStream::dispatchRequest(std::uint32_t client, std::span<const std::byte> request) {
    const auto major = static_cast<std::uint8_t>(request[0]);
    const auto minor = static_cast<std::uint8_t>(request[1]);
    if (major == XCB_NO_OPERATION) {
        listener_.onNoOperation(client, minor);
    } else if (major == XCB_GRAB_KEYBOARD || (majors_.xinput != 0 && major == majors_.xinput &&
                                              minor == XCB_INPUT_XI_GRAB_DEVICE)) {
        listener_.onKeyboardGrabRequest(client);
    } else if (major == majors_.xtest && minor == XCB_TEST_FAKE_INPUT &&
               request.size() >= sizeof(xcb_test_fake_input_request_t)) {
        const auto fake = readAs<xcb_test_fake_input_request_t>(request);
        const auto extension = static_cast<std::uint8_t>(fake.type - majors_.xinputEvent);
        const bool isCoreKey = fake.type == XCB_KEY_PRESS || fake.type == XCB_KEY_RELEASE;
        const bool isDeviceKey =
            majors_.xinputEvent != 0 &&
            (extension == extensionDeviceKeyPress || extension == extensionDeviceKeyRelease);
        listener_.onFakeInput({.client = client,
                               .detail = fake.detail,
                               .isPress = fake.type == XCB_KEY_PRESS ||
                                          (isDeviceKey && extension == extensionDeviceKeyPress),
                               .isKey = isCoreKey || isDeviceKey,
                               .isCoreDevice = isCoreKey});
    }
}

} // namespace kelvora
