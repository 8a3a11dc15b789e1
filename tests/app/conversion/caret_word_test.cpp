// SPDX-License-Identifier: MIT
#include "tests/app/conversion/path_test.h"

namespace kelvora {
namespace {

TEST_F(PathTest, WordAtTheCaretOfADocumentIsReplacedInPlace) {
    const auto converted = ConversionOutcome::converted(1);
    const auto noText = ConversionOutcome::noText();
    const View document{.role = TextRole::multiLine};
    const View line{.role = TextRole::singleLine};
    const View unreadable{.role = TextRole::multiLine, .hasReadableText = false};
    const View unwritable{.role = TextRole::multiLine, .replaceError = AccessibilityError::failure};
    const View hanging{.role = TextRole::multiLine,
                       .replaceError = AccessibilityError::cannotComplete};
    const std::u16string page(3000, u' ');
    const std::u16string endless(1500, u'b');
    struct Case {
        const char* name;
        std::u16string before;
        View view;
        Outcome outcome;
        std::u16string after;
    };
    const Case cases[] = {
        {"its end", u"ok ghbdtn| vbh\n", document, converted, u"ok привет| vbh\n"},
        {"within", u"ok ghb|dtn vbh\n", document, converted, u"ok при|вет vbh\n"},
        {"spaces behind it", u"ghbdtn  |vbh", document, converted, u"привет  |vbh"},
        {"far into the text", page + u"ghbdtn|" + page, document, converted,
         page + u"привет|" + page},
        {"all of it", u"ghbdtn|", document, converted, u"привет|"},
        {"a line break before", u"ghbdtn\n|vbh", document, noText, u"ghbdtn\n|vbh"},
        {"not convertible", u"ghbdtn 2024|", document, noText, u"ghbdtn 2024|"},
        {"may begin before the stretch", endless + u"| vbh", document, noText, endless + u"| vbh"},
        {"may end behind it", u"a|" + endless, document, noText, u"a|" + endless},
        {"with an image", u"ghb\uFFFCdtn|", document, noText, u"ghb\uFFFCdtn|"},
        {"in a line", u"ghbdtn|", line, {}, u"ghbdtn|"},
        {"unreadable", u"ghbdtn|", unreadable, noText, u"ghbdtn|"},
        {"not to be written", u"ghbdtn|", unwritable, noText, u"ghbdtn|"},
        {"an application that hangs", u"ghbdtn|", hanging, noText, u"ghbdtn|"},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        desktop.accessibility.views[fake::Windows::editor] = testCase.view;
        beginCase();
        show(testCase.before);
        const auto element = desktop.accessibility.element(fake::Windows::editor);
        EXPECT_EQ(FocusedTextConverter::tryAXPath(*element, request, services()).outcome,
                  testCase.outcome);
        EXPECT_EQ(shown(), testCase.after);
        if (testCase.outcome == converted) {
            EXPECT_EQ(logged(LogLevel::info),
                      (std::vector<std::string>{
                          "AX word success: bundleID=<private>, path=AX word, targetIndex=1"}));
        }
    }
}

} // namespace
} // namespace kelvora
