// SPDX-License-Identifier: MIT
#pragma once

#include "app/conversion/focused_text_converter.h"
#include "app/conversion/keyboard_guard.h"
#include "app/io/logger.h"
#include "app/io/system_event_poster.h"
#include "core/mapping/input_source_switcher.h"
#include "tests/support/fake_desktop/fake_desktop.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

namespace kelvora {

/// One path at a time, on a desktop in memory, called as from the worker.
class PathTest : public testing::Test {
protected:
    using Outcome = std::optional<ConversionOutcome>;
    using View = fake::Accessibility::View;

    /// Everything as at a new trigger, in the window that has the focus now.
    void beginCase() {
        keyboard.emplace(desktop.keyboard, desktop.windows.focusTarget());
        desktop.keyboard.posted.clear();
        desktop.accessibility.requests.clear();
    }
    [[nodiscard]] ConversionServices services() {
        return {poster,        *keyboard, desktop.accessibility, desktop.pasteboard,
                desktop.probe, logger};
    }

    /// A text with its caret as "|", or its selection as "[...]", into the focused field.
    void show(std::u16string text) {
        const std::size_t begin = text.find_first_of(u"|[");
        text.erase(begin, 1);
        const std::size_t end = text.find(u']');
        if (end != std::u16string::npos)
            text.erase(end, 1);
        field().set(text);
        field().select(begin, end == std::u16string::npos ? begin : end);
    }
    [[nodiscard]] std::u16string shown() {
        std::u16string text = field().text();
        const auto [begin, end] = field().range();
        return begin == end ? text.insert(begin, 1, u'|')
                            : text.insert(end, 1, u']').insert(begin, 1, u'[');
    }
    [[nodiscard]] fake::TextField& field() {
        return desktop.windows.field(desktop.windows.focusTarget().id);
    }

    /// The keys that were posted since the case began: text as it is, "<" a Backspace, "A", "C",
    /// "V" with Command, "s" Shift-Left, "r" Right.
    [[nodiscard]] std::u16string posted() const {
        constexpr struct {
            KeyCode keyCode;
            EventFlags flags;
            char16_t name;
        } names[] = {
            {51, 0, u'<'},       {0, 0x100000, u'A'},  {8, 0x100000, u'C'},
            {9, 0x100000, u'V'}, {123, 0x20000, u's'}, {124, 0, u'r'},
        };
        std::u16string keys;
        for (const auto& [time, direction, event] : desktop.keyboard.posted)
            if (direction == KeyDirection::down) {
                keys += event.text.view();
                for (const auto& [keyCode, flags, name] : names)
                    if (event.text.empty() && keyCode == event.keyCode && flags == event.flags)
                        keys += name;
            }
        return keys;
    }

    fake::FakeDesktop desktop;
    SystemEventPoster poster{desktop.keyboard, [this] { return desktop.scheduler.now(); }};
    std::optional<KeyboardGuard> keyboard{std::in_place, desktop.keyboard,
                                          desktop.windows.focusTarget()};
    Logger logger{desktop.log, "Conversion"};
    ConversionRequest request{
        .mapping = *InputSourceSwitcher::mapping(desktop.layouts, desktop.translator, "us", "ru"),
        .activeSourceIndex = 0,
        .bundleID = "org.example.editor",
        .processIdentifier = 101,
        .typedText = std::make_shared<TypedTextBuffer>(),
    };
};

} // namespace kelvora
