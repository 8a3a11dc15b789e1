// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/program.h"
#include "tests/support/real_desktop/real_desktop.h"
#include "tests/support/real_desktop/text_application.h"

#include <gtest/gtest.h>
#include <iosfwd>
#include <memory>
#include <string>

namespace kelvora::real {

enum class ApplicationUnderTest { terminal, gtkEditor, qtEditor };

void PrintTo(ApplicationUnderTest application, std::ostream* stream);

/// A desktop with an application and the program running in it, shared by all tests of one
/// application, as starting them costs more than a test.
struct LiveDesktop {
    explicit LiveDesktop(ApplicationUnderTest application);

    RealDesktop desktop;
    KeyboardState initialState;
    Program program;
    std::unique_ptr<TextApplication> application;
};

/// A fresh line in the application, English active, no locks, and the checks that every test ends
/// with.
class LiveDesktopTest : public testing::TestWithParam<ApplicationUnderTest> {
protected:
    void SetUp() override;
    void TearDown() override;

    [[nodiscard]] RealDesktop& desktop() const { return live_->desktop; }
    [[nodiscard]] Keyboard& keyboard() const { return live_->desktop.keyboard(); }
    [[nodiscard]] TextApplication& application() const { return *live_->application; }
    [[nodiscard]] Program& program() const { return live_->program; }

    /// Ends with an empty line and English active.
    void beginFreshLine();
    /// Waits for the text, then for the layout and the locks; no key may be left pressed and no key
    /// may have another meaning than `keymap` gives it.
    void expectEnd(const std::string& text, const std::string& layout, unsigned locks = 0);
    /// For tests that change the layouts: what the keymap must be at the end.
    void expectKeymapOf(const KeyboardState& state) { expectedKeymap_ = state.keymap; }
    /// Sees to it that the double Shift now changes nothing and sends nothing.
    void expectNothingConverted(const std::string& text, const std::string& layout);

    /// The double Shift now must not count on "ghbdtn", the line's text, having been typed before
    /// the caret: a terminal is left alone, and an editor's word is found by looking at its text.
    void expectTypedTextForgotten();

private:
    LiveDesktop* live_ = nullptr;
    std::vector<unsigned long> expectedKeymap_;
};

/// Waits until the keyboard is in this state, whatever the layout of `expected` is when empty.
void expectKeyboard(RealDesktop& desktop, const KeyboardState& expected);

/// "Terminal", "GtkEditor" and "QtEditor" run the tests of a suite in each application.
#define KELVORA_IN_EVERY_APPLICATION(Suite)                                                        \
    INSTANTIATE_TEST_SUITE_P(Terminal, Suite, testing::Values(ApplicationUnderTest::terminal));    \
    INSTANTIATE_TEST_SUITE_P(GtkEditor, Suite, testing::Values(ApplicationUnderTest::gtkEditor));  \
    INSTANTIATE_TEST_SUITE_P(QtEditor, Suite, testing::Values(ApplicationUnderTest::qtEditor))

} // namespace kelvora::real
