// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_application_probe.h"

#include "tests/host/x11/window_client.h"
#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/x_server.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <thread>

namespace kelvora {
namespace {

enum class Answer { asItOughtTo, asQtDoes, ofAnotherPing };

class ApplicationProbeTest : public testing::Test {
protected:
    /// A window of an application; one that says it answers pings unless `protocol` is another.
    xcb_window_t window(xcb_window_t parent, std::string_view protocol = "_NET_WM_PING") {
        const xcb_window_t window = client_.window(parent);
        client_.set(window, "WM_PROTOCOLS", XCB_ATOM_ATOM, client_.atom(protocol));
        return window;
    }
    [[nodiscard]] bool isResponding(xcb_window_t target, double seconds = 0.1) {
        return probe_->isResponding({target}, seconds);
    }
    /// As the main loop of the application, which answers one ping.
    void answerPing(Answer answer) {
        while (XcbPtr<xcb_generic_event_t> event{xcb_wait_for_event(client_.x())}) {
            auto message = reinterpret_cast<xcb_client_message_event_t&>(*event);
            if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE ||
                message.window == client_.root())
                continue;
            message.window = client_.root();
            message.data.data32[1] += answer == Answer::ofAnotherPing ? 1U : 0U;
            const std::uint32_t listeners = answer == Answer::asQtDoes
                                                ? XCB_EVENT_MASK_STRUCTURE_NOTIFY
                                                : XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
            xcb_send_event(client_.x(), 0, client_.root(),
                           listeners | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                           reinterpret_cast<const char*>(&message));
            xcb_flush(client_.x());
            return;
        }
    }

    real::XServer server_;
    WindowClient client_{server_.display()};
    std::unique_ptr<X11ApplicationProbe> probe_ =
        X11ApplicationProbe::create(server_.display().c_str());
};

TEST_F(ApplicationProbeTest, IsToldByTheAnswerToAPing) {
    const xcb_window_t top = window(client_.root());
    EXPECT_FALSE(isResponding(top));
    answerPing(Answer::asItOughtTo); // too late
    for (const auto& [answer, expected] : {std::pair{Answer::asItOughtTo, true},
                                           {Answer::asQtDoes, true},
                                           {Answer::ofAnotherPing, false}}) {
        std::thread mainLoop([this, how = answer] { answerPing(how); });
        EXPECT_EQ(isResponding(top, expected ? 10 : 0.1), expected);
        mainLoop.join();
    }
}

TEST_F(ApplicationProbeTest, AsksTheApplicationInsideTheFrame) {
    const xcb_window_t frame = client_.window();
    const xcb_window_t between = client_.window(frame);
    const xcb_window_t first = window(between, "WM_DELETE_WINDOW");
    const xcb_window_t field = client_.window(window(between));
    EXPECT_TRUE(isResponding(frame)) << "the first of two tabs answers no pings";
    client_.focus(field);
    EXPECT_FALSE(isResponding(frame)) << "the tab that has the focus";
    client_.focus(client_.window());
    xcb_destroy_window(client_.x(), first);
    client_.finish();
    EXPECT_FALSE(isResponding(frame)) << "the focus was taken away";
    EXPECT_TRUE(isResponding(first)) << "a window that is gone";
}

TEST_F(ApplicationProbeTest, KnowsWhoseCopyItIs) {
    const xcb_window_t frame = client_.window();
    client_.finish();
    WindowClient application(server_.display());
    application.set(application.window(frame), "WM_STATE", application.atom("WM_STATE"), 1);
    EXPECT_EQ(probe_->ownsPasteboard({frame}), true) << "nothing to own";
    for (WindowClient* owner : {&application, &client_}) {
        xcb_set_selection_owner(owner->x(), owner->window(), owner->atom("CLIPBOARD"),
                                XCB_CURRENT_TIME);
        owner->finish();
        EXPECT_EQ(probe_->ownsPasteboard({frame}), owner == &application);
    }
    EXPECT_EQ(probe_->ownsPasteboard({client_.root()}), std::nullopt);
}

TEST_F(ApplicationProbeTest, StoppedProcessDoesNotRespond) {
    real::ChildProcess process({"sleep", "1000"}, {.environment = {{"PATH", "/usr/bin:/bin"}}});
    const xcb_window_t top = window(client_.root(), "WM_DELETE_WINDOW");
    client_.set(top, "_NET_WM_PID", XCB_ATOM_CARDINAL, static_cast<std::uint32_t>(process.pid()));
    EXPECT_TRUE(isResponding(top));
    process.sendSignal(SIGSTOP);
    EXPECT_TRUE(real::waitUntil([&] { return !isResponding(top); }));
}

} // namespace
} // namespace kelvora
