// SPDX-License-Identifier: MIT
#include "app/shell/permission_target.h"

namespace kelvora {
namespace {

constexpr std::string_view privacySettings =
    "x-apple.systempreferences:com.apple.preference.security?";

bool isHexDigit(char character) {
    return std::string_view("0123456789abcdefABCDEF").find(character) != std::string_view::npos;
}

/// Can it stand after the question mark of a URL (RFC 3986, query and fragment)?
bool isQuery(std::string_view text) {
    constexpr std::string_view allowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                         "0123456789-._~!$&'()*+,;=:@/?";
    bool isInFragment = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            if (i + 2 >= text.size() || !isHexDigit(text[i + 1]) || !isHexDigit(text[i + 2])) {
                return false;
            }
            i += 2;
        } else if (text[i] == '#' && !isInFragment) {
            isInFragment = true;
        } else if (allowed.find(text[i]) == std::string_view::npos) {
            return false;
        }
    }
    return true;
}

} // namespace

std::optional<PermissionTarget> PermissionTarget::fromRawValue(std::string_view text) {
    for (const PermissionTarget target : allCases) {
        if (target.rawValue() == text) {
            return target;
        }
    }
    return std::nullopt;
}

std::string_view PermissionTarget::rawValue() const {
    switch (case_) {
    case inputMonitoring:
        return "Input Monitoring";
    case accessibility:
        return "Accessibility";
    }
    return "";
}

std::string_view PermissionTarget::description() const {
    switch (case_) {
    case inputMonitoring:
        return "Allow the applications below to monitor input from your keyboard even while using "
               "other applications.";
    case accessibility:
        return "Allow the applications below to control your computer even while using other "
               "applications.";
    }
    return "";
}

std::string_view PermissionTarget::systemSettingsPane() const {
    switch (case_) {
    case inputMonitoring:
        return "Privacy_ListenEvent";
    case accessibility:
        return "Privacy_Accessibility";
    }
    return "";
}

std::optional<std::string> privacyPaneAddress(std::string_view anchor) {
    if (!isQuery(anchor)) {
        return std::nullopt;
    }
    return std::string(privacySettings).append(anchor);
}

} // namespace kelvora
