// SPDX-License-Identifier: MIT
#pragma once

#include "host/pasteboard.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace kelvora::fake {

/// The session's pasteboard, and the other programs that use it.
class Pasteboard final : public kelvora::Pasteboard {
public:
    enum class Program { focused, other };

    /// A program takes the pasteboard.
    void copy(PasteboardSnapshot items);
    void copyText(std::u16string_view text, Program program = Program::other);
    [[nodiscard]] bool isOfFocusedProgram() const { return owner_ == Program::focused; }

    /// Types that owners name and then refuse.
    std::set<std::string> refusedTypes;
    /// The owner does not answer.
    bool isOwnerHanging = false;
    /// Called when it was cleared, before anything is written.
    std::function<void()> onCleared;
    /// Called while its contents are saved.
    std::function<void()> onSaving;
    /// Called when its text was read.
    std::function<void()> onRead;

    /// What another program gets that pastes text.
    [[nodiscard]] std::optional<std::u16string> paste();
    /// The texts and markers that were written here, in order, those of other programs not
    /// included.
    [[nodiscard]] const std::vector<std::u16string>& written() const { return written_; }
    [[nodiscard]] int restoreCount() const { return restoreCount_; }
    /// Each type of each item with its bytes: "1 text/html: <b>".
    [[nodiscard]] std::vector<std::string> contents() const;

    [[nodiscard]] std::int64_t changeCount() override { return changeCount_; }
    [[nodiscard]] std::optional<std::u16string> string(std::string_view type) override;
    bool setString(std::u16string_view text, std::string_view type) override;
    bool setMarker(std::u16string_view text) override;
    std::int64_t clearContents() override;
    [[nodiscard]] std::optional<PasteboardSnapshot> snapshot() override;
    void restore(PasteboardSnapshot items) override;

private:
    PasteboardSnapshot items_;
    std::int64_t changeCount_ = 40;
    bool isOurs_ = false;
    Program owner_ = Program::other; ///< unless it is ours
    std::optional<std::u16string> marker_;
    std::vector<std::u16string> written_;
    int restoreCount_ = 0;
};

/// One type of an item.
[[nodiscard]] PasteboardData pasteboardData(std::string type, std::string_view bytes);

} // namespace kelvora::fake
