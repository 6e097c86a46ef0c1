// The conjunction of contrasts: what all of them show with the same sign.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

/// One step of the walk over the contrasts of a voxel: of two values with the same sign the one
/// nearer to 0, otherwise 0. A result of 0 stays 0 in all further steps.
[[nodiscard]] inline float conjunctionStep(float result, float value) {
    if (result > 0.0f && value > 0.0f)
        return value < result ? value : result;
    if (result < 0.0f && value < 0.0f)
        return value > result ? value : result;
    return 0.0f;
}

/// The conjunction of a voxel's values of all active contrasts: the value of smallest magnitude
/// when all have the same sign, otherwise 0. Without values 0; a value that is not a number counts
/// as 0. This is the test of the conjunction null by the minimum statistic (Nichols et al. 2005,
/// NeuroImage 25:653-660).
[[nodiscard]] inline float conjunction(std::span<const float> values) {
    if (values.empty())
        return 0.0f;
    float result = values.front();
    for (const float value : values.subspan(1))
        result = conjunctionStep(result, value);
    return result;
}
