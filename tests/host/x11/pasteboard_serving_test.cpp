// SPDX-License-Identifier: MIT
#include "tests/host/x11/pasteboard_fixture.h"
#include "tests/support/real_desktop/wait_until.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <future>

namespace kelvora {
namespace {

using X11PasteboardServing = X11PasteboardTest;

/// A program that asks for single things.
class Requestor {
public:
    explicit Requestor(const real::XServer& server)
        : client_(ClipboardClient::create(server.display().c_str())) {}

    [[nodiscard]] ClipboardClient& client() { return *client_; }
    [[nodiscard]] xcb_atom_t atom(std::string_view name) {
        return internAtoms(client_->connection(), std::array{name}).front();
    }
    void ask(std::string_view target, std::string_view property,
             xcb_timestamp_t time = XCB_CURRENT_TIME) {
        xcb_convert_selection(client_->connection(), client_->window(), atom("CLIPBOARD"),
                              atom(target), property.empty() ? xcb_atom_t{} : atom(property), time);
        xcb_flush(client_->connection());
    }
    /// The property that the answer names; empty when it is a refusal.
    [[nodiscard]] std::string answer() {
        while (const auto event = client_->nextEvent(deadline())) {
            if ((event->response_type & 0x7F) != XCB_SELECTION_NOTIFY)
                continue;
            const std::array property{
                reinterpret_cast<const xcb_selection_notify_event_t*>(event.get())->property};
            return atomNames(client_->connection(), property).front();
        }
        return "no answer";
    }
    [[nodiscard]] std::string value(std::string_view property, bool isTaken = true) {
        const XcbPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            client_->connection(),
            xcb_get_property(client_->connection(), isTaken ? 1 : 0, client_->window(),
                             atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, 1 << 20),
            nullptr));
        return {static_cast<const char*>(xcb_get_property_value(reply.get())),
                static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
    }
    void setAtoms(std::string_view property, const std::vector<std::string_view>& names) {
        const std::vector<xcb_atom_t> atoms = internAtoms(client_->connection(), names);
        xcb_change_property(client_->connection(), XCB_PROP_MODE_REPLACE, client_->window(),
                            atom(property), atom("ATOM_PAIR"), 32,
                            static_cast<std::uint32_t>(atoms.size()), atoms.data());
    }
    /// The bytes that it gets; absent when it is refused.
    [[nodiscard]] std::optional<std::string> get(std::string_view target) {
        ask(target, "GET");
        if (answer() != "GET")
            return std::nullopt;
        return value("GET");
    }
    [[nodiscard]] bool isOffered(std::string_view target) {
        const std::string list = get("TARGETS").value_or("");
        std::vector<xcb_atom_t> targets(list.size() / sizeof(xcb_atom_t));
        std::memcpy(targets.data(), list.data(), list.size());
        return std::ranges::find(targets, atom(target)) != targets.end();
    }
    void takeFocus() {
        xcb_map_window(client_->connection(), client_->window());
        xcb_set_input_focus(client_->connection(), XCB_INPUT_FOCUS_NONE, client_->window(),
                            XCB_CURRENT_TIME);
        static_cast<void>(client_->selectionOwner(XCB_ATOM_PRIMARY)); // it is done then
    }
    static ClipboardClient::Clock::time_point deadline() {
        return ClipboardClient::Clock::now() + real::defaultDeadline;
    }

private:
    std::unique_ptr<ClipboardClient> client_;
};

TEST_F(X11PasteboardServing, RequestsAreAnsweredAsTheProtocolSays) {
    Requestor requestor(server);
    const auto ignore = [](const xcb_generic_event_t&) {};
    const auto before = requestor.client().serverTime(ignore);
    EXPECT_TRUE(real::waitUntil([&] { return requestor.client().serverTime(ignore) > before; }));
    const auto board = open();
    board->clearContents();
    requestor.ask("UTF8_STRING", "P"); // in between: the text is waited for
    EXPECT_TRUE(write(*board, u"né"));
    EXPECT_EQ(requestor.answer(), "P");
    EXPECT_EQ(requestor.value("P"), "né");

    struct Case {
        const char* target;
        const char* property;
        const char* answer;
        const char* value;
    };
    const Case cases[]{
        {"STRING", "P", "P", "n\xE9"},
        {"TEXT", "P", "P", "n\xE9"},
        {"text/plain;charset=utf-8", "P", "P", "né"},
        {"x-kde-passwordManagerHint", "P", "P", "secret"},
        {"STRING", "", "STRING", "n\xE9"}, // a client from before ICCCM
        {"DELETE", "P", "", ""},
        {"SAVE_TARGETS", "P", "", ""},
        {"image/png", "P", "", ""},
        {"MULTIPLE", "", "", ""},
        {"MULTIPLE", "_NOT_SET", "", ""},
    };
    for (const Case& each : cases) {
        requestor.ask(each.target, each.property);
        EXPECT_EQ(requestor.answer(), each.answer) << each.target;
        EXPECT_EQ(requestor.value(each.answer), each.value) << each.target;
    }

    requestor.ask("UTF8_STRING", "P", *before);
    EXPECT_EQ(requestor.answer(), "") << "from before the claim";
    requestor.ask("TIMESTAMP", "P");
    EXPECT_EQ(requestor.answer(), "P");
    xcb_timestamp_t time = 0;
    std::memcpy(&time, requestor.value("P").data(), sizeof time);
    EXPECT_GT(time, *before);
    requestor.ask("UTF8_STRING", "P", time);
    EXPECT_EQ(requestor.answer(), "P");

    requestor.setAtoms("M",
                       {"UTF8_STRING", "P1", "image/png", "P2", "MULTIPLE", "M", "TEXT", "P3"});
    requestor.ask("MULTIPLE", "M");
    EXPECT_EQ(requestor.answer(), "M");
    EXPECT_EQ(requestor.value("P1") + requestor.value("P2") + requestor.value("P3"), "nén\xE9");
    const std::string pairs = requestor.value("M");
    std::array<xcb_atom_t, 8> atoms{};
    ASSERT_EQ(pairs.size(), sizeof atoms);
    std::memcpy(atoms.data(), pairs.data(), sizeof atoms);
    EXPECT_EQ(atoms[1], requestor.atom("P1"));
    EXPECT_EQ(atoms[3], xcb_atom_t{XCB_ATOM_NONE});
    EXPECT_EQ(atoms[5], xcb_atom_t{XCB_ATOM_NONE});
}

TEST_F(X11PasteboardServing, WhatIsThereForAMomentIsHiddenFromWhoeverFetchesUnasked) {
    Requestor application(server), manager(server), poller(server), helper(server);
    application.takeFocus();
    const auto board = open();
    const auto begin = [&](std::u16string_view text) {
        board->clearContents();
        EXPECT_TRUE(write(*board, text));
    };
    const auto restore = [&] {
        const auto kept = std::make_shared<const std::vector<std::byte>>(4, std::byte{'k'});
        board->restore({{{{"UTF8_STRING", "8 UTF8_STRING", kept}}}});
    };
    const auto fetch = [](Requestor& requestor) { return requestor.get("UTF8_STRING"); };

    begin(u"1");
    EXPECT_EQ(fetch(manager), "1") << "nothing is known of it";
    EXPECT_EQ(fetch(application), "1");
    restore();
    EXPECT_EQ(fetch(poller), "kkkk");
    EXPECT_EQ(fetch(application), "kkkk");
    EXPECT_TRUE(helper.isOffered("UTF8_STRING"));

    begin(u"2");
    EXPECT_EQ(fetch(manager), std::nullopt) << "it had got what the application pasted";
    EXPECT_EQ(fetch(poller), std::nullopt) << "it had got what was restored";
    EXPECT_EQ(manager.get("TEXT"), std::nullopt);
    EXPECT_FALSE(manager.isOffered("UTF8_STRING"));
    EXPECT_TRUE(manager.isOffered("x-kde-passwordManagerHint"));
    EXPECT_EQ(fetch(application), "2");
    poller.takeFocus();
    EXPECT_EQ(fetch(poller), "2") << "somebody pastes there";
    application.takeFocus();
    restore();

    begin(u"3");
    EXPECT_EQ(fetch(manager), std::nullopt);
    EXPECT_EQ(fetch(helper), "3") << "for the application, which does not fetch it";
    restore();
    begin(u"4");
    EXPECT_EQ(fetch(helper), "4");
    EXPECT_EQ(fetch(manager), "4") << "it may be such a helper, too";

    board->clearContents();
    EXPECT_TRUE(board->setMarker(u"marker"));
    EXPECT_EQ(fetch(application), std::nullopt);
    EXPECT_FALSE(application.isOffered("STRING"));
    EXPECT_TRUE(application.isOffered("application/x-kelvora-marker"));
    EXPECT_EQ(application.get("application/x-kelvora-marker"), "");
}

TEST_F(X11PasteboardServing, RequestorsThatHangHoldUpNobody) {
    const auto board = open();
    const std::string large = largeText(3'000'000);
    std::optional<PasteboardSnapshot> saved;
    {
        const auto peer = copy({{"UTF8_STRING", "UTF8_STRING", 8, large}});
        saved = board->snapshot();
    }
    ASSERT_TRUE(saved);
    board->restore(*saved);

    Requestor hoarder(server);
    for (int i = 0; i < 100; ++i) {
        hoarder.ask("UTF8_STRING", "P" + std::to_string(i));
        ASSERT_NE(hoarder.answer(), "");
        Requestor gone(server);
        gone.ask("UTF8_STRING", "P");
    }
    // However busy the machine is.
    EXPECT_EQ(read(*open({.text = real::defaultDeadline})), toUtf16(large));

    Requestor slow(server);
    slow.ask("UTF8_STRING", "P");
    ASSERT_EQ(slow.answer(), "P");
    // What is under way is finished when the selection is another's already.
    const auto next = copy(textOffer(u"next"));
    EXPECT_EQ(read(*board), u"next");
    EXPECT_EQ(slow.value("P").size(), sizeof(std::uint32_t));
    std::string received;
    while (const auto event = slow.client().nextEvent(Requestor::deadline())) {
        const auto* property = reinterpret_cast<const xcb_property_notify_event_t*>(event.get());
        if ((event->response_type & 0x7F) != XCB_PROPERTY_NOTIFY ||
            property->atom != slow.atom("P") || property->state != XCB_PROPERTY_NEW_VALUE)
            continue;
        const std::string piece = slow.value("P");
        received += piece;
        if (piece.empty() && !received.empty())
            break;
    }
    EXPECT_TRUE(received == large);
}

TEST_F(X11PasteboardServing, PastesAreServedWhileTheCallerIsElsewhere) {
    const auto board = open();
    board->clearContents();
    ASSERT_TRUE(write(*board, u"served"));
    // Opened here: libXau cannot connect on several threads at once.
    const std::array others{open(), open(), open(), open()};
    std::array<std::future<int>, others.size()> programs;
    for (std::size_t i = 0; i < programs.size(); ++i)
        programs[i] = std::async(std::launch::async, [&other = *others[i]] {
            int served = 0;
            for (int paste = 0; paste < 50; ++paste)
                served += read(other) == u"served" ? 1 : 0;
            return served;
        });
    for (auto& program : programs)
        EXPECT_EQ(program.get(), 50);
}

} // namespace
} // namespace kelvora
