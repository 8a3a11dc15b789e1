// SPDX-License-Identifier: MIT
// What people type is nobody else's.
#include "tests/support/real_desktop/editor.h"
#include "tests/support/real_desktop/program.h"
#include "tests/support/real_desktop/terminal.h"
#include "tests/support/real_desktop/wait_until.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <grp.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace kelvora::real {

namespace {

constexpr uid_t someUser = 65534;

std::vector<std::string> asSomeUser(std::vector<std::string> command) {
    if (geteuid() == 0) {
        command.insert(command.begin(),
                       {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", "--"});
    }
    return command;
}

/// Can another program of the same user read the process's memory?
bool isReadable(pid_t process) {
    const pid_t reader = fork();
    if (reader == 0) {
        const bool isSameUser = geteuid() != 0 || (setgroups(0, nullptr) == 0 &&
                                                   setgid(someUser) == 0 && setuid(someUser) == 0);
        const std::string memory = "/proc/" + std::to_string(process) + "/mem";
        _exit(isSameUser && open(memory.c_str(), O_RDONLY | O_CLOEXEC) >= 0 ? 0 : 1);
    }
    int status = 0;
    waitpid(reader, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string contentOfAllFiles(const std::filesystem::path& folder) {
    std::string content;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            content += entry.path().string() + '\n' + fileContent(entry.path()) + '\n';
        }
    }
    return content;
}

TEST(Privacy, NoOtherProgramReadsTheMemoryAndNoCoreIsWritten) {
    RealDesktop desktop;
    const auto log = desktop.newFile("log");
    Environment environment = desktop.environment();
    environment["KELVORA_LOG"] = "info";
    ChildProcess ordinary(asSomeUser({"sleep", "60"}), {.environment = environment});
    ChildProcess program(asSomeUser({KELVORA_PROGRAM, "--login-launch"}),
                         {.environment = environment, .outputFile = log});
    ASSERT_TRUE(waitUntil([&] {
        return fileContent(log).find("Listening for double-Shift") != std::string::npos;
    })) << fileContent(log);
    EXPECT_TRUE(waitUntil([&] { return isReadable(ordinary.pid()); })) << "or this proves nothing";
    EXPECT_FALSE(isReadable(program.pid()));

    const std::string limits = fileContent("/proc/" + std::to_string(program.pid()) + "/limits");
    std::istringstream core(limits.substr(std::min(limits.size(), limits.find("Max core file"))));
    std::string word;
    std::string soft;
    core >> word >> word >> word >> word >> soft;
    EXPECT_EQ(soft, "0") << limits;
}

TEST(Privacy, WhatIsTypedIsInNoFileAndNoLog) {
    RealDesktop desktop;
    Environment environment = desktop.environment();
    environment["KELVORA_LOG"] = "debug"; // everything there is
    Program program(desktop, KELVORA_PROGRAM, Program::Start::waitUntilListening, environment);
    desktop.keyboard().setSource(KeySource::physical);
    Terminal terminal(desktop);
    desktop.keyboard().type("cnhjrf");
    desktop.keyboard().doubleShift();
    ASSERT_TRUE(terminal.showsText("строка")) << terminal.text();

    Editor editor(desktop, EditorKind::gtk);
    ASSERT_TRUE(editor.beginFreshLine());
    desktop.keyboard().type("cnhjrf");
    desktop.keyboard().chord("Control_L+a");
    desktop.keyboard().doubleShift();
    ASSERT_TRUE(editor.showsText("строка")) << editor.text();
    desktop.keyboard().chord("Control_L+a");
    desktop.keyboard().tap(key::backspace);

    program.process().sendSignal(SIGTERM);
    ASSERT_TRUE(program.process().waitForExit(std::chrono::seconds(5)));
    const std::string written = program.log() + contentOfAllFiles(desktop.environment().at("HOME"));
    EXPECT_NE(written.find("Converted text to index 1"), std::string::npos);
    EXPECT_EQ(written.find("cnhjrf"), std::string::npos);
    EXPECT_EQ(written.find("строка"), std::string::npos);
}

} // namespace

} // namespace kelvora::real
