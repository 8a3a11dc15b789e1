// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_keymap_copy.h"

#include <X11/XKBlib.h>

#include <memory>

namespace kelvora {
namespace {

struct CloseDisplay {
    void operator()(Display* display) const { XCloseDisplay(display); }
};
/// A keyboard may be unplugged meanwhile: Xlib would end the process over the error.
class IgnoredErrors {
public:
    IgnoredErrors() : previous_(XSetErrorHandler([](Display*, XErrorEvent*) { return 0; })) {}
    ~IgnoredErrors() { XSetErrorHandler(previous_); }
    IgnoredErrors(const IgnoredErrors&) = delete;
    IgnoredErrors& operator=(const IgnoredErrors&) = delete;

private:
    XErrorHandler previous_;
};

struct FreeKeyboard {
    void operator()(XkbDescPtr keyboard) const { XkbFreeKeyboard(keyboard, 0, True); }
};

} // namespace

void copyCoreKeymap(const char* display, std::span<const std::uint16_t> slaveIds) {
    const std::unique_ptr<Display, CloseDisplay> connection(XOpenDisplay(display));
    if (!connection)
        return;
    // Likewise over a server that goes away.
    XSetIOErrorExitHandler(
        connection.get(), [](Display*, void*) {}, nullptr);
    const IgnoredErrors ignored;
    const std::unique_ptr<XkbDescRec, FreeKeyboard> keyboard(
        XkbGetMap(connection.get(), XkbAllMapComponentsMask, XkbUseCoreKbd));
    if (!keyboard || XkbGetNames(connection.get(), XkbGroupNamesMask | XkbSymbolsNameMask,
                                 keyboard.get()) != Success)
        return;
    for (const std::uint16_t id : slaveIds) {
        keyboard->device_spec = id;
        XkbSetMap(connection.get(), XkbAllMapComponentsMask, keyboard.get());
        XkbSetNames(connection.get(), XkbGroupNamesMask | XkbSymbolsNameMask, 0, 0, keyboard.get());
    }
    XSync(connection.get(), False);
}

} // namespace kelvora
