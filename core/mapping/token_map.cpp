// SPDX-License-Identifier: MIT
#include "core/mapping/token_map.h"

#include <algorithm>
#include <bit>

namespace kelvora {
namespace {

std::size_t hashOf(std::u16string_view text) {
    std::uint64_t hash = 0;
    for (const char16_t unit : text) {
        hash = (hash ^ unit) * 0x9E3779B97F4A7C15u; // golden ratio, spreads into the high bits
    }
    return static_cast<std::size_t>(hash >> 32);
}

} // namespace

void TokenMap::reserve(std::size_t entries) {
    entries_.reserve(entries);
    pool_.reserve(2 * entries);
    const std::size_t needed = std::bit_ceil(std::max<std::size_t>(2 * entries, 16));
    if (needed > slots_.size()) {
        rehash(needed);
    }
}

bool TokenMap::insert(std::u16string_view key, std::u16string_view value) {
    if (slots_.size() < 2 * (entries_.size() + 1)) {
        reserve(2 * (entries_.size() + 1));
    }
    const std::size_t slot = slotOf(key);
    if (slots_[slot] != 0) {
        return false;
    }
    const Slice storedKey = store(key);
    entries_.push_back({storedKey, key == value ? storedKey : store(value)});
    slots_[slot] = static_cast<std::uint32_t>(entries_.size());
    return true;
}

std::optional<std::u16string_view> TokenMap::find(std::u16string_view key) const {
    if (entries_.empty()) {
        return std::nullopt;
    }
    const std::uint32_t found = slots_[slotOf(key)];
    if (found == 0) {
        return std::nullopt;
    }
    return at(entries_[found - 1].value);
}

std::u16string_view TokenMap::at(Slice slice) const {
    return std::u16string_view(pool_).substr(slice.offset, slice.length);
}

/// The slot that holds the key, or the free one where it belongs.
std::size_t TokenMap::slotOf(std::u16string_view key) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = hashOf(key) & mask;
    while (slots_[slot] != 0 && at(entries_[slots_[slot] - 1].key) != key) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

TokenMap::Slice TokenMap::store(std::u16string_view text) {
    const Slice slice{static_cast<std::uint32_t>(pool_.size()),
                      static_cast<std::uint32_t>(text.size())};
    pool_.append(text);
    return slice;
}

void TokenMap::rehash(std::size_t slotCount) {
    slots_.assign(slotCount, 0);
    for (std::size_t index = 0; index < entries_.size(); ++index) {
        slots_[slotOf(at(entries_[index].key))] = static_cast<std::uint32_t>(index + 1);
    }
}

} // namespace kelvora
