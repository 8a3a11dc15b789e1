// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_accessibility.h"
#include "host/linux/desktop/stderr_log.h"
#include "host/linux/secure_entry.h"
#include "host/linux/x11/x11_services.h"
#include "tests/host/x11/plain_editor.h"
#include "tests/host/x11/poll_loop.h"
#include "tests/support/contracts/desktop_rig.h"
#include "tests/support/real_desktop/keyboard.h"
#include "tests/support/real_desktop/x_server.h"

#include <deque>
#include <memory>
#include <mutex>
#include <string>

struct _XDisplay;

namespace kelvora {

/// A real X server with two plain editors and no window manager.
class X11Rig final : public contract::DesktopRig {
public:
    explicit X11Rig(const std::string& layouts = "us,ru");
    ~X11Rig() override;

    [[nodiscard]] Desktop services() override;
    void press(KeyCode keyCode) override;
    void release(KeyCode keyCode) override;
    void click() override;
    void focusOtherEditor() override { other_->focus(); }
    [[nodiscard]] std::u16string text() override { return editor_->text(); }
    [[nodiscard]] std::u16string otherText() override { return other_->text(); }
    void onWorker(const std::function<void()>& work) override;
    [[nodiscard]] bool becomes(const std::function<bool()>& condition) override;
    void rest() override;

    [[nodiscard]] PlainEditor& editor() { return *editor_; }
    [[nodiscard]] PlainEditor& other() { return *other_; }
    [[nodiscard]] const std::string& display() const { return server_.display(); }
    [[nodiscard]] _XDisplay* xlib() const { return xlib_; }
    [[nodiscard]] real::Keyboard& keyboard() { return *keyboard_; }
    /// Names like "us,fr(bepo)".
    void setLayouts(const std::string& layouts);
    void killServer() { server_.kill(); }
    [[nodiscard]] bool isServerGone() const { return isServerGone_; }

private:
    /// Work for the main thread; there is no worker that is not asked for.
    class Queue final : public Dispatch {
    public:
        [[nodiscard]] bool isMainThread() const override { return true; }
        void postToMain(std::function<void()> work) override;
        void postToWorker(std::function<void()> work) override { postToMain(std::move(work)); }
        void runPosted();

    private:
        std::mutex mutex_;
        std::deque<std::function<void()>> queue_;
    };

    void turn();

    real::XServer server_;
    PollLoop loop_;
    Queue queue_;
    StderrLog log_{LogLevel::error};
    SecureEntry secureEntry_;
    AbsentAccessibility accessibility_;
    _XDisplay* xlib_ = nullptr;
    bool isServerGone_ = false;
    std::unique_ptr<real::Keyboard> keyboard_;
    std::unique_ptr<PlainEditor> editor_;
    std::unique_ptr<PlainEditor> other_;
    std::unique_ptr<X11Services> services_;
};

} // namespace kelvora
