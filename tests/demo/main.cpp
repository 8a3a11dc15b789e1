// SPDX-License-Identifier: MIT
// Shows the program at work: a desktop of its own, a real terminal and a real editor, keys pressed
// from outside the program, and the text of each read back from the application; then its window.
//
//     kelvora-demo PROGRAM DIRECTORY
//
// leaves screenshots in the directory, and fails when something is not as it should be.
#include "tests/support/real_desktop/editor.h"
#include "tests/support/real_desktop/program.h"
#include "tests/support/real_desktop/terminal.h"
#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/windows.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace kelvora::real;

/// Tells one application's text and the layout, as they are now; true when they are as expected.
bool report(RealDesktop& desktop, TextApplication& application, const char* moment,
            const std::string& expectedText, const std::string& expectedLayout) {
    const bool isTextRight = application.showsText(expectedText);
    const std::string layout = activeLayout(desktop.display());
    const bool isRight = isTextRight && layout == expectedLayout;
    std::printf("  %-24s %-8s \"%s\"   layout %s%s\n", application.name().c_str(), moment,
                application.text().c_str(), layout.c_str(), isRight ? "" : "   WRONG");
    return isRight;
}

bool begin(RealDesktop& desktop, TextApplication& application, const std::string& typed) {
    if (!application.beginFreshLine()) {
        return false;
    }
    desktop.keyboard().type(typed);
    return report(desktop, application, "before:", typed, "us");
}

bool repair(RealDesktop& desktop, TextApplication& application, const std::string& expected) {
    desktop.keyboard().doubleShift();
    return report(desktop, application, "after:", expected, "ru");
}

/// A session's tools in which pages are not opened: the address of one that is there is left in
/// `openedFile` instead.
Environment withoutBrowser(RealDesktop& desktop, const std::filesystem::path& openedFile) {
    const std::filesystem::path tools = desktop.newFile("tools");
    std::filesystem::create_directories(tools);
    const std::filesystem::path opener = tools / "xdg-open";
    std::ofstream(opener) << "#!/bin/sh\n[ -f \"${1#file://}\" ] && echo \"$1\" >"
                          << openedFile.string() << "\n";
    std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
    Environment environment = desktop.environment();
    environment["PATH"] = tools.string() + ":" + environment["PATH"];
    return environment;
}

/// Moves to the control that is `tabs` further, and presses it.
void pressControl(RealDesktop& desktop, int tabs) {
    for (int i = 0; i < tabs; ++i) {
        desktop.keyboard().tapNamed("Tab");
    }
    desktop.keyboard().tap(key::space);
}

/// What a user finds who starts the program: the preferences, the start at login, the guide.
bool showPreferences(RealDesktop& desktop, const std::filesystem::path& executable,
                     const std::filesystem::path& folder) {
    const std::filesystem::path openedFile = desktop.newFile("opened");
    const std::filesystem::path loginEntry =
        desktop.environment().at("XDG_CONFIG_HOME") + "/autostart/kelvora.desktop";
    Program program(desktop, executable, Program::Start::byUser,
                    withoutBrowser(desktop, openedFile));
    const auto isShown = [&] {
        const auto window = windowOfProcess(desktop.display(), program.process().pid());
        return window && activeWindow(desktop.display()) == *window;
    };
    const bool hasWindow = waitUntil(isShown);
    pressControl(desktop, 3);
    const bool startsAtLogin =
        waitUntil([&] { return fileContent(loginEntry).find("\nTryExec=/") != std::string::npos; });
    pressControl(desktop, 2);
    const bool opensGuide = waitUntil([&] { return fileContent(openedFile).ends_with("\n"); });
    const bool isSaved = desktop.saveScreenshot(folder / "preferences.png");
    std::printf("\n  preferences are%s shown; the guide: %s\n  at login:\n%s\n",
                hasWindow ? "" : " NOT",
                opensGuide ? fileContent(openedFile).c_str() : "NOT FOUND\n",
                startsAtLogin ? fileContent(loginEntry).c_str() : "NOT STARTED\n");
    return hasWindow && startsAtLogin && opensGuide && isSaved;
}

int demonstrate(const std::filesystem::path& executable, const std::filesystem::path& folder) {
    RealDesktop desktop("us,ru");
    static_cast<void>(runTool(desktop, {"xsetroot", "-solid", "#56708a"}));
    desktop.keyboard().setSource(KeySource::physical);
    desktop.keyboard().setRhythm(personRhythm);

    Terminal terminal(desktop);
    Editor editor(desktop, EditorKind::gtk);
    placeWindow(desktop.display(), terminal.window(), {40, 300, 750, 400});
    placeWindow(desktop.display(), editor.window(), {810, 300, 750, 400});
    const Program program(desktop, executable);
    std::printf("%s listens on X server %s of its own, layouts us and ru\n\n",
                executable.filename().c_str(), desktop.environment().at("DISPLAY").c_str());

    bool isRight = begin(desktop, terminal, "echo ghbdtn");
    isRight = desktop.saveScreenshot(folder / "before-terminal.png") && isRight;
    isRight = repair(desktop, terminal, "echo привет") && isRight;

    isRight = begin(desktop, editor, "Ghbdtn?") && isRight;
    isRight = desktop.saveScreenshot(folder / "before-editor.png") && isRight;
    isRight = repair(desktop, editor, "Привет,") && isRight;
    // The layout is the right one now, so the rest of the sentence needs no repair.
    desktop.keyboard().type(" rfr ltkf&");
    isRight = report(desktop, editor, "goes on:", "Привет, как дела?", "ru") && isRight;
    isRight = desktop.saveScreenshot(folder / "after.png") && isRight;

    isRight = showPreferences(desktop, executable, folder) && isRight;

    std::printf("%s\nscreenshots: %s\n",
                isRight ? "Both texts are repaired." : "NOT as it should be; see above.",
                folder.c_str());
    if (!isRight) {
        std::printf("\nthe program's log:\n%s\n", program.log().c_str());
    }
    return isRight ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: kelvora-demo PROGRAM DIRECTORY\n");
        return 2;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const std::filesystem::path folder = std::filesystem::absolute(argv[2]);
    std::filesystem::create_directories(folder);
    return demonstrate(std::filesystem::absolute(argv[1]), folder);
}
