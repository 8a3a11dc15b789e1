// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/keyboard.h"

#include <X11/Xlib.h>
#include <X11/extensions/XInput.h>
#include <X11/extensions/XTest.h>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <thread>

namespace kelvora::real {

namespace {

struct Row {
    unsigned firstKeyCode;
    std::string_view plain;
    std::string_view shifted;
};

constexpr std::array rows{
    Row{49, "`", "~"},
    Row{10, "1234567890-=", "!@#$%^&*()_+"},
    Row{24, "qwertyuiop[]", "QWERTYUIOP{}"},
    Row{38, "asdfghjkl;'", "ASDFGHJKL:\""},
    Row{51, "\\", "|"},
    Row{52, "zxcvbnm,./", "ZXCVBNM<>?"},
    Row{key::space, " ", ""},
    Row{key::backspace, "\b", ""},
};

struct Stroke {
    unsigned keyCode;
    bool needsShift;
};

std::optional<Stroke> strokeFor(char character) {
    for (const Row& row : rows) {
        if (const std::size_t index = row.plain.find(character); index != std::string_view::npos) {
            return Stroke{row.firstKeyCode + static_cast<unsigned>(index), false};
        }
        if (const std::size_t index = row.shifted.find(character);
            index != std::string_view::npos) {
            return Stroke{row.firstKeyCode + static_cast<unsigned>(index), true};
        }
    }
    return std::nullopt;
}

XDevice* openPhysicalKeyboard(Display* display) {
    int count = 0;
    XDeviceInfo* const devices = XListInputDevices(display, &count);
    XDevice* opened = nullptr;
    for (int index = 0; index < count && opened == nullptr; ++index) {
        if (std::strcmp(devices[index].name, "Xvfb keyboard") == 0) {
            opened = XOpenDevice(display, devices[index].id);
        }
    }
    XFreeDeviceList(devices);
    return opened;
}

} // namespace

Keyboard::Keyboard(_XDisplay* display)
    : display_(display), physicalDevice_(openPhysicalKeyboard(display)) {
    if (physicalDevice_ == nullptr) {
        std::fprintf(stderr, "the X server has no keyboard device to press keys on\n");
        std::abort();
    }
}

std::chrono::milliseconds Keyboard::nextInterval() {
    std::uniform_int_distribution<std::chrono::milliseconds::rep> distribution(
        rhythm_.shortest.count(), rhythm_.longest.count());
    return std::chrono::milliseconds(distribution(random_));
}

void Keyboard::post(unsigned keyCode, bool isPress) {
    const Bool press = isPress ? True : False;
    if (source_ == KeySource::physical) {
        XTestFakeDeviceKeyEvent(display_, static_cast<XDevice*>(physicalDevice_), keyCode, press,
                                nullptr, 0, CurrentTime);
    } else {
        XTestFakeKeyEvent(display_, keyCode, press, CurrentTime);
    }
    XFlush(display_);
}

Keyboard::~Keyboard() {
    // The server closes the device with the display, which may be gone already.
    if (physicalDevice_ != nullptr) {
        XFree(physicalDevice_);
    }
}

void Keyboard::press(unsigned keyCode) {
    post(keyCode, true);
}

void Keyboard::release(unsigned keyCode) {
    post(keyCode, false);
}

void Keyboard::tap(unsigned keyCode) {
    const auto interval = nextInterval();
    press(keyCode);
    std::this_thread::sleep_for(interval / 2);
    release(keyCode);
    std::this_thread::sleep_for(interval - interval / 2);
}

void Keyboard::type(std::string_view text) {
    bool isShiftHeld = false;
    const auto holdShift = [&](bool held) {
        if (held != isShiftHeld) {
            post(key::leftShift, held);
            std::this_thread::sleep_for(nextInterval() / 2);
            isShiftHeld = held;
        }
    };
    for (const char character : text) {
        const std::optional<Stroke> stroke = strokeFor(character);
        if (!stroke) {
            std::fprintf(stderr, "no key of the English layout types character %d\n", character);
            std::abort();
        }
        holdShift(stroke->needsShift);
        tap(stroke->keyCode);
    }
    holdShift(false);
}

void Keyboard::doubleShift(unsigned keyCode) {
    tap(keyCode);
    press(keyCode);
    std::this_thread::sleep_for(nextInterval() / 2);
    release(keyCode);
}

void Keyboard::controlWith(char character) {
    const std::optional<Stroke> stroke = strokeFor(character);
    press(key::control);
    tap(stroke ? stroke->keyCode : 0);
    release(key::control);
}

void Keyboard::tapNamed(const char* keysymName) {
    tap(XKeysymToKeycode(display_, XStringToKeysym(keysymName)));
}

void Keyboard::chord(const std::string& names) {
    const std::size_t plus = names.find('+');
    if (plus == std::string::npos) {
        tapNamed(names.c_str());
        return;
    }
    const std::string modifier = names.substr(0, plus);
    const unsigned keyCode = XKeysymToKeycode(display_, XStringToKeysym(modifier.c_str()));
    press(keyCode);
    chord(names.substr(plus + 1));
    release(keyCode);
}

} // namespace kelvora::real
