// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/real_desktop.h"
#include "tests/support/real_desktop/windows.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace kelvora::applications {

enum class Field {
    entry,    ///< a single line
    text,     ///< several lines
    editable, ///< several lines of a document that can be edited as it is shown
    password,
    readOnly,
    cell,     ///< of a spreadsheet, not being edited
    files,    ///< no text: a file manager's icons
    terminal, ///< what the program in it receives, byte for byte
};

[[nodiscard]] const char* nameOf(Field field);

/// How the text of an application is read.
enum class Reading {
    title,         ///< its window's title tells it
    accessibility, ///< assistive technology is told
    copying,       ///< all is selected and copied: destroys the selection and the clipboard
    folder,        ///< the names in the folder that it shows
    received,      ///< the program in the terminal keeps what it gets
};

/// What accessibility tells the program under test about an application.
enum class Awareness {
    accessible,
    readable, ///< its fields, but they cannot be written that way
    unaware,
};

/// Whether each selection is to be had as the PRIMARY selection. GTK 4.8's entry and Qt 5 do not
/// offer every one.
enum class SelectionReport { always, sometimes };

struct ApplicationDescription {
    std::string name;
    std::string toolkit;
    std::string package; ///< whose version is the application's
    /// "{field}" stands for the field's name, "{folder}" for a folder with a file in it, "{script}"
    /// for a script that keeps what a terminal receives, "{document}" for a copy of `document`.
    std::vector<std::string> command;
    std::vector<Field> fields;
    Reading reading = Reading::title;
    Awareness awareness = Awareness::accessible;
    SelectionReport selectionReport = SelectionReport::always;
    real::Environment environment{}; ///< added to the session's
    std::filesystem::path document{};
    std::vector<std::string> companion = {}; ///< a program that runs beside it
};

/// One running application with the focus in one of its fields.
class Application {
public:
    Application(real::RealDesktop& desktop, const ApplicationDescription& description, Field field);
    ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// Whether its window came, has the focus and is ready for keys.
    [[nodiscard]] bool isReady() const { return isReady_; }
    [[nodiscard]] Field field() const { return field_; }
    [[nodiscard]] pid_t process() const { return owner_; }
    /// What the field holds, UTF-8; "long:..." (see title_text.h) where only that is told.
    [[nodiscard]] std::string text();
    /// Waits until the field holds this text.
    [[nodiscard]] bool comesToShow(const std::string& expected,
                                   std::chrono::milliseconds deadline = std::chrono::seconds(5));
    /// Puts the text into the field, the first layout active; false when it does not get there. It
    /// is pasted, but typed into passwords and terminals. Leaves the
    /// clipboard without an owner.
    [[nodiscard]] bool setText(const std::string& utf8);

private:
    [[nodiscard]] std::vector<std::string> command();
    [[nodiscard]] bool isReadyForKeys();
    [[nodiscard]] std::string copyAll();

    real::RealDesktop& desktop_;
    const ApplicationDescription& description_;
    Field field_;
    std::filesystem::path folder_; ///< for what "{folder}" and "{script}" stand for
    std::unique_ptr<real::ChildProcess> child_;
    real::WindowId window_ = 0;
    pid_t owner_ = 0;
    bool isReady_ = false;
};

} // namespace kelvora::applications
