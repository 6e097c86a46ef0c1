// Sorting by index and sorting of pairs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

namespace numerics {

// Both are ascending and stable; NaN goes to the end. Neither uses a stack of fixed size, so
// neither can overflow one.

/// Indices from 0 of the keys in ascending order.
[[nodiscard]] std::vector<int> indexx(std::span<const float> keys);

/// Sorts the keys and permutes the companions likewise, up to the shorter length.
void sort2(std::span<float> keys, std::span<float> companions);

} // namespace numerics
