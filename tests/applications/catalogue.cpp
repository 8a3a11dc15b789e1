// SPDX-License-Identifier: MIT
#include "tests/applications/catalogue.h"

namespace kelvora::applications {

namespace {

using Description = ApplicationDescription;

const std::vector<Field> everyField{Field::entry, Field::text, Field::readOnly, Field::password};
// A field that tells nothing of itself cannot be told to be a password's.
const std::vector<Field> unawareFields{Field::entry, Field::text, Field::readOnly};
const real::Environment withGtk3{{"SAL_USE_VCLPLUGIN", "gtk3"}};

Description chromium(const std::filesystem::path& documents, Awareness awareness) {
    Description description{
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

Description unaware(Description description, const real::Environment& environment) {
    description.name += " without accessibility";
    description.fields = unawareFields;
    description.awareness = Awareness::unaware;
    description.environment = environment;
    return description;
}

Description office(const char* name, const char* package, const char* part,
                   std::vector<Field> fields) {
    return {name,
            "VCL (GTK 3)",
            package,
            {"libreoffice", part, "--norestore", "--nologo", "--nofirststartwizard"},
            std::move(fields),
            Reading::copying,
            Awareness::accessible,
            SelectionReport::always,
            withGtk3};
}

} // namespace

std::vector<Description> fieldWindows(const std::filesystem::path& folder) {
    const auto window = [&](const char* toolkit, const char* package, const char* program) {
        return Description{std::string(toolkit) + " window",
                           toolkit,
                           package,
                           {(folder / program).string(), "{field}"},
                           everyField};
    };
    const Description gtk3 = window("GTK 3", "libgtk-3-0", "fields_gtk3");
    Description gtk4 = window("GTK 4", "libgtk-4-1", "fields_gtk4");
    gtk4.selectionReport = SelectionReport::sometimes;
    return {gtk3, gtk4, window("Qt 6", "libqt6widgets6", "fields_qt6"),
            unaware(gtk3, {{"NO_AT_BRIDGE", "1"}}), unaware(gtk4, {{"GTK_A11Y", "none"}})};
}

std::vector<Description> clipboardManagers(const std::filesystem::path& folder) {
    std::vector<Description> descriptions;
    for (const char* manager : {"parcellite", "clipit", "xfce4-clipman", "copyq", "diodon"}) {
        descriptions.push_back(unaware(fieldWindows(folder).front(), {{"NO_AT_BRIDGE", "1"}}));
        Description& description = descriptions.back();
        description.name = std::string(manager) + " beside a GTK 3 window";
        description.toolkit = "clipboard manager";
        description.package = manager;
        description.fields = {Field::entry};
        description.companion = {manager};
    }
    return descriptions;
}

std::vector<Description> terminals() {
    enum Form { words, line };
    const struct {
        const char* name;
        const char* package;
        const char* toolkit;
        std::vector<std::string> command; // up to the program to run
        Form form = words;
    } rows[] = {
        {"xterm", "xterm", "Xt", {"xterm", "-e"}},
        {"urxvt", "rxvt-unicode", "Xlib", {"urxvt", "-e"}},
        {"st", "stterm", "Xlib", {"st", "-e"}},
        {"kitty", "kitty", "OpenGL", {"kitty"}},
        {"Alacritty", "alacritty", "OpenGL", {"alacritty", "-e"}},
        {"GNOME Terminal", "gnome-terminal", "GTK 3", {"gnome-terminal", "--"}},
        {"Xfce Terminal", "xfce4-terminal", "GTK 3", {"xfce4-terminal", "--disable-server", "-x"}},
        {"MATE Terminal", "mate-terminal", "GTK 3", {"mate-terminal", "--disable-factory", "-x"}},
        {"Terminator", "terminator", "GTK 3", {"terminator", "-u", "-x"}},
        {"Tilix", "tilix", "GTK 3", {"tilix", "--new-process", "-e"}, line},
        {"Sakura", "sakura", "GTK 3", {"sakura", "-x"}, line},
        {"LXTerminal", "lxterminal", "GTK 3", {"lxterminal", "--no-remote", "-e"}, line},
        {"Konsole", "konsole", "Qt 5", {"konsole", "--separate", "-e"}},
        {"QTerminal", "qterminal", "Qt 5", {"qterminal", "-e"}, line},
    };
    std::vector<Description> descriptions;
    for (const auto& [name, package, toolkit, start, form] : rows) {
        std::vector<std::string> command = start;
        if (form == line)
            command.emplace_back("sh {script}");
        else
            command.insert(command.end(), {"sh", "{script}"});
        descriptions.push_back({.name = name,
                                .toolkit = toolkit,
                                .package = package,
                                .command = command,
                                .fields = {Field::terminal},
                                .reading = Reading::received,
                                .environment = {{"LIBGL_ALWAYS_SOFTWARE", "1"}}});
    }
    return descriptions;
}

std::vector<Description> distributedApplications(const std::filesystem::path& documents) {
    const auto editor = [](const char* name, const char* toolkit, const char* program,
                           const char* option, SelectionReport report) {
        return Description{
            name, toolkit, program, {program, option}, {Field::text}, Reading::accessibility,
            {},   report};
    };
    const auto fileManager = [](const char* name, const char* program) {
        return Description{name,           "GTK 3",        program, {program, "{folder}"},
                           {Field::files}, Reading::folder};
    };
    std::vector<Description> all{
        editor("Mousepad", "GTK 3", "mousepad", "--disable-server", SelectionReport::always),
        editor("GNOME Text Editor", "GTK 4", "gnome-text-editor", "--standalone",
               SelectionReport::always),
        editor("FeatherPad", "Qt 5", "featherpad", "--standalone", SelectionReport::sometimes),
        chromium(documents, Awareness::readable),
        chromium(documents, Awareness::unaware),
        office("LibreOffice Writer", "libreoffice-writer", "--writer", {Field::text}),
        office("LibreOffice Calc", "libreoffice-calc", "--calc", {Field::cell}),
        fileManager("PCManFM", "pcmanfm"),
        fileManager("Thunar", "thunar")};
    all[6].document = documents / "sheet.fods";
    all[6].command.emplace_back("{document}");
    all[7].command.insert(all[7].command.begin() + 1, "--no-desktop");
    return all;
}

} // namespace kelvora::applications
