// SPDX-License-Identifier: MIT
#include "host/linux/x11/clipboard/x11_pasteboard.h"

#include "host/linux/x11/clipboard/clipboard_contents.h"

#include <algorithm>
#include <utility>

namespace kelvora {
namespace {

/// Claims that come faster than they can be looked at are not a manager's.
constexpr int maximumLooks = 3;

} // namespace

std::unique_ptr<X11Pasteboard> X11Pasteboard::create(const char* display,
                                                     const ClipboardLimits& limits) {
    std::unique_ptr<ClipboardReader> reader = ClipboardReader::create(display, limits);
    std::unique_ptr<ClipboardOwner> owner = ClipboardOwner::create(display);
    if (!reader || !owner)
        return nullptr;
    std::unique_ptr<ClipboardThread> thread = ClipboardThread::create(std::move(owner));
    if (!thread)
        return nullptr;
    return std::unique_ptr<X11Pasteboard>(new X11Pasteboard(std::move(thread), std::move(reader)));
}

X11Pasteboard::X11Pasteboard(std::unique_ptr<ClipboardThread> owner,
                             std::unique_ptr<ClipboardReader> reader)
    : owner_(std::move(owner)), reader_(std::move(reader)) {}

std::int64_t X11Pasteboard::changeCount() {
    ClipboardOwner::State state = ownState();
    for (int look = 1; state.possibleEcho; ++look) {
        const bool isEcho = look < maximumLooks && reader_->text() == state.possibleEcho->text;
        owner_->perform(
            [&](ClipboardOwner& owner) { owner.decideEcho(state.possibleEcho->serial, isEcho); });
        state = ownState();
    }
    return state.changeCount;
}

std::optional<std::u16string> X11Pasteboard::string(std::string_view type) {
    if (type != pasteboardType::string)
        return std::nullopt;
    if (const auto contents = ownState().contents)
        return textOf(*contents);
    return reader_->text();
}

bool X11Pasteboard::setString(std::u16string_view text, std::string_view type) {
    if (type != pasteboardType::string)
        return false;
    ClipboardContents contents = contentsOf(reader_->connection(), secretText(text));
    contents.forWatchers =
        std::make_shared<const ClipboardContents>(contentsOf(reader_->connection(), markerData()));
    return owner_->perform([&](ClipboardOwner& owner) {
        return owner.write(std::move(contents), std::u16string(text));
    });
}

bool X11Pasteboard::setMarker(std::u16string_view text) {
    ClipboardContents contents = contentsOf(reader_->connection(), markerData());
    contents.marker = text;
    return owner_->perform(
        [&](ClipboardOwner& owner) { return owner.write(std::move(contents), {}); });
}

std::int64_t X11Pasteboard::clearContents() {
    return owner_->perform([](ClipboardOwner& owner) { return owner.claimEmpty(); });
}

std::optional<PasteboardSnapshot> X11Pasteboard::snapshot() {
    const auto contents = ownState().contents;
    if (!contents)
        return reader_->snapshot();
    PasteboardItem item;
    for (const ClipboardTarget& target : contents->targets)
        item.data.push_back(target.data);
    return PasteboardSnapshot{std::move(item)};
}

void X11Pasteboard::restore(PasteboardSnapshot items) {
    // The selection has one item: of a type that several items have, the first is given out.
    std::vector<PasteboardData> data;
    for (PasteboardItem& item : items)
        for (PasteboardData& each : item.data)
            if (std::ranges::find(data, each.type, &PasteboardData::type) == data.end())
                data.push_back(std::move(each));
    ClipboardContents contents = contentsOf(reader_->connection(), std::move(data));
    owner_->perform([&](ClipboardOwner& owner) { owner.claim(std::move(contents)); });
}

ClipboardOwner::State X11Pasteboard::ownState() {
    return owner_->perform([](ClipboardOwner& owner) { return owner.state(); });
}

} // namespace kelvora
