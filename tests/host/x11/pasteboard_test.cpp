// SPDX-License-Identifier: MIT
#include "tests/host/x11/pasteboard_fixture.h"
#include "tests/support/contracts/pasteboard_contract.h"
#include "tests/support/real_desktop/wait_until.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <span>
#include <utility>

namespace kelvora {
namespace {

using namespace std::chrono_literals;

constexpr ClipboardLimits shortLimits{.bytes = 4UL * 1024 * 1024,
                                      .snapshot = 600ms,
                                      .standstill = 150ms,
                                      .text = 100ms,
                                      .textAgain = 5ms};

class PeerRig final : public contract::PasteboardRig {
public:
    [[nodiscard]] Pasteboard& pasteboard() override { return *pasteboard_; }
    void onWorker(const std::function<void()>& work) override {
        std::async(std::launch::async, work).get();
    }
    void copyElsewhere(std::u16string_view text) override {
        auto peer = std::make_unique<ClipboardPeer>(server_.display(), textOffer(text));
        peer->own("CLIPBOARD");
        peer_ = std::move(peer);
    }
    [[nodiscard]] Text pasteElsewhere() override {
        return ClipboardReader::create(server_.display().c_str(), {})->text();
    }

private:
    real::XServer server_;
    std::unique_ptr<X11Pasteboard> pasteboard_ = X11Pasteboard::create(server_.display().c_str());
    std::unique_ptr<ClipboardPeer> peer_;
};

TEST_F(X11PasteboardTest, EveryTypeIsGivenBackByteForByte) {
    const std::string large = largeText(20UL * 1024 * 1024);
    const auto board = open();
    const auto peer = copy({{"image/png", "image/png", 8, std::string("\x89PNG\0\r\n\xFF", 8)},
                            {"_SHORTS", "INTEGER", 16, std::string("\1\0\2\0\xFF\xFF", 6)},
                            {"_LONGS", "ATOM", 32, std::string("\1\0\0\0\2\0\0\0", 8)},
                            {"odd \xFF name", "odd \xFE type", 8, "bytes"},
                            {"_EMPTY", "_EMPTY", 8, ""},
                            {"_REFUSED", "_REFUSED", 8, "", true},
                            {"_LARGE", "_LARGE", 32, large}});
    const auto saved = board->snapshot();
    ASSERT_TRUE(saved);
    board->clearContents();
    EXPECT_TRUE(write(*board, u"sentinel"));
    board->restore(*saved);

    const auto given = open()->snapshot();
    ASSERT_TRUE(given);
    ASSERT_EQ(given->size(), 1U);
    const std::vector<std::pair<std::string, std::string>> expected{
        {"image/png", "8 image/png"},         {"_SHORTS", "16 INTEGER"}, {"_LONGS", "32 ATOM"},
        {"odd \xFF name", "8 odd \xFE type"}, {"_EMPTY", "8 _EMPTY"},    {"_LARGE", "32 _LARGE"}};
    std::vector<std::pair<std::string, std::string>> found;
    for (const PasteboardData& data : given->front().data)
        found.emplace_back(data.type, data.encoding);
    EXPECT_EQ(found, expected);
    for (std::size_t i = 0; i < given->front().data.size(); ++i)
        EXPECT_EQ(*given->front().data[i].bytes, *saved->front().data[i].bytes) << i;
    const auto& last = *given->front().data.back().bytes;
    EXPECT_TRUE(std::ranges::equal(std::as_bytes(std::span(large)), last));
}

TEST_F(X11PasteboardTest, OwnersWithoutMannersCostLittleAndHarmNothing) {
    struct Case {
        const char* name;
        Manner manner;
        bool isEmptyAfterwards;
        int maximumRequests;
    };
    const Case cases[]{
        {"never answers", Manner::silent, false, 2},
        {"answers the list only", Manner::listOnly, false, 3},
        {"stops midway", Manner::stopsMidway, false, 3},
        {"is gone midway", Manner::vanishes, true, 3},
        {"never ends", Manner::neverEnds, false, 30},
        {"changes the format", Manner::changesFormat, false, 30},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const auto board = open(shortLimits);
        const auto peer =
            copy({{"UTF8_STRING", "UTF8_STRING", 8, largeText(200'000)}}, each.manner);
        const std::int64_t count = board->changeCount();
        const auto saved = board->snapshot();
        EXPECT_EQ(saved.has_value(), each.isEmptyAfterwards);
        for (int poll = 0; poll < 20; ++poll)
            EXPECT_EQ(read(*board), std::nullopt);
        EXPECT_LE(peer->requestCount(), each.maximumRequests) << "it is asked again and again";
        EXPECT_EQ(board->changeCount(), count);

        EXPECT_EQ(board->clearContents(), count + 1);
        EXPECT_TRUE(write(*board, u"still here"));
        EXPECT_EQ(read(*open()), u"still here");
        const auto next = copy(textOffer(u"next"));
        EXPECT_EQ(read(*board), u"next");
    }
}

TEST_F(X11PasteboardTest, ALateTextIsTakenWithoutAskingAgain) {
    const auto board = open(shortLimits);
    const auto peer =
        copy({{"text/plain;charset=utf-8", "UTF8_STRING", 8, "поздно"}}, Manner::silent);
    EXPECT_EQ(read(*board), std::nullopt);
    peer->answerNow();
    Text text;
    EXPECT_TRUE(real::waitUntil([&] { return (text = read(*board)).has_value(); }));
    EXPECT_EQ(text, u"поздно");
    EXPECT_EQ(peer->requestCount(), 2); // UTF8_STRING is refused, then this one
}

TEST_F(X11PasteboardTest, TextIsReadInWhateverFormItComes) {
    struct Case {
        std::vector<Offer> offers;
        Text text;
    };
    const Case cases[]{
        {{{"STRING", "STRING", 8, "caf\xE9"}}, u"café"},
        {{{"UTF8_STRING", "STRING", 8, "caf\xE9"}}, u"café"},
        {{{"UTF8_STRING", "UTF8_STRING", 8, std::string("nul\0", 4)}}, u"nul"},
        {{{"UTF8_STRING", "UTF8_STRING", 8, "bad \xFF"}}, u"bad \uFFFD"},
        {{{"UTF8_STRING", "INTEGER", 32, "abcd"}, {"STRING", "STRING", 8, "ok"}}, u"ok"},
        {{{"UTF8_STRING", "UTF8_STRING", 8, ""}}, u""},
        {{{"image/png", "image/png", 8, "x"}}, std::nullopt},
    };
    const auto board = open();
    for (const Case& each : cases) {
        const auto peer = copy(each.offers);
        EXPECT_EQ(read(*board), each.text) << each.offers.front().bytes;
    }
}

TEST_F(X11PasteboardTest, AManagersEchoIsNoCopy) {
    const auto board = open();
    const std::int64_t before = board->changeCount();

    // A manager that ignores the mark: it fetches what is new and takes it over.
    std::unique_ptr<ClipboardPeer> takeover;
    std::atomic<int> changes = 0;
    const auto fetching = ClipboardReader::create(server.display().c_str(), {});
    ClipboardPeer manager(server.display(), {});
    manager.setOnTaken([&] {
        if (changes == 0)
            takeover = copy(textOffer(fetching->text().value_or(u"nothing")));
        ++changes;
    });
    manager.own("_MANAGER");
    board->clearContents();
    EXPECT_TRUE(write(*board, u"sentinel"));
    EXPECT_TRUE(real::waitUntil([&] { return changes > 0; }));
    EXPECT_EQ(board->changeCount(), before + 1);
    EXPECT_EQ(read(*board), u"sentinel");
    EXPECT_EQ(board->changeCount(), before + 1);

    // Once more the same is an echo of the echo; another text is a copy.
    const auto again = copy(textOffer(u"sentinel"));
    EXPECT_EQ(board->changeCount(), before + 1);
    const auto other = copy(textOffer(u"copied"));
    EXPECT_EQ(board->changeCount(), before + 2);
    EXPECT_EQ(read(*board), u"copied");
    board->restore({{}});
    EXPECT_EQ(board->changeCount(), before + 3);
    EXPECT_EQ(read(*board), std::nullopt);
}

TEST_F(X11PasteboardTest, WhatWasRestoredOutlivesTheProgram) {
    for (const bool isRestored : {true, false}) {
        auto board = open();
        std::optional<PasteboardSnapshot> saved;
        {
            const auto peer = copy({{"UTF8_STRING", "UTF8_STRING", 8, "kept"},
                                    {"image/png", "image/png", 8, largeText(400'000)}});
            saved = board->snapshot();
        }
        board->clearContents();
        EXPECT_TRUE(write(*board, u"in the middle of a conversion"));
        if (isRestored)
            board->restore(*saved);

        const auto store = open();
        ClipboardPeer manager(server.display(), {});
        manager.setOnSave(
            [&] { store->restore(store->snapshot().value_or(PasteboardSnapshot{})); });
        manager.own("CLIPBOARD_MANAGER");
        board.reset();
        EXPECT_EQ(manager.requestCount(), isRestored ? 1 : 0);
        EXPECT_EQ(read(*open()), isRestored ? Text(u"kept") : std::nullopt);
    }
    // A manager that hangs does not keep the program from ending.
    auto board = open();
    const auto peer = copy(textOffer(u"lost"));
    board->restore(board->snapshot().value_or(PasteboardSnapshot{}));
    ClipboardPeer manager(server.display(), {}, Manner::silent);
    manager.own("CLIPBOARD_MANAGER");
    board.reset();
    EXPECT_EQ(manager.requestCount(), 1);
}

TEST_F(X11PasteboardTest, AServerThatIsGoneIsSurvived) {
    const auto board = open();
    board->clearContents();
    ASSERT_TRUE(write(*board, u"text"));
    server.kill();
    static_cast<void>(board->changeCount());
    EXPECT_EQ(board->snapshot(), std::nullopt);
    EXPECT_EQ(read(*board), std::nullopt);
    board->clearContents();
    EXPECT_FALSE(write(*board, u"text"));
    board->restore({});
    EXPECT_EQ(open(), nullptr);
}

} // namespace

namespace contract {

INSTANTIATE_TEST_SUITE_P(Each, PasteboardContract,
                         testing::Values(PasteboardRigFactory{
                             "X11", [] { return std::make_unique<PeerRig>(); }}),
                         [](const auto& suite) { return suite.param.name; });

} // namespace contract
} // namespace kelvora
