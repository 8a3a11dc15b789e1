// SPDX-License-Identifier: MIT
#pragma once

#include "host/window_activation.h"

class QWindow;

namespace kelvora {

/// Shows the window in front of all others, with the keyboard focus, as soon as the window manager
/// has it. `activation` outlives the window.
void presentWindow(QWindow& window, WindowActivation& activation);

/// The same for every window that this program shows at present.
void presentVisibleWindows(WindowActivation& activation);

} // namespace kelvora
