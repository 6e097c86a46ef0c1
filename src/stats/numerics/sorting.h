// Sorting by index and sorting of pairs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

namespace numerics {

// Ascending; equal keys stay in their order, and what is not a number goes to the end. Neither
// needs a stack of fixed size, so neither can run out of one.

/// Indices from 0 of the keys in ascending order.
[[nodiscard]] std::vector<int> indexx(std::span<const float> keys);

/// Sorts the keys and moves the companions with them. The shorter length counts.
void sort2(std::span<float> keys, std::span<float> companions);

} // namespace numerics
