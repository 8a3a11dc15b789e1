// SPDX-License-Identifier: MIT
#include "tests/ui/docked_icon.h"

#include "tests/support/real_desktop/windows.h"

#include <X11/Xlib.h>

#include <span>

namespace kelvora::real {

namespace {

constexpr int deepest = 5;

bool isVisible(Display* display, Window window) {
    XWindowAttributes attributes;
    return XGetWindowAttributes(display, window, &attributes) != 0 &&
           attributes.map_state == IsViewable;
}

bool hasIconIn(Display* display, pid_t program, Window parent, int depth) {
    Window root = 0;
    Window above = 0;
    Window* children = nullptr;
    unsigned count = 0;
    if (depth > deepest || XQueryTree(display, parent, &root, &above, &children, &count) == 0 ||
        children == nullptr)
        return false;
    bool found = false;
    for (const Window child : std::span(children, count)) {
        if (processOfWindow(display, child) != program)
            found = found || hasIconIn(display, program, child, depth + 1);
        else
            found = found || (depth > 0 && isVisible(display, child));
    }
    XFree(children);
    return found;
}

} // namespace

bool hasDockedIcon(_XDisplay* display, pid_t program) {
    return hasIconIn(display, program, DefaultRootWindow(display), 0);
}

} // namespace kelvora::real
