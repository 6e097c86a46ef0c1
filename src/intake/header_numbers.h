// Numbers in image headers. Of a text the longest numeric beginning counts, 0 where there is none.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>
#include <vector>

/// Limited to what a float can hold; a number that is none stays none.
[[nodiscard]] float limitedFloat(double value);

/// Finite; a number that doesn't fit is 0.
[[nodiscard]] double leadingNumber(std::string_view text);
/// As leadingNumber, limited as above.
[[nodiscard]] float leadingFloat(std::string_view text);
[[nodiscard]] int leadingInteger(std::string_view text);

/// Blanks off the left end, then carriage returns and line feeds off the right end.
[[nodiscard]] std::string_view trimmedHeaderText(std::string_view text);

/// The text cut at every backslash.
[[nodiscard]] std::vector<std::string_view> backslashFields(std::string_view text);
