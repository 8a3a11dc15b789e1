// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/windows.h"

#include "tests/support/real_desktop/wait_until.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <vector>

namespace kelvora::real {

namespace {

Atom atom(Display* display, const char* name) {
    return XInternAtom(display, name, False);
}

struct Property {
    std::vector<unsigned long> numbers; // of a 32-bit property
    std::string bytes;                  // of an 8-bit property
};

Property readProperty(Display* display, Window window, const char* name) {
    Property result;
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = nullptr;
    if (XGetWindowProperty(display, window, atom(display, name), 0, 4096, False, AnyPropertyType,
                           &type, &format, &count, &remaining, &data) != Success ||
        data == nullptr) {
        return result;
    }
    if (format == 32) {
        const auto* const numbers =
            reinterpret_cast<const unsigned long*>(data); // as Xlib gives it
        result.numbers.assign(numbers, numbers + count);
    } else if (format == 8) {
        result.bytes.assign(data, data + count);
    }
    XFree(data);
    return result;
}

void sendToRoot(Display* display, Window window, const char* type, long first, long second,
                long third, long fourth, long fifth) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = atom(display, type);
    event.xclient.format = 32;
    event.xclient.data.l[0] = first;
    event.xclient.data.l[1] = second;
    event.xclient.data.l[2] = third;
    event.xclient.data.l[3] = fourth;
    event.xclient.data.l[4] = fifth;
    XSendEvent(display, DefaultRootWindow(display), False,
               SubstructureRedirectMask | SubstructureNotifyMask, &event);
    XFlush(display);
}

bool holdsFocus(Display* display, Window window) {
    Window focus = None;
    int revert = 0;
    XGetInputFocus(display, &focus, &revert);
    while (focus > PointerRoot) {
        if (focus == window) {
            return true;
        }
        Window root = None;
        Window parent = None;
        Window* children = nullptr;
        unsigned count = 0;
        if (XQueryTree(display, focus, &root, &parent, &children, &count) == 0) {
            return false;
        }
        if (children != nullptr) {
            XFree(children);
        }
        focus = parent;
    }
    return false;
}

} // namespace

std::string rootStringProperty(_XDisplay* display, const char* name) {
    return readProperty(display, DefaultRootWindow(display), name).bytes;
}

std::optional<WindowId> windowOfProcess(_XDisplay* display, pid_t process) {
    for (const Window window : topWindows(display)) {
        if (processOfWindow(display, window) == process) {
            return window;
        }
    }
    return std::nullopt;
}

std::vector<WindowId> topWindows(_XDisplay* display) {
    return readProperty(display, DefaultRootWindow(display), "_NET_CLIENT_LIST").numbers;
}

pid_t processOfWindow(_XDisplay* display, WindowId window) {
    const Property owner = readProperty(display, window, "_NET_WM_PID");
    return owner.numbers.empty() ? 0 : static_cast<pid_t>(owner.numbers[0]);
}

std::string windowTitle(_XDisplay* display, WindowId window) {
    return readProperty(display, window, "_NET_WM_NAME").bytes;
}

WindowId activeWindow(_XDisplay* display) {
    const Window root = DefaultRootWindow(display);
    const Property active = readProperty(display, root, "_NET_ACTIVE_WINDOW");
    return active.numbers.empty() ? 0 : active.numbers[0];
}

bool activateWindow(_XDisplay* display, WindowId window) {
    constexpr long fromPager = 2;
    sendToRoot(display, window, "_NET_ACTIVE_WINDOW", fromPager, CurrentTime, 0, 0, 0);
    return waitUntil(
        [&] { return activeWindow(display) == window && holdsFocus(display, window); });
}

void placeWindow(_XDisplay* display, WindowId window, const WindowFrame& frame) {
    constexpr long allFourFromPager = 0x2f00;
    sendToRoot(display, window, "_NET_MOVERESIZE_WINDOW", allFourFromPager, frame.x, frame.y,
               frame.width, frame.height);
}

WindowFrame windowFrame(_XDisplay* display, WindowId window) {
    WindowFrame frame;
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display, window, &attributes) == 0) {
        return frame;
    }
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
