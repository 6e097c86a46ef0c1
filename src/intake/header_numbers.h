// Numbers in image headers: of a text its longest numeric prefix, 0 without one.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>
#include <vector>

/// Clamped to the range of a float; NaN stays NaN.
[[nodiscard]] float limitedFloat(double value);

/// Finite; 0 on overflow.
[[nodiscard]] double leadingNumber(std::string_view text);
/// As leadingNumber, clamped as above.
[[nodiscard]] float leadingFloat(std::string_view text);
[[nodiscard]] int leadingInteger(std::string_view text);

/// The text without blanks at its start and without carriage returns and line feeds at its end.
[[nodiscard]] std::string_view trimmedHeaderText(std::string_view text);

/// The text split at every backslash.
[[nodiscard]] std::vector<std::string_view> backslashFields(std::string_view text);
