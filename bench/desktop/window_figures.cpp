// SPDX-License-Identifier: MIT
#include "bench/desktop/window_figures.h"

#include "bench/desktop/process_figures.h"
#include "bench/desktop/statistics.h"
#include "tests/support/real_desktop/program.h"
#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/windows.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <systemd/sd-bus.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <set>
#include <thread>
#include <vector>

namespace kelvora::bench {

namespace {

using namespace kelvora::real;

struct BusCloser {
    void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
};
using Bus = std::unique_ptr<sd_bus, BusCloser>;

Bus connect(const RealDesktop& desktop) {
    sd_bus* bus = nullptr;
    sd_bus_new(&bus);
    sd_bus_set_address(bus, desktop.busAddress().c_str());
    sd_bus_set_bus_client(bus, 1);
    sd_bus_start(bus);
    return Bus(bus);
}

/// Asks for the preferences as a desktop does; the answer comes before the window.
bool activate(sd_bus* bus) {
    return sd_bus_call_method(bus, "org.kelvora.Kelvora", "/org/kelvora/Kelvora",
                              "org.freedesktop.Application", "Activate", nullptr, nullptr, "a{sv}",
                              0) >= 0;
}

/// More colours than a window has before its content is painted.
bool isPainted(Display* display, WindowId window) {
    XWindowAttributes attributes;
    if (XGetWindowAttributes(display, window, &attributes) == 0 ||
        attributes.map_state != IsViewable) {
        return false;
    }
    XImage* const image = XGetImage(display, window, 0, 0, static_cast<unsigned>(attributes.width),
                                    static_cast<unsigned>(attributes.height), AllPlanes, ZPixmap);
    if (image == nullptr) {
        return false;
    }
    std::set<unsigned long> colours;
    for (int y = 0; y < image->height; y += 3) {
        for (int x = 0; x < image->width; x += 3) {
            colours.insert(XGetPixel(image, x, y));
        }
    }
    XDestroyImage(image);
    return colours.size() > 8;
}

std::optional<double> secondsToFirstFrame(RealDesktop& desktop, Program& program, sd_bus* bus) {
    Clock::time_point asked;
    // It listens to keys a moment before the bus knows its name.
    const bool isAsked = waitUntil([&] {
        asked = Clock::now();
        return activate(bus);
    });
    const bool isShown = isAsked && waitUntil(
                                        [&] {
                                            const auto window = windowOfProcess(
                                                desktop.display(), program.process().pid());
                                            return window && isPainted(desktop.display(), *window);
                                        },
                                        std::chrono::seconds(10), std::chrono::microseconds(500));
    return isShown ? std::optional(secondsSince(asked)) : std::nullopt;
}

/// Seconds of processor time in a second.
double load(pid_t process, int seconds) {
    const double before = readProcessFigures(process).processorSeconds;
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    return (readProcessFigures(process).processorSeconds - before) / seconds;
}

} // namespace

bool measurePreferences(RealDesktop& desktop, const std::filesystem::path& executable, int runs) {
    const Bus bus = connect(desktop);
    std::vector<double> seconds;
    std::optional<Program> program;
    for (int run = 0; run < runs; ++run) {
        program.emplace(desktop, executable);
        const std::optional<double> firstFrame = secondsToFirstFrame(desktop, *program, bus.get());
        if (!firstFrame) {
            return false;
        }
        seconds.push_back(*firstFrame);
    }
    std::printf("preferences asked for to their first frame, %d fresh starts: %.0f ms median, "
                "%.0f ms p90\n",
                runs, quantile(seconds, 0.5) * 1e3, quantile(seconds, 0.9) * 1e3);

    constexpr int watched = 10; // seconds
    const pid_t process = program->process().pid();
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const double still = load(process, watched);
    // To where the guide is in the middle of the window.
    desktop.keyboard().tapNamed("Next");
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const double animated = load(process, watched);
    std::printf("preferences open: %.1f MB resident; %.1f %% of a core with the guide out of view, "
                "%.1f %% with it in view\n",
                static_cast<double>(readProcessFigures(process).residentKibibytes) / 1024,
                still * 100, animated * 100);
    return true;
}

} // namespace kelvora::bench
