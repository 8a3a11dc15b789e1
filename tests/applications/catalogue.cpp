// SPDX-License-Identifier: MIT
#include "tests/applications/catalogue.h"

namespace kelvora::applications {

namespace {

const std::vector<Field> everyField{Field::entry, Field::text, Field::readOnly, Field::password};
// A field that tells nothing of itself cannot be told to be a password's.
const std::vector<Field> unawareFields{Field::entry, Field::text, Field::readOnly};

ApplicationDescription chromium(const std::filesystem::path& documents, Awareness awareness) {
    ApplicationDescription description{
        .name = "Chromium",
        .toolkit = "Chromium",
        .package = "chromium",
        .command = {"chromium", "--no-sandbox", "--no-first-run", "--no-default-browser-check",
                    "--password-store=basic", "--disable-gpu", "--hide-crash-restore-bubble",
                    "file://" + (documents / "fields.html").string() + "#{field}"},
        .fields = {Field::entry, Field::text, Field::editable, Field::readOnly},
        .awareness = awareness};
    if (awareness == Awareness::readable) {
        description.name += ", accessibility on";
        description.command.insert(description.command.begin() + 1,
                                   "--force-renderer-accessibility");
        description.fields.push_back(Field::password);
    }
    return description;
}

} // namespace

std::vector<ApplicationDescription> fieldWindows(const std::filesystem::path& folder) {
    const auto command = [&](const char* program) {
        return std::vector<std::string>{(folder / program).string(), "{field}"};
    };
    return {
        {.name = "GTK 3 window",
         .toolkit = "GTK 3",
         .package = "libgtk-3-0",
         .command = command("fields_gtk3"),
         .fields = everyField},
        {.name = "GTK 4 window",
         .toolkit = "GTK 4",
         .package = "libgtk-4-1",
         .command = command("fields_gtk4"),
         .fields = everyField,
         .selectionReport = SelectionReport::sometimes},
        {.name = "Qt 6 window",
         .toolkit = "Qt 6",
         .package = "libqt6widgets6",
         .command = command("fields_qt6"),
         .fields = everyField},
        {.name = "GTK 3 window without accessibility",
         .toolkit = "GTK 3",
         .package = "libgtk-3-0",
         .command = command("fields_gtk3"),
         .fields = unawareFields,
         .awareness = Awareness::unaware,
         .environment = {{"NO_AT_BRIDGE", "1"}}},
        {.name = "GTK 4 window without accessibility",
         .toolkit = "GTK 4",
         .package = "libgtk-4-1",
         .command = command("fields_gtk4"),
         .fields = unawareFields,
         .awareness = Awareness::unaware,
         .selectionReport = SelectionReport::sometimes,
         .environment = {{"GTK_A11Y", "none"}}},
    };
}

std::vector<ApplicationDescription> clipboardManagers(const std::filesystem::path& folder) {
    const std::vector<std::vector<std::string>> managers{
        {"parcellite"}, {"clipit"}, {"xfce4-clipman"}, {"copyq"}, {"diodon"}};
    std::vector<ApplicationDescription> descriptions;
    descriptions.reserve(managers.size());
    for (const std::vector<std::string>& manager : managers) {
        descriptions.push_back({.name = manager.front() + " beside a GTK 3 window",
                                .toolkit = "clipboard manager",
                                .package = manager.front(),
                                .command = {(folder / "fields_gtk3").string(), "{field}"},
                                .fields = {Field::entry},
                                .awareness = Awareness::unaware,
                                .environment = {{"NO_AT_BRIDGE", "1"}},
                                .companion = manager});
    }
    return descriptions;
}

std::vector<ApplicationDescription> terminals() {
    enum class Command { words, line };
    struct Row {
        const char* name;
        const char* package;
        const char* toolkit;
        std::vector<std::string> command; // up to the program to run
        Command form = Command::words;
    };
    const std::vector<Row> rows{
        {"xterm", "xterm", "Xt", {"xterm", "-e"}},
        {"urxvt", "rxvt-unicode", "Xlib", {"urxvt", "-e"}},
        {"st", "stterm", "Xlib", {"st", "-e"}},
        {"kitty", "kitty", "OpenGL", {"kitty"}},
        {"Alacritty", "alacritty", "OpenGL", {"alacritty", "-e"}},
        {"GNOME Terminal", "gnome-terminal", "GTK 3", {"gnome-terminal", "--"}},
        {"Xfce Terminal", "xfce4-terminal", "GTK 3", {"xfce4-terminal", "--disable-server", "-x"}},
        {"MATE Terminal", "mate-terminal", "GTK 3", {"mate-terminal", "--disable-factory", "-x"}},
        {"Terminator", "terminator", "GTK 3", {"terminator", "-u", "-x"}},
        {"Tilix", "tilix", "GTK 3", {"tilix", "--new-process", "-e"}, Command::line},
        {"Sakura", "sakura", "GTK 3", {"sakura", "-x"}, Command::line},
        {"LXTerminal", "lxterminal", "GTK 3", {"lxterminal", "--no-remote", "-e"}, Command::line},
        {"Konsole", "konsole", "Qt 5", {"konsole", "--separate", "-e"}},
        {"QTerminal", "qterminal", "Qt 5", {"qterminal", "-e"}, Command::line},
    };
    std::vector<ApplicationDescription> descriptions;
    for (const Row& row : rows) {
        std::vector<std::string> command = row.command;
        if (row.form == Command::line) {
            command.emplace_back("sh {script}");
        } else {
            command.insert(command.end(), {"sh", "{script}"});
        }
        descriptions.push_back({.name = row.name,
                                .toolkit = row.toolkit,
                                .package = row.package,
                                .command = command,
                                .fields = {Field::terminal},
                                .reading = Reading::received,
                                .environment = {{"LIBGL_ALWAYS_SOFTWARE", "1"}}});
    }
    return descriptions;
}

std::vector<ApplicationDescription>
distributedApplications(const std::filesystem::path& documents) {
    return {
        {.name = "Mousepad",
         .toolkit = "GTK 3",
         .package = "mousepad",
         .command = {"mousepad", "--disable-server"},
         .fields = {Field::text},
         .reading = Reading::accessibility},
        {.name = "GNOME Text Editor",
         .toolkit = "GTK 4",
         .package = "gnome-text-editor",
         .command = {"gnome-text-editor", "--standalone"},
         .fields = {Field::text},
         .reading = Reading::accessibility},
        {.name = "FeatherPad",
         .toolkit = "Qt 5",
         .package = "featherpad",
         .command = {"featherpad", "--standalone"},
         .fields = {Field::text},
         .reading = Reading::accessibility,
         .selectionReport = SelectionReport::sometimes},
        chromium(documents, Awareness::readable),
        chromium(documents, Awareness::unaware),
        {.name = "LibreOffice Writer",
         .toolkit = "VCL (GTK 3)",
         .package = "libreoffice-writer",
         .command = {"libreoffice", "--writer", "--norestore", "--nologo", "--nofirststartwizard"},
         .fields = {Field::text},
         .reading = Reading::copying,
         .environment = {{"SAL_USE_VCLPLUGIN", "gtk3"}}},
        {.name = "LibreOffice Calc",
         .toolkit = "VCL (GTK 3)",
         .package = "libreoffice-calc",
         .command = {"libreoffice", "--calc", "--norestore", "--nologo", "--nofirststartwizard",
                     "{document}"},
         .fields = {Field::cell},
         .reading = Reading::copying,
         .environment = {{"SAL_USE_VCLPLUGIN", "gtk3"}},
         .document = documents / "sheet.fods"},
        {.name = "PCManFM",
         .toolkit = "GTK 3",
         .package = "pcmanfm",
         .command = {"pcmanfm", "--no-desktop", "{folder}"},
         .fields = {Field::files},
         .reading = Reading::folder},
        {.name = "Thunar",
         .toolkit = "GTK 3",
         .package = "thunar",
         .command = {"thunar", "{folder}"},
         .fields = {Field::files},
         .reading = Reading::folder},
    };
}

} // namespace kelvora::applications
