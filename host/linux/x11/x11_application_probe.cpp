// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_application_probe.h"

#include "host/linux/x11/x11_focus.h"
#include "host/linux/x11/x11_property.h"
#include "host/linux/x11/x11_window_process.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

namespace {

using std::chrono::steady_clock;

constexpr std::uint32_t maximumProtocols = 64;
/// A frame has few windows around the application's; a tree without one is not searched for long.
constexpr std::size_t maximumWindows = 48;

/// Stopped by a signal or by a debugger.
bool isStopped(std::int64_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::array<char, 256> bytes{};
    file.read(bytes.data(), bytes.size());
    const std::string_view line(bytes.data(), static_cast<std::size_t>(file.gcount()));
    // The state follows the name in parentheses, which may hold anything but is short.
    const std::string_view state = line.substr(std::min(line.rfind(')'), line.size()));
    return state.starts_with(") T") || state.starts_with(") t");
}

void selectEvents(xcb_connection_t* connection, xcb_window_t window, std::uint32_t events) {
    xcb_change_window_attributes(connection, window, XCB_CW_EVENT_MASK, &events);
}

} // namespace

std::unique_ptr<X11ApplicationProbe> X11ApplicationProbe::create(const char* display) {
    XcbConnectionPtr connection = connectX11(display);
    if (!connection)
        return nullptr;
    return std::unique_ptr<X11ApplicationProbe>(new X11ApplicationProbe(std::move(connection)));
}

X11ApplicationProbe::X11ApplicationProbe(XcbConnectionPtr connection)
    : connection_(std::move(connection)),
      root_(xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root),
      ownWindow_(xcb_generate_id(connection_.get())) {
    xcb_connection_t* const x = connection_.get();
    xcb_create_window(x, XCB_COPY_FROM_PARENT, ownWindow_, root_, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    selectEvents(x, ownWindow_, XCB_EVENT_MASK_PROPERTY_CHANGE);
    internAtoms(x, {
                       {"WM_PROTOCOLS", &atoms_.protocols},
                       {"_NET_WM_PING", &atoms_.ping},
                       {"WM_STATE", &atoms_.state},
                       {"_NET_WM_PID", &atoms_.processIdentifier},
                       {"CLIPBOARD", &atoms_.clipboard},
                   });
}

bool X11ApplicationProbe::isResponding(FocusTarget target, double timeout) {
    const auto deadline =
        steady_clock::now() + std::chrono::duration_cast<steady_clock::duration>(
                                  std::chrono::duration<double>(std::max(timeout, 0.0)));
    const xcb_window_t window = clientWindow(static_cast<xcb_window_t>(target.id));
    if (window == XCB_NONE)
        return true;
    const std::int64_t process =
        processOfWindow(connection_.get(), window, atoms_.processIdentifier);
    if (process != 0 && isStopped(process))
        return false;
    return !answersPings(window) || isAnswered(window, deadline);
}

std::optional<bool> X11ApplicationProbe::ownsPasteboard(FocusTarget target) {
    const xcb_window_t window = clientWindow(static_cast<xcb_window_t>(target.id));
    const XcbPtr<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection_.get(), xcb_get_selection_owner(connection_.get(), atoms_.clipboard), nullptr));
    if (window == XCB_NONE || !reply)
        return std::nullopt;
    // The server hands each client the identifiers with the same bits above this mask.
    const std::uint32_t clientBits = ~xcb_get_setup(connection_.get())->resource_id_mask;
    return reply->owner == XCB_NONE || ((reply->owner ^ window) & clientBits) == 0;
}

/// The application's own window within the window manager's frame; XCB_NONE when there is none.
xcb_window_t X11ApplicationProbe::clientWindow(xcb_window_t target) {
    if (target == XCB_NONE || target == root_)
        return XCB_NONE;
    // A frame may hold several applications' windows, as tabs.
    const xcb_window_t around = clientAround(readFocus(connection_.get()).window, target);
    return around != XCB_NONE ? around : clientInside(target);
}

xcb_window_t X11ApplicationProbe::clientAround(xcb_window_t focus, xcb_window_t target) {
    xcb_window_t client = XCB_NONE;
    xcb_window_t window = focus;
    for (std::size_t depth = 0; depth < maximumWindows && window != XCB_NONE; ++depth) {
        if (client == XCB_NONE && isClient(window))
            client = window;
        if (window == target)
            return client;
        const XcbPtr<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
            connection_.get(), xcb_query_tree(connection_.get(), window), nullptr));
        window = tree ? tree->parent : xcb_window_t{XCB_NONE};
    }
    return XCB_NONE; // the focus is not in the target any more
}

xcb_window_t X11ApplicationProbe::clientInside(xcb_window_t target) {
    std::vector<xcb_window_t> windows{target};
    for (std::size_t index = 0; index < windows.size(); ++index) {
        if (isClient(windows[index]))
            return windows[index];
        const XcbPtr<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
            connection_.get(), xcb_query_tree(connection_.get(), windows[index]), nullptr));
        if (!tree)
            continue;
        const xcb_window_t* const children = xcb_query_tree_children(tree.get());
        const auto count = static_cast<std::size_t>(xcb_query_tree_children_length(tree.get()));
        windows.insert(windows.end(), children,
                       children + std::min(count, maximumWindows - windows.size()));
    }
    return XCB_NONE;
}

/// A window manager marks the windows that it manages; where there is none, what the application
/// says to one tells.
bool X11ApplicationProbe::isClient(xcb_window_t window) {
    return readListProperty(connection_.get(), window, atoms_.state, atoms_.state, 1) ||
           readListProperty(connection_.get(), window, atoms_.protocols, XCB_ATOM_ATOM, 1);
}

bool X11ApplicationProbe::answersPings(xcb_window_t window) {
    const auto protocols = readListProperty(connection_.get(), window, atoms_.protocols,
                                            XCB_ATOM_ATOM, maximumProtocols);
    return protocols && std::ranges::find(*protocols, atoms_.ping) != protocols->end();
}

bool X11ApplicationProbe::isAnswered(xcb_window_t window, Deadline deadline) {
    xcb_connection_t* const x = connection_.get();
    const auto time = serverTime(deadline);
    if (!time)
        return xcb_connection_has_error(x) != 0; // then nothing can be found out

    // The application sends the message on to the root window, where window managers wait for it.
    // Qt addresses it to those who selected StructureNotify, the others as they ought to.
    selectEvents(x, root_, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atoms_.protocols;
    message.data.data32[0] = atoms_.ping;
    message.data.data32[1] = *time;
    message.data.data32[2] = window;
    xcb_send_event(x, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
    const bool isAnswer = awaitEvent(deadline, [&](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7F) != XCB_CLIENT_MESSAGE)
            return false;
        const auto& answer = reinterpret_cast<const xcb_client_message_event_t&>(event);
        // Window managers ping too, with times of their own.
        return answer.type == atoms_.protocols && answer.format == 32 &&
               answer.data.data32[0] == atoms_.ping && answer.data.data32[1] == *time &&
               answer.data.data32[2] == window;
    });
    selectEvents(x, root_, XCB_EVENT_MASK_NO_EVENT);
    xcb_flush(x);
    return isAnswer || xcb_connection_has_error(x) != 0;
}

/// The server's time now, and never the same twice, so that a late answer is not taken for the
/// next. Applications may compare it with times that the server gives them.
std::optional<xcb_timestamp_t> X11ApplicationProbe::serverTime(Deadline deadline) {
    xcb_timestamp_t time = lastTime_;
    while (time == lastTime_) {
        xcb_change_property(connection_.get(), XCB_PROP_MODE_APPEND, ownWindow_, XCB_ATOM_WM_NAME,
                            XCB_ATOM_STRING, 8, 0, nullptr);
        const bool isTold = awaitEvent(deadline, [&](const xcb_generic_event_t& event) {
            if ((event.response_type & 0x7F) != XCB_PROPERTY_NOTIFY)
                return false;
            time = reinterpret_cast<const xcb_property_notify_event_t&>(event).time;
            return true;
        });
        if (!isTold)
            return std::nullopt;
    }
    lastTime_ = time;
    return time;
}

bool X11ApplicationProbe::awaitEvent(
    Deadline deadline, const std::function<bool(const xcb_generic_event_t&)>& isAwaited) {
    xcb_connection_t* const x = connection_.get();
    xcb_flush(x);
    while (true) {
        while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(x)})
            if (isAwaited(*event))
                return true;
        const auto rest =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now());
        pollfd descriptor{xcb_get_file_descriptor(x), POLLIN, 0};
        if (rest.count() <= 0 || xcb_connection_has_error(x) != 0)
            return false;
        poll(&descriptor, 1, static_cast<int>(rest.count()));
    }
}

} // namespace kelvora
