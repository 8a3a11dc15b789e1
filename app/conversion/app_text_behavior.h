// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string_view>

namespace kelvora {

/// How text can be taken from an application, by its bundle identifier. Identifiers are compared
/// whole and with case. Any thread.
class AppTextBehavior {
public:
    AppTextBehavior() = delete;

    /// Only typed text is repaired there.
    static constexpr std::array<std::string_view, 12> terminals{
        "com.apple.Terminal",
        "com.googlecode.iterm2",
        "dev.warp.Warp-Stable",
        "dev.warp.Warp",
        "com.mitchellh.ghostty",
        "net.kovidgoyal.kitty",
        "org.alacritty",
        "io.alacritty",
        "com.github.wez.wezterm",
        "co.zeit.hyper",
        "org.tabby",
        "com.raphaelamorim.rio",
    };
    /// Selecting everything there selects the drawing, not a text.
    static constexpr std::array<std::string_view, 1> canvasEditors{"com.figma.Desktop"};

    [[nodiscard]] static bool isTerminal(std::string_view bundleID);
    [[nodiscard]] static bool isCanvasEditor(std::string_view bundleID);
};

} // namespace kelvora
