// SPDX-License-Identifier: MIT
#pragma once

#include "app/io/system_event_poster.h"
#include "app/shell/app_delegate.h"
#include "tests/support/fake_desktop/fake_desktop.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace kelvora {

/// The launched program on a desktop in memory.
class RunningApp : public testing::Test {
protected:
    RunningApp() { launch(); }

    /// A new copy of the program, as the desktop is now.
    void launch() {
        app.reset();
        app = std::make_unique<AppDelegate>(
            desktop.services(), desktop.session(), desktop.interface,
            std::make_shared<SystemEventPoster>(desktop.keyboard,
                                                [this] { return desktop.scheduler.now(); }));
        app->launch();
    }

    /// Types, taps Shift twice, and lets everything come to rest.
    void typeAndConvert(std::u16string_view labels) {
        desktop.type(labels);
        desktop.doubleShift();
        desktop.run();
    }

    std::u16string text() { return desktop.windows.text(); }
    std::u16string recorded() { return app->hotkey().typedText()->text(); }
    std::string status() { return app->model().statusMessage().value_or(""); }

    static constexpr const char* success = "Text converted successfully.";
    static constexpr const char* nothing =
        "Double-Shift detected. No convertible text or selection was found.";

    fake::FakeDesktop desktop;
    std::unique_ptr<AppDelegate> app;
};

} // namespace kelvora
