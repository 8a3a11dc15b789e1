// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/real_desktop.h"

#include "tests/support/real_desktop/accessibility_bus.h"
#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/windows.h"

#include <X11/Xlib.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace kelvora::real {

namespace {

void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "the test desktop is not complete: %s\n", what);
        std::abort();
    }
}

// Windows of other programs come and go while they are asked about.
int ignoreError(Display* /*display*/, XErrorEvent* /*error*/) {
    return 0;
}

} // namespace

TemporaryDirectory::TemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "kelvora-XXXXXX").string();
    require(mkdtemp(name.data()) != nullptr, "no temporary directory");
    path_ = name;
}

TemporaryDirectory::~TemporaryDirectory() {
    // A program that is just ending may still write into it.
    static_cast<void>(waitUntil(
        [this] {
            std::error_code error;
            std::filesystem::remove_all(path_, error);
            return !std::filesystem::exists(path_);
        },
        std::chrono::seconds(2)));
}

RealDesktop::RealDesktop(const std::string& layouts) {
    makeHome();
    XSetErrorHandler(ignoreError);
    display_ = XOpenDisplay(server_.display().c_str());
    require(display_ != nullptr, "no connection to the X server");
    setLayouts(layouts);
    keyboard_ = std::make_unique<Keyboard>(display_);
    startBus();
    startWindowManager();
    startAccessibility();
}

RealDesktop::~RealDesktop() {
    keyboard_.reset();
    if (display_ != nullptr)
        XCloseDisplay(display_);
    while (!services_.empty())
        services_.pop_back();
}

void RealDesktop::makeHome() {
    const std::filesystem::path home = directory_.path() / "home";
    const std::filesystem::path runtime = directory_.path() / "runtime";
    for (const auto& folder : {home, runtime, home / ".config", home / ".cache"}) {
        std::filesystem::create_directories(folder);
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
    }
    environment_ = {
        {"PATH", "/usr/local/bin:/usr/bin:/bin"},
        {"HOME", home},
        {"LANG", "en_US.UTF-8"},
        {"DISPLAY", server_.display()},
        {"XDG_RUNTIME_DIR", runtime},
        {"XDG_CONFIG_HOME", home / ".config"},
        {"XDG_CACHE_HOME", home / ".cache"},
        {"XDG_DATA_HOME", home / ".local/share"},
        {"XDG_STATE_HOME", home / ".local/state"},
        {"XDG_SESSION_TYPE", "x11"},
        {"XDG_CURRENT_DESKTOP", "Openbox"},
        {"INPUTRC", home / ".inputrc"},
        {"GSETTINGS_BACKEND", "keyfile"},
        {busVariable, "unix:path=" + (runtime / "bus").string()},
    };
    // How a build with sanitizers reports is for whoever runs the tests to say.
    for (const char* name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"})
        if (const char* const value = std::getenv(name))
            environment_[name] = value;
    // The sequences that announce a paste would only be noise around the text.
    std::ofstream(home / ".inputrc") << "set enable-bracketed-paste off\n";
    // Text large enough to be read on a screenshot.
    std::filesystem::create_directories(home / ".config/glib-2.0/settings");
    std::ofstream(home / ".config/glib-2.0/settings/keyfile")
        << "[org/xfce/mousepad/preferences/view]\n"
           "use-default-monospace-font=false\n"
           "font-name='DejaVu Sans Mono 16'\n";
    std::filesystem::create_directories(home / ".config/featherpad");
    std::ofstream(home / ".config/featherpad/fp.conf")
        << "[text]\nfont=\"DejaVu Sans Mono,16,-1,5,50,0,0,0,0,0\"\n";
}

void RealDesktop::startService(const std::vector<std::string>& command) {
    services_.push_back(std::make_unique<ChildProcess>(
        command, ChildProcess::Options{.environment = environment_}));
}

void RealDesktop::startBus() {
    startService(
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + busAddress()});
    const std::string socket = busAddress().substr(std::string("unix:path=").size());
    require(waitUntil([&] { return std::filesystem::exists(socket); }), "no session bus");
}

void RealDesktop::startWindowManager() {
    startService({"openbox", "--sm-disable"});
    const Atom check = XInternAtom(display_, "_NET_SUPPORTING_WM_CHECK", False);
    const auto isThere = [&] {
        int count = 0;
        Atom* const properties = XListProperties(display_, DefaultRootWindow(display_), &count);
        const bool found = std::find(properties, properties + count, check) != properties + count;
        XFree(properties);
        return found;
    };
    require(waitUntil(isThere), "no window manager");
}

void RealDesktop::startAccessibility() {
    startService({"/usr/libexec/at-spi-bus-launcher", "--launch-immediately"});
    require(waitUntil([this] { return enableAccessibility(busAddress()); }),
            "no accessibility bus");
}

std::filesystem::path RealDesktop::newFile(const std::string& name) {
    return directory_.path() / (std::to_string(++fileCount_) + "-" + name);
}

void RealDesktop::setLayouts(const std::string& layouts, const std::string& option) {
    // An empty option first takes the earlier ones away.
    std::vector<std::string> arguments{"setxkbmap", "-model",  "pc105", "-layout",
                                       layouts,     "-option", ""};
    if (!option.empty())
        arguments.insert(arguments.end(), {"-option", option});
    require(runTool(*this, arguments) == 0, "setxkbmap failed");
}

bool RealDesktop::saveScreenshot(const std::filesystem::path& file) const {
    return runTool(*this, {"import", "-window", "root", file.string()}) == 0;
}

void RealDesktop::killServer() {
    // Xlib would end the test program together with the server.
    keyboard_.reset();
    XCloseDisplay(display_);
    display_ = nullptr;
    server_.kill();
}

ForeignKeyboardGrab::ForeignKeyboardGrab(const RealDesktop& desktop)
    : connection_(XOpenDisplay(desktop.environment().at("DISPLAY").c_str())) {
    require(connection_ != nullptr, "no second connection to the X server");
    require(XGrabKeyboard(connection_, DefaultRootWindow(connection_), False, GrabModeAsync,
                          GrabModeAsync, CurrentTime) == GrabSuccess,
            "the keyboard is grabbed already");
}

ForeignKeyboardGrab::~ForeignKeyboardGrab() {
    XUngrabKeyboard(connection_, CurrentTime);
    XSync(connection_, False);
    XCloseDisplay(connection_);
}

int runTool(const RealDesktop& desktop, const std::vector<std::string>& arguments) {
    ChildProcess tool(arguments, {.environment = desktop.environment()});
    return tool.waitForExit(std::chrono::seconds(10)).value_or(-1);
}

} // namespace kelvora::real
