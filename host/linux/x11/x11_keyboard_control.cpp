// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_keyboard_control.h"

#include "host/linux/x11/xcb_xkb.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <string_view>

namespace kelvora {
namespace {

constexpr std::uint8_t everyModifier = 0xFF;

void setBits(X11KeySet& set, const std::uint8_t* bytes, std::size_t size) {
    for (std::size_t key = 0; key < size * 8 && key < set.size(); ++key)
        set[key] = (bytes[key / 8] >> (key % 8) & 1) != 0;
}

bool hasXInput2(xcb_connection_t* connection) {
    const auto* extension = xcb_get_extension_data(connection, &xcb_input_id);
    if (extension == nullptr || extension->present == 0)
        return false;
    const XcbPtr<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
    return version && version->major_version >= 2;
}

} // namespace

std::unique_ptr<X11KeyboardControl> X11KeyboardControl::create(const char* display) {
    XcbConnectionPtr connection = connectX11(display);
    if (!connection)
        return nullptr;
    const auto* xtest = xcb_get_extension_data(connection.get(), &xcb_test_id);
    if (xtest == nullptr || xtest->present == 0)
        return nullptr;
    std::unique_ptr<X11Keymap> keymap = X11Keymap::create(connection.get());
    if (!keymap)
        return nullptr;
    return std::unique_ptr<X11KeyboardControl>(
        new X11KeyboardControl(std::move(connection), std::move(keymap)));
}

X11KeyboardControl::X11KeyboardControl(XcbConnectionPtr connection,
                                       std::unique_ptr<X11Keymap> keymap)
    : connection_(std::move(connection)), keymap_(std::move(keymap)),
      root_(xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root) {
    if (hasXInput2(connection_.get()))
        xinputEvent_ = xcb_get_extension_data(connection_.get(), &xcb_input_id)->first_event;
}

bool X11KeyboardControl::isAlive() const {
    return xcb_connection_has_error(connection_.get()) == 0;
}

std::uint32_t X11KeyboardControl::clientBase() const {
    return xcb_get_setup(connection_.get())->resource_id_base;
}

void X11KeyboardControl::processEvents() {
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())})
        if (!keymap_->handleEvent(event.get()) && onOtherEvent_)
            onOtherEvent_(*event);
}

bool X11KeyboardControl::synchronize() {
    const bool answered = keymap_->synchronizeState();
    processEvents();
    return answered;
}

const CharacterKeys& X11KeyboardControl::keys() {
    xkb_keymap* keymap = keymap_->keymap();
    if (!keys_ || keysVersion_ != keymap_->version()) {
        keys_.emplace(keymap);
        keysVersion_ = keymap_->version();
    }
    return *keys_;
}

void X11KeyboardControl::sendKey(std::uint8_t keycode, bool press) {
    if (carrier_ == 0 || xinputEvent_ == 0) {
        xcb_test_fake_input(connection(), press ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keycode,
                            XCB_CURRENT_TIME, root_, 0, 0, 0);
        return;
    }
    const int offset = press ? XCB_INPUT_DEVICE_KEY_PRESS : XCB_INPUT_DEVICE_KEY_RELEASE;
    xcb_test_fake_input(connection(), static_cast<std::uint8_t>(xinputEvent_ + offset), keycode,
                        XCB_CURRENT_TIME, root_, 0, 0, static_cast<std::uint8_t>(carrier_));
}

void X11KeyboardControl::useCarrier() {
    // A key that is not down: applications are not told of its coming up.
    if (!knownKeys().spareKeycodes().empty())
        releaseKey(knownKeys().spareKeycodes().front());
}

void X11KeyboardControl::announceState() {
    // With a modifier that no key has anything to do with.
    const std::uint8_t used = knownKeys().usedModifiers();
    const auto free = static_cast<std::uint8_t>(~used & (used + 1));
    if (free == 0)
        return;
    for (const std::uint8_t locked : {free, std::uint8_t{0}})
        xcb_xkb_latch_lock_state(connection(), keymap_->deviceId(), free, locked, 0, 0, 0, 0, 0);
    flush();
}

void X11KeyboardControl::lockGroup(std::uint8_t group) {
    xcb_xkb_latch_lock_state(connection(), keymap_->deviceId(), 0, 0, 1, group, 0, 0, 0);
}

void X11KeyboardControl::lockModifiers(std::uint8_t affected, std::uint8_t values) {
    xcb_xkb_latch_lock_state(connection(), keymap_->deviceId(), affected, values, 0, 0,
                             everyModifier, 0, 0);
}

bool X11KeyboardControl::isStickyKeysOn() {
    const XcbPtr<xcb_xkb_get_controls_reply_t> controls(xcb_xkb_get_controls_reply(
        connection(), xcb_xkb_get_controls(connection(), keymap_->deviceId()), nullptr));
    return controls && (controls->enabledControls & XCB_XKB_BOOL_CTRL_STICKY_KEYS) != 0;
}

X11KeySet X11KeyboardControl::keysDown() {
    X11KeySet down;
    const XcbPtr<xcb_query_keymap_reply_t> reply(
        xcb_query_keymap_reply(connection(), xcb_query_keymap(connection()), nullptr));
    if (reply)
        setBits(down, reply->keys, sizeof reply->keys);
    return down;
}

X11KeySet X11KeyboardControl::keysDownOn(std::uint16_t deviceId) {
    X11KeySet down;
    if (xinputEvent_ == 0)
        return down;
    const XcbPtr<xcb_input_query_device_state_reply_t> reply(xcb_input_query_device_state_reply(
        connection(),
        xcb_input_query_device_state(connection(), static_cast<std::uint8_t>(deviceId)), nullptr));
    if (!reply)
        return down;
    for (auto state = xcb_input_query_device_state_classes_iterator(reply.get()); state.rem > 0;
         xcb_input_input_state_next(&state)) {
        if (state.data->class_id != XCB_INPUT_INPUT_CLASS_KEY)
            continue;
        // class, length, number of keys, padding, 32 bytes of keys
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(state.data);
        if (state.data->len >= 36)
            setBits(down, bytes + 4, 32);
    }
    return down;
}

std::vector<X11SlaveKeyboard> X11KeyboardControl::slaveKeyboards() {
    std::vector<X11SlaveKeyboard> result;
    if (xinputEvent_ == 0)
        return result;
    const XcbPtr<xcb_input_xi_query_device_reply_t> reply(xcb_input_xi_query_device_reply(
        connection(), xcb_input_xi_query_device(connection(), XCB_INPUT_DEVICE_ALL), nullptr));
    if (!reply)
        return result;
    for (auto info = xcb_input_xi_query_device_infos_iterator(reply.get()); info.rem > 0;
         xcb_input_xi_device_info_next(&info)) {
        if (info.data->type != XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD || info.data->enabled == 0 ||
            info.data->attachment != keymap_->deviceId())
            continue;
        const std::string_view name(
            xcb_input_xi_device_info_name(info.data),
            static_cast<std::size_t>(xcb_input_xi_device_info_name_length(info.data)));
        // The server itself makes and names these devices, one for each master.
        result.push_back(
            {info.data->deviceid, name.find("XTEST keyboard") != std::string_view::npos});
    }
    return result;
}

std::uint16_t X11KeyboardControl::lastUsedKeyboard() {
    if (xinputEvent_ == 0)
        return 0;
    const XcbPtr<xcb_input_xi_query_device_reply_t> reply(xcb_input_xi_query_device_reply(
        connection(), xcb_input_xi_query_device(connection(), keymap_->deviceId()), nullptr));
    if (!reply)
        return 0;
    auto info = xcb_input_xi_query_device_infos_iterator(reply.get());
    if (info.rem == 0)
        return 0;
    // The core keyboard shows the keys of the device that it was used with.
    for (auto part = xcb_input_xi_device_info_classes_iterator(info.data); part.rem > 0;
         xcb_input_device_class_next(&part))
        if (part.data->type == XCB_INPUT_DEVICE_CLASS_TYPE_KEY)
            return part.data->sourceid;
    return 0;
}

void X11KeyboardControl::ungrabServer() {
    xcb_ungrab_server(connection());
    xcb_flush(connection());
}

} // namespace kelvora
