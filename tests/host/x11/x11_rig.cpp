// SPDX-License-Identifier: MIT
#include "tests/host/x11/x11_rig.h"

#include "host/linux/xkb/key_positions.h"
#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/wait_until.h"

#include <gtest/gtest.h>

// After gtest, which has its own Bool, None and the like.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

#include <chrono>
#include <future>
#include <utility>

namespace kelvora {
namespace {

using namespace std::chrono_literals;

constexpr auto restTime = 150ms;

unsigned xKeyCode(KeyCode keyCode) {
    // Key codes of the evdev set, which Xvfb has.
    switch (keyCode) {
    case keyCode::leftShift:
        return real::key::leftShift;
    case keyCode::rightShift:
        return real::key::rightShift;
    case keyCode::leftControl:
        return real::key::control;
    case contract::keyQ:
        return 24;
    case contract::keyW:
        return 25;
    default:
        ADD_FAILURE() << "the rig does not know key " << keyCode;
        return 0;
    }
}

} // namespace

X11Rig::X11Rig(const std::string& layouts) {
    setLayouts(layouts);
    xlib_ = XOpenDisplay(server_.display().c_str());
    keyboard_ = std::make_unique<real::Keyboard>(xlib_);
    keyboard_->setSource(real::KeySource::physical);
    editor_ = std::make_unique<PlainEditor>(server_.display());
    other_ = std::make_unique<PlainEditor>(server_.display());
    editor_->focus();
    services_ = X11Services::create(server_.display(), loop_, secureEntry_,
                                    [this] { isServerGone_ = true; });
}

X11Rig::~X11Rig() {
    services_.reset();
    editor_.reset();
    other_.reset();
    // Xlib would end the process over a server that is gone.
    if (!isServerGone_)
        XCloseDisplay(xlib_);
}

void X11Rig::setLayouts(const std::string& layouts) {
    real::ChildProcess program(
        {"setxkbmap", "-model", "pc105", layouts},
        {{{"PATH", "/usr/bin:/bin"}, {"DISPLAY", server_.display()}}, {}, -1});
    ASSERT_EQ(program.waitForExit(real::defaultDeadline), 0);
}

Desktop X11Rig::services() {
    return {.dispatch = queue_,
            .log = log_,
            .eventSource = services_->eventSource(),
            .eventPoster = services_->eventPoster(),
            .inputSources = services_->inputSources(),
            .keyTranslator = services_->keyTranslator(),
            .workspace = services_->workspace(),
            .permissions = services_->permissions(),
            .accessibility = accessibility_,
            .pasteboard = services_->pasteboard(),
            .applicationProbe = services_->applicationProbe(),
            .secureInput = secureEntry_};
}

void X11Rig::press(KeyCode keyCode) {
    keyboard_->press(xKeyCode(keyCode));
    XSync(xlib_, False); // before whatever another connection asks for next
}

void X11Rig::release(KeyCode keyCode) {
    keyboard_->release(xKeyCode(keyCode));
    XSync(xlib_, False);
}

void X11Rig::click() {
    XTestFakeButtonEvent(xlib_, 1, True, CurrentTime);
    XTestFakeButtonEvent(xlib_, 1, False, CurrentTime);
    XSync(xlib_, False);
}

void X11Rig::onWorker(const std::function<void()>& work) {
    auto done = std::async(std::launch::async, work);
    while (done.wait_for(0s) != std::future_status::ready)
        turn();
}

bool X11Rig::becomes(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + real::defaultDeadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        turn();
    }
    return true;
}

void X11Rig::rest() {
    const auto end = std::chrono::steady_clock::now() + restTime;
    while (std::chrono::steady_clock::now() < end)
        turn();
}

void X11Rig::turn() {
    loop_.turn(2ms);
    queue_.runPosted();
}

void X11Rig::Queue::postToMain(std::function<void()> work) {
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(work));
}

void X11Rig::Queue::runPosted() {
    while (true) {
        std::function<void()> work;
        {
            const std::lock_guard lock(mutex_);
            if (queue_.empty())
                return;
            work = std::move(queue_.front());
            queue_.pop_front();
        }
        work();
    }
}

} // namespace kelvora
