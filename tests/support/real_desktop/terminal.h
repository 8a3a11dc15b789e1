// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/real_desktop.h"
#include "tests/support/real_desktop/text_application.h"

#include <filesystem>
#include <string>
#include <vector>

namespace kelvora::real {

/// xterm with a shell's line editor in it. The text is what the terminal was told to show; the
/// bytes that the program in the terminal received and the lines that it accepted can be read as
/// well.
class Terminal final : public TextApplication {
public:
    /// `geometry` as xterm takes it.
    explicit Terminal(RealDesktop& desktop, const std::string& geometry = "80x24+20+20");

    [[nodiscard]] std::string name() const override { return "terminal (xterm)"; }
    [[nodiscard]] std::string text() override;
    [[nodiscard]] bool beginFreshLine() override;
    [[nodiscard]] WindowId window() const override { return window_; }

    /// Every byte that the program in the terminal has received since the terminal was opened.
    [[nodiscard]] std::string receivedBytes() const;
    /// Presses Enter and answers the line as the program got it, UTF-8.
    [[nodiscard]] std::string acceptLine();

private:
    [[nodiscard]] bool isPromptEmpty();
    [[nodiscard]] std::vector<std::string> acceptedLines() const;

    RealDesktop& desktop_;
    std::filesystem::path inputLog_;
    std::filesystem::path outputLog_;
    std::filesystem::path acceptedLog_;
    ChildProcess process_;
    WindowId window_ = 0;
};

} // namespace kelvora::real
