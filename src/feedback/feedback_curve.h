// The curve that is shown to the subject: of a region, or the mean of several.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/feedback_levels.h"

/// The region whose plot draws the curve, and the curve up to the current volume: that of the
/// region of a single mode, else the mean of the pair or of the three. Without the regions of the
/// mode, and where the subject gets no output (BlockOutput), the curve is empty.
struct FeedbackCurve {
    int region = 0; ///< from 0
    std::vector<float> values;
};
[[nodiscard]] FeedbackCurve feedbackCurve(const FeedbackSignals& signals,
                                          const FeedbackChoices& choices);
