// SPDX-License-Identifier: MIT
#include "bench/desktop/selection_latency.h"

#include "bench/desktop/statistics.h"
#include "tests/applications/title_text.h"
#include "tests/support/real_desktop/wait_until.h"

#include <cstdio>
#include <string>
#include <thread>

namespace kelvora::bench {

namespace {

using namespace kelvora::real;

constexpr const char* typed = "ghbdtn";
constexpr const char* repaired = "привет";
constexpr int characters = 6;

/// Seconds that do not depend on the machine.
struct FixedPauses {
    double beforeText; ///< until the application is given the new text
    double all;
};

FixedPauses fixedPauses(SelectionPath path) {
    // The second look at what was written.
    if (path == SelectionPath::accessibility) {
        return {0, 0.020};
    }
    // A second look for the focus, both halves of the copy, one poll; then both halves of the
    // paste, the time for the application to fetch it, and the selection of it again.
    constexpr double beforeText = 0.050 + 2 * 0.015 + 0.015;
    return {beforeText, beforeText + 2 * 0.015 + 0.2 + characters * 2 * 0.001};
}

class HiddenField final : public TextApplication {
public:
    explicit HiddenField(RealDesktop& desktop)
        : desktop_(desktop),
          process_({KELVORA_FIELDS_PROGRAM, "entry"}, {.environment = withoutBus(desktop)}) {}

    [[nodiscard]] bool isShown() {
        return waitUntil([this] {
            window_ = windowOfProcess(desktop_.display(), process_.pid()).value_or(0);
            return window_ != 0;
        });
    }
    [[nodiscard]] std::string name() const override { return "Qt field, not accessible"; }
    [[nodiscard]] std::string text() override {
        return applications::textOfTitle(windowTitle(desktop_.display(), window_));
    }
    [[nodiscard]] bool beginFreshLine() override {
        lockLayout(desktop_.display(), 0);
        if (!activateWindow(desktop_.display(), window_)) {
            return false;
        }
        desktop_.keyboard().controlWith('a');
        desktop_.keyboard().tap(key::backspace);
        return waitUntil([this] { return text().empty(); });
    }
    [[nodiscard]] WindowId window() const override { return window_; }

private:
    /// Accessibility comes over the session bus.
    static Environment withoutBus(const RealDesktop& desktop) {
        Environment environment = desktop.environment();
        environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent";
        return environment;
    }

    RealDesktop& desktop_;
    ChildProcess process_;
    WindowId window_ = 0;
};

} // namespace

std::unique_ptr<TextApplication> openHiddenField(RealDesktop& desktop) {
    auto field = std::make_unique<HiddenField>(desktop);
    return field->isShown() ? std::move(field) : nullptr;
}

bool measureSelectionLatency(RealDesktop& desktop, TextApplication& application, SelectionPath path,
                             int runs) {
    const FixedPauses pauses = fixedPauses(path);
    const auto soon = [](const auto& condition) {
        return waitUntil(condition, std::chrono::seconds(5), std::chrono::microseconds(200));
    };
    std::vector<double> untilText;
    std::vector<double> ratios;
    for (int run = 0; run < runs; ++run) {
        if (!application.beginFreshLine()) {
            return false;
        }
        desktop.keyboard().type(typed);
        if (!application.showsText(typed, std::chrono::milliseconds(30))) {
            return false;
        }
        desktop.keyboard().controlWith('a');
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        desktop.keyboard().doubleShift();
        const Clock::time_point released = Clock::now();
        if (!soon([&] { return application.text() == repaired; })) {
            return false;
        }
        untilText.push_back(secondsSince(released));
        // The layout is switched when everything is done.
        if (!soon([&] { return activeLayout(desktop.display()) == "ru"; })) {
            return false;
        }
        ratios.push_back(secondsSince(released) / pauses.all);
        std::this_thread::sleep_for(std::chrono::milliseconds(250));
    }
    std::printf("%-24s %2d selected, %d runs: %.3f median, %.3f p90, of %.3f s fixed pauses; the "
                "text after %.0f ms median, %.0f ms p90, of which %.0f ms fixed\n",
                application.name().c_str(), characters, runs, quantile(ratios, 0.5),
                quantile(ratios, 0.9), pauses.all, quantile(untilText, 0.5) * 1e3,
                quantile(untilText, 0.9) * 1e3, pauses.beforeText * 1e3);
    return true;
}

} // namespace kelvora::bench
