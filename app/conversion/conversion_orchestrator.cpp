// SPDX-License-Identifier: MIT
#include "app/conversion/conversion_orchestrator.h"

#include "app/conversion/conversion_outcome.h"
#include "app/conversion/focused_text_converter.h"
#include "core/mapping/input_source_switcher.h"

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace kelvora {

namespace {

std::optional<int> activeIndex(InputSources& sources, const std::string& firstID,
                               const std::string& secondID) {
    const std::optional<std::string> current = InputSourceSwitcher::currentID(sources);
    if (!current) {
        return std::nullopt;
    }
    if (*current == firstID) {
        return 0;
    }
    if (*current == secondID) {
        return 1;
    }
    return std::nullopt;
}

} // namespace

/// Everything that one conversion needs, and all that it keeps alive: it may outlive the
/// orchestrator.
struct ConversionOrchestrator::Conversion {
    ConversionRequest request;
    std::string firstID;
    std::string secondID;
    Desktop desktop;
    Logger logger;
    std::shared_ptr<EventPosting> poster;
    KeyboardGuard keyboard;
    WeakHandle<ConversionOrchestrator> owner;

    // The worker's part.
    [[nodiscard]] ConversionOutcome run() {
        return FocusedTextConverter::convertFocusedField(
            request, {*poster, keyboard, desktop.accessibility, desktop.pasteboard,
                      desktop.applicationProbe, logger});
    }

    // The main thread's part.
    void finish(const ConversionOutcome& outcome) {
        if (ConversionOrchestrator* orchestrator = owner.get()) {
            orchestrator->conversionInProgress_ = false;
        }
        std::string message =
            std::visit([this](const auto& result) { return handle(result); }, outcome.value());
        keyboard.end();
        if (ConversionOrchestrator* orchestrator = owner.get()) {
            orchestrator->model_.setStatusMessage(std::move(message));
        }
    }

    // Each gives the status text.
    std::string handle(const ConversionOutcome::Failed& failed) {
        logger.error("performConversion failed: %s", failed.message);
        return failed.message;
    }
    std::string handle(const ConversionOutcome::NoText& /*noText*/) {
        logger.info("performConversion: no convertible text found");
        return "Double-Shift detected. No convertible text or selection was found.";
    }
    std::string handle(const ConversionOutcome::Converted& converted) {
        const std::string& targetID = converted.targetIndex == 0 ? firstID : secondID;
        logger.info("Converted text to index %ld (%s)", converted.targetIndex, targetID);
        return InputSourceSwitcher::select(desktop.inputSources, targetID)
                   ? "Text converted successfully."
                   : "Text converted, but the selected input source could not be activated.";
    }
};

ConversionOrchestrator::ConversionOrchestrator(const Desktop& desktop, ConversionModel& model,
                                               std::shared_ptr<TypedTextBuffer> typedText,
                                               std::shared_ptr<EventPosting> poster)
    : desktop_(desktop), model_(model), typedText_(std::move(typedText)),
      poster_(std::move(poster)), logger_(desktop.log, "Conversion") {}

void ConversionOrchestrator::performConversion(std::optional<std::u16string> textAtTrigger) {
    logger_.info("performConversion() invoked");
    const bool isEnabled = model_.isEnabled();
    const bool accessibilityGranted = model_.accessibilityGranted();
    if (conversionInProgress_ || !isEnabled || !accessibilityGranted) {
        logger_.error("performConversion skipped: inProgress=%{bool}d, isEnabled=%{bool}d, "
                      "accessibility=%{bool}d",
                      conversionInProgress_, isEnabled, accessibilityGranted);
        return;
    }

    std::string firstID = model_.firstSourceID();
    std::string secondID = model_.secondSourceID();
    if (firstID.empty() || secondID.empty()) {
        logger_.error("performConversion: missing keyboard layouts");
        model_.setStatusMessage("Add two keyboard layouts in System Settings.");
        return;
    }
    std::optional<PhysicalLayoutMapping> mapping = InputSourceSwitcher::mapping(
        desktop_.inputSources, desktop_.keyTranslator, firstID, secondID);
    if (!mapping) {
        logger_.error("performConversion: mapping unavailable for %s and %s", firstID, secondID);
        model_.setStatusMessage("The selected keyboard layouts are unavailable.");
        return;
    }

    const std::optional<int> active = activeIndex(desktop_.inputSources, firstID, secondID);
    const FrontmostApplication application =
        desktop_.workspace.frontmostApplication().value_or(FrontmostApplication{});
    ConversionRequest request{
        .mapping = std::move(*mapping),
        .activeSourceIndex = active,
        .bundleID = application.bundleIdentifier.value_or("unknown"),
        .applicationKind = application.kind,
        .processIdentifier = static_cast<std::int32_t>(application.processIdentifier),
        .reselectPastedText = model_.reselectPastedText(),
        .typedText = typedText_,
        .textAtTrigger = std::move(textAtTrigger),
    };
    conversionInProgress_ = true;
    start(std::shared_ptr<Conversion>(new Conversion{
        std::move(request), std::move(firstID), std::move(secondID), desktop_, logger_, poster_,
        KeyboardGuard(desktop_.eventPoster, desktop_.workspace.focusTarget()), self_.handle()}));
}

void ConversionOrchestrator::focusChanged() {
    if (const std::shared_ptr<Conversion> conversion = running_.lock()) {
        conversion->keyboard.noteFocusChange();
    }
}

void ConversionOrchestrator::start(std::shared_ptr<Conversion> conversion) {
    running_ = conversion;
    desktop_.dispatch.postToWorker([conversion = std::move(conversion)] {
        const ConversionOutcome outcome = conversion->run();
        conversion->desktop.dispatch.postToMain(
            [conversion, outcome] { conversion->finish(outcome); });
    });
}

} // namespace kelvora
