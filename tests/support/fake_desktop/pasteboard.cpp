// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/pasteboard.h"

#include "core/text/encoding.h"

#include <span>
#include <utility>

namespace kelvora::fake {

namespace {

std::string text(const PasteboardData& data) {
    return {reinterpret_cast<const char*>(data.bytes->data()), data.bytes->size()};
}

} // namespace

PasteboardData pasteboardData(std::string type, std::string_view bytes) {
    const auto raw = std::as_bytes(std::span(bytes));
    return {std::move(type), "",
            std::make_shared<const std::vector<std::byte>>(raw.begin(), raw.end())};
}

void Pasteboard::copy(PasteboardSnapshot items) {
    items_ = std::move(items);
    marker_.reset();
    isOurs_ = false;
    owner_ = Program::other;
    ++changeCount_;
}

void Pasteboard::copyText(std::u16string_view text, Program program) {
    copy({{{pasteboardData(std::string(pasteboardType::string), toUtf8(text))}}});
    owner_ = program;
}

std::vector<std::string> Pasteboard::contents() const {
    std::vector<std::string> lines;
    for (std::size_t item = 0; item < items_.size(); ++item) {
        for (const PasteboardData& data : items_[item].data) {
            lines.push_back(std::to_string(item + 1) + " " + data.type + ": " + text(data));
        }
    }
    return lines;
}

std::optional<std::u16string> Pasteboard::paste() {
    return marker_ ? std::nullopt : string(pasteboardType::string);
}

std::optional<std::u16string> Pasteboard::string(std::string_view type) {
    if (marker_) {
        return marker_;
    }
    if (isOwnerHanging && !isOurs_) {
        return std::nullopt;
    }
    for (const PasteboardItem& item : items_) {
        for (const PasteboardData& data : item.data) {
            if (data.type == type && (isOurs_ || !refusedTypes.contains(data.type))) {
                std::u16string read = toUtf16(text(data));
                if (onRead) {
                    onRead();
                }
                return read;
            }
        }
    }
    return std::nullopt;
}

bool Pasteboard::setString(std::u16string_view text, std::string_view type) {
    if (!isOurs_) {
        return false;
    }
    written_.emplace_back(text);
    marker_.reset();
    items_ = {{{pasteboardData(std::string(type), toUtf8(text))}}};
    return true;
}

bool Pasteboard::setMarker(std::u16string_view text) {
    if (!isOurs_) {
        return false;
    }
    written_.emplace_back(text);
    marker_ = text;
    return true;
}

std::int64_t Pasteboard::clearContents() {
    items_.clear();
    marker_.reset();
    isOurs_ = true;
    const std::int64_t count = ++changeCount_;
    if (onCleared) {
        onCleared();
    }
    return count;
}

std::optional<PasteboardSnapshot> Pasteboard::snapshot() {
    if (isOwnerHanging && !isOurs_) {
        return std::nullopt;
    }
    if (onSaving) {
        onSaving();
    }
    PasteboardSnapshot copy = items_;
    for (PasteboardItem& item : copy) {
        std::erase_if(item.data, [this](const PasteboardData& data) {
            return refusedTypes.contains(data.type);
        });
    }
    return copy;
}

void Pasteboard::restore(PasteboardSnapshot items) {
    clearContents();
    items_ = std::move(items);
    ++restoreCount_;
}

} // namespace kelvora::fake
