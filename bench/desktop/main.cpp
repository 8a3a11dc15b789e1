// SPDX-License-Identifier: MIT
// Measures the program as its user meets it, on a desktop of its own with real applications.
//
//     desktop_bench PROGRAM [RUNS [IDLE_SECONDS]]
//
// Prints figures and asserts none of them; fails only when a text is not repaired.
#include "bench/desktop/process_figures.h"
#include "bench/desktop/selection_latency.h"
#include "bench/desktop/statistics.h"
#include "bench/desktop/window_figures.h"
#include "tests/support/real_desktop/editor.h"
#include "tests/support/real_desktop/program.h"
#include "tests/support/real_desktop/terminal.h"
#include "tests/support/real_desktop/wait_until.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace kelvora::bench;
using namespace kelvora::real;

struct Word {
    const char* typed;
    const char* repaired;
    int characters; // erased one by one, and typed in chunks of 20 UTF-16 units
};

constexpr std::array words{
    Word{"ghbdtn", "привет", 6},
    Word{"ghtdsctyysqghtdsctyysqghtdsctyysq", "превысенныйпревысенныйпревысенный", 33},
};

/// The pauses of a correction that do not depend on the machine: 8 ms after each half of a
/// Backspace, 10 ms after each half of a chunk.
double fixedPauses(const Word& word) {
    const int chunks = (word.characters + 19) / 20;
    return word.characters * 2 * 0.008 + chunks * 0.02;
}

bool measureLatency(RealDesktop& desktop, TextApplication& application, int runs) {
    for (const Word& word : words) {
        std::vector<double> ratios;
        for (int run = 0; run < runs; ++run) {
            if (!application.beginFreshLine()) {
                return false;
            }
            // What is typed sooner waits until it is known where the focus went.
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            desktop.keyboard().type(word.typed);
            if (!application.showsText(word.typed, std::chrono::milliseconds(30))) {
                return false;
            }
            desktop.keyboard().doubleShift();
            const Clock::time_point released = Clock::now();
            if (!waitUntil([&] { return application.text() == word.repaired; },
                           std::chrono::seconds(5), std::chrono::microseconds(200))) {
                return false;
            }
            ratios.push_back(secondsSince(released) / fixedPauses(word));
            // The correction's own last pauses, and whatever it puts back after them.
            std::this_thread::sleep_for(std::chrono::milliseconds(250));
        }
        std::printf("%-24s %2d letters, %d runs: %.3f median, %.3f p90, of %.3f s fixed pauses\n",
                    application.name().c_str(), word.characters, runs, quantile(ratios, 0.5),
                    quantile(ratios, 0.9), fixedPauses(word));
    }
    return true;
}

/// A program of the toolkit that does nothing, to compare with.
class BareToolkit {
public:
    explicit BareToolkit(RealDesktop& desktop)
        : output_(desktop.newFile("bare")), process_({KELVORA_BARE_TOOLKIT}, options(desktop)) {
        static_cast<void>(waitUntil([this] { return fileContent(output_) == "ready\n"; },
                                    defaultDeadline, std::chrono::microseconds(500)));
    }

    [[nodiscard]] pid_t pid() const { return process_.pid(); }

private:
    [[nodiscard]] ChildProcess::Options options(const RealDesktop& desktop) const {
        return {.environment = desktop.environment(), .outputFile = output_};
    }

    std::filesystem::path output_;
    ChildProcess process_;
};

void measureStart(RealDesktop& desktop, const std::filesystem::path& executable) {
    std::vector<double> seconds;
    std::vector<double> bareSeconds;
    for (int run = 0; run < 10; ++run) {
        const Clock::time_point start = Clock::now();
        const Program program(desktop, executable);
        seconds.push_back(secondsSince(start));
        const Clock::time_point bareStart = Clock::now();
        const BareToolkit bare(desktop);
        bareSeconds.push_back(secondsSince(bareStart));
    }
    const double median = quantile(seconds, 0.5);
    std::printf("start to listening: %.0f ms median, %.0f ms p90; %.2f x a program of the toolkit "
                "that does nothing\n",
                median * 1e3, quantile(seconds, 0.9) * 1e3, median / quantile(bareSeconds, 0.5));
}

void measureIdle(RealDesktop& desktop, Program& program, int seconds) {
    const BareToolkit bare(desktop);
    const pid_t process = program.process().pid();
    const auto before = readProcessFigures(process);
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    const auto after = readProcessFigures(process);
    std::printf("idle for %d s: %ld wake-ups, %.2f s of processor time\n", seconds,
                after.wakeUps - before.wakeUps, after.processorSeconds - before.processorSeconds);
    const auto toolkit = readProcessFigures(bare.pid());
    const auto megabytes = [](long kibibytes) { return static_cast<double>(kibibytes) / 1024; };
    std::printf("resident memory: %.1f MB, of it private %.1f MB; %.2f x and %.2f x a program of "
                "the toolkit that does nothing\n",
                megabytes(after.residentKibibytes), megabytes(after.privateResidentKibibytes),
                megabytes(after.residentKibibytes) / megabytes(toolkit.residentKibibytes),
                megabytes(after.privateResidentKibibytes) /
                    megabytes(toolkit.privateResidentKibibytes));
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: desktop_bench PROGRAM [RUNS [IDLE_SECONDS]]\n");
        return 2;
    }
    const std::filesystem::path executable = std::filesystem::absolute(argv[1]);
    const int runs = std::max(1, argc > 2 ? std::atoi(argv[2]) : 30);
    const int idleSeconds = std::max(1, argc > 3 ? std::atoi(argv[3]) : 30);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);

    RealDesktop desktop;
    desktop.keyboard().setSource(KeySource::physical);
    measureStart(desktop, executable);
    if (!measurePreferences(desktop, executable, 10)) {
        std::fprintf(stderr, "the preferences do not open\n");
        return 1;
    }
    Program program(desktop, executable);
    measureIdle(desktop, program, idleSeconds);

    std::printf("second Shift release to repaired text, as a ratio to the fixed pauses:\n");
    Terminal terminal(desktop);
    bool isRepaired = measureLatency(desktop, terminal, runs);
    Editor editor(desktop, EditorKind::gtk);
    isRepaired = isRepaired && measureLatency(desktop, editor, runs);

    std::printf(
        "second Shift release to repaired text and to the end of the correction, likewise:\n");
    isRepaired =
        isRepaired && measureSelectionLatency(desktop, editor, SelectionPath::accessibility, runs);
    const std::unique_ptr<TextApplication> field = openHiddenField(desktop);
    isRepaired = isRepaired && field != nullptr &&
                 measureSelectionLatency(desktop, *field, SelectionPath::clipboard, runs);
    if (!isRepaired) {
        std::fprintf(stderr, "a text was not repaired\n");
    }
    return isRepaired ? 0 : 1;
}
