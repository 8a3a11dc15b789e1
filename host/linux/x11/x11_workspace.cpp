// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_workspace.h"

#include "host/linux/desktop/application_identity.h"
#include "host/linux/x11/x11_focus.h"
#include "host/linux/x11/x11_property.h"
#include "host/linux/x11/x11_window_process.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kelvora {

namespace {

/// Longer names are no names.
constexpr std::uint32_t maximumNameBytes = 1024;
constexpr std::uint32_t maximumWindowTypes = 32;
/// Deeper than any real tree; a tree that changes all the time does not hold us up.
constexpr int maximumDepth = 64;

xcb_window_t firstItem(const std::optional<std::vector<std::uint32_t>>& items) {
    return items && !items->empty() ? items->front() : 0;
}

struct WindowClass {
    std::string instance;
    std::string name;
};

/// WM_CLASS is two strings, each ended by a NUL (ICCCM 4.1.2.5).
WindowClass parseWindowClass(std::string_view bytes) {
    const std::size_t end = std::min(bytes.find('\0'), bytes.size());
    WindowClass result{.instance = std::string(bytes.substr(0, end)), .name = {}};
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
    result.name = bytes.substr(0, bytes.find('\0'));
    return result;
}

/// Empty when the process is gone or somebody else's.
std::string executableOf(std::int64_t process) {
    std::error_code error;
    std::string path =
        std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", error).string();
    // The kernel's mark of a file that was replaced while it runs, as an update does.
    constexpr std::string_view deleted = " (deleted)";
    if (path.ends_with(deleted))
        path.resize(path.size() - deleted.size());
    return path;
}

} // namespace

std::unique_ptr<X11Workspace> X11Workspace::create(const char* display, DesktopEntries entries) {
    XcbConnectionPtr connection = connectX11(display);
    if (!connection)
        return nullptr;
    return std::unique_ptr<X11Workspace>(
        new X11Workspace(std::move(connection), std::move(entries)));
}

X11Workspace::X11Workspace(XcbConnectionPtr connection, DesktopEntries entries)
    : connection_(std::move(connection)), entries_(std::move(entries)) {
    internAtoms(connection_.get(), {
                                       {"_NET_ACTIVE_WINDOW", &atoms_.activeWindow},
                                       {"_GTK_APPLICATION_ID", &atoms_.gtkApplicationId},
                                       {"_NET_WM_PID", &atoms_.processIdentifier},
                                       {"_NET_SUPPORTING_WM_CHECK", &atoms_.windowManagerCheck},
                                       {"_NET_WM_WINDOW_TYPE", &atoms_.windowType},
                                       {"_NET_WM_WINDOW_TYPE_DESKTOP", &atoms_.windowTypeDesktop},
                                   });
}

std::optional<FrontmostApplication> X11Workspace::frontmostApplication() {
    discardEvents();
    const xcb_window_t focus = readFocus(connection_.get()).window;
    if (const xcb_window_t window = namedAround(focus); window != XCB_NONE)
        return describe(window);
    if (const xcb_window_t window = namedBelowPointer(focus); window != XCB_NONE)
        return describe(window);
    const xcb_window_t root = rootOf(focus);
    const auto windowOfRoot = [&](xcb_atom_t property) {
        return firstItem(readListProperty(connection_.get(), root, property, XCB_ATOM_WINDOW, 1));
    };
    if (const xcb_window_t window = namedAround(windowOfRoot(atoms_.activeWindow));
        window != XCB_NONE)
        return describe(window);
    // Window managers that find nothing to focus focus a nameless window of their own.
    if (focus == XCB_NONE || focus == root || windowOfRoot(atoms_.windowManagerCheck) != XCB_NONE)
        return std::nullopt;
    return FrontmostApplication{};
}

FocusTarget X11Workspace::focusTarget() {
    discardEvents();
    return readFocus(connection_.get()).target;
}

void X11Workspace::setOnFocusChanged(std::function<void(FocusChange)> handler) {
    onFocusChanged_ = std::move(handler);
}

void X11Workspace::notifyFocusChanged(FocusChange change) {
    if (onFocusChanged_)
        onFocusChanged_(change);
}

/// MappingNotify comes unasked; it must not pile up.
void X11Workspace::discardEvents() {
    while (XcbPtr<xcb_generic_event_t>(xcb_poll_for_event(connection_.get())))
        continue;
}

bool X11Workspace::namesItself(xcb_window_t window) {
    const auto names =
        readTextProperty(connection_.get(), window, XCB_ATOM_WM_CLASS, maximumNameBytes);
    return (names && names->find_first_not_of('\0') != std::string::npos) ||
           firstItem(readListProperty(connection_.get(), window, atoms_.processIdentifier,
                                      XCB_ATOM_CARDINAL, 1)) != 0;
}

/// That of the first screen when the window is gone.
xcb_window_t X11Workspace::rootOf(xcb_window_t window) {
    const XcbPtr<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
        connection_.get(), xcb_query_tree(connection_.get(), window), nullptr));
    return tree ? tree->root
                : xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
}

/// The window itself or the nearest around it that tells whose it is; XCB_NONE when there is none
/// or it is gone.
xcb_window_t X11Workspace::namedAround(xcb_window_t window) {
    for (int depth = 0; depth < maximumDepth && window != XCB_NONE; ++depth) {
        const XcbPtr<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
            connection_.get(), xcb_query_tree(connection_.get(), window), nullptr));
        if (!tree || window == tree->root)
            return XCB_NONE;
        if (namesItself(window))
            return window;
        window = tree->parent;
    }
    return XCB_NONE;
}

/// The outermost window inside that tells whose it is. Keys go to the window below the pointer when
/// that is inside of the focus window: one in the window manager's frame, or any in the root.
xcb_window_t X11Workspace::namedBelowPointer(xcb_window_t window) {
    for (int depth = 0; depth < maximumDepth && window != XCB_NONE; ++depth) {
        const XcbPtr<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
            connection_.get(), xcb_query_pointer(connection_.get(), window), nullptr));
        window = pointer ? pointer->child : xcb_window_t{XCB_NONE};
        if (window != XCB_NONE && namesItself(window))
            return window;
    }
    return XCB_NONE;
}

FrontmostApplication X11Workspace::describe(xcb_window_t window) {
    xcb_connection_t* const connection = connection_.get();
    const auto text = [&](xcb_atom_t property) {
        return readTextProperty(connection, window, property, maximumNameBytes).value_or("");
    };
    FrontmostApplication result;
    result.processIdentifier = processOfWindow(connection, window, atoms_.processIdentifier);

    const WindowClass windowClass = parseWindowClass(text(XCB_ATOM_WM_CLASS));
    const auto types =
        readListProperty(connection, window, atoms_.windowType, XCB_ATOM_ATOM, maximumWindowTypes);
    const ApplicationTraits traits{
        .gtkApplicationId = text(atoms_.gtkApplicationId),
        .windowClass = windowClass.name,
        .windowInstance = windowClass.instance,
        .executable =
            result.processIdentifier == 0 ? std::string() : executableOf(result.processIdentifier),
        .isDesktopWindow =
            types && std::ranges::find(*types, atoms_.windowTypeDesktop) != types->end(),
    };
    ApplicationIdentity identity = identifyApplication(traits, entries_.find(traits));
    result.bundleIdentifier = std::move(identity.bundleIdentifier);
    result.kind = identity.kind;
    return result;
}

} // namespace kelvora
