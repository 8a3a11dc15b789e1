// SPDX-License-Identifier: MIT
#include "tests/host/x11/pasteboard_fixture.h"
#include "tests/support/real_desktop/wait_until.h"

#include <map>
#include <sstream>

namespace kelvora {
namespace {

using X11PasteboardServing = X11PasteboardTest;

/// A program that asks for single things, into the property "GET".
class Requestor {
public:
    explicit Requestor(const real::XServer& server)
        : client_(ClipboardClient::create(server.display().c_str())) {}

    [[nodiscard]] ClipboardClient& client() { return *client_; }
    [[nodiscard]] xcb_atom_t atom(std::string_view name) {
        return internAtoms(client_->connection(), std::array{name}).front();
    }
    void ask(std::string_view target, std::string_view property = "GET",
             xcb_timestamp_t time = XCB_CURRENT_TIME) {
        xcb_convert_selection(client_->connection(), client_->window(), atom("CLIPBOARD"),
                              atom(target), property.empty() ? xcb_atom_t{} : atom(property), time);
        xcb_flush(client_->connection());
    }
    /// The bytes that come as an answer; "refused" when it is one.
    [[nodiscard]] std::string answer(std::string_view property = "GET") {
        const auto deadline = ClipboardClient::Clock::now() + real::defaultDeadline;
        while (const auto event = client_->nextEvent(deadline)) {
            const auto* notify = reinterpret_cast<const xcb_selection_notify_event_t*>(event.get());
            if ((event->response_type & 0x7F) == XCB_SELECTION_NOTIFY)
                return notify->property == atom(property) ? value(property) : "refused";
        }
        return "no answer";
    }
    /// Takes it away.
    [[nodiscard]] std::string value(std::string_view property = "GET") {
        const XcbPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            client_->connection(),
            xcb_get_property(client_->connection(), 1, client_->window(), atom(property),
                             XCB_GET_PROPERTY_TYPE_ANY, 0, 1 << 20),
            nullptr));
        return {static_cast<const char*>(xcb_get_property_value(reply.get())),
                static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
    }
    [[nodiscard]] std::string get(std::string_view target) {
        ask(target);
        return answer();
    }
    void takeFocus() {
        xcb_map_window(client_->connection(), client_->window());
        xcb_set_input_focus(client_->connection(), XCB_INPUT_FOCUS_NONE, client_->window(),
                            XCB_CURRENT_TIME);
        static_cast<void>(client_->selectionOwner(XCB_ATOM_PRIMARY)); // it is done then
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
    requestor.ask("UTF8_STRING"); // in between: the text is waited for
    EXPECT_TRUE(board->setString(u"né", pasteboardType::string));
    EXPECT_EQ(requestor.answer(), "né");
    requestor.ask("UTF8_STRING", "GET", *before);
    EXPECT_EQ(requestor.answer(), "refused") << "from before the claim";
    for (const auto& [target, value] : {std::pair{"STRING", "n\xE9"},
                                        {"text/plain;charset=utf-8", "né"},
                                        {"x-kde-passwordManagerHint", "secret"},
                                        {"SAVE_TARGETS", "refused"},
                                        {"image/png", "refused"}})
        EXPECT_EQ(requestor.get(target), value) << target;
    requestor.ask("STRING", ""); // a client from before ICCCM
    EXPECT_EQ(requestor.answer("STRING"), "n\xE9");

    const std::array<std::string_view, 4> pairs{"TEXT", "P1", "image/png", "P2"};
    const auto atoms = internAtoms(requestor.client().connection(), pairs);
    xcb_change_property(requestor.client().connection(), XCB_PROP_MODE_REPLACE,
                        requestor.client().window(), requestor.atom("GET"), XCB_ATOM_ATOM, 32, 4,
                        atoms.data());
    const xcb_atom_t answered[]{atoms[0], atoms[1], atoms[2], XCB_ATOM_NONE};
    EXPECT_EQ(requestor.get("MULTIPLE"),
              std::string_view(reinterpret_cast<const char*>(answered), sizeof answered));
    EXPECT_EQ(requestor.value("P1"), "n\xE9");
}

TEST_F(X11PasteboardServing, WhatIsThereForAMomentIsHiddenFromWhoeverFetchesUnasked) {
    std::map<char, Requestor> programs; // the application, a manager, one that polls, a helper
    for (const char name : std::string("amph"))
        programs.try_emplace(name, server);
    const auto board = open();
    // "1": that is written; "restored": what was there before is put back; "@a": the application
    // gets the focus; "a1": it fetches the text, and gets that, or "-".
    std::istringstream steps("@a 1 m1 a1 restored pk ak " // nothing is known of them
                             "2 m- p- a2 "                // got what was pasted, or restored
                             "@p p2 @a restored "         // somebody pastes there
                             "3 m- h3 restored "          // for one that does not fetch it
                             "4 h4 m4");                  // may be such a helper, too
    for (std::string step; steps >> step;) {
        SCOPED_TRACE(step);
        if (step == "restored")
            board->restore(
                {{{{"UTF8_STRING", "8 UTF8_STRING",
                    std::make_shared<const std::vector<std::byte>>(1, std::byte{'k'})}}}});
        else if (step.size() == 1)
            write(*board, toUtf16(step));
        else if (step[0] == '@')
            programs.at(step[1]).takeFocus();
        else
            EXPECT_EQ(programs.at(step[0]).get("UTF8_STRING"),
                      step[1] == '-' ? "refused" : step.substr(1));
    }
    EXPECT_EQ(programs.at('m').get("x-kde-passwordManagerHint"), "secret");
    board->clearContents();
    EXPECT_TRUE(board->setMarker(u"marker"));
    EXPECT_EQ(programs.at('a').get("UTF8_STRING"), "refused");
    EXPECT_EQ(programs.at('a').get("application/x-kelvora-marker"), "");
}

TEST_F(X11PasteboardServing, ARequestorThatHangsHoldsUpNobodyAndGetsEverything) {
    const auto board = open();
    const std::string large = largeText(3'000'000);
    {
        const auto peer = copy(large);
        board->restore(board->snapshot().value());
    }
    Requestor slow(server);
    EXPECT_EQ(slow.get("UTF8_STRING").size(), sizeof(std::uint32_t)) << "announced";
    for (int i = 0; i < 100; ++i)
        Requestor(server).ask("UTF8_STRING"); // and is gone
    // However busy the machine is.
    EXPECT_EQ(read(*open({.text = real::defaultDeadline})), toUtf16(large));
    // What is under way is finished when the selection is another's already.
    const auto next = copy("next");
    EXPECT_EQ(read(*board), u"next");
    std::string received;
    EXPECT_TRUE(real::waitUntil([&] {
        received += slow.value();
        return received.size() >= large.size();
    }));
    EXPECT_TRUE(received == large);
}

} // namespace
} // namespace kelvora
