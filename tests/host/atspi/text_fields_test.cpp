// SPDX-License-Identifier: MIT
#include "core/text/characters.h"
#include "tests/host/atspi/field.h"

#include <gtest/gtest.h>

#include <csignal>

namespace kelvora {
namespace {

using namespace accessibilityAttribute;

struct Case {
    const char* name;
    std::vector<std::string> command;
    bool hasLines;
};

const Case cases[] = {
    {"Gtk3Entry", {KELVORA_FIELDS_GTK3, "entry"}, false},
    {"Gtk3Text", {KELVORA_FIELDS_GTK3, "text"}, true},
    {"Gtk4Entry", {KELVORA_FIELDS_GTK4, "entry"}, false},
    {"Gtk4Text", {KELVORA_FIELDS_GTK4, "text"}, true},
    {"Qt6Text", {KELVORA_FIELDS_QT6, "text"}, true},
};

class TextFields : public testing::TestWithParam<Case> {
protected:
    AccessibleDesktop desktop_;
    Field field_{desktop_, GetParam().command};
};

struct Replacement {
    std::u16string before;
    std::u16string selected;
    std::u16string after;
    std::u16string replacement;
    bool hasLines = false;
};

std::u16string repeated(const std::u16string& part, int count) {
    std::u16string text;
    for (int i = 0; i < count; ++i)
        text += part;
    return text;
}

std::vector<Replacement> replacements() {
    return {
        {u"one ", u"ghbdtn", u" two", u"привет"},
        {u"😀é ", u"a😀e\x301", u" 👩‍👧 e\x301", u"ф😀у\x301й"},
        {u"", u"x", u"", u"👍🏽 longer than before"},
        {u"first\n", u"ab\ncd", u"\nlast", u"фи\nсв", true},
        {u"", repeated(u"qwertyui\n", 11'112), u" tail", repeated(u"йцукенгш\n", 11'112), true},
    };
}

TEST_P(TextFields, ReplaceASelectionAndNothingElse) {
    ASSERT_TRUE(field_.isReady());
    for (const Replacement& each : replacements()) {
        if (each.hasLines && !GetParam().hasLines)
            continue;
        ASSERT_TRUE(field_.write(each.before + each.selected + each.after));
        field_.tap("Left", characterCount(each.after));
        if (each.before.empty())
            field_.tap(GetParam().hasLines ? "Control_L+Shift_L+Home" : "Shift_L+Home");
        else
            field_.tap("Shift_L+Left", characterCount(each.selected));
        EXPECT_EQ(field_.replaceSelection(each.selected, each.replacement),
                  AccessibilityError::success);
        EXPECT_TRUE(field_.holds(each.before + each.replacement + each.after));
        EXPECT_TRUE(real::waitUntil([&] { return field_.selected().empty(); }));
        field_.tap("1");
        EXPECT_TRUE(field_.holds(each.before + each.replacement + u"1" + each.after));
    }
}

TEST_P(TextFields, ConvertAWordAtTheCaretInPlace) {
    ASSERT_TRUE(field_.isReady());
    const std::u16string head = repeated(u"😀e\x301 ab", 60);
    const std::u16string tail = repeated(u"😀e\x301 ab", 15);
    ASSERT_TRUE(field_.write(head + u" ghbdtn  " + tail));
    field_.tap("Left", characterCount(tail) + 1);

    const auto element = field_.focused();
    std::optional<TextStretch> stretch;
    ASSERT_TRUE(real::waitUntil([&] {
        stretch = element->textAroundCaret(40);
        return stretch && stretch->text.substr(stretch->caret, 3) == u" 😀";
    }));
    const std::size_t begin = stretch->text.find(u"ghbdtn");
    ASSERT_EQ(begin + 7, stretch->caret);
    EXPECT_FALSE(stretch->beginsAtStart || stretch->endsAtEnd);
    EXPECT_LT(stretch->text.size(), 200U);
    const std::u16string whole = head + u" ghbdtn  " + tail;
    const std::size_t at = whole.find(stretch->text);
    ASSERT_NE(at, std::u16string::npos) << "no half characters";
    CharacterSegmenter segmenter(whole);
    EXPECT_TRUE(segmenter.isBoundary(at) && segmenter.isBoundary(at + stretch->text.size()));

    EXPECT_EQ(answerTo([&] {
                  return element->replace(*stretch, begin, begin + 6, u"при👍🏽вет", 11);
              }),
              AccessibilityError::success);
    EXPECT_TRUE(field_.holds(head + u" при👍🏽вет  " + tail));
    EXPECT_EQ(answerTo([&] { return element->replace(*stretch, begin, begin + 6, u"привет", 7); }),
              AccessibilityError::failure)
        << "it is another text now";
    field_.tap("1");
    const std::u16string typed = head + u" при👍🏽вет 1 " + tail;
    EXPECT_TRUE(field_.holds(typed));

    ASSERT_TRUE(real::waitUntil([&] {
        stretch = element->textAroundCaret(40);
        return stretch && stretch->text.substr(stretch->caret - 1, 2) == u"1 ";
    }));
    field_.tap("Left");
    ASSERT_TRUE(real::waitUntil([&] {
        const auto now = element->textAroundCaret(40);
        return now && now->text.substr(now->caret, 1) == u"1";
    }));
    EXPECT_EQ(answerTo([&] {
                  return element->replace(*stretch, stretch->caret - 1, stretch->caret, u"?", 1);
              }),
              AccessibilityError::failure)
        << "the caret has moved";
    EXPECT_TRUE(field_.holds(typed));
}

TEST_P(TextFields, StopOrVanish) {
    ASSERT_TRUE(field_.isReady());
    ASSERT_TRUE(field_.write(u"one two"));
    field_.tap("Shift_L+Left", 3);
    ASSERT_TRUE(real::waitUntil([&] { return field_.selected() == u"two"; }));
    const auto element = field_.focused();
    const auto application = field_.accessibility().createApplication(field_.program().pid());

    field_.program().sendSignal(SIGSTOP);
    EXPECT_EQ(element->setAttributeValue(selectedText, u"ецщ"), AccessibilityError::cannotComplete);
    for (const auto name : {selectedText, value})
        EXPECT_EQ(element->copyAttributeValue(name).error, AccessibilityError::cannotComplete);
    EXPECT_EQ(application->copyAttributeValue(focusedElement).error,
              AccessibilityError::cannotComplete);
    EXPECT_EQ(element->role(), TextRole::unknown);
    EXPECT_FALSE(element->textAroundCaret(100));
    field_.program().sendSignal(SIGCONT);
    EXPECT_TRUE(field_.holds(u"one two"));
    EXPECT_TRUE(real::waitUntil([&] { return field_.selected() == u"two"; })) << "asked again";

    field_.program().sendSignal(SIGKILL);
    ASSERT_TRUE(field_.program().waitForExit(std::chrono::seconds(5)));
    EXPECT_EQ(element->copyAttributeValue(selectedText).error, AccessibilityError::invalidElement);
    EXPECT_TRUE(real::waitUntil([&] {
        return application->copyAttributeValue(focusedElement).error == AccessibilityError::noValue;
    }));
}

INSTANTIATE_TEST_SUITE_P(Toolkits, TextFields, testing::ValuesIn(cases),
                         [](const auto& each) { return each.param.name; });

TEST(TextFieldsWithUndo, TakeAReplacementBackInTwoSteps) {
    AccessibleDesktop desktop;
    for (const Case& each : cases) {
        if (std::string_view(each.name).starts_with("Gtk3"))
            continue; // has none of its own
        SCOPED_TRACE(each.name);
        Field field(desktop, each.command);
        ASSERT_TRUE(field.isReady() && field.write(u"one two"));
        field.tap("Shift_L+Left", 3);
        ASSERT_EQ(field.replaceSelection(u"two", u"ецщ"), AccessibilityError::success);
        ASSERT_TRUE(field.holds(u"one ецщ"));
        field.tap("Control_L+z", 2);
        EXPECT_TRUE(field.holds(u"one two"));
    }
}

TEST(FieldsThatAreNotWritten, AreLeftAloneAndNamed) {
    struct {
        std::vector<std::string> command;
        TextRole role;
        AccessibilityError reading;
        std::u16string holds;
    } const fields[] = {
        {{KELVORA_FIELDS_GTK3, "readonly"}, TextRole::notEditable, {}, u"ghbdtn rfr ltkf"},
        {{KELVORA_FIELDS_GTK4, "readonly"}, TextRole::notEditable, {}, u"ghbdtn rfr ltkf"},
        {{KELVORA_FIELDS_QT6, "readonly"}, TextRole::notEditable, {}, u"ghbdtn rfr ltkf"},
        {{KELVORA_FIELDS_GTK3, "password"},
         TextRole::password,
         AccessibilityError::attributeUnsupported,
         u"ab"},
        {{KELVORA_FIELDS_GTK4, "password"},
         TextRole::password,
         AccessibilityError::attributeUnsupported,
         u"ab"},
        {{KELVORA_FIELDS_QT6, "password"},
         TextRole::password,
         AccessibilityError::attributeUnsupported,
         u"ab"},
        // What is written into it this way cannot be undone.
        {{KELVORA_FIELDS_QT6, "entry"}, TextRole::singleLine, {}, u"ab"},
    };
    AccessibleDesktop desktop;
    for (const auto& each : fields) {
        SCOPED_TRACE(each.command[0] + " " + each.command[1]);
        Field field(desktop, each.command);
        ASSERT_TRUE(field.isReady());
        if (each.role != TextRole::notEditable)
            field.tap("a"), field.tap("b");
        ASSERT_TRUE(field.holds(each.holds));
        field.tap("Control_L+a");
        const auto element = field.focused();
        EXPECT_EQ(element->role(), each.role);
        if (each.reading == AccessibilityError::success) {
            EXPECT_TRUE(real::waitUntil([&] { return field.selected() == each.holds; }));
        }
        for (const auto name : {selectedText, value})
            EXPECT_EQ(element->copyAttributeValue(name).error, each.reading);
        EXPECT_EQ(element->setAttributeValue(selectedText, u"new"),
                  AccessibilityError::attributeUnsupported);
        field.tap("End");
        EXPECT_FALSE(element->textAroundCaret(100));
        EXPECT_TRUE(field.holds(each.holds));
    }
}

} // namespace
} // namespace kelvora
