// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/terminal.h"

#include "tests/support/real_desktop/terminal_line.h"
#include "tests/support/real_desktop/wait_until.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace kelvora::real {

namespace {

constexpr std::string_view prompt = "> ";

std::vector<std::string> command(const std::string& geometry, const std::filesystem::path& input,
                                 const std::filesystem::path& output,
                                 const std::filesystem::path& accepted,
                                 const std::filesystem::path& script) {
    // `read -e` is the shell's own line editor, and each line it accepts is kept as it got it.
    std::ofstream(script) << "while IFS= read -e -r -p '> ' line; do\n"
                             "    printf '%s\\n' \"$line\" >>'"
                          << accepted.string() << "'\ndone\n";
    std::istringstream options("-geometry " + geometry +
                               " -fs 16 -bg white -fg black -title Terminal "
                               "-e script --quiet --flush --log-in " +
                               input.string() + " --log-out " + output.string() + " --command");
    std::vector<std::string> words{"xterm", "-fa", "DejaVu Sans Mono"};
    for (std::string word; options >> word;)
        words.push_back(word);
    words.push_back("bash --norc " + script.string());
    return words;
}

// The first line is the recorder's own.
std::string withoutHeader(const std::string& content) {
    const std::size_t end = content.find('\n');
    return end == std::string::npos ? std::string() : content.substr(end + 1);
}

} // namespace

Terminal::Terminal(RealDesktop& desktop, const std::string& geometry)
    : desktop_(desktop), inputLog_(desktop.newFile("terminal-input")),
      outputLog_(desktop.newFile("terminal-output")),
      acceptedLog_(desktop.newFile("terminal-lines")),
      process_(
          command(geometry, inputLog_, outputLog_, acceptedLog_, desktop.newFile("line-editor.sh")),
          {.environment = desktop.environment()}) {
    const bool ready = waitUntil([this] { return isPromptEmpty(); }) && waitUntil([this] {
                           window_ =
                               windowOfProcess(desktop_.display(), process_.pid()).value_or(0);
                           return window_ != 0;
                       });
    if (!ready || !activateWindow(desktop.display(), window_)) {
        std::fprintf(stderr, "the terminal does not start\n");
        std::abort();
    }
}

bool Terminal::isPromptEmpty() {
    return lastTerminalLine(withoutHeader(fileContent(outputLog_))) == prompt;
}

std::string Terminal::text() {
    const std::string line = lastTerminalLine(withoutHeader(fileContent(outputLog_)));
    return line.starts_with(prompt) ? line.substr(prompt.size()) : line;
}

bool Terminal::beginFreshLine() {
    lockLayout(desktop_.display(), 0);
    if (!activateWindow(desktop_.display(), window_))
        return false;
    desktop_.keyboard().controlWith('e');
    desktop_.keyboard().controlWith('u');
    return waitUntil([this] { return isPromptEmpty(); });
}

std::string Terminal::receivedBytes() const {
    return withoutHeader(fileContent(inputLog_));
}

std::vector<std::string> Terminal::acceptedLines() const {
    std::vector<std::string> lines;
    std::istringstream content(fileContent(acceptedLog_));
    for (std::string line; std::getline(content, line);)
        lines.push_back(line);
    return lines;
}

std::string Terminal::acceptLine() {
    const std::size_t before = acceptedLines().size();
    desktop_.keyboard().tap(key::enter);
    static_cast<void>(
        waitUntil([&] { return acceptedLines().size() > before && isPromptEmpty(); }));
    const std::vector<std::string> lines = acceptedLines();
    return lines.size() > before ? lines.back() : std::string();
}

} // namespace kelvora::real
