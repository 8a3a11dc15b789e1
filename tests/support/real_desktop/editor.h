// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/accessibility_bus.h"
#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/real_desktop.h"
#include "tests/support/real_desktop/text_application.h"

#include <memory>
#include <string>

namespace kelvora::real {

enum class EditorKind {
    gtk, ///< mousepad, GTK 3
    qt,  ///< featherpad, Qt 5
};

/// A graphical text editor with one empty document. The text is what it tells assistive technology.
class Editor final : public TextApplication {
public:
    Editor(RealDesktop& desktop, EditorKind kind);

    [[nodiscard]] std::string name() const override;
    [[nodiscard]] std::string text() override;
    [[nodiscard]] bool beginFreshLine() override;
    [[nodiscard]] WindowId window() const override { return window_; }

private:
    RealDesktop& desktop_;
    EditorKind kind_;
    ChildProcess process_;
    WindowId window_ = 0;
    std::unique_ptr<AccessibleText> document_;
};

} // namespace kelvora::real
