// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/accessibility.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace kelvora::fake {

/// The text of a window.
class Accessibility::TextElement final : public AccessibilityElement {
public:
    TextElement(Accessibility& owner, std::uint64_t window)
        : owner_(owner), view_(owner.views[window]), field_(owner.windows_.field(window)) {}

    [[nodiscard]] AccessibilityAttribute copyAttributeValue(std::string_view name) override {
        note("read " + std::string(name));
        const auto error = view_.readErrors.find(name);
        if (error != view_.readErrors.end()) {
            return {error->second, {}};
        }
        if (name == accessibilityAttribute::selectedText) {
            return {AccessibilityError::success, field_.selectedText()};
        }
        if (name == accessibilityAttribute::value) {
            return {AccessibilityError::success, field_.text()};
        }
        return name == accessibilityAttribute::focusedElement
                   ? view_.inner
                   : AccessibilityAttribute{AccessibilityError::attributeUnsupported, {}};
    }

    [[nodiscard]] AccessibilityError setAttributeValue(std::string_view name,
                                                       const AccessibilityValue& value) override {
        note("write " + std::string(name));
        if (view_.writeError == AccessibilityError::success && !view_.ignoresWrites) {
            const auto& text = std::get<std::u16string>(value);
            field_.insert(text);
            if (view_.selectsWritten) {
                field_.select(field_.caret() - text.size(), field_.caret());
            }
        }
        return view_.writeError;
    }

    [[nodiscard]] TextRole role() override {
        note("role");
        return view_.role;
    }

    [[nodiscard]] std::optional<TextStretch> textAroundCaret(std::size_t reach) override {
        note("around caret");
        if (!view_.hasReadableText || !field_.selectedText().empty()) {
            return std::nullopt;
        }
        const std::size_t begin = field_.caret() - std::min(field_.caret(), reach);
        const std::size_t end = std::min(field_.caret() + reach, field_.text().size());
        return TextStretch{field_.text().substr(begin, end - begin), field_.caret() - begin,
                           begin == 0, end == field_.text().size(),
                           static_cast<std::int64_t>(begin)};
    }

    [[nodiscard]] AccessibilityError replace(const TextStretch& stretch, std::size_t begin,
                                             std::size_t end, std::u16string_view replacement,
                                             std::size_t caret) override {
        note("replace");
        if (view_.replaceError == AccessibilityError::success) {
            const auto start = static_cast<std::size_t>(stretch.location);
            field_.select(start + begin, start + end);
            field_.insert(replacement);
            field_.select(start + begin + caret, start + begin + caret);
        }
        return view_.replaceError;
    }

private:
    void note(std::string request) { owner_.requests.push_back(std::move(request)); }

    Accessibility& owner_;
    View& view_;
    TextField& field_;
};

/// An application, or the whole session.
class Accessibility::Root final : public AccessibilityElement {
public:
    Root(std::vector<std::string>& requests, std::int32_t process,
         std::function<AccessibilityAttribute()> focused)
        : requests_(requests), process_(process), focused_(std::move(focused)) {}

    [[nodiscard]] AccessibilityAttribute copyAttributeValue(std::string_view /*name*/) override {
        return focused_();
    }
    [[nodiscard]] AccessibilityError
    setAttributeValue(std::string_view name, const AccessibilityValue& /*value*/) override {
        requests_.push_back("enable " + std::to_string(process_) + " " + std::string(name));
        return AccessibilityError::attributeUnsupported;
    }
    [[nodiscard]] TextRole role() override { return TextRole::notEditable; }
    [[nodiscard]] std::optional<TextStretch> textAroundCaret(std::size_t /*reach*/) override {
        return std::nullopt;
    }
    [[nodiscard]] AccessibilityError replace(const TextStretch& /*stretch*/, std::size_t /*begin*/,
                                             std::size_t /*end*/,
                                             std::u16string_view /*replacement*/,
                                             std::size_t /*caret*/) override {
        return AccessibilityError::attributeUnsupported;
    }

private:
    std::vector<std::string>& requests_;
    std::int32_t process_;
    std::function<AccessibilityAttribute()> focused_;
};

std::shared_ptr<AccessibilityElement> Accessibility::element(std::uint64_t window) {
    return std::make_shared<TextElement>(*this, window);
}

std::shared_ptr<AccessibilityElement>
Accessibility::createApplication(std::int32_t processIdentifier) {
    return std::make_shared<Root>(requests, processIdentifier, [this, processIdentifier] {
        for (const auto& [window, application] : windows_.applications) {
            if (application.processIdentifier == processIdentifier) {
                return visibleElement(window);
            }
        }
        return AccessibilityAttribute{AccessibilityError::invalidElement, {}};
    });
}

std::shared_ptr<AccessibilityElement> Accessibility::createSystemWide() {
    return std::make_shared<Root>(requests, 0,
                                  [this] { return visibleElement(windows_.focusTarget().id); });
}

AccessibilityAttribute Accessibility::visibleElement(std::uint64_t window) {
    const auto view = views.find(window);
    if (view == views.end() || scheduler_.now() < view->second.visibleFrom) {
        return {AccessibilityError::noValue, {}};
    }
    return {AccessibilityError::success, element(window)};
}

} // namespace kelvora::fake
