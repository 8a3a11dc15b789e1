// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

/// Texts to texts. Keys and values are NFC and not empty, so that comparing units compares by
/// canonical equivalence. A key keeps the value it was first given.
class TokenMap {
public:
    void reserve(std::size_t entries);

    /// False when the key was there already; then nothing changes.
    bool insert(std::u16string_view key, std::u16string_view value);

    /// The value of the key, valid until the next insertion.
    [[nodiscard]] std::optional<std::u16string_view> find(std::u16string_view key) const;

private:
    struct Slice {
        std::uint32_t offset = 0;
        std::uint32_t length = 0;
    };
    struct Entry {
        Slice key;
        Slice value;
    };

    [[nodiscard]] std::u16string_view at(Slice slice) const;
    [[nodiscard]] std::size_t slotOf(std::u16string_view key) const;
    Slice store(std::u16string_view text);
    void rehash(std::size_t slotCount);

    std::u16string pool_; // all keys and values
    std::vector<Entry> entries_;
    std::vector<std::uint32_t> slots_; // open addressing; 0 is free, else an entry's index + 1
};

} // namespace kelvora
