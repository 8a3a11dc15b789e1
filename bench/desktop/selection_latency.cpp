// SPDX-License-Identifier: MIT
#include "bench/desktop/selection_latency.h"

#include "bench/desktop/statistics.h"
#include "tests/applications/title_text.h"
#include "tests/support/real_desktop/wait_until.h"

#include <cstdio>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace kelvora::bench {

namespace {

using namespace kelvora::real;

constexpr const char* typed = "ghbdtn";
constexpr const char* repaired = "привет";
constexpr int characters = 6;

/// Seconds that do not depend on the machine.
double fixedPauses(SelectionPath path) {
    // The second look at what was written.
    if (path == SelectionPath::accessibility) {
        return 0.020;
    }
    // A second look for the focus, both halves of the copy, one poll; then both halves of the
    // paste, the time for the application to fetch it, and the selection of it again.
    return 0.050 + 2 * 0.015 + 0.015 + 2 * 0.015 + 0.2 + characters * 2 * 0.001;
}

enum class Moment { repairedText, endOfCorrection };

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

/// Seconds from the trigger to the moment; absent when the text is not repaired.
std::optional<double> measure(RealDesktop& desktop, TextApplication& application, Moment moment) {
    if (!application.beginFreshLine()) {
        return std::nullopt;
    }
    desktop.keyboard().type(typed);
    if (!application.showsText(typed, std::chrono::milliseconds(30))) {
        return std::nullopt;
    }
    desktop.keyboard().controlWith('a');
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    const auto hasText = [&] { return application.text() == repaired; };
    // The layout is switched when everything is done. Only one of the two is watched: asking the
    // application for its text takes time from it.
    const auto hasEnded = [&] { return activeLayout(desktop.display()) == "ru"; };
    const auto soon = [](const auto& condition) {
        return waitUntil(condition, std::chrono::seconds(5), std::chrono::microseconds(200));
    };
    desktop.keyboard().doubleShift();
    const Clock::time_point released = Clock::now();
    const bool isReached = moment == Moment::repairedText ? soon(hasText) : soon(hasEnded);
    const double seconds = secondsSince(released);
    const bool isRepaired = isReached && soon(hasEnded) && hasText();
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    return isRepaired ? std::optional(seconds) : std::nullopt;
}

} // namespace

std::unique_ptr<TextApplication> openHiddenField(RealDesktop& desktop) {
    auto field = std::make_unique<HiddenField>(desktop);
    return field->isShown() ? std::move(field) : nullptr;
}

bool measureSelectionLatency(RealDesktop& desktop, TextApplication& application, SelectionPath path,
                             int runs) {
    const double pauses = fixedPauses(path);
    std::printf("%-24s %2d selected, %d runs, of %.3f s fixed pauses:", application.name().c_str(),
                characters, runs, pauses);
    for (const auto& [moment, name] :
         {std::pair{Moment::repairedText, "text"}, std::pair{Moment::endOfCorrection, "end"}}) {
        std::vector<double> ratios;
        for (int run = 0; run < runs; ++run) {
            const std::optional<double> seconds = measure(desktop, application, moment);
            if (!seconds) {
                return false;
            }
            ratios.push_back(*seconds / pauses);
        }
        std::printf(" %s %.3f median, %.3f p90;", name, quantile(ratios, 0.5),
                    quantile(ratios, 0.9));
    }
    std::printf("\n");
    return true;
}

} // namespace kelvora::bench
