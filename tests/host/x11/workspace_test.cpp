// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_workspace.h"

#include "tests/host/x11/window_client.h"
#include "tests/support/real_desktop/x_server.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <unistd.h>

namespace kelvora {
namespace {

namespace fs = std::filesystem;
using namespace std::string_view_literals;

class WorkspaceTest : public testing::Test {
protected:
    WorkspaceTest() {
        std::string name = (fs::temp_directory_path() / "workspace-XXXXXX").string();
        directory_ = mkdtemp(name.data());
        std::ofstream(directory_ / "org.maker.Editor.desktop")
            << "[Desktop Entry]\nType=Application\nName=E\nStartupWMClass=Editor\n";
        std::ofstream(directory_ / "org.maker.Shell.desktop")
            << "[Desktop Entry]\nType=Application\nName=S\nCategories=TerminalEmulator;\n"
            << "Exec=" << fs::read_symlink("/proc/self/exe").string() << "\n";
        workspace_ = X11Workspace::create(server_.display().c_str(), DesktopEntries({directory_}));
    }
    ~WorkspaceTest() override { fs::remove_all(directory_); }

    /// "identifier/kind/pid"; "none" when no application has the focus.
    std::string frontmost() {
        const auto application = workspace_->frontmostApplication();
        if (!application)
            return "none";
        const char* const kind = application->kind == ApplicationKind::terminal ? "/terminal/"
                                 : application->kind == ApplicationKind::noSelectAll
                                     ? "/noSelectAll/"
                                     : "/ordinary/";
        return application->bundleIdentifier.value_or("unknown") + kind +
               std::to_string(application->processIdentifier);
    }
    xcb_window_t focusedWindow() { return static_cast<xcb_window_t>(workspace_->focusTarget().id); }

    real::XServer server_;
    WindowClient client_{server_.display()};
    fs::path directory_;
    std::unique_ptr<X11Workspace> workspace_;
};

TEST_F(WorkspaceTest, ReportsTheApplicationOfTheFocusWindow) {
    const xcb_window_t frame = client_.window(client_.root());
    const xcb_window_t top = client_.window(frame);
    const xcb_window_t field = client_.window(top);
    client_.set(frame, "WM_CLASS", "frame\0Frame\0"sv);
    client_.set(top, "WM_CLASS", "main\0Editor\0"sv);
    client_.set(top, "_NET_WM_PID", XCB_ATOM_CARDINAL, 4'000'000U);
    for (const xcb_window_t window : {top, field}) {
        client_.focus(window);
        EXPECT_EQ(frontmost(), "org.maker.Editor/ordinary/4000000");
        EXPECT_EQ(focusedWindow(), frame) << "one window for a person";
    }

    client_.set(top, "WM_CLASS", "xterm\0XTerm\0"sv);
    client_.set(top, "_GTK_APPLICATION_ID", "org.maker.Editor", client_.atom("UTF8_STRING"));
    EXPECT_EQ(frontmost(), "org.maker.Editor/terminal/4000000");

    const xcb_window_t icons = client_.window(client_.root());
    client_.set(icons, "WM_CLASS", "icons\0Icons\0"sv);
    const xcb_atom_t types[] = {client_.atom("_NET_WM_WINDOW_TYPE_NORMAL"),
                                client_.atom("_NET_WM_WINDOW_TYPE_DESKTOP")};
    client_.set(icons, "_NET_WM_WINDOW_TYPE", {reinterpret_cast<const char*>(types), sizeof types},
                XCB_ATOM_ATOM, 32);
    client_.focus(icons);
    EXPECT_EQ(frontmost(), "icons/noSelectAll/0");
}

TEST_F(WorkspaceTest, KnowsTheProgramOfAProcessOnThisMachineOnly) {
    const auto self = static_cast<std::uint32_t>(getpid());
    const std::string known = "org.maker.Shell/terminal/" + std::to_string(self);
    char host[256] = {};
    ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
    const xcb_window_t window = client_.window(client_.root());
    client_.set(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, self);
    client_.focus(window);
    EXPECT_EQ(frontmost(), known);
    client_.set(window, "WM_CLIENT_MACHINE", std::string(host) + ".example.org");
    EXPECT_EQ(frontmost(), known);
    client_.set(window, "WM_CLIENT_MACHINE", "elsewhere.example.org");
    EXPECT_EQ(frontmost(), "unknown/ordinary/0");
}

TEST_F(WorkspaceTest, FallsBackToTheActiveWindow) {
    const xcb_window_t editor = client_.window(client_.root());
    client_.set(editor, "WM_CLASS", "main\0Editor\0"sv);
    const xcb_window_t nameless = client_.window(client_.root());
    client_.set(client_.root(), "WM_CLASS", "manager\0Manager\0"sv);
    client_.focus(nameless);
    EXPECT_EQ(frontmost(), "unknown/ordinary/0");
    client_.set(client_.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, editor);
    EXPECT_EQ(frontmost(), "org.maker.Editor/ordinary/0");
    EXPECT_EQ(focusedWindow(), nameless);

    client_.focus(XCB_NONE);
    EXPECT_EQ(frontmost(), "org.maker.Editor/ordinary/0");
    EXPECT_EQ(focusedWindow(), XCB_NONE);
    client_.destroy(editor);
    EXPECT_EQ(frontmost(), "none");
    client_.focus(nameless);
    EXPECT_EQ(frontmost(), "unknown/ordinary/0");
    // A window manager with nothing to focus focuses a nameless window of its own.
    client_.set(client_.root(), "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, nameless);
    EXPECT_EQ(frontmost(), "none");
}

TEST_F(WorkspaceTest, FollowsThePointerWhereTheFocusDoes) {
    const xcb_window_t frame = client_.window(client_.root(), 200);
    const xcb_window_t top = client_.window(frame, 10);
    client_.window(top, 10);
    client_.set(top, "WM_CLASS", "main\0Editor\0"sv);
    for (const xcb_window_t focus :
         {xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT}, client_.root(), frame}) {
        client_.focus(focus);
        client_.movePointer(250);
        EXPECT_EQ(frontmost(), "org.maker.Editor/ordinary/0");
        client_.movePointer(205);
        EXPECT_EQ(frontmost(), focus == client_.root() ? "none" : "unknown/ordinary/0");
        client_.movePointer(5);
        EXPECT_EQ(frontmost(), focus == frame ? "unknown/ordinary/0" : "none");
    }
    client_.focus(XCB_INPUT_FOCUS_POINTER_ROOT);
    EXPECT_EQ(focusedWindow(), XCB_NONE);
    client_.movePointer(250);
    EXPECT_EQ(focusedWindow(), frame);
}

TEST_F(WorkspaceTest, TakesAnyPropertyValue) {
    const std::pair<std::string, const char*> cases[] = {
        {"Only", "only/ordinary/0"},
        {std::string("main\0Editor", 11), "org.maker.Editor/ordinary/0"},
        {std::string("\0Editor\0", 8), "org.maker.Editor/ordinary/0"},
        {std::string(5, '\0'), "unknown/ordinary/0"},
        {"", "unknown/ordinary/0"},
        {std::string(200'000, 'x'), "unknown/ordinary/0"},
    };
    const xcb_window_t window = client_.window(client_.root());
    client_.focus(window);
    for (const auto& [windowClass, expected] : cases) {
        client_.set(window, "WM_CLASS", windowClass);
        EXPECT_EQ(frontmost(), expected) << windowClass.size();
    }

    client_.set(window, "WM_CLASS", XCB_ATOM_STRING, 0x41414141);
    client_.set(window, "_NET_WM_PID", "1234", XCB_ATOM_CARDINAL);
    client_.set(client_.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_CARDINAL, window);
    EXPECT_EQ(frontmost(), "unknown/ordinary/0");

    client_.set(window, "WM_CLASS", "main\0Editor\0"sv);
    client_.set(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, 0x80000000U);
    client_.set(window, "_NET_WM_WINDOW_TYPE", "", XCB_ATOM_ATOM, 32);
    EXPECT_EQ(frontmost(), "org.maker.Editor/ordinary/0");
}

TEST_F(WorkspaceTest, SurvivesWindowsThatVanishWhileItLooks) {
    std::atomic<bool> isEnough = false;
    std::thread other([&] {
        WindowClient client(server_.display());
        while (!isEnough) {
            const xcb_window_t top = client.window(client.root());
            client.set(top, "WM_CLASS", "main\0Editor\0"sv);
            client.focus(client.window(top));
            client.destroy(top);
        }
    });
    for (int look = 0; look < 1000; ++look) {
        const std::string answer = frontmost();
        // Gone between being found and being described; or its class was not read any more.
        EXPECT_TRUE(answer == "none" || answer == "org.maker.Editor/ordinary/0" ||
                    answer == "unknown/ordinary/0")
            << answer;
    }
    isEnough = true;
    other.join();
}

TEST_F(WorkspaceTest, KnowsNothingOnceTheServerIsGone) {
    client_.focus(client_.window(client_.root()));
    EXPECT_EQ(frontmost(), "unknown/ordinary/0");
    server_.kill();
    EXPECT_EQ(frontmost(), "none");
    EXPECT_EQ(workspace_->focusTarget(), FocusTarget{});
    EXPECT_EQ(X11Workspace::create(server_.display().c_str(), DesktopEntries({})), nullptr);
}

} // namespace
} // namespace kelvora
