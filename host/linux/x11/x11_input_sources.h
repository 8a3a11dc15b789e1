// SPDX-License-Identifier: MIT
#pragma once

#include "host/input_sources.h"
#include "host/linux/x11/x11_connection.h"
#include "host/linux/x11/x11_keymap.h"
#include "host/linux/xkb/layout_names.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace kelvora {

/// The XKB groups of an X server as input sources, in the order of the groups. Selecting one locks
/// its group. Every call but knownSources() asks the server for its state first, so that what other
/// programs changed before the call is seen. With the server gone everything is absent. Main thread
/// only.
class X11InputSources final : public InputSources {
public:
    /// Takes a connection of its own. Null when the server has no XKB.
    [[nodiscard]] static std::unique_ptr<X11InputSources> create(XcbConnectionPtr connection);

    [[nodiscard]] std::optional<std::vector<InputSource>> enabledSources() override;
    [[nodiscard]] std::optional<std::vector<InputSource>> knownSources() override;
    [[nodiscard]] std::optional<InputSource> currentSource() override;
    [[nodiscard]] bool select(const InputSource& source) override;
    /// One of keyboardTypeCode, from the XKB model; `unknown` with the server gone.
    [[nodiscard]] std::uint32_t keyboardType() override;

    /// False for good once the server is gone; fileDescriptor() is then readable all the time.
    [[nodiscard]] bool isConnected() const;
    /// Readable when the server has sent notices; then processEvents() is due.
    [[nodiscard]] int fileDescriptor() const;
    /// Takes the notices in; what they mean is found out when somebody asks.
    void processEvents();

private:
    X11InputSources(XcbConnectionPtr connection, std::unique_ptr<X11Keymap> keymap);

    [[nodiscard]] bool watchRulesNames();
    /// Brings everything up to date. False when the server is gone.
    [[nodiscard]] bool synchronize();
    /// Takes in what the notices so far were about.
    void catchUp();
    void refreshSources();
    void readRulesNames();
    /// Null when the keymap has no groups. After synchronize().
    [[nodiscard]] const InputSource* activeSource() const;

    XcbConnectionPtr connection_;
    std::unique_ptr<X11Keymap> keymap_;
    XkbContextPtr composeContext_;
    XkbComposeTablePtr composeTable_;
    LayoutRegistry registry_;
    RulesNames rules_;
    std::vector<InputSource> sources_; ///< one for each group of the keymap
    xcb_window_t rootWindow_ = 0;
    xcb_atom_t rulesNamesAtom_ = 0;
    bool areRulesStale_ = true;
    bool areSourcesStale_ = true;
};

} // namespace kelvora
