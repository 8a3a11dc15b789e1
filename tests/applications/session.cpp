// SPDX-License-Identifier: MIT
#include "tests/applications/session.h"

#include "tests/applications/title_text.h"
#include "tests/support/real_desktop/foreign_clipboard.h"
#include "tests/support/real_desktop/wait_until.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <optional>
#include <string_view>
#include <utility>

namespace kelvora::applications {

using namespace kelvora::real;

namespace {

constexpr std::size_t longText = 10'000;
constexpr const char* foreignCopy = "31415926";

/// What a person may have copied before: text, its rich form, a picture, a program's own format.
ClipboardContent richContent(Event event) {
    std::string picture("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
    const std::size_t size = event == Event::largeClipboard ? 20'000'000 : 40'000;
    std::uint32_t state = 1;
    while (picture.size() < size) {
        state = state * 1664525U + 1013904223U;
        picture.push_back(static_cast<char>(state >> 24U));
    }
    return {{"UTF8_STRING", "copied before, скопировано 📋"},
            {"text/html", "<b>copied</b> before"},
            {"image/png", std::move(picture)},
            {"application/x-kelvora-test", std::string("\0\1\2\xff", 4)}};
}

Environment loggingEnvironment(const RealDesktop& desktop) {
    Environment environment = desktop.environment();
    environment["KELVORA_LOG"] = "debug";
    return environment;
}

bool containsAny(const std::string& text, std::initializer_list<std::string_view> parts) {
    return std::ranges::any_of(
        parts, [&](std::string_view part) { return text.find(part) != std::string::npos; });
}

bool isOver(const std::string& log) {
    return containsAny(log, {"Converted text to index", "no convertible text found",
                             "performConversion skipped", "performConversion failed"});
}

std::string pathIn(const std::string& log) {
    constexpr std::pair<const char*, const char*> paths[] = {
        {"Typed-word path success", "typed text"},
        {"Clipboard path success", "clipboard"},
        {"Clipboard path aborted", "clipboard, nothing to convert"},
        {"Clipboard path: text not convertible", "clipboard, not convertible"},
        {"AX path success", "accessibility"},
        {"AX path: selected text is not convertible", "accessibility, not convertible"},
        {"AX word success", "accessibility, the word"},
        {"AX word: no convertible word", "accessibility, no word"},
        {"Clipboard path not begun", "none, clipboard not begun"},
        {"Terminal: nothing typed", "none in a terminal"},
        {"performConversion() invoked", "none"}};
    for (const auto& [line, path] : paths)
        if (log.find(line) != std::string::npos)
            return path;
    return "not triggered";
}

} // namespace

Session::Session(const std::filesystem::path& program, const ApplicationDescription& description)
    : description_(description), initialState_(desktop_.keyboardState()),
      program_(desktop_, program, Program::Start::waitUntilListening,
               loggingEnvironment(desktop_)) {
    desktop_.keyboard().setSource(KeySource::physical);
    if (!description.companion.empty()) {
        companion_ = std::make_unique<ChildProcess>(
            description.companion, ChildProcess::Options{.environment = desktop_.environment()});
        // Some open a window when they start, which must not come in the middle. A manager that
        // collects is through with that.
        const ForeignClipboard copy(desktop_.environment().at("DISPLAY"),
                                    {{"UTF8_STRING", "collected first"}});
        static_cast<void>(waitUntil([&] { return copy.isTaken(); }));
    }
}

/// The steps of one scenario, and what is found on the way.
class Session::Run {
public:
    Run(Session& session, const Scenario& scenario)
        : session_(session), scenario_(scenario), application_(*session.application_),
          desktop_(session.desktop_), display_(desktop_.environment().at("DISPLAY")) {}

    void perform(Observation& seen) {
        if (begin()) {
            convert();
            seen.before = scenario_.before;
            seen.path = pathIn(log());
            seen.clipboard = compareClipboard();
            seen.after = compareText();
            seen.layout = compareKeyboard();
            require(!containsAny(session_.program_.log(), {"ghbdtn", "привет", "ltkf", "copied"}),
                    "text stands in the log");
            require(session_.program_.process().isRunning(), "the program has ended");
            seen.undo = undo();
            // A browser may be busy for a long time after such a text.
            if (isLong() && session_.description_.reading == Reading::title)
                session_.application_.reset();
        } else {
            problems_.push_back("cannot be brought about: the field holds \"" +
                                application_.text() + "\", selected is \"" +
                                readSelectedText(display_, "PRIMARY").value_or("") + '"');
        }
        seen.problems = problems_;
    }

private:
    void require(bool condition, const std::string& problem) {
        if (!condition)
            problems_.push_back(problem);
    }
    [[nodiscard]] bool isIn(std::initializer_list<Field> fields) const {
        return std::ranges::count(fields, field_) != 0;
    }
    [[nodiscard]] bool isEvent(Event event) const { return scenario_.event == event; }
    [[nodiscard]] bool isLong() const { return scenario_.before.size() >= longText; }
    [[nodiscard]] std::string log() const { return session_.program_.log().substr(logStart_); }

    bool begin() {
        lockLayout(desktop_.display(), 0);
        if (isIn({Field::readOnly, Field::files, Field::cell})
                ? !application_.comesToShow(scenario_.before)
                : !application_.setText(scenario_.before))
            return false;
        for (const char* const chord : scenario_.keys)
            desktop_.keyboard().chord(chord);
        const bool isReported = session_.description_.selectionReport == SelectionReport::always;
        // A long text keeps an application busy; a person sees when it is through with it.
        if (scenario_.selected.empty() || (!isReported && !isLong()))
            return true;
        return waitUntil(
                   [&] { return readSelectedText(display_, "PRIMARY") == scenario_.selected; }) ||
               !isReported;
    }

    void convert() {
        user_.emplace(display_, richContent(scenario_.event));
        contentBefore_ = readClipboard(display_);
        logStart_ = session_.program_.log().size();
        if (isEvent(Event::stoppedProcess))
            kill(application_.process(), SIGSTOP);
        desktop_.keyboard().doubleShift();
        if (isEvent(Event::exitingProcess)) {
            static_cast<void>(waitUntil([&] { return pathIn(log()) != "not triggered"; }));
            kill(application_.process(), SIGKILL);
        }
        if (isEvent(Event::copyInTheMiddle) &&
            waitUntil([&] { return user_->isReplaced() || isOver(log()); }) && user_->isReplaced())
            other_.emplace(display_, ClipboardContent{{"UTF8_STRING", foreignCopy}});
        // A password is withheld from the program altogether, so that nothing is to be waited for.
        if (isIn({Field::password}))
            static_cast<void>(staysTrue([&] { return application_.text() == scenario_.before; },
                                        std::chrono::milliseconds(800)));
        else
            require(waitUntil([&] { return isOver(log()); }, std::chrono::seconds(20)),
                    "the conversion does not end");
        if (isEvent(Event::stoppedProcess))
            kill(application_.process(), SIGCONT);
    }

    std::string compareClipboard() {
        const auto isAsBefore = [&] { return readClipboard(display_) == contentBefore_; };
        if (other_ && readSelectedText(display_) == foreignCopy)
            return "the other program's";
        if (waitUntil(isAsBefore, std::chrono::seconds(3)) &&
            (!isEvent(Event::stoppedProcess) || staysTrue(isAsBefore, std::chrono::seconds(1))))
            return "as before";
        ClipboardContent now = readClipboard(display_).value_or(ClipboardContent{});
        std::string difference = "the clipboard is not as before:";
        for (const auto& [target, bytes] : contentBefore_.value_or(ClipboardContent{}))
            if (!now.contains(target) || now[target] != bytes)
                difference += (now.contains(target) ? " other " : " no ") + target;
        problems_.push_back(difference);
        return "changed";
    }

    std::string compareText() {
        if (isEvent(Event::exitingProcess)) {
            session_.application_.reset();
            return "(gone)";
        }
        const Awareness awareness = session_.description_.awareness;
        const std::string& special = awareness == Awareness::unaware    ? scenario_.afterUnaware
                                     : awareness == Awareness::readable ? scenario_.afterReadable
                                                                        : scenario_.after;
        const std::string& expected = special.empty() ? scenario_.after : special;
        const bool isRight =
            application_.comesToShow(expected, std::chrono::seconds(2)) ||
            (!scenario_.orElse.empty() && application_.comesToShow(scenario_.orElse));
        require(isRight, "the text should be \"" + expected + '"');
        std::string after = application_.text();
        isConverted_ = isRight && after != scenario_.before && after != titleFor(scenario_.before);
        return after;
    }

    std::string compareKeyboard() {
        if (isEvent(Event::exitingProcess)) // how far it came is a matter of chance
            return activeLayout(desktop_.display());
        const std::string expected = isConverted_ ? "ru" : "us";
        static_cast<void>(waitUntil([&] { return activeLayout(desktop_.display()) == expected; },
                                    std::chrono::seconds(1)));
        const KeyboardState state = desktop_.keyboardState();
        const KeyboardState& initial = session_.initialState_;
        // A paste that the application ignores looks like any other.
        require(state.layout == expected || isIn({Field::readOnly, Field::files}),
                "the layout should be " + expected);
        require(state.pressedKeys.empty() && state.lockedModifiers == initial.lockedModifiers,
                "a key or a lock is left behind");
        require(state.keymap == initial.keymap, "a key has another meaning than before");
        return state.layout;
    }

    std::string undo() {
        if (!isConverted_ || isLong() || isIn({Field::terminal}))
            return "";
        lockLayout(desktop_.display(), 0);
        for (const char* const count : {"1", "2", "3"}) {
            desktop_.keyboard().chord("Control_L+z");
            if (application_.comesToShow(scenario_.before, std::chrono::milliseconds(500)))
                return count;
        }
        return "no";
    }

    Session& session_;
    const Scenario& scenario_;
    Application& application_;
    const Field field_ = application_.field();
    RealDesktop& desktop_;
    const std::string& display_;
    std::optional<ForeignClipboard> user_;
    std::optional<ForeignClipboard> other_;
    std::optional<ClipboardContent> contentBefore_;
    std::size_t logStart_ = 0;
    bool isConverted_ = false;
    std::vector<std::string> problems_;
};

Observation Session::run(const Scenario& scenario, Field field) {
    Observation seen;
    seen.application = description_.name;
    seen.field = nameOf(field);
    seen.scenario = scenario.name;
    if (!application_ || application_->field() != field) {
        application_.reset();
        application_ = std::make_unique<Application>(desktop_, description_, field);
    }
    if (application_->isReady())
        Run(*this, scenario).perform(seen);
    else
        seen.problems.emplace_back("the application does not start");
    return seen;
}

Observation Session::endCompanion() {
    Observation seen;
    seen.application = description_.name;
    seen.scenario = "what it has kept";
    companion_->sendSignal(SIGTERM);
    static_cast<void>(companion_->waitForExit(std::chrono::seconds(5)));
    std::string kept;
    const std::filesystem::path home = desktop_.environment().at("HOME");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home))
        if (entry.is_regular_file())
            kept += fileContent(entry.path());
    const auto tell = [&](const char* text, const char* name) {
        seen.after += (kept.find(text) == std::string::npos ? "not " : "") + std::string(name);
    };
    tell("copied before", "the copy, ");
    tell("KELVORA_SENTINEL", "the marker, ");
    tell("привет", "the conversion");
    return seen;
}

std::vector<Observation> observe(const std::filesystem::path& program,
                                 const ApplicationDescription& description,
                                 const std::string& part) {
    Session session(program, description);
    std::vector<Observation> observations;
    for (const Field field : description.fields)
        for (const Scenario& scenario : scenarios())
            if (std::ranges::count(scenario.fields, field) != 0 &&
                std::string(scenario.name).find(part) != std::string::npos)
                observations.push_back(session.run(scenario, field));
    if (!description.companion.empty())
        observations.push_back(session.endCompanion());
    return observations;
}

} // namespace kelvora::applications
