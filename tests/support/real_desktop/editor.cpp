// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/editor.h"

#include "tests/support/real_desktop/wait_until.h"

#include <cstdio>
#include <cstdlib>

namespace kelvora::real {

Editor::Editor(RealDesktop& desktop, EditorKind kind)
    : desktop_(desktop), kind_(kind),
      process_(kind == EditorKind::gtk ? std::vector<std::string>{"mousepad", "--disable-server"}
                                       : std::vector<std::string>{"featherpad", "--standalone"},
               {.environment = desktop.environment()}) {
    const bool isReady =
        waitUntil([this] {
            window_ = windowOfProcess(desktop_.display(), process_.pid()).value_or(0);
            return window_ != 0;
        }) &&
        activateWindow(desktop.display(), window_) && waitUntil([this] {
            document_ = AccessibleText::find(desktop_.busAddress(), process_.pid());
            return document_ != nullptr;
        });
    if (!isReady) {
        std::fprintf(stderr, "%s does not start\n", name().c_str());
        std::abort();
    }
}

std::string Editor::name() const {
    return kind_ == EditorKind::gtk ? "GTK editor (mousepad)" : "Qt editor (featherpad)";
}

std::string Editor::text() {
    return document_->text().value_or("the editor does not answer");
}

bool Editor::beginFreshLine() {
    lockLayout(desktop_.display(), 0);
    if (!activateWindow(desktop_.display(), window_))
        return false;
    desktop_.keyboard().controlWith('a');
    desktop_.keyboard().tap(key::backspace);
    return waitUntil([this] { return text().empty(); });
}

} // namespace kelvora::real
