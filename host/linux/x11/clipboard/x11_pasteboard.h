// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/clipboard/clipboard_reader.h"
#include "host/linux/x11/clipboard/clipboard_thread.h"
#include "host/pasteboard.h"

#include <memory>

namespace kelvora {

/// The CLIPBOARD selection. It has one item. What is written here lives in this process; when the
/// object goes, contents that were restored are left to the session's clipboard manager if there is
/// one, which may take 1.5 seconds. One thread at a time.
class X11Pasteboard final : public Pasteboard {
public:
    /// `display` as in DISPLAY. Null when there is no such server or it has no XFIXES.
    [[nodiscard]] static std::unique_ptr<X11Pasteboard> create(const char* display,
                                                               const ClipboardLimits& limits = {});

    [[nodiscard]] std::int64_t changeCount() override;
    [[nodiscard]] std::optional<std::u16string> string(std::string_view type) override;
    bool setString(std::u16string_view text, std::string_view type) override;
    bool setMarker(std::u16string_view text) override;
    std::int64_t clearContents() override;
    [[nodiscard]] std::optional<PasteboardSnapshot> snapshot() override;
    void restore(PasteboardSnapshot items) override;

private:
    X11Pasteboard(std::unique_ptr<ClipboardThread> owner, std::unique_ptr<ClipboardReader> reader);

    [[nodiscard]] ClipboardOwner::State ownState();

    std::unique_ptr<ClipboardThread> owner_;
    std::unique_ptr<ClipboardReader> reader_;
};

} // namespace kelvora
