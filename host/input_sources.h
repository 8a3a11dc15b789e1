// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kelvora {

/// A layout's own key table: opaque bytes that only the desktop's KeyTranslator reads. Immutable,
/// so it may be shared between threads.
using KeyLayoutData = std::shared_ptr<const std::vector<std::byte>>;

/// One enabled input source (keyboard layout, input method) with the properties that the desktop
/// reports; each may be missing.
struct InputSource {
    std::optional<bool> isSelectCapable;
    /// Stable across restarts and changes of the list; what the settings store. UTF-8.
    std::optional<std::string> id;
    /// Display name, UTF-8.
    std::optional<std::string> localizedName;
    /// Null when the source is no plain keyboard layout.
    KeyLayoutData keyLayoutData;
};

/// The shape of the physical keyboard.
enum class PhysicalLayoutType { ansi, iso, jis };

/// The desktop's input sources. Main thread only. Every call but `knownSources()` answers from the
/// state at that moment: a change that another program made before the call is seen by it.
class InputSources {
public:
    virtual ~InputSources() = default;

    /// In the desktop's order; absent when the desktop cannot tell.
    [[nodiscard]] virtual std::optional<std::vector<InputSource>> enabledSources() = 0;
    /// The same from what the desktop has told so far, for somebody who looks again and again:
    /// while nothing has changed, nobody is asked.
    [[nodiscard]] virtual std::optional<std::vector<InputSource>> knownSources() {
        return enabledSources();
    }
    /// Absent when none is active or the desktop cannot tell.
    [[nodiscard]] virtual std::optional<InputSource> currentSource() = 0;
    /// Makes a source of `enabledSources()` the active one. True when it is active afterwards.
    [[nodiscard]] virtual bool select(const InputSource& source) = 0;
    /// The desktop's code for the keyboard in use, for KeyTranslator.
    [[nodiscard]] virtual std::uint32_t keyboardType() = 0;
};

} // namespace kelvora
