// SPDX-License-Identifier: MIT
#include "tests/host/x11/pasteboard_fixture.h"
#include "tests/support/contracts/pasteboard_contract.h"
#include "tests/support/real_desktop/wait_until.h"

#include <future>
#include <span>

namespace kelvora {
namespace {

using namespace std::chrono_literals;

constexpr ClipboardLimits shortLimits{.bytes = 4UL * 1024 * 1024,
                                      .snapshot = 600ms,
                                      .standstill = 150ms,
                                      .text = 100ms,
                                      .textAgain = 5ms};

TEST_F(X11PasteboardTest, EveryTypeIsGivenBackByteForByte) {
    const std::vector<Offer> offers{{"image/png", "image/png", 8, {"\x89PNG\0\r\n\xFF", 8}},
                                    {"_SHORTS", "INTEGER", 16, {"\1\0\2\0\xFF\xFF", 6}},
                                    {"odd \xFF name", "odd \xFE type", 8, "bytes"},
                                    {"_EMPTY", "_EMPTY", 8, ""},
                                    {"_LARGE", "_LARGE", 32, largeText(20UL * 1024 * 1024)},
                                    {"_REFUSED", "_REFUSED", 0, ""}};
    const auto board = open();
    const auto peer = copy(offers);
    const auto saved = board->snapshot();
    ASSERT_TRUE(saved);
    write(*board, u"sentinel");
    board->restore(*saved);

    const auto given = open()->snapshot();
    ASSERT_TRUE(given && given->size() == 1U);
    const auto& data = given->front().data;
    ASSERT_EQ(data.size(), offers.size() - 1);
    for (std::size_t i = 0; i < data.size(); ++i) {
        EXPECT_EQ(data[i].type, offers[i].target);
        EXPECT_EQ(data[i].encoding, std::to_string(offers[i].format) + " " + offers[i].type);
        EXPECT_TRUE(std::ranges::equal(std::as_bytes(std::span(offers[i].bytes)), *data[i].bytes));
    }
}

TEST_F(X11PasteboardTest, OwnersWithoutMannersCostLittleAndHarmNothing) {
    const struct {
        const char* name;
        Manner manner;
        bool isEmptyAfterwards;
        int maximumRequests;
    } cases[]{
        {"never answers", Manner::silent, false, 2},
        {"stops midway", Manner::stopsMidway, false, 3},
        {"is gone midway", Manner::vanishes, true, 3},
        {"never ends", Manner::neverEnds, false, 30},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        const auto board = open(shortLimits);
        const auto peer =
            copy({{"UTF8_STRING", "UTF8_STRING", 8, largeText(200'000)}}, each.manner);
        const std::int64_t count = board->changeCount();
        EXPECT_EQ(board->snapshot().has_value(), each.isEmptyAfterwards);
        for (int poll = 0; poll < 20; ++poll)
            EXPECT_EQ(read(*board), std::nullopt);
        EXPECT_LE(peer->requestCount(), each.maximumRequests) << "it is asked again and again";
        EXPECT_EQ(board->changeCount(), count);
        write(*board, u"still here");
        EXPECT_EQ(read(*open()), u"still here");
        const auto next = copy("next");
        EXPECT_EQ(read(*board), u"next");
    }
}

TEST_F(X11PasteboardTest, TextIsReadInWhateverFormAndWheneverItComes) {
    const std::pair<std::vector<Offer>, Text> cases[]{
        {{{"STRING", "STRING", 8, "caf\xE9"}}, u"café"},
        {{{"UTF8_STRING", "STRING", 8, "caf\xE9"}}, u"café"},
        {{{"UTF8_STRING", "INTEGER", 32, "abcd"}, {"STRING", "STRING", 8, "ok"}}, u"ok"},
        {{{"image/png", "image/png", 8, "x"}}, std::nullopt},
    };
    const auto board = open(shortLimits);
    for (const auto& [offers, text] : cases) {
        const auto peer = copy(offers);
        EXPECT_TRUE(real::waitUntil([&] { return read(*board) == text; })) << offers[0].target;
    }
    const auto late =
        copy({{"text/plain;charset=utf-8", "UTF8_STRING", 8, "поздно"}}, Manner::silent);
    EXPECT_EQ(read(*board), std::nullopt);
    late->answerNow();
    EXPECT_TRUE(real::waitUntil([&] { return read(*board) == u"поздно"; }));
    EXPECT_EQ(late->requestCount(), 2); // UTF8_STRING is refused, then this one
}

TEST_F(X11PasteboardTest, AManagersEchoIsNoCopy) {
    const auto board = open();
    const std::int64_t before = board->changeCount();
    // A manager that ignores the mark: it fetches what is new and takes it over.
    std::unique_ptr<ClipboardPeer> takeover;
    std::atomic<int> changes = 0;
    const auto fetching = ClipboardReader::create(server.display().c_str(), {});
    const auto takeOver = [&] {
        if (changes++ == 0)
            takeover = copy(toUtf8(fetching->text().value_or(u"nothing")));
    };
    const ClipboardPeer manager(server.display(), {}, Manner::proper, "_MANAGER",
                                {.onTaken = takeOver, .onSave = {}});
    write(*board, u"sentinel");
    EXPECT_TRUE(real::waitUntil([&] { return changes > 1; })); // its own claim is told, too
    EXPECT_EQ(board->changeCount(), before + 1);
    EXPECT_EQ(read(*board), u"sentinel");
    // Once more the same is an echo of the echo; another text is a copy.
    const auto again = copy("sentinel");
    EXPECT_EQ(board->changeCount(), before + 1);
    const auto other = copy("copied");
    EXPECT_EQ(board->changeCount(), before + 2);
    EXPECT_EQ(read(*board), u"copied");
}

TEST_F(X11PasteboardTest, WhatWasRestoredOutlivesTheProgram) {
    for (const bool isRestored : {true, false}) {
        auto board = open();
        {
            const auto peer = copy({{"UTF8_STRING", "UTF8_STRING", 8, "kept"},
                                    {"image/png", "image/png", 8, largeText(400'000)}});
            const auto saved = board->snapshot();
            write(*board, u"in the middle of a conversion");
            if (isRestored)
                board->restore(*saved);
        }
        const auto store = open();
        const auto save = [&] { store->restore(store->snapshot().value()); };
        const ClipboardPeer manager(server.display(), {}, Manner::proper, "CLIPBOARD_MANAGER",
                                    {.onTaken = {}, .onSave = save});
        board.reset();
        EXPECT_EQ(read(*open()), isRestored ? Text(u"kept") : std::nullopt);
    }
    // A manager that hangs does not keep the program from ending.
    auto board = open();
    const auto peer = copy("lost");
    board->restore(board->snapshot().value());
    const ClipboardPeer manager(server.display(), {}, Manner::silent, "CLIPBOARD_MANAGER");
    board.reset();
    EXPECT_EQ(manager.requestCount(), 1);
}

class PeerRig final : public contract::PasteboardRig {
public:
    [[nodiscard]] Pasteboard& pasteboard() override { return *pasteboard_; }
    void onWorker(const std::function<void()>& work) override {
        std::async(std::launch::async, work).get();
    }
    void copyElsewhere(std::u16string_view text) override {
        peer_ = std::make_unique<ClipboardPeer>(
            server_.display(), std::vector<Offer>{{"UTF8_STRING", "UTF8_STRING", 8, toUtf8(text)}});
    }
    [[nodiscard]] Text pasteElsewhere() override {
        return ClipboardReader::create(server_.display().c_str(), {})->text();
    }

private:
    real::XServer server_;
    std::unique_ptr<X11Pasteboard> pasteboard_ = X11Pasteboard::create(server_.display().c_str());
    std::unique_ptr<ClipboardPeer> peer_;
};

} // namespace

namespace contract {

INSTANTIATE_TEST_SUITE_P(Each, PasteboardContract,
                         testing::Values(PasteboardRigFactory{
                             "X11", [] { return std::make_unique<PeerRig>(); }}),
                         [](const auto& suite) { return suite.param.name; });

} // namespace contract
} // namespace kelvora
