// SPDX-License-Identifier: MIT
#pragma once

#include "core/text/encoding.h"
#include "host/linux/x11/clipboard/x11_pasteboard.h"
#include "tests/host/x11/clipboard_peer.h"
#include "tests/support/real_desktop/x_server.h"

#include <gtest/gtest.h>

namespace kelvora {

using Text = std::optional<std::u16string>;

inline std::string largeText(std::size_t size) {
    std::string text(size, 'x');
    for (std::size_t i = 0; i < size; ++i)
        text[i] = static_cast<char>('a' + i * 7 % 23);
    return text;
}

class X11PasteboardTest : public testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<X11Pasteboard> open(const ClipboardLimits& limits = {}) const {
        return X11Pasteboard::create(server.display().c_str(), limits);
    }
    [[nodiscard]] std::unique_ptr<ClipboardPeer> copy(std::vector<Offer> offers,
                                                      Manner manner = Manner::proper) const {
        return std::make_unique<ClipboardPeer>(server.display(), std::move(offers), manner);
    }
    [[nodiscard]] std::unique_ptr<ClipboardPeer> copy(const std::string& text) const {
        return copy({{"UTF8_STRING", "UTF8_STRING", 8, text}});
    }
    static Text read(Pasteboard& board) { return board.string(pasteboardType::string); }
    /// Takes the clipboard and puts a text there.
    static void write(Pasteboard& board, std::u16string_view text) {
        board.clearContents();
        EXPECT_TRUE(board.setString(text, pasteboardType::string));
    }

    real::XServer server;
};

} // namespace kelvora
