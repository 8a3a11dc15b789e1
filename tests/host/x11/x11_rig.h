// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_accessibility.h"
#include "host/linux/desktop/stderr_log.h"
#include "host/linux/secure_entry.h"
#include "host/linux/x11/x11_services.h"
#include "tests/host/x11/plain_editor.h"
#include "tests/host/x11/poll_loop.h"
#include "tests/support/contracts/desktop_rig.h"
#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/keyboard.h"
#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/x_server.h"

#include <gtest/gtest.h>

// After gtest, which has its own Bool, None and the like.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>

#include <chrono>
#include <future>
#include <map>
#include <memory>
#include <string>

namespace kelvora {

/// A real X server with two plain editors and no window manager.
class X11Rig final : public contract::DesktopRig {
public:
    /// Layouts with names like "us,fr(bepo)".
    explicit X11Rig(const std::string& layouts = "us,ru") {
        real::ChildProcess program(
            {"setxkbmap", "-model", "pc105", layouts},
            {{{"PATH", "/usr/bin:/bin"}, {"DISPLAY", server_.display()}}, {}, -1});
        EXPECT_EQ(program.waitForExit(real::defaultDeadline), 0);
        xlib_ = XOpenDisplay(server_.display().c_str());
        keyboard_ = std::make_unique<real::Keyboard>(xlib_);
        keyboard_->setSource(real::KeySource::physical);
        editor_.focus();
        services_ = X11Services::create(server_.display(), loop_, secureEntry_,
                                        [] { ADD_FAILURE() << "the server is not gone"; });
    }
    ~X11Rig() override {
        services_.reset();
        XCloseDisplay(xlib_);
    }

    [[nodiscard]] Desktop services() override {
        return {.dispatch = dispatch_,
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
    void press(KeyCode keyCode) override {
        keyboard_->press(xKeyCodes.at(keyCode));
        XSync(xlib_, False); // before whatever another connection asks for next
    }
    void release(KeyCode keyCode) override {
        keyboard_->release(xKeyCodes.at(keyCode));
        XSync(xlib_, False);
    }
    void click() override {
        XTestFakeButtonEvent(xlib_, 1, True, CurrentTime);
        XTestFakeButtonEvent(xlib_, 1, False, CurrentTime);
        XSync(xlib_, False);
    }
    void focusOtherEditor() override { other_.focus(); }
    [[nodiscard]] std::u16string text() override { return editor_.text(); }
    [[nodiscard]] std::u16string otherText() override { return other_.text(); }
    void onWorker(const std::function<void()>& work) override {
        const auto done = std::async(std::launch::async, work);
        while (done.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
            loop_.turn(turnTime);
    }
    [[nodiscard]] bool becomes(const std::function<bool()>& condition) override {
        return real::waitUntil([&] {
            loop_.turn(turnTime);
            return condition();
        });
    }
    void rest() override {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(150);
        while (std::chrono::steady_clock::now() < end)
            loop_.turn(turnTime);
    }

    [[nodiscard]] PlainEditor& editor() { return editor_; }
    [[nodiscard]] PlainEditor& other() { return other_; }
    [[nodiscard]] _XDisplay* xlib() const { return xlib_; }
    [[nodiscard]] real::Keyboard& keyboard() { return *keyboard_; }

private:
    /// Nothing here works beside the main thread.
    struct NoDispatch final : Dispatch {
        [[nodiscard]] bool isMainThread() const override { return true; }
        void postToMain(std::function<void()> /*work*/) override { ADD_FAILURE(); }
        void postToWorker(std::function<void()> /*work*/) override { ADD_FAILURE(); }
    };
    static constexpr std::chrono::milliseconds turnTime{2};
    /// Of the evdev set, which Xvfb has.
    inline static const std::map<KeyCode, unsigned> xKeyCodes{
        {keyCode::leftShift, real::key::leftShift},
        {keyCode::rightShift, real::key::rightShift},
        {keyCode::leftControl, real::key::control},
        {contract::keyQ, 24},
        {contract::keyW, 25}};

    real::XServer server_;
    PollLoop loop_;
    NoDispatch dispatch_;
    StderrLog log_{LogLevel::error};
    SecureEntry secureEntry_;
    AbsentAccessibility accessibility_;
    _XDisplay* xlib_ = nullptr;
    std::unique_ptr<real::Keyboard> keyboard_;
    PlainEditor editor_{server_.display()};
    PlainEditor other_{server_.display()};
    std::unique_ptr<X11Services> services_;
};

} // namespace kelvora
