// SPDX-License-Identifier: MIT
#pragma once

#include "core/text/encoding.h"
#include "host/pasteboard.h"

#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace kelvora::fake {

/// One type of an item.
[[nodiscard]] inline PasteboardData pasteboardData(std::string type, std::string_view bytes) {
    const auto raw = std::as_bytes(std::span(bytes));
    return {std::move(type), "",
            std::make_shared<const std::vector<std::byte>>(raw.begin(), raw.end())};
}

[[nodiscard]] inline PasteboardSnapshot textItem(std::u16string_view text) {
    return {{{pasteboardData(std::string(pasteboardType::string), toUtf8(text))}}};
}

/// The session's pasteboard, and the other programs that use it.
class Pasteboard final : public kelvora::Pasteboard {
public:
    enum class Program { focused, other };

    /// A program takes the pasteboard.
    void copy(PasteboardSnapshot items, Program program = Program::other) {
        items_ = std::move(items);
        marker_.reset();
        isOurs_ = false;
        owner_ = program;
        ++changeCount_;
    }
    void copyText(std::u16string_view text, Program program = Program::other) {
        copy(textItem(text), program);
    }
    [[nodiscard]] bool isOfFocusedProgram() const { return owner_ == Program::focused; }

    /// The owner does not answer.
    bool isOwnerHanging = false;
    /// Called when it was cleared, before anything is written.
    std::function<void()> onCleared;
    /// Called while its contents are saved.
    std::function<void()> onSaving;
    /// Called when its text was read.
    std::function<void()> onRead;

    /// What another program gets that pastes text.
    [[nodiscard]] std::optional<std::u16string> paste() {
        return marker_ ? std::nullopt : string(pasteboardType::string);
    }
    /// The texts and markers that were written here, in order, those of other programs not
    /// included.
    [[nodiscard]] const std::vector<std::u16string>& written() const { return written_; }
    [[nodiscard]] int restoreCount() const { return restoreCount_; }
    /// Each type of each item with its bytes: "1 text/html: <b>".
    [[nodiscard]] std::vector<std::string> contents() const {
        std::vector<std::string> lines;
        for (std::size_t item = 0; item < items_.size(); ++item)
            for (const PasteboardData& data : items_[item].data)
                lines.push_back(std::to_string(item + 1) + " " + data.type + ": " + text(data));
        return lines;
    }

    [[nodiscard]] std::int64_t changeCount() override { return changeCount_; }
    [[nodiscard]] std::optional<std::u16string> string(std::string_view type) override {
        if (marker_ || !isReadable())
            return marker_;
        for (const PasteboardItem& item : items_)
            for (const PasteboardData& data : item.data)
                if (data.type == type) {
                    std::u16string read = toUtf16(text(data));
                    if (onRead)
                        onRead();
                    return read;
                }
        return std::nullopt;
    }
    bool setString(std::u16string_view text, std::string_view type) override {
        return write(text, {{{pasteboardData(std::string(type), toUtf8(text))}}}, std::nullopt);
    }
    bool setMarker(std::u16string_view text) override {
        return write(text, {}, std::u16string(text));
    }
    std::int64_t clearContents() override {
        items_.clear();
        marker_.reset();
        isOurs_ = true;
        const std::int64_t count = ++changeCount_;
        if (onCleared)
            onCleared();
        return count;
    }
    [[nodiscard]] std::optional<PasteboardSnapshot> snapshot() override {
        if (!isReadable())
            return std::nullopt;
        if (onSaving)
            onSaving();
        return items_;
    }
    void restore(PasteboardSnapshot items) override {
        clearContents();
        items_ = std::move(items);
        ++restoreCount_;
    }

private:
    [[nodiscard]] static std::string text(const PasteboardData& data) {
        return {reinterpret_cast<const char*>(data.bytes->data()), data.bytes->size()};
    }
    [[nodiscard]] bool isReadable() const { return isOurs_ || !isOwnerHanging; }
    bool write(std::u16string_view text, PasteboardSnapshot items,
               std::optional<std::u16string> marker) {
        if (isOurs_) {
            written_.emplace_back(text);
            items_ = std::move(items);
            marker_ = std::move(marker);
        }
        return isOurs_;
    }

    PasteboardSnapshot items_;
    std::int64_t changeCount_ = 40;
    bool isOurs_ = false;
    Program owner_ = Program::other; ///< unless it is ours
    std::optional<std::u16string> marker_;
    std::vector<std::u16string> written_;
    int restoreCount_ = 0;
};

} // namespace kelvora::fake
