// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/x_server.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <unistd.h>

namespace kelvora::real {

XServer::XServer(const std::vector<std::string>& options) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        std::perror("pipe");
        std::abort();
    }
    std::vector<std::string> command{"Xvfb",      "-displayfd", std::to_string(ends[1]),
                                     "-screen",   "0",          "1600x1000x24",
                                     "-nolisten", "tcp",        "-noreset"};
    command.insert(command.end(), options.begin(), options.end());
    process_ = std::make_unique<ChildProcess>(
        command, ChildProcess::Options{.environment = {{"PATH", "/usr/bin:/bin"}},
                                       .inheritedDescriptor = ends[1]});
    close(ends[1]);

    // The server writes the number of its display, and a line break, once it takes connections.
    std::string number;
    char character = 0;
    pollfd readable{.fd = ends[0], .events = POLLIN, .revents = 0};
    while (poll(&readable, 1, 20'000) > 0 && read(ends[0], &character, 1) == 1 && character != '\n')
        number.push_back(character);
    close(ends[0]);
    if (number.empty() || character != '\n') {
        std::fprintf(stderr, "Xvfb does not start\n");
        std::abort();
    }
    display_ = ":" + number;
}

void XServer::kill() {
    process_->sendSignal(SIGKILL);
    static_cast<void>(process_->waitForExit(std::chrono::seconds(5)));
}

} // namespace kelvora::real
