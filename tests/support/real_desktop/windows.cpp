// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/windows.h"

#include "tests/support/real_desktop/wait_until.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <algorithm>
#include <array>

namespace kelvora::real {

namespace {

/// The items of a property, as bytes or as Xlib's words; none where there is no such property.
template <typename Items>
Items readProperty(Display* display, Window window, const char* name) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = nullptr;
    XGetWindowProperty(display, window, XInternAtom(display, name, False), 0, 4096, False,
                       AnyPropertyType, &type, &format, &count, &remaining, &data);
    Items result;
    if (data != nullptr && format == (sizeof(typename Items::value_type) == 1 ? 8 : 32)) {
        const auto* const items = reinterpret_cast<const typename Items::value_type*>(data);
        result.assign(items, items + count);
    }
    if (data != nullptr)
        XFree(data);
    return result;
}

unsigned long readNumber(Display* display, Window window, const char* name) {
    const auto numbers = readProperty<std::vector<unsigned long>>(display, window, name);
    return numbers.empty() ? 0 : numbers[0];
}

void sendToRoot(Display* display, Window window, const char* type, std::array<long, 5> values) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display, type, False);
    event.xclient.format = 32;
    std::ranges::copy(values, event.xclient.data.l);
    XSendEvent(display, DefaultRootWindow(display), False,
               SubstructureRedirectMask | SubstructureNotifyMask, &event);
    XFlush(display);
}

bool holdsFocus(Display* display, Window window) {
    Window focus = None;
    int revert = 0;
    XGetInputFocus(display, &focus, &revert);
    while (focus > PointerRoot && focus != window) {
        Window root = None;
        Window parent = None;
        Window* children = nullptr;
        unsigned count = 0;
        if (XQueryTree(display, focus, &root, &parent, &children, &count) == 0)
            return false;
        if (children != nullptr)
            XFree(children);
        focus = parent;
    }
    return focus == window;
}

} // namespace

std::string rootStringProperty(_XDisplay* display, const char* name) {
    return readProperty<std::string>(display, DefaultRootWindow(display), name);
}

std::optional<WindowId> windowOfProcess(_XDisplay* display, pid_t process) {
    for (const Window window : topWindows(display))
        if (processOfWindow(display, window) == process)
            return window;
    return std::nullopt;
}

std::vector<WindowId> topWindows(_XDisplay* display) {
    return readProperty<std::vector<WindowId>>(display, DefaultRootWindow(display),
                                               "_NET_CLIENT_LIST");
}

pid_t processOfWindow(_XDisplay* display, WindowId window) {
    return static_cast<pid_t>(readNumber(display, window, "_NET_WM_PID"));
}

std::string windowTitle(_XDisplay* display, WindowId window) {
    return readProperty<std::string>(display, window, "_NET_WM_NAME");
}

WindowId activeWindow(_XDisplay* display) {
    return readNumber(display, DefaultRootWindow(display), "_NET_ACTIVE_WINDOW");
}

bool activateWindow(_XDisplay* display, WindowId window) {
    constexpr long fromPager = 2;
    sendToRoot(display, window, "_NET_ACTIVE_WINDOW", {fromPager, CurrentTime});
    return waitUntil(
        [&] { return activeWindow(display) == window && holdsFocus(display, window); });
}

void placeWindow(_XDisplay* display, WindowId window, const WindowFrame& frame) {
    constexpr long allFourFromPager = 0x2f00;
    sendToRoot(display, window, "_NET_MOVERESIZE_WINDOW",
               {allFourFromPager, frame.x, frame.y, frame.width, frame.height});
}

WindowFrame windowFrame(_XDisplay* display, WindowId window) {
    WindowFrame frame;
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display, window, &attributes) == 0)
        return frame;
    Window child = None;
    XTranslateCoordinates(display, window, attributes.root, 0, 0, &frame.x, &frame.y, &child);
    frame.width = attributes.width;
    frame.height = attributes.height;
    return frame;
}

void clickAt(_XDisplay* display, int x, int y) {
    XTestFakeMotionEvent(display, -1, x, y, CurrentTime);
    XTestFakeButtonEvent(display, Button1, True, CurrentTime);
    XTestFakeButtonEvent(display, Button1, False, CurrentTime);
    XSync(display, False);
}

} // namespace kelvora::real
