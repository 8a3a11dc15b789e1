// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/accessibility.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace kelvora::fake {

/// The text of a window; or, where `focused` says what has the focus there, an application or the
/// whole session.
class Accessibility::Element final : public AccessibilityElement {
public:
    using Focused = std::function<AccessibilityAttribute()>;

    Element(Accessibility& owner, std::uint64_t window) : owner_(owner), window_(window) {}
    Element(Accessibility& owner, std::int32_t process, Focused focused)
        : owner_(owner), process_(process), focused_(std::move(focused)) {}

    [[nodiscard]] AccessibilityAttribute copyAttributeValue(std::string_view name) override {
        if (focused_)
            return focused_();
        note("read " + std::string(name));
        const auto error = view().readErrors.find(name);
        if (error != view().readErrors.end())
            return {error->second, {}};
        if (name == accessibilityAttribute::selectedText)
            return {AccessibilityError::success, field().selectedText()};
        if (name == accessibilityAttribute::value)
            return {AccessibilityError::success, field().text()};
        return view().inner;
    }

    [[nodiscard]] AccessibilityError setAttributeValue(std::string_view name,
                                                       const AccessibilityValue& value) override {
        if (focused_) {
            note("enable " + std::to_string(process_) + " " + std::string(name));
            return AccessibilityError::attributeUnsupported;
        }
        if (view().writeError == AccessibilityError::success && !view().ignoresWrites) {
            const auto& text = std::get<std::u16string>(value);
            field().insert(text);
            if (view().selectsWritten)
                field().select(field().caret() - text.size(), field().caret());
        }
        return view().writeError;
    }

    [[nodiscard]] TextRole role() override { return view().role; }

    [[nodiscard]] std::optional<TextStretch> textAroundCaret(std::size_t reach) override {
        note("around caret");
        if (!view().hasReadableText || !field().selectedText().empty())
            return std::nullopt;
        const std::size_t begin = field().caret() - std::min(field().caret(), reach);
        const std::size_t end = std::min(field().caret() + reach, field().text().size());
        return TextStretch{field().text().substr(begin, end - begin), field().caret() - begin,
                           begin == 0, end == field().text().size(),
                           static_cast<std::int64_t>(begin)};
    }

    [[nodiscard]] AccessibilityError replace(const TextStretch& stretch, std::size_t begin,
                                             std::size_t end, std::u16string_view replacement,
                                             std::size_t caret) override {
        if (view().replaceError == AccessibilityError::success) {
            const auto start = static_cast<std::size_t>(stretch.location);
            field().select(start + begin, start + end);
            field().insert(replacement);
            field().select(start + begin + caret, start + begin + caret);
        }
        return view().replaceError;
    }

private:
    void note(std::string request) { owner_.requests.push_back(std::move(request)); }
    View& view() { return owner_.views[window_]; }
    TextField& field() { return owner_.windows_.field(window_); }

    Accessibility& owner_;
    std::uint64_t window_ = 0;
    std::int32_t process_ = 0;
    Focused focused_;
};

std::shared_ptr<AccessibilityElement> Accessibility::element(std::uint64_t window) {
    return std::make_shared<Element>(*this, window);
}

std::shared_ptr<AccessibilityElement>
Accessibility::createApplication(std::int32_t processIdentifier) {
    return std::make_shared<Element>(*this, processIdentifier, [this, processIdentifier] {
        for (const auto& [window, application] : windows_.applications)
            if (application.processIdentifier == processIdentifier)
                return visibleElement(window);
        return AccessibilityAttribute{AccessibilityError::invalidElement, {}};
    });
}

std::shared_ptr<AccessibilityElement> Accessibility::createSystemWide() {
    return std::make_shared<Element>(*this, 0,
                                     [this] { return visibleElement(windows_.focusTarget().id); });
}

AccessibilityAttribute Accessibility::visibleElement(std::uint64_t window) {
    const auto view = views.find(window);
    if (view == views.end() || scheduler_.now() < view->second.visibleFrom)
        return {AccessibilityError::noValue, {}};
    return {AccessibilityError::success, element(window)};
}

} // namespace kelvora::fake
