// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/keyboard.h"

#include <X11/Xlib.h>
#include <X11/extensions/XInput.h>
#include <X11/extensions/XTest.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <utility>

namespace kelvora::real {

namespace {

struct Stroke {
    unsigned keyCode = 0; // 0: there is no such key
    bool needsShift = false;
};

Stroke strokeFor(char character) {
    constexpr struct {
        unsigned firstKeyCode;
        std::string_view plain, shifted;
    } rows[] = {{49, "`", "~"},
                {10, "1234567890-=", "!@#$%^&*()_+"},
                {24, "qwertyuiop[]", "QWERTYUIOP{}"},
                {38, "asdfghjkl;'", "ASDFGHJKL:\""},
                {51, "\\", "|"},
                {52, "zxcvbnm,./", "ZXCVBNM<>?"},
                {key::space, " ", ""},
                {key::backspace, "\b", ""}};
    for (const auto& [firstKeyCode, plain, shifted] : rows)
        for (const std::string_view row : {plain, shifted})
            if (const std::size_t index = row.find(character); index != std::string_view::npos)
                return {firstKeyCode + static_cast<unsigned>(index), row == shifted};
    return {};
}

XDevice* openPhysicalKeyboard(Display* display) {
    int count = 0;
    XDeviceInfo* const devices = XListInputDevices(display, &count);
    XDevice* opened = nullptr;
    for (int index = 0; index < count && opened == nullptr; ++index)
        if (std::strcmp(devices[index].name, "Xvfb keyboard") == 0)
            opened = XOpenDevice(display, devices[index].id);
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

Keyboard::~Keyboard() {
    // The server closes the device with the display, which may be gone already.
    XFree(physicalDevice_);
}

std::chrono::milliseconds Keyboard::nextInterval() {
    std::uniform_int_distribution<std::chrono::milliseconds::rep> distribution(
        rhythm_.shortest.count(), rhythm_.longest.count());
    return std::chrono::milliseconds(distribution(random_));
}

void Keyboard::post(unsigned keyCode, bool isPress) {
    const Bool press = isPress ? True : False;
    if (source_ == KeySource::physical)
        XTestFakeDeviceKeyEvent(display_, static_cast<XDevice*>(physicalDevice_), keyCode, press,
                                nullptr, 0, CurrentTime);
    else
        XTestFakeKeyEvent(display_, keyCode, press, CurrentTime);
    XFlush(display_);
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
        if (std::exchange(isShiftHeld, held) != held) {
            post(key::leftShift, held);
            std::this_thread::sleep_for(nextInterval() / 2);
        }
    };
    for (const char character : text) {
        const Stroke stroke = strokeFor(character);
        if (stroke.keyCode == 0) {
            std::fprintf(stderr, "no key of the English layout types character %d\n", character);
            std::abort();
        }
        holdShift(stroke.needsShift);
        tap(stroke.keyCode);
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
    press(key::control);
    tap(strokeFor(character).keyCode);
    release(key::control);
}

void Keyboard::chord(const std::string& names) {
    const std::size_t plus = names.find('+');
    const unsigned keyCode =
        XKeysymToKeycode(display_, XStringToKeysym(names.substr(0, plus).c_str()));
    if (plus == std::string::npos) {
        tap(keyCode);
        return;
    }
    press(keyCode);
    chord(names.substr(plus + 1));
    release(keyCode);
}

} // namespace kelvora::real
