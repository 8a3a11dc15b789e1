// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/keyboard.h"
#include "tests/support/real_desktop/keyboard_state.h"
#include "tests/support/real_desktop/x_display.h"
#include "tests/support/real_desktop/x_server.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace kelvora::real {

/// A directory that is removed with everything in it when this object goes.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// A whole desktop session of the test's own: X server, home, session bus, window manager,
/// accessibility. Nothing of the user's session is touched; everything is gone with this object.
/// One thread only.
class RealDesktop {
public:
    /// `layouts` as setxkbmap takes them. Aborts the test program when a part does not start.
    explicit RealDesktop(const std::string& layouts = "us,ru");
    ~RealDesktop();
    RealDesktop(const RealDesktop&) = delete;
    RealDesktop& operator=(const RealDesktop&) = delete;

    [[nodiscard]] _XDisplay* display() const { return display_; }
    [[nodiscard]] Keyboard& keyboard() { return *keyboard_; }
    /// What a program of this session finds in its environment.
    [[nodiscard]] const Environment& environment() const { return environment_; }
    [[nodiscard]] const std::string& busAddress() const { return environment_.at(busVariable); }
    /// A name for a file that no one else uses, in a directory that goes with the session.
    [[nodiscard]] std::filesystem::path newFile(const std::string& name);

    /// Gives the server another list of layouts and options, as the user's settings would.
    void setLayouts(const std::string& layouts, const std::string& option = {});
    [[nodiscard]] KeyboardState keyboardState() const { return readKeyboardState(display_); }
    /// Writes the whole screen as a PNG file; false when that fails.
    [[nodiscard]] bool saveScreenshot(const std::filesystem::path& file) const;
    /// Ends the X server at once. Nothing that needs it may be called afterwards.
    void killServer();

private:
    static constexpr const char* busVariable = "DBUS_SESSION_BUS_ADDRESS";

    void makeHome();
    void startService(const std::vector<std::string>& command);
    void startBus();
    void startWindowManager();
    void startAccessibility();

    TemporaryDirectory directory_;
    XServer server_;
    Environment environment_;
    _XDisplay* display_ = nullptr;
    std::unique_ptr<Keyboard> keyboard_;
    std::vector<std::unique_ptr<ChildProcess>> services_; // ended in the reverse order
    int fileCount_ = 0;
};

/// Another program's hold of the whole keyboard, as a password dialog or a locker takes it.
class ForeignKeyboardGrab {
public:
    /// Aborts the test program when the keyboard is not to be had.
    explicit ForeignKeyboardGrab(const RealDesktop& desktop);
    ~ForeignKeyboardGrab();
    ForeignKeyboardGrab(const ForeignKeyboardGrab&) = delete;
    ForeignKeyboardGrab& operator=(const ForeignKeyboardGrab&) = delete;

private:
    _XDisplay* connection_;
};

/// Runs a tool of the session to its end; its exit code, or -1 when it does not end in ten seconds.
[[nodiscard]] int runTool(const RealDesktop& desktop, const std::vector<std::string>& arguments);

} // namespace kelvora::real
