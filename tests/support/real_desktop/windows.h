// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/x_display.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kelvora::real {

using WindowId = unsigned long;

struct WindowFrame {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// The bytes of a property of the root window; empty when it has none.
[[nodiscard]] std::string rootStringProperty(_XDisplay* display, const char* name);
/// The visible top window of a process; absent as long as it shows none.
[[nodiscard]] std::optional<WindowId> windowOfProcess(_XDisplay* display, pid_t process);
/// The visible top windows, the oldest first.
[[nodiscard]] std::vector<WindowId> topWindows(_XDisplay* display);
/// The process that a window says it belongs to; 0 when it says none.
[[nodiscard]] pid_t processOfWindow(_XDisplay* display, WindowId window);
/// The title in UTF-8; empty when there is none.
[[nodiscard]] std::string windowTitle(_XDisplay* display, WindowId window);
/// The window that the window manager calls active; 0 for none.
[[nodiscard]] WindowId activeWindow(_XDisplay* display);
/// Asks the window manager to bring the window forward, and waits until it has the keyboard focus.
[[nodiscard]] bool activateWindow(_XDisplay* display, WindowId window);
/// Asks the window manager for a place and size in pixels.
void placeWindow(_XDisplay* display, WindowId window, const WindowFrame& frame);
/// Where a window's content is on the screen.
[[nodiscard]] WindowFrame windowFrame(_XDisplay* display, WindowId window);
/// Moves the pointer there, in screen pixels, and clicks the left button.
void clickAt(_XDisplay* display, int x, int y);

} // namespace kelvora::real
