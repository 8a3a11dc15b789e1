// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_session.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

/// Positions in an application's own count (OffsetUnit), end exclusive.
struct AtspiRange {
    std::int32_t begin = 0;
    std::int32_t end = 0;

    friend bool operator==(const AtspiRange&, const AtspiRange&) = default;
};

/// Where a text is being edited, as of one moment.
struct AtspiTextPlace {
    std::uint32_t role = 0; ///< AtspiRole
    std::int32_t length = 0;
    std::int32_t caret = -1; ///< negative when that is not told
    AtspiRange selection;    ///< empty when nothing is selected
};

/// Stands for a picture, a note or the like in a text; written as text it would replace that.
inline constexpr char16_t objectReplacement = u'\xFFFC';

/// The text of one object, as its application gives and takes it. One thread at a time.
class AtspiText {
public:
    AtspiText(AtspiSession& session, AtspiReference object)
        : session_(session), object_(std::move(object)) {}

    /// `unsupported` when the object has no text.
    [[nodiscard]] BusReply<std::int32_t> length();
    /// `unsupported` for several selections, or one that goes on in the neighbours or is there
    /// altogether: part of a selection is not what the user selected.
    [[nodiscard]] BusReply<AtspiTextPlace> place();
    /// Exactly that part; `refused` when the application gives more or less than it was asked for.
    [[nodiscard]] BusReply<std::u16string> read(AtspiRange range);

    /// Replaces a range, which must hold exactly `old`, and sets the caret `caret` UTF-16 units
    /// behind its begin (in `replacement`, then `following`, the text behind the range). The new
    /// text goes in before the old one goes out, and each step is read back: whatever fails in
    /// between, nothing is lost, and what came out wrong is taken out again. Only text that has
    /// been read is ever taken out. `cannotComplete` unless the text is certainly as asked or as it
    /// was.
    [[nodiscard]] AccessibilityError replace(AtspiRange range, std::u16string_view old,
                                             std::u16string_view replacement,
                                             std::u16string_view following, std::size_t caret);
    /// Takes out what an earlier `replace` put in without an answer, if it is there exactly so.
    void takeOutUnanswered();

    /// What is known of the application's unit; code points, which the interface means, until then.
    [[nodiscard]] OffsetUnit unit();

private:
    struct Insertion {
        BusError error = BusError::none;
        std::int32_t length = 0; ///< of the new text in the application's count
    };

    /// Puts a text in behind the range, which holds `old`.
    [[nodiscard]] Insertion insert(AtspiRange range, std::u16string_view old,
                                   std::u16string_view text, std::int32_t lengthBefore);
    [[nodiscard]] BusError erase(AtspiRange range);
    [[nodiscard]] bool takeOut(AtspiRange range, std::u16string_view old, std::int32_t lengthBefore,
                               std::u16string_view behind);
    void placeCaret(std::int32_t position);
    [[nodiscard]] bool holds(AtspiRange range, std::u16string_view text);
    /// Exactly the text of that range, as `GetText` gave it.
    [[nodiscard]] BusReply<std::u16string> received(AtspiRange range,
                                                    const BusReply<std::string>& reply);
    [[nodiscard]] BusReply<bool> isSelectedBeyond(int step, std::uint32_t role);

    AtspiSession& session_;
    AtspiReference object_;
};

} // namespace kelvora
