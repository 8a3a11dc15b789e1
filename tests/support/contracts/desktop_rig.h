// SPDX-License-Identifier: MIT
#pragma once

#include "host/desktop.h"

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace kelvora::contract {

/// A desktop under test with its user: US (active) and Russian layouts, an editor that has the
/// focus, and a second one. All calls come from the test's thread, which is the main thread.
class DesktopRig {
public:
    virtual ~DesktopRig() = default;

    [[nodiscard]] virtual Desktop services() = 0;

    // The user. Keys are those of a physical keyboard, not posted ones.
    virtual void press(KeyCode keyCode) = 0;
    virtual void release(KeyCode keyCode) = 0;
    virtual void click() = 0;
    virtual void focusOtherEditor() = 0;

    /// The whole text of the editor that had the focus first, or of the other one.
    [[nodiscard]] virtual std::u16string text() = 0;
    [[nodiscard]] virtual std::u16string otherText() = 0;

    /// Runs `work` on a thread that may post, serves the main thread until it is done.
    virtual void onWorker(const std::function<void()>& work) = 0;
    /// Serves the main thread until `condition` holds; false when it does not come to hold.
    [[nodiscard]] virtual bool becomes(const std::function<bool()>& condition) = 0;
    /// Serves the main thread for a while, long enough for whatever is under way to arrive.
    virtual void rest() = 0;

    void strike(KeyCode keyCode) {
        press(keyCode);
        release(keyCode);
    }
    [[nodiscard]] bool textBecomes(std::u16string_view expected) {
        return becomes([&] { return text() == expected; });
    }
    /// Makes the enabled layout at `index` active.
    [[nodiscard]] bool selectLayout(std::size_t index) {
        InputSources& sources = services().inputSources;
        const auto enabled = sources.enabledSources();
        return enabled && index < enabled->size() && sources.select(enabled->at(index));
    }
};

struct RigFactory {
    std::string name;
    std::function<std::unique_ptr<DesktopRig>()> make;

    friend void PrintTo(const RigFactory& factory, std::ostream* stream) {
        *stream << factory.name;
    }
};

/// The instantiation's name for a suite: that of its factory.
inline constexpr auto factoryName = [](const auto& suite) { return suite.param.name; };

/// Key codes of letters that the suites strike; the labels are those of a US board.
inline constexpr KeyCode keyQ = 12;
inline constexpr KeyCode keyW = 13;

} // namespace kelvora::contract
