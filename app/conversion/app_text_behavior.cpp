// SPDX-License-Identifier: MIT
#include "app/conversion/app_text_behavior.h"

#include <algorithm>

namespace kelvora {

bool AppTextBehavior::isTerminal(std::string_view bundleID) {
    return std::ranges::find(terminals, bundleID) != terminals.end();
}

bool AppTextBehavior::isCanvasEditor(std::string_view bundleID) {
    return std::ranges::find(canvasEditors, bundleID) != canvasEditors.end();
}

} // namespace kelvora
