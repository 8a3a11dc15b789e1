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

constexpr double ample = 10;  // seconds, for what answers at once
constexpr double brief = 0.1; // for what never does

enum class Answer { none, asItOughtTo, asQtDoes, ofAnotherPing, ofAnotherWindow };

class ApplicationProbeTest : public testing::Test {
protected:
    /// A window of an application; one that says it answers pings unless `protocol` is another.
    xcb_window_t window(xcb_window_t parent, std::string_view protocol = "_NET_WM_PING") {
        const xcb_window_t window = client_.window(parent);
        client_.set(window, "WM_PROTOCOLS", XCB_ATOM_ATOM, client_.atom(protocol));
        return window;
    }
    void manage(xcb_window_t window) {
        client_.set(window, "WM_STATE", client_.atom("WM_STATE"), 1);
    }
    [[nodiscard]] bool isResponding(xcb_window_t target, double timeout = brief) {
        return probe_->isResponding({target}, timeout);
    }
    /// As the main loop of the application, which answers one ping that comes to `window`.
    void answerPing(xcb_window_t window, Answer answer) {
        while (XcbPtr<xcb_generic_event_t> event{xcb_wait_for_event(client_.connection())}) {
            if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE)
                continue;
            auto message = reinterpret_cast<xcb_client_message_event_t&>(*event);
            if (message.window != window)
                continue;
            message.window = client_.root();
            message.data.data32[1] += answer == Answer::ofAnotherPing ? 1U : 0U;
            message.data.data32[2] += answer == Answer::ofAnotherWindow ? 1U : 0U;
            const std::uint32_t listeners = answer == Answer::asQtDoes
                                                ? XCB_EVENT_MASK_STRUCTURE_NOTIFY
                                                : XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
            xcb_send_event(client_.connection(), 0, client_.root(),
                           listeners | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                           reinterpret_cast<const char*>(&message));
            xcb_flush(client_.connection());
            return;
        }
    }

    real::XServer server_;
    WindowClient client_{server_.display()};
    std::unique_ptr<X11ApplicationProbe> probe_ =
        X11ApplicationProbe::create(server_.display().c_str());
};

TEST_F(ApplicationProbeTest, IsToldByTheAnswerToAPing) {
    struct Case {
        const char* name;
        Answer answer;
        bool isResponding;
    };
    const xcb_window_t top = window(client_.root());
    client_.focus(top);
    for (const Case& test : {Case{"none", Answer::none, false},
                             {"as it ought to be", Answer::asItOughtTo, true},
                             {"as Qt does", Answer::asQtDoes, true},
                             {"to another's ping", Answer::ofAnotherPing, false},
                             {"of another window", Answer::ofAnotherWindow, false},
                             {"again", Answer::asItOughtTo, true}}) {
        if (test.answer == Answer::none) {
            EXPECT_FALSE(isResponding(top)) << test.name;
            answerPing(top, Answer::asItOughtTo); // too late
            continue;
        }
        std::thread mainLoop([&] { answerPing(top, test.answer); });
        EXPECT_EQ(isResponding(top, test.isResponding ? ample : brief), test.isResponding)
            << test.name;
        mainLoop.join();
    }
}

TEST_F(ApplicationProbeTest, AsksTheApplicationInsideTheFrame) {
    const xcb_window_t frame = client_.window(client_.root());
    const xcb_window_t between = client_.window(frame);
    const xcb_window_t hidden = window(between, "WM_DELETE_WINDOW");
    manage(hidden);
    const xcb_window_t top = window(between);
    manage(top);
    const xcb_window_t field = client_.window(top);
    EXPECT_TRUE(isResponding(frame)) << "the first of two tabs";
    client_.focus(field);
    EXPECT_FALSE(isResponding(frame)) << "the tab that has the focus";
    client_.focus(client_.window(client_.root()));
    client_.destroy(hidden);
    EXPECT_FALSE(isResponding(frame)) << "the focus was taken away";
}

TEST_F(ApplicationProbeTest, IsTrueWhereItCannotBeFoundOut) {
    EXPECT_TRUE(isResponding(XCB_NONE));
    EXPECT_TRUE(isResponding(client_.root()));
    EXPECT_TRUE(isResponding(window(client_.root(), "WM_DELETE_WINDOW")));
    const xcb_window_t crowd = client_.window(client_.root());
    for (int child = 0; child < 200; ++child)
        client_.window(crowd);
    EXPECT_TRUE(isResponding(crowd));
    const xcb_window_t gone = window(client_.root());
    client_.destroy(gone);
    EXPECT_TRUE(isResponding(gone));
    server_.kill();
    EXPECT_TRUE(isResponding(crowd));
    EXPECT_EQ(X11ApplicationProbe::create(server_.display().c_str()), nullptr);
}

TEST_F(ApplicationProbeTest, KnowsWhoseCopyItIs) {
    const xcb_window_t frame = client_.window(client_.root());
    client_.atom("DONE");
    WindowClient application(server_.display());
    const xcb_window_t top = application.window(frame);
    application.set(top, "WM_STATE", application.atom("WM_STATE"), 1);
    EXPECT_EQ(probe_->ownsPasteboard({frame}), true) << "nothing to own";
    const auto copy = [](WindowClient& client) {
        xcb_set_selection_owner(client.connection(), client.window(client.root()),
                                client.atom("CLIPBOARD"), XCB_CURRENT_TIME);
        client.atom("DONE");
    };
    copy(application);
    EXPECT_EQ(probe_->ownsPasteboard({frame}), true);
    copy(client_);
    EXPECT_EQ(probe_->ownsPasteboard({frame}), false) << "the window manager's";
    EXPECT_EQ(probe_->ownsPasteboard({client_.root()}), std::nullopt);
}

TEST_F(ApplicationProbeTest, StoppedProcessDoesNotRespond) {
    real::ChildProcess process({"sleep", "1000"}, {.environment = {{"PATH", "/usr/bin:/bin"}}});
    const xcb_window_t top = window(client_.root(), "WM_DELETE_WINDOW");
    client_.set(top, "_NET_WM_PID", XCB_ATOM_CARDINAL, static_cast<std::uint32_t>(process.pid()));
    EXPECT_TRUE(isResponding(top));
    process.sendSignal(SIGSTOP);
    EXPECT_TRUE(real::waitUntil([&] { return !isResponding(top); }));
    client_.set(top, "WM_CLIENT_MACHINE", "elsewhere.example.org");
    EXPECT_TRUE(isResponding(top)) << "another machine's process of that number";
    client_.set(top, "WM_CLIENT_MACHINE", "localhost");
    process.sendSignal(SIGCONT);
    EXPECT_TRUE(real::waitUntil([&] { return isResponding(top); }));
}

} // namespace
} // namespace kelvora
