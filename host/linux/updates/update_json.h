// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

/// Absent when `json` is no JSON object. Nesting ends at the parser's own limit of 1024; the caller
/// has bounded the size.
[[nodiscard]] std::optional<QJsonObject> jsonObject(std::string_view json);

/// The member `name`, as UTF-8; absent when it is missing or no text.
[[nodiscard]] std::optional<std::string> textOf(const QJsonObject& object, const char* name);
/// Absent when it is missing, no number, fractional, negative, or beyond 2^53 - 1.
[[nodiscard]] std::optional<std::int64_t> integerOf(const QJsonObject& object, const char* name);

} // namespace kelvora
