// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_keymap.h"

#include "host/linux/x11/x11_connection.h"
#include "host/linux/x11/xcb_xkb.h"

#include <xkbcommon/xkbcommon-x11.h>

#include <utility>

namespace kelvora {
namespace {

constexpr std::uint16_t mapParts =
    XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP |
    XCB_XKB_MAP_PART_EXPLICIT_COMPONENTS | XCB_XKB_MAP_PART_KEY_ACTIONS |
    XCB_XKB_MAP_PART_VIRTUAL_MODS | XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
constexpr std::uint16_t newKeyboardDetails =
    XCB_XKB_NKN_DETAIL_KEYCODES | XCB_XKB_NKN_DETAIL_DEVICE_ID;
constexpr std::uint16_t stateParts = XCB_XKB_STATE_PART_MODIFIER_BASE |
                                     XCB_XKB_STATE_PART_MODIFIER_LATCH |
                                     XCB_XKB_STATE_PART_MODIFIER_LOCK |
                                     XCB_XKB_STATE_PART_GROUP_STATE | XCB_XKB_STATE_PART_GROUP_LOCK;
constexpr std::uint16_t nameParts = XCB_XKB_NAME_DETAIL_GROUP_NAMES;

template <typename Event>
const Event& as(const xcb_generic_event_t* event) {
    return *reinterpret_cast<const Event*>(event);
}

XkbKeymapPtr fetchKeymap(xkb_context* context, xcb_connection_t* connection,
                         std::uint16_t deviceId) {
    return XkbKeymapPtr(
        xkb_x11_keymap_new_from_device(context, connection, deviceId, XKB_KEYMAP_COMPILE_NO_FLAGS));
}

} // namespace

std::unique_ptr<X11Keymap> X11Keymap::create(xcb_connection_t* connection,
                                             X11StateNotices notices) {
    std::uint8_t firstEvent = 0;
    if (xkb_x11_setup_xkb_extension(
            connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &firstEvent, nullptr) == 0)
        return nullptr;
    const std::int32_t deviceId = xkb_x11_get_core_keyboard_device_id(connection);
    // A keymap from the server is complete: no files are looked for.
    XkbContextPtr context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES));
    if (deviceId < 0 || !context)
        return nullptr;
    xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
    std::unique_ptr<X11Keymap> keymap(new X11Keymap(connection, std::move(context), firstEvent,
                                                    static_cast<std::uint16_t>(deviceId), notices));
    // Selected before the first look, so that no change falls in between.
    keymap->selectEvents();
    keymap->keymap_ = fetchKeymap(keymap->context_.get(), connection, keymap->deviceId_);
    if (!keymap->keymap_ || !keymap->synchronizeState())
        return nullptr;
    return keymap;
}

X11Keymap::X11Keymap(xcb_connection_t* connection, XkbContextPtr context, std::uint8_t firstEvent,
                     std::uint16_t deviceId, X11StateNotices notices)
    : connection_(connection), context_(std::move(context)), deviceId_(deviceId),
      firstEvent_(firstEvent), notices_(notices) {}

void X11Keymap::selectEvents() {
    xcb_xkb_select_events_details_t details{};
    details.affectNewKeyboard = newKeyboardDetails;
    details.newKeyboardDetails = newKeyboardDetails;
    details.affectState = stateParts;
    details.stateDetails = notices_ == X11StateNotices::all ? stateParts : std::uint16_t{0};
    details.affectNames = nameParts;
    details.namesDetails = nameParts;
    constexpr std::uint16_t which =
        XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY |
        XCB_XKB_EVENT_TYPE_STATE_NOTIFY | XCB_XKB_EVENT_TYPE_NAMES_NOTIFY;
    xcb_xkb_select_events_aux(connection_, deviceId_, which, 0, 0, mapParts, mapParts, &details);
}

bool X11Keymap::handleEvent(const xcb_generic_event_t* event) {
    if ((event->response_type & 0x7F) != firstEvent_)
        return false;
    switch (event->pad0) { // the XKB event type
    case XCB_XKB_NEW_KEYBOARD_NOTIFY: {
        const auto& notify = as<xcb_xkb_new_keyboard_notify_event_t>(event);
        if (notify.deviceID == deviceId_ || notify.oldDeviceID == deviceId_)
            markStale();
        break;
    }
    case XCB_XKB_MAP_NOTIFY:
        if (as<xcb_xkb_map_notify_event_t>(event).deviceID == deviceId_)
            markStale();
        break;
    case XCB_XKB_NAMES_NOTIFY:
        if (as<xcb_xkb_names_notify_event_t>(event).deviceID == deviceId_)
            markStale();
        break;
    case XCB_XKB_STATE_NOTIFY: {
        const auto& notify = as<xcb_xkb_state_notify_event_t>(event);
        if (notify.deviceID == deviceId_)
            state_ = {notify.baseMods, notify.latchedMods, notify.lockedMods, notify.group,
                      notify.lockedGroup};
        break;
    }
    default:
        break;
    }
    return true;
}

void X11Keymap::markStale() {
    if (stale_)
        return;
    stale_ = true;
    ++version_;
}

xkb_keymap* X11Keymap::keymap() {
    if (stale_)
        refetch();
    return keymap_.get();
}

void X11Keymap::refetch() {
    const std::int32_t deviceId = xkb_x11_get_core_keyboard_device_id(connection_);
    if (deviceId >= 0 && deviceId != deviceId_) {
        deviceId_ = static_cast<std::uint16_t>(deviceId);
        selectEvents();
    }
    XkbKeymapPtr fetched = fetchKeymap(context_.get(), connection_, deviceId_);
    if (!fetched)
        return; // still stale: the next call tries again
    keymap_ = std::move(fetched);
    stale_ = false;
    // A keymap with fewer groups moves the effective group without a notice.
    synchronizeState();
}

bool X11Keymap::synchronizeState() {
    const XcbPtr<xcb_xkb_get_state_reply_t> reply(xcb_xkb_get_state_reply(
        connection_, xcb_xkb_get_state(connection_, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    if (!reply)
        return false;
    state_ = {reply->baseMods, reply->latchedMods, reply->lockedMods, reply->group,
              reply->lockedGroup};
    return true;
}

} // namespace kelvora
