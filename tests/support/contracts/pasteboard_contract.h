// SPDX-License-Identifier: MIT
#pragma once

#include "host/pasteboard.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

namespace kelvora::contract {

/// A pasteboard, empty at first, and another program that copies and pastes.
class PasteboardRig {
public:
    virtual ~PasteboardRig() = default;

    [[nodiscard]] virtual Pasteboard& pasteboard() = 0;
    /// Runs `work` on a thread that may use the pasteboard, until it is done.
    virtual void onWorker(const std::function<void()>& work) = 0;
    /// The other program; called from within `work`.
    virtual void copyElsewhere(std::u16string_view text) = 0;
    [[nodiscard]] virtual std::optional<std::u16string> pasteElsewhere() = 0;
};

struct PasteboardRigFactory {
    std::string name;
    std::function<std::unique_ptr<PasteboardRig>()> make;

    friend void PrintTo(const PasteboardRigFactory& factory, std::ostream* stream) {
        *stream << factory.name;
    }
};

/// What every Pasteboard promises. Included and instantiated as the others.
class PasteboardContract : public testing::TestWithParam<PasteboardRigFactory> {
protected:
    using Text = std::optional<std::u16string>;

    [[nodiscard]] Text read() { return board.string(pasteboardType::string); }
    [[nodiscard]] bool write(std::u16string_view text) {
        return board.setString(text, pasteboardType::string);
    }

    std::unique_ptr<PasteboardRig> rig = GetParam().make();
    Pasteboard& board = rig->pasteboard();
};

TEST_P(PasteboardContract, WhatIsWrittenIsThereForEverybody) {
    rig->onWorker([&] {
        const std::int64_t before = board.changeCount();
        EXPECT_FALSE(write(u"not ours yet"));
        EXPECT_EQ(board.clearContents(), before + 1);
        EXPECT_EQ(read(), std::nullopt);
        EXPECT_TRUE(write(u"привет \U0001F600\r\n"));
        EXPECT_EQ(read(), u"привет \U0001F600\r\n");
        EXPECT_EQ(rig->pasteElsewhere(), u"привет \U0001F600\r\n");
        EXPECT_EQ(board.changeCount(), before + 1);
    });
}

TEST_P(PasteboardContract, AMarkerIsThereForNobodyElse) {
    rig->onWorker([&] {
        EXPECT_FALSE(board.setMarker(u"not ours yet"));
        const std::int64_t ours = board.clearContents();
        EXPECT_TRUE(board.setMarker(u"marker"));
        EXPECT_EQ(read(), u"marker");
        EXPECT_EQ(rig->pasteElsewhere(), std::nullopt);
        EXPECT_TRUE(write(u"text"));
        EXPECT_EQ(read(), u"text");
        EXPECT_EQ(rig->pasteElsewhere(), u"text");
        EXPECT_TRUE(board.setMarker(u"marker"));
        rig->copyElsewhere(u"marker"); // by chance: nobody can have got it from us
        EXPECT_EQ(board.changeCount(), ours + 1);
        EXPECT_EQ(rig->pasteElsewhere(), u"marker");
    });
}

TEST_P(PasteboardContract, AnothersCopyIsCountedAndTakesThePasteboard) {
    rig->onWorker([&] {
        const std::int64_t ours = board.clearContents();
        ASSERT_TRUE(write(u"sentinel"));
        rig->copyElsewhere(u"theirs");
        EXPECT_EQ(board.changeCount(), ours + 1);
        EXPECT_EQ(read(), u"theirs");
        EXPECT_FALSE(write(u"too late"));
        EXPECT_EQ(rig->pasteElsewhere(), u"theirs");
        rig->copyElsewhere(u"theirs"); // the same once more is a copy, too
        EXPECT_EQ(board.changeCount(), ours + 2);
    });
}

TEST_P(PasteboardContract, ASnapshotIsGivenBackWhole) {
    rig->onWorker([&] {
        rig->copyElsewhere(u"kept");
        const auto saved = board.snapshot();
        ASSERT_TRUE(saved);
        ASSERT_EQ(saved->size(), 1U);
        const std::int64_t ours = board.clearContents();
        EXPECT_TRUE(write(u"sentinel"));
        board.restore(*saved);
        EXPECT_EQ(board.changeCount(), ours + 1);
        EXPECT_EQ(read(), u"kept");
        EXPECT_EQ(rig->pasteElsewhere(), u"kept");

        const auto again = board.snapshot();
        ASSERT_TRUE(again);
        ASSERT_EQ(again->size(), 1U);
        ASSERT_EQ(again->front().data.size(), saved->front().data.size());
        for (std::size_t i = 0; i < saved->front().data.size(); ++i) {
            EXPECT_EQ(again->front().data[i].type, saved->front().data[i].type);
            EXPECT_EQ(again->front().data[i].encoding, saved->front().data[i].encoding);
            EXPECT_EQ(*again->front().data[i].bytes, *saved->front().data[i].bytes);
        }
    });
}

TEST_P(PasteboardContract, NothingIsRestoredAsNothing) {
    rig->onWorker([&] {
        const auto saved = board.snapshot();
        ASSERT_TRUE(saved);
        EXPECT_TRUE(saved->empty());
        const std::int64_t ours = board.clearContents();
        EXPECT_TRUE(write(u"sentinel"));
        board.restore(*saved);
        EXPECT_EQ(board.changeCount(), ours + 1);
        EXPECT_EQ(read(), std::nullopt);
        EXPECT_EQ(rig->pasteElsewhere(), std::nullopt);
    });
}

} // namespace kelvora::contract
