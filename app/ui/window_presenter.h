// SPDX-License-Identifier: MIT
#pragma once

#include "host/window_activation.h"

class QWindow;

namespace kelvora {

/// Shows the window in front of all others, with the keyboard focus, as soon as the window manager
/// has it. `activation` outlives the window.
void presentWindow(QWindow& window, WindowActivation& activation);

/// The same for every window of this program that is on the screen, not minimized; the dialogs come
/// in front of the others.
void presentVisibleWindows(WindowActivation& activation);

} // namespace kelvora
