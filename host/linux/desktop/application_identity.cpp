// SPDX-License-Identifier: MIT
#include "host/linux/desktop/application_identity.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <vector>

namespace kelvora {

namespace {

struct GlibFree {
    void operator()(void* memory) const { g_free(memory); }
};

/// A program that has the same identifier on every platform. All names in lower case.
struct KnownTerminal {
    std::string_view identifier;
    std::array<std::string_view, 3> names; ///< window classes and entry IDs
    std::string_view executable;           ///< empty: other programs might have that name too
};

constexpr std::array knownTerminals{
    KnownTerminal{"net.kovidgoyal.kitty", {"kitty"}, "kitty"},
    KnownTerminal{"org.alacritty", {"alacritty", "com.alacritty.alacritty"}, "alacritty"},
    KnownTerminal{"com.github.wez.wezterm",
                  {"org.wezfurlong.wezterm", "wezterm", "wezterm-gui"},
                  "wezterm-gui"},
    KnownTerminal{"com.mitchellh.ghostty", {"com.mitchellh.ghostty", "ghostty"}, "ghostty"},
    KnownTerminal{"org.tabby", {"tabby"}, {}},
    KnownTerminal{"co.zeit.hyper", {"hyper"}, {}},
    KnownTerminal{"com.raphaelamorim.rio", {"rio"}, {}},
    KnownTerminal{"dev.warp.Warp", {"dev.warp.warp"}, {}},
};

/// Window classes, entry IDs and program names in lower case. Also editors whose
/// Control combinations are commands of their own.
constexpr auto terminalNames = std::to_array<std::string_view>({
    "aterm",
    "blackbox-terminal",
    "com.gexperts.tilix",
    "com.raggesilver.blackbox",
    "contour",
    "cool-retro-term",
    "cutecom",
    "deepin-terminal",
    "emacs",
    "emacs-gtk",
    "emacs-lucid",
    "emacsclient",
    "eterm",
    "evilvte",
    "foot",
    "footclient",
    "gnome-terminal",
    "gnome-terminal-server",
    "goneovim",
    "gtkterm",
    "guake",
    "gvim",
    "io.elementary.terminal",
    "kgx",
    "koi8rxterm",
    "konsole",
    "kterm",
    "lilyterm",
    "lxterm",
    "lxterminal",
    "mate-terminal",
    "mlterm",
    "moserial",
    "mrxvt",
    "neovide",
    "nvim-qt",
    "org.codeberg.dnkl.foot",
    "org.contourterminal.contour",
    "org.gnome.console",
    "org.gnome.ptyxis",
    "org.gnome.terminal",
    "org.gnu.emacs",
    "org.kde.konsole",
    "org.kde.yakuake",
    "pantheon-terminal",
    "pterm",
    "ptyxis",
    "putty",
    "qterminal",
    "roxterm",
    "rxvt",
    "rxvt-unicode",
    "sakura",
    "st",
    "st-256color",
    "stterm",
    "syncterm",
    "terminator",
    "terminology",
    "termit",
    "termite",
    "tilda",
    "tilix",
    "tym",
    "urxvt",
    "urxvtd",
    "uxterm",
    "vim.gtk",
    "vim.gtk3",
    "vim.motif",
    "waveterm",
    "wterm",
    "xfce4-terminal",
    "xiterm+thai",
    "xterm",
    "xvt",
    "yakuake",
    "zutty",
});
static_assert(std::ranges::is_sorted(terminalNames));

/// Windows that show another machine: the keys go to whatever has the focus there, which may be a
/// terminal.
constexpr auto remoteNames = std::to_array<std::string_view>({
    "anydesk",
    "com.rustdesk.rustdesk",
    "gnome-boxes",
    "gnome-connections",
    "krdc",
    "looking-glass-client",
    "moonlight",
    "nxplayer.bin",
    "org.gnome.boxes",
    "org.gnome.connections",
    "org.kde.krdc",
    "org.remmina.remmina",
    "parsecd",
    "qemu",
    "rdesktop",
    "remmina",
    "remote-viewer",
    "rustdesk",
    "scrcpy",
    "sdl-freerdp",
    "spicy",
    "teamviewer",
    "tigervnc",
    "vinagre",
    "virt-manager",
    "virt-viewer",
    "virtualbox machine",
    "virtualbox manager",
    "virtualboxvm",
    "vmplayer",
    "vmware",
    "vmware-view",
    "vncviewer",
    "wfica",
    "wlfreerdp",
    "x2goagent",
    "xephyr",
    "xfreerdp",
    "xfreerdp3",
    "xnest",
    "xtigervncviewer",
});
static_assert(std::ranges::is_sorted(remoteNames));

/// File managers and desktops, where everything selected is every file; drawing surfaces and
/// tables.
constexpr auto noSelectAllNames = std::to_array<std::string_view>({
    "blender",
    "caja",
    "caja-desktop",
    "com.jgraph.drawio.desktop",
    "dde-file-manager",
    "dia",
    "dolphin",
    "doublecmd",
    "draw.io",
    "drawio",
    "eeschema",
    "figma-linux",
    "freecad",
    "gimp",
    "gimp-2.10",
    "gnumeric",
    "inkscape",
    "io.elementary.files",
    "konqueror",
    "krita",
    "krusader",
    "libreoffice-calc",
    "libreoffice-draw",
    "libreoffice-impress",
    "nautilus",
    "nautilus-desktop",
    "nemo",
    "nemo-desktop",
    "org.freecad.freecad",
    "org.gimp.gimp",
    "org.gnome.nautilus",
    "org.inkscape.inkscape",
    "org.kde.dolphin",
    "org.kde.krita",
    "pcbnew",
    "pcmanfm",
    "pcmanfm-qt",
    "peony",
    "rox",
    "scribus",
    "spacefm",
    "thunar",
    "xfdesktop",
    "xfe",
    "xournalpp",
});
static_assert(std::ranges::is_sorted(noSelectAllNames));

/// Of such programs, as freedesktop.org names them for menus. Also of those whose text is a
/// document, which must not be rewritten as a whole where accessibility does not tell that it is
/// one.
constexpr auto noSelectAllCategories = std::to_array<std::string_view>({
    "AudioVideoEditing",
    "FileManager",
    "Game",
    "Graphics",
    "IDE",
    "Presentation",
    "Spreadsheet",
    "TextEditor",
    "WordProcessor",
});

std::string lowered(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), [](char c) { return g_ascii_tolower(c); });
    return result;
}

/// Empty when nothing is left. Malformed UTF-8 becomes U+FFFD.
std::string cleaned(std::string_view bytes) {
    const std::unique_ptr<gchar, GlibFree> valid(
        g_utf8_make_valid(bytes.data(), static_cast<gssize>(bytes.size())));
    std::string text = valid.get();
    std::erase_if(text, [](char c) { return g_ascii_iscntrl(c); });
    return text;
}

bool isApplicationId(std::string_view text) {
    return text.find('.') != std::string_view::npos && std::ranges::all_of(text, [](char c) {
               return g_ascii_isalnum(c) || c == '.' || c == '-' || c == '_';
           });
}

/// What an application is called, in lower case; each may be empty.
struct Names {
    std::string entry;
    std::string gtkApplicationId;
    std::string windowClass;
    std::string windowInstance;
    std::string executable;

    template <typename List>
    [[nodiscard]] bool anyIn(const List& list) const {
        const auto listed = [&](const std::string& name) {
            return std::ranges::binary_search(list, std::string_view(name));
        };
        return listed(entry) || listed(gtkApplicationId) || listed(windowClass) ||
               listed(windowInstance) || listed(executable);
    }
};

const KnownTerminal* knownTerminal(const Names& names) {
    const auto known = std::ranges::find_if(knownTerminals, [&](const KnownTerminal& terminal) {
        return std::ranges::any_of(terminal.names,
                                   [&](std::string_view name) {
                                       return !name.empty() && (name == names.entry ||
                                                                name == names.gtkApplicationId ||
                                                                name == names.windowClass);
                                   }) ||
               (!terminal.executable.empty() && terminal.executable == names.executable);
    });
    return known == knownTerminals.end() ? nullptr : &*known;
}

ApplicationKind kindOf(const Names& names, const std::vector<std::string>& categories,
                       bool isDesktopWindow) {
    const auto isOf = [&](std::string_view category) {
        return std::ranges::find(categories, category) != categories.end();
    };
    if (isOf("TerminalEmulator") || names.anyIn(terminalNames))
        return ApplicationKind::terminal;
    if (isOf("RemoteAccess") || isOf("Emulator") || names.anyIn(remoteNames) ||
        names.windowClass.starts_with("qemu") || names.executable.starts_with("qemu-system-"))
        return ApplicationKind::terminal;
    if (isDesktopWindow || std::ranges::any_of(noSelectAllCategories, isOf) ||
        names.anyIn(noSelectAllNames))
        return ApplicationKind::noSelectAll;
    return ApplicationKind::ordinary;
}

} // namespace

ApplicationIdentity identifyApplication(const ApplicationTraits& application,
                                        const std::optional<DesktopEntryMatch>& entry) {
    const std::string_view executable = fileName(application.executable);
    const std::optional<std::string> entryId = entry ? entry->id : std::nullopt;
    const Names names{
        .entry = lowered(entryId.value_or("")),
        .gtkApplicationId = lowered(application.gtkApplicationId),
        .windowClass = lowered(application.windowClass),
        .windowInstance = lowered(application.windowInstance),
        .executable = lowered(executable),
    };
    if (const KnownTerminal* known = knownTerminal(names))
        return {.bundleIdentifier = std::string(known->identifier),
                .kind = ApplicationKind::terminal};

    const std::vector<std::string> categories =
        entry ? entry->categories : std::vector<std::string>();
    ApplicationIdentity identity{
        .bundleIdentifier = entryId,
        .kind = kindOf(names, categories, application.isDesktopWindow),
    };
    if (!identity.bundleIdentifier && isApplicationId(application.gtkApplicationId))
        identity.bundleIdentifier = application.gtkApplicationId;
    for (const std::string& candidate :
         {cleaned(names.windowClass), cleaned(names.windowInstance), cleaned(executable)}) {
        if (!identity.bundleIdentifier && !candidate.empty())
            identity.bundleIdentifier = candidate;
    }
    return identity;
}

} // namespace kelvora
