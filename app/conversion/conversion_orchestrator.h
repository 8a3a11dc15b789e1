// SPDX-License-Identifier: MIT
#pragma once

#include "app/conversion/conversion_model.h"
#include "app/conversion/keyboard_guard.h"
#include "app/io/event_posting.h"
#include "app/io/logger.h"
#include "app/io/weak_handle.h"
#include "core/trigger/typed_text_buffer.h"
#include "host/desktop.h"

#include <memory>
#include <optional>
#include <string>

namespace kelvora {

/// Turns a trigger into one conversion beside the main thread, then switches the layout and words
/// the status. Main thread only. May be destroyed while a conversion runs: that one completes, and
/// reports to nobody.
class ConversionOrchestrator {
public:
    /// `model` outlives this; the desktop outlives every conversion.
    ConversionOrchestrator(const Desktop& desktop, ConversionModel& model,
                           std::shared_ptr<TypedTextBuffer> typedText,
                           std::shared_ptr<EventPosting> poster);

    /// Starts a conversion, unless one is running or none is allowed. `textAtTrigger` as in
    /// ConversionRequest.
    void performConversion(std::optional<std::u16string> textAtTrigger = std::nullopt);

    /// From the hand-over of a conversion until its result has been handled.
    [[nodiscard]] bool conversionInProgress() const { return conversionInProgress_; }

    /// Another window got the focus, another client the keyboard, or a click may have moved the
    /// caret: a running conversion must not begin to write there.
    void focusChanged();

private:
    struct Conversion;

    void start(std::shared_ptr<Conversion> conversion);

    Desktop desktop_;
    ConversionModel& model_;
    std::shared_ptr<TypedTextBuffer> typedText_;
    std::shared_ptr<EventPosting> poster_;
    Logger logger_;
    std::weak_ptr<Conversion> running_;
    bool conversionInProgress_ = false;
    WeakHandleSource<ConversionOrchestrator> self_{this};
};

} // namespace kelvora
