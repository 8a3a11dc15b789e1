// SPDX-License-Identifier: MIT
#include "tests/ui/docked_icon.h"

#include "tests/support/real_desktop/windows.h"

#include <X11/Xlib.h>
#include <algorithm>
#include <span>

namespace kelvora::real {

namespace {

constexpr int deepest = 5;

bool hasIconIn(Display* display, pid_t program, Window parent, int depth) {
    Window root = 0;
    Window above = 0;
    Window* children = nullptr;
    unsigned count = 0;
    if (depth > deepest || XQueryTree(display, parent, &root, &above, &children, &count) == 0 ||
        children == nullptr)
        return false;
    const bool found = std::ranges::any_of(std::span(children, count), [&](Window child) {
        if (processOfWindow(display, child) != program)
            return hasIconIn(display, program, child, depth + 1);
        XWindowAttributes attributes;
        return depth > 0 && XGetWindowAttributes(display, child, &attributes) != 0 &&
               attributes.map_state == IsViewable;
    });
    XFree(children);
    return found;
}

} // namespace

bool hasDockedIcon(_XDisplay* display, pid_t program) {
    return hasIconIn(display, program, DefaultRootWindow(display), 0);
}

} // namespace kelvora::real
