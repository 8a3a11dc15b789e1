// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace kelvora {

/// What became of one trigger.
class ConversionOutcome {
public:
    struct Converted {
        int targetIndex = 0; ///< the layout converted into: 0 the first, 1 the second chosen one
        friend bool operator==(const Converted&, const Converted&) = default;
    };
    struct Failed {
        std::string message; ///< for the user, UTF-8
        friend bool operator==(const Failed&, const Failed&) = default;
    };
    struct NoText {
        friend bool operator==(const NoText&, const NoText&) = default;
    };
    using Value = std::variant<Converted, Failed, NoText>;

    /// Text was replaced by its conversion into that layout.
    [[nodiscard]] static ConversionOutcome converted(int targetIndex) {
        return ConversionOutcome(Converted{targetIndex});
    }
    /// A path could not complete and has a reason to show.
    [[nodiscard]] static ConversionOutcome failed(std::string message) {
        return ConversionOutcome(Failed{std::move(message)});
    }
    /// There was nothing to convert; the application's text is as it was.
    [[nodiscard]] static ConversionOutcome noText() { return ConversionOutcome(NoText{}); }

    /// For std::visit.
    [[nodiscard]] const Value& value() const { return value_; }

    friend bool operator==(const ConversionOutcome&, const ConversionOutcome&) = default;

private:
    explicit ConversionOutcome(Value value) : value_(std::move(value)) {}

    Value value_;
};

} // namespace kelvora
