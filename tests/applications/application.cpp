// SPDX-License-Identifier: MIT
#include "tests/applications/application.h"

#include "tests/applications/title_text.h"
#include "tests/support/real_desktop/accessibility_bus.h"
#include "tests/support/real_desktop/foreign_clipboard.h"
#include "tests/support/real_desktop/wait_until.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fstream>
#include <utility>

namespace kelvora::applications {

using namespace kelvora::real;

namespace {

const std::string& displayOf(const RealDesktop& desktop) {
    return desktop.environment().at("DISPLAY");
}

constexpr std::chrono::seconds slowestStart{40};
constexpr const char* nothingCopied = "(nothing copied)";

} // namespace

const char* nameOf(Field field) {
    constexpr std::array names{"entry",    "text", "editable", "password",
                               "readonly", "cell", "files",    "terminal"};
    return names.at(static_cast<std::size_t>(field));
}

Application::Application(RealDesktop& desktop, const ApplicationDescription& description,
                         Field field)
    : desktop_(desktop), description_(description), field_(field),
      folder_(desktop.newFile("folder")) {
    const std::vector<WindowId> earlier = topWindows(desktop.display());
    Environment environment = description.environment;
    environment.insert(desktop.environment().begin(), desktop.environment().end());
    child_ = std::make_unique<ChildProcess>(
        command(),
        ChildProcess::Options{std::move(environment), desktop.newFile("application-output")});
    const auto findWindow = [&] {
        for (const WindowId window : topWindows(desktop_.display()))
            if (std::ranges::find(earlier, window) == earlier.end())
                window_ = window;
        return window_ != 0;
    };
    // Some show another window first.
    isReady_ = waitUntil(
        [&] {
            return findWindow() && activateWindow(desktop.display(), window_) && isReadyForKeys();
        },
        slowestStart);
    if (isReady_)
        owner_ = processOfWindow(desktop.display(), window_);
}

Application::~Application() {
    // Some programs show their window from a process that is not of our making.
    if (owner_ > 0 && owner_ != child_->pid())
        kill(owner_, SIGTERM);
    child_.reset();
    // The next application may get the same numbers for its windows.
    static_cast<void>(waitUntil(
        [this] { return std::ranges::count(topWindows(desktop_.display()), window_) == 0; }));
}

std::vector<std::string> Application::command() {
    std::filesystem::create_directories(folder_);
    if (description_.reading == Reading::folder)
        std::ofstream(folder_ / "ghbdtn rfr.txt") << "ghbdtn\n";
    if (description_.reading == Reading::received) {
        // Raw: a Control-C is a byte like any other here, and shows.
        std::ofstream(folder_ / "script")
            << "stty raw -echo\nexec cat >'" << (folder_ / "received").string() << "'\n";
    }
    const std::filesystem::path document = folder_ / description_.document.filename();
    if (!description_.document.empty()) {
        // Some leave a lock beside it when they are killed.
        std::filesystem::copy_file(description_.document, document);
    }
    const std::map<std::string, std::string> placeholders{
        {"{field}", nameOf(field_)},
        {"{folder}", folder_.string()},
        {"{document}", document.string()},
        {"{script}", (folder_ / "script").string()}};
    std::vector<std::string> words = description_.command;
    for (std::string& word : words)
        for (const auto& [placeholder, value] : placeholders)
            if (const std::size_t at = word.find(placeholder); at != std::string::npos)
                word.replace(at, placeholder.size(), value);
    return words;
}

bool Application::isReadyForKeys() {
    switch (description_.reading) {
    case Reading::title:
        if (windowTitle(desktop_.display(), window_).starts_with("text:"))
            return true;
        desktop_.keyboard().chord("Right"); // the browser's page waits for a key
        return false;
    case Reading::accessibility:
    case Reading::copying:
        return field_ == Field::cell
                   ? copyAll() != nothingCopied
                   : AccessibleText::find(desktop_.busAddress(),
                                          processOfWindow(desktop_.display(), window_)) != nullptr;
    case Reading::folder:
        return true;
    case Reading::received:
        return std::filesystem::exists(folder_ / "received");
    }
    return false;
}

std::string Application::text() {
    switch (description_.reading) {
    case Reading::title: {
        const std::string title = windowTitle(desktop_.display(), window_);
        return textOfTitle(title.substr(0, title.find(' ')));
    }
    case Reading::accessibility: {
        const auto focused = AccessibleText::find(desktop_.busAddress(), owner_);
        return focused ? focused->text().value_or("(no answer)") : "(no focused text)";
    }
    case Reading::copying:
        return copyAll();
    case Reading::folder: {
        std::string names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_))
            names += entry.path().filename().string() + "\n";
        return names;
    }
    case Reading::received: {
        std::string received = fileContent(folder_ / "received");
        std::ranges::replace(received, '\x7f', '\b'); // Backspace sends either
        return received;
    }
    }
    return {};
}

std::string Application::copyAll() {
    const ForeignClipboard marker(displayOf(desktop_), {{"UTF8_STRING", nothingCopied}});
    desktop_.keyboard().chord("Control_L+a");
    desktop_.keyboard().chord("Control_L+c");
    static_cast<void>(waitUntil([&] { return marker.isReplaced(); }, std::chrono::seconds(2)));
    return readSelectedText(displayOf(desktop_)).value_or("(no answer)");
}

bool Application::comesToShow(const std::string& expected, std::chrono::milliseconds deadline) {
    const std::string title = titleFor(expected);
    const auto isShown = [&](const std::string& shown) {
        return shown == expected || shown == title;
    };
    return waitUntil([&] { return isShown(text()); }, deadline);
}

bool Application::setText(const std::string& utf8) {
    lockLayout(desktop_.display(), 0);
    if (!activateWindow(desktop_.display(), window_))
        return false;
    Keyboard& keyboard = desktop_.keyboard();
    const auto type = [&] {
        keyboard.type(utf8);
        return comesToShow(utf8);
    };
    if (description_.reading == Reading::received)
        return type();
    for (const char* const chord : {"Control_L+a", "Delete", "Control_L+Home"})
        keyboard.chord(chord);
    // It may still be busy with the keys that came before.
    if (description_.reading != Reading::copying && !comesToShow("", std::chrono::seconds(30)))
        return false;
    if (field_ == Field::password)
        return type();
    const ForeignClipboard source(
        displayOf(desktop_),
        {{"UTF8_STRING", utf8}, {"text/plain", utf8}, {"text/plain;charset=utf-8", utf8}});
    keyboard.chord("Control_L+v");
    return waitUntil([&] { return source.isTaken(); }) && comesToShow(utf8);
}

} // namespace kelvora::applications
