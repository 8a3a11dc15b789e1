// SPDX-License-Identifier: MIT
// Types random words in a terminal and in an editor and converts them, and compares every text with
// what it must be; the program's memory and files may not grow meanwhile.
//     soak [words [seed]]
#include "tests/soak/typist.h"
#include "tests/support/real_desktop/program.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <string_view>

namespace {

using namespace kelvora;

struct Footprint {
    long residentKilobytes = 0;
    long openFiles = 0;
};

Footprint footprintOf(pid_t process) {
    const std::filesystem::path folder = "/proc/" + std::to_string(process);
    Footprint footprint;
    std::ifstream status(folder / "status");
    for (std::string name; status >> name;) {
        if (name == "RssAnon:") {
            status >> footprint.residentKilobytes;
        }
        std::getline(status, name);
    }
    footprint.openFiles = std::distance(std::filesystem::directory_iterator(folder / "fd"),
                                        std::filesystem::directory_iterator());
    return footprint;
}

void print(const soak::Counts& done, const Footprint& footprint) {
    std::printf("%5d words, %d conversions and %d double taps for nothing (%d typed on at once, %d "
                "disturbed and %d of these not "
                "made), %d backspaces, %d clicks, %d layout changes, %d window changes, %d lines; "
                "%ld KB of its own, %ld files\n",
                done.words, done.conversions, done.nothingToConvert, done.typedOn, done.disturbed,
                done.abandoned, done.backspaces, done.clicks, done.layoutChanges,
                done.applicationSwitches, done.lines, footprint.residentKilobytes,
                footprint.openFiles);
    std::fflush(stdout);
}

std::uint32_t numberOr(std::uint32_t standard, std::span<char* const> arguments,
                       std::size_t place) {
    if (arguments.size() <= place) {
        return standard;
    }
    const std::string_view text = arguments[place];
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        std::fprintf(stderr, "usage: soak [words [seed]]\n");
        std::exit(2);
    }
    return number;
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long mostGrowth = 1 << 20; // KB; a sanitizer keeps what is freed, or notes every access
#else
constexpr long mostGrowth = 1024; // KB; what the allocator may keep for itself
#endif

} // namespace

int main(int argumentCount, char** argumentValues) {
    const std::span<char* const> arguments(argumentValues, static_cast<std::size_t>(argumentCount));
    const auto words = static_cast<int>(numberOr(2000, arguments, 1));
    const std::uint32_t seed = numberOr(1, arguments, 2);
    constexpr int warmUp = 100; // words until everything that is made at its first use is there

    real::RealDesktop desktop;
    real::Program program(desktop, KELVORA_PROGRAM);
    soak::Typist typist(desktop, seed);
    Footprint first;
    bool isRight = true;
    while (isRight && typist.counts().words < words) {
        isRight = typist.typeWord();
        const int done = typist.counts().words;
        if (done == warmUp) {
            first = footprintOf(program.process().pid());
        }
        if (isRight && (done % 100 == 0 || done == warmUp)) {
            print(typist.counts(), footprintOf(program.process().pid()));
        }
    }
    isRight = isRight && typist.check();
    if (!program.process().isRunning()) {
        std::printf("the program has ended\n");
        return 1;
    }
    const Footprint last = footprintOf(program.process().pid());
    print(typist.counts(), last);
    if (!isRight) {
        const std::string log = program.log();
        std::printf("seed %u, word %d: %s\nThe program said last:\n%s\n", seed,
                    typist.counts().words, typist.problem().c_str(),
                    log.substr(log.size() - std::min<std::size_t>(log.size(), 3000)).c_str());
        return 1;
    }
    const bool hasGrown =
        words > warmUp && (last.residentKilobytes > first.residentKilobytes + mostGrowth ||
                           last.openFiles > first.openFiles);
    if (hasGrown) {
        std::printf("the program has grown: from %ld KB and %ld files after %d words\n",
                    first.residentKilobytes, first.openFiles, warmUp);
    }
    return hasGrown ? 1 : 0;
}
