// SPDX-License-Identifier: MIT
#include "app/command_line.h"
#include "app/shell/app_delegate.h"
#include "app/ui/qt_user_interface.h"
#include "app/ui/toolkit.h"
#include "host/linux/atspi/atspi_services.h"
#include "host/linux/atspi/atspi_status.h"
#include "host/linux/desktop/application_id.h"
#include "host/linux/desktop/autostart.h"
#include "host/linux/desktop/autostart_entry.h"
#include "host/linux/desktop/bus_name_instance.h"
#include "host/linux/desktop/journal_log.h"
#include "host/linux/desktop/logind_session.h"
#include "host/linux/desktop/settings_page.h"
#include "host/linux/desktop/settings_store.h"
#include "host/linux/loop/qt_dispatch.h"
#include "host/linux/loop/qt_event_loop.h"
#include "host/linux/loop/qt_timers.h"
#include "host/linux/updates/standard_updater_controller.h"
#include "host/linux/x11/x11_connection.h"
#include "host/linux/x11/x11_services.h"

#include <QApplication>

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sysexits.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace {

using namespace kelvora;

constexpr std::string_view category = "Launch"; // of the log lines
constexpr const char* serverIsGone = "The X server has gone away.";
constexpr const char* waylandLimit =
    "This is a Wayland session: only X11 windows are served, Wayland windows are not yet.";

/// What people type is in this process's memory: it must not get into a core dump, nor be read by
/// other programs of the same user.
void forbidDumps() {
    rlimit size{};
    getrlimit(RLIMIT_CORE, &size);
    size.rlim_cur = 0; // the hard limit would bind the programs that are started from here, too
    setrlimit(RLIMIT_CORE, &size);
    prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
}

/// Termination as an event of the loop, so that everything is given back in order. Before any
/// thread is started, which would take the signals otherwise.
int terminationSignals() {
    sigset_t signalSet;
    sigemptyset(&signalSet);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signalSet, signal);
    sigprocmask(SIG_BLOCK, &signalSet, nullptr);
    // Failures of one write, not the end of the program.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    return signalfd(-1, &signalSet, SFD_CLOEXEC | SFD_NONBLOCK);
}

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

bool isWaylandSession() {
    return environment("XDG_SESSION_TYPE") == "wayland" ||
           (environment("XDG_SESSION_TYPE").empty() && !environment("WAYLAND_DISPLAY").empty());
}

/// Beside the program's other data; empty when the program does not know where it is.
std::string updateConfiguration(const std::filesystem::path& program) {
    if (program.empty())
        return {};
    const auto directory = program.parent_path() / KELVORA_DATA_DIRECTORY;
    return (directory / "updates.json").lexically_normal().string();
}

/// Set while the loop runs; nothing of this program calls exit() then.
LogSink* runningLog = nullptr;

/// The toolkit ends the process by itself when it is the first to notice that the server is gone.
void onExit() {
    if (runningLog == nullptr)
        return;
    runningLog->write(LogLevel::error, category, serverIsGone);
    std::_Exit(EX_UNAVAILABLE);
}

bool isLoginLaunch(int argc, char** argv) {
    return std::any_of(argv + 1, argv + argc,
                       [](const char* argument) { return argument == loginLaunchArgument; });
}

} // namespace

int main(int argc, char** argv) {
    forbidDumps();
    if (const auto exitCode = answerCommandLine(std::span(argv, argv + argc)))
        return *exitCode;
    const int signalFile = terminationSignals();
    std::setlocale(LC_CTYPE, "");
    const std::filesystem::path program = programFile();

    JournalLog log;
    const std::string display(environment("DISPLAY"));
    if (isWaylandSession())
        log.write(LogLevel::info, category, waylandLimit);
    // Looked at first: the toolkit would end the program in its own words.
    if (display.empty()) {
        log.write(LogLevel::error, category,
                  "No X server: DISPLAY is not set. Start Kelvora in an X11 session.");
        return EX_UNAVAILABLE;
    }
    if (!connectX11(display.c_str())) {
        log.write(LogLevel::error, category,
                  "The X server at DISPLAY=" + display + " cannot be reached.");
        return EX_UNAVAILABLE;
    }

    const auto application = makeApplication(argc, argv);
    QApplication::setApplicationName("Kelvora");
    QApplication::setDesktopFileName(applicationId);
    QtEventLoop loop;
    SecureEntry secureEntry;
    const auto services = X11Services::create(display, loop, secureEntry, [&log] {
        log.write(LogLevel::error, category, serverIsGone);
        QCoreApplication::exit(EX_UNAVAILABLE);
    });
    if (!services) {
        log.write(LogLevel::error, category,
                  "The X server at DISPLAY=" + display + " lacks XKEYBOARD or XFIXES.");
        return EX_UNAVAILABLE;
    }
    const auto signalWatch = loop.watchReadable(signalFile, [] { QCoreApplication::exit(0); });

    AtspiServices accessibility(loop, secureEntry);
    AtspiStatus accessibilityStatus(loop);

    SettingsStore settings(standardSettingsFile(), log);
    Autostart autostart(AutostartPlaces::ofSession(), program);
    autostart.repair();
    SettingsPages settingsPages(std::string(environment("XDG_CURRENT_DESKTOP")), log);
    BusNameInstance instance(loop, log);
    LogindSession session(loop, std::string(environment("XDG_SESSION_ID")));
    QtTimers timers;
    QtUserInterface interface(services->trayArea(), services->windowActivation(), settingsPages);

    // Last made, first to end: a conversion under way completes before anything that it uses goes.
    QtDispatch dispatch;
    AppDelegate delegate(
        Desktop{
            .dispatch = dispatch,
            .log = log,
            .eventSource = services->eventSource(),
            .eventPoster = services->eventPoster(),
            .inputSources = services->inputSources(),
            .keyTranslator = services->keyTranslator(),
            .workspace = services->workspace(),
            .permissions = services->permissions(),
            .accessibility = accessibility.accessibility(),
            .pasteboard = services->pasteboard(),
            .applicationProbe = services->applicationProbe(),
            .secureInput = secureEntry,
            .sessionLimit = isWaylandSession() ? waylandLimit : "",
        },
        SessionServices{
            .timers = timers,
            .userDefaults = settings,
            .loginItem = autostart,
            .addressOpener = settingsPages,
            .singleInstance = instance,
            .sessionEvents = session,
            .displayEvents = services->displayEvents(),
            .accessibilityStatus = accessibilityStatus,
            .makeUpdater =
                [&log, &program](UserDriverDelegate& owner) {
                    return std::make_unique<StandardUpdaterController>(
                        sessionUpdaterSetup(updateConfiguration(program), KELVORA_VERSION), owner,
                        log);
                },
            .launchedInBackground = isLoginLaunch(argc, argv),
        },
        interface);
    AppModel& model = delegate.model();
    const auto statusLog = model.observe([&](AppModelProperty property) {
        if (property == AppModelProperty::hotkeyStatus)
            log.write(LogLevel::info, "Status", model.hotkeyStatus());
        else if (property == AppModelProperty::statusMessage && model.statusMessage())
            log.write(LogLevel::info, "Status", *model.statusMessage());
    });
    delegate.launch();
    runningLog = &log;
    std::atexit(onExit);
    const int exitCode = QApplication::exec();
    runningLog = nullptr;
    return exitCode;
}
