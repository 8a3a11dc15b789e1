// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/child_process.h"

#include "tests/support/real_desktop/wait_until.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kelvora::real {

namespace {

std::vector<char*> pointers(std::vector<std::string>& strings) {
    std::vector<char*> result;
    for (std::string& string : strings)
        result.push_back(string.data());
    result.push_back(nullptr);
    return result;
}

} // namespace

ChildProcess::ChildProcess(std::vector<std::string> arguments, const Options& options) {
    std::vector<std::string> variables;
    for (const auto& [name, value] : options.environment)
        variables.emplace_back(name).append("=").append(value);
    const std::vector<char*> argv = pointers(arguments);
    const std::vector<char*> envp = pointers(variables);
    const std::string output =
        options.outputFile.empty() ? std::string("/dev/null") : options.outputFile.string();
    const pid_t parent = getpid();

    pid_ = fork();
    if (pid_ < 0) {
        std::perror("fork");
        std::abort();
    }
    if (pid_ == 0) {
        // Only calls that are safe in the child of a program with threads, up to the exec.
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent)
            _exit(126);
        const int sink = open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
        dup2(sink, STDOUT_FILENO);
        dup2(sink, STDERR_FILENO);
        for (int descriptor = 3; descriptor < 256; ++descriptor)
            if (descriptor != options.inheritedDescriptor)
                close(descriptor);
        execvpe(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    setpgid(pid_, pid_);
}

ChildProcess::~ChildProcess() {
    for (const int signal : {SIGTERM, SIGKILL})
        if (isRunning()) {
            kill(-pid_, signal);
            static_cast<void>(waitForExit(std::chrono::seconds(3)));
        }
    // What it started itself and left behind in its group.
    kill(-pid_, SIGKILL);
}

bool ChildProcess::isRunning() {
    int status = 0;
    if (!exitCode_ && waitpid(pid_, &status, WNOHANG) == pid_)
        exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return !exitCode_;
}

std::optional<int> ChildProcess::waitForExit(std::chrono::milliseconds deadline) {
    static_cast<void>(waitUntil([this] { return !isRunning(); }, deadline));
    return exitCode_;
}

void ChildProcess::sendSignal(int signal) const {
    kill(pid_, signal);
}

std::string fileContent(const std::filesystem::path& file) {
    std::ostringstream content;
    content << std::ifstream(file, std::ios::binary).rdbuf();
    return content.str();
}

} // namespace kelvora::real
