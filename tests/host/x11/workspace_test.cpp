// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_workspace.h"

#include "tests/host/desktop/temporary_directory.h"
#include "tests/host/x11/window_client.h"
#include "tests/support/real_desktop/x_server.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

namespace kelvora {
namespace {

using namespace std::string_view_literals;

constexpr auto editorClass = "main\0Editor\0"sv;
constexpr const char* editorName = "editor/ordinary/0";

class WorkspaceTest : public testing::Test {
protected:
    WorkspaceTest() {
        files_.write("maker.Shell.desktop",
                     "[Desktop Entry]\nType=Application\nName=S\nCategories=TerminalEmulator;\n"
                     "Exec=" +
                         std::filesystem::read_symlink("/proc/self/exe").string() + "\n");
        workspace_ = X11Workspace::create(server_.display().c_str(), DesktopEntries({files_.path}));
    }

    /// "identifier/kind/pid"; "none" when no application has the focus.
    std::string frontmost() {
        const auto application = workspace_->frontmostApplication();
        if (!application)
            return "none";
        constexpr const char* kinds[]{"/ordinary/", "/terminal/", "/noSelectAll/"};
        return application->bundleIdentifier.value_or("unknown") +
               kinds[static_cast<int>(application->kind)] +
               std::to_string(application->processIdentifier);
    }
    xcb_window_t focusedWindow() { return static_cast<xcb_window_t>(workspace_->focusTarget().id); }
    /// A window of that class, with the focus.
    xcb_window_t focused(std::string_view windowClass) {
        const xcb_window_t window = client_.window();
        client_.set(window, "WM_CLASS", windowClass);
        client_.focus(window);
        return window;
    }

    real::XServer server_;
    WindowClient client_{server_.display()};
    TemporaryDirectory files_;
    std::unique_ptr<X11Workspace> workspace_;
};

TEST_F(WorkspaceTest, TellsTheApplicationOfTheFocusWindow) {
    const xcb_window_t frame = focused("frame\0Frame\0"sv);
    const xcb_window_t top = client_.window(frame);
    const xcb_window_t field = client_.window(top);
    client_.set(top, "WM_CLASS", editorClass);
    client_.set(top, "_NET_WM_PID", XCB_ATOM_CARDINAL, 4'000'000U);
    for (const xcb_window_t window : {top, field}) {
        client_.focus(window);
        EXPECT_EQ(frontmost(), "editor/ordinary/4000000");
        EXPECT_EQ(focusedWindow(), frame) << "one window for a person";
    }
    client_.set(top, "_GTK_APPLICATION_ID", "org.gnome.Ptyxis", client_.atom("UTF8_STRING"));
    EXPECT_EQ(frontmost(), "org.gnome.Ptyxis/terminal/4000000");
    const xcb_window_t icons = focused("\0Icons"sv);
    client_.set(icons, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
                client_.atom("_NET_WM_WINDOW_TYPE_DESKTOP"));
    EXPECT_EQ(frontmost(), "icons/noSelectAll/0");
    focused(std::string(200'000, 'x'));
    EXPECT_EQ(frontmost(), "unknown/ordinary/0");
}

TEST_F(WorkspaceTest, KnowsTheProgramOfAProcessOnThisMachineOnly) {
    const auto self = static_cast<std::uint32_t>(getpid());
    const xcb_window_t window = focused("");
    client_.set(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, self);
    EXPECT_EQ(frontmost(), "maker.Shell/terminal/" + std::to_string(self));
    client_.set(window, "WM_CLIENT_MACHINE", "elsewhere.example.org");
    EXPECT_EQ(frontmost(), "unknown/ordinary/0");
}

TEST_F(WorkspaceTest, FallsBackToTheActiveWindow) {
    const xcb_window_t editor = focused(editorClass);
    const xcb_window_t nameless = focused("");
    EXPECT_EQ(frontmost(), "unknown/ordinary/0");
    client_.set(client_.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, editor);
    for (const xcb_window_t focus : {nameless, xcb_window_t{XCB_NONE}}) {
        client_.focus(focus);
        EXPECT_EQ(frontmost(), editorName);
        EXPECT_EQ(focusedWindow(), focus);
    }
    xcb_destroy_window(client_.x(), editor);
    client_.finish();
    EXPECT_EQ(frontmost(), "none");
    // A window manager with nothing to focus focuses a nameless window of its own.
    client_.set(client_.root(), "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW, nameless);
    client_.focus(nameless);
    EXPECT_EQ(frontmost(), "none");
}

TEST_F(WorkspaceTest, FollowsThePointerWhereTheFocusDoes) {
    const xcb_window_t frame = client_.window();
    client_.set(client_.window(frame), "WM_CLASS", editorClass);
    client_.focus(XCB_INPUT_FOCUS_POINTER_ROOT);
    for (const auto& [place, expected] :
         {std::pair<std::int16_t, const char*>{500, "none"}, {50, editorName}}) {
        xcb_warp_pointer(client_.x(), XCB_NONE, client_.root(), 0, 0, 0, 0, place, place);
        client_.finish();
        EXPECT_EQ(frontmost(), expected);
    }
    EXPECT_EQ(focusedWindow(), frame);
}

} // namespace
} // namespace kelvora
