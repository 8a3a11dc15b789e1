// SPDX-License-Identifier: MIT
#include "app/conversion/focused_text_converter.h"

#include "app/conversion/app_text_behavior.h"
#include "app/io/logger.h"

namespace kelvora {

namespace {

bool isTerminal(const ConversionRequest& request) {
    return AppTextBehavior::isTerminal(request.bundleID) ||
           request.applicationKind == ApplicationKind::terminal;
}

} // namespace

ConversionOutcome FocusedTextConverter::convertFocusedField(const ConversionRequest& request,
                                                            const ConversionServices& services) {
    services.logger.info("Trigger: bundleID=%s, doubleShiftDetected=true", request.bundleID);
    if (request.typedText) {
        if (std::optional<ConversionOutcome> outcome = convertTypedText(request, services)) {
            return *outcome;
        }
    }
    if (isTerminal(request)) {
        services.logger.info("Terminal: nothing typed since the caret moved. bundleID=%s",
                             request.bundleID);
    }
    return ConversionOutcome::noText();
}

} // namespace kelvora
