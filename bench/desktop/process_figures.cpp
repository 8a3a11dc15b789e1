// SPDX-License-Identifier: MIT
#include "bench/desktop/process_figures.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace kelvora::bench {

namespace {

/// The number behind `key` in a file of lines "Key:   number ...", 0 when it is not there.
long numberIn(const std::filesystem::path& file, const std::string& key) {
    std::ifstream stream(file);
    std::string word;
    while (stream >> word) {
        if (word == key) {
            long number = 0;
            stream >> number;
            return number;
        }
    }
    return 0;
}

double processorSeconds(const std::filesystem::path& statFile) {
    std::ifstream stream(statFile);
    std::string content;
    std::getline(stream, content);
    // Behind the name, which may hold anything, the 12th and 13th fields are the ticks.
    std::size_t position = content.rfind(')') + 1;
    for (int field = 0; field < 12; ++field) {
        position = content.find(' ', position) + 1;
    }
    char* end = nullptr;
    const long user = std::strtol(content.c_str() + position, &end, 10);
    const long system = std::strtol(end, nullptr, 10);
    return static_cast<double>(user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

} // namespace

ProcessFigures readProcessFigures(pid_t process) {
    const std::filesystem::path folder = "/proc/" + std::to_string(process);
    ProcessFigures figures;
    figures.residentKibibytes = numberIn(folder / "status", "VmRSS:");
    figures.privateResidentKibibytes = numberIn(folder / "status", "RssAnon:");
    std::error_code error;
    for (const auto& thread : std::filesystem::directory_iterator(folder / "task", error)) {
        figures.wakeUps += numberIn(thread.path() / "status", "voluntary_ctxt_switches:");
    }
    figures.processorSeconds = processorSeconds(folder / "stat");
    return figures;
}

} // namespace kelvora::bench
