// What the operator is told of the feedback.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/dry_run.h"
#include "run/session/session_feedback.h"

/// What the display lacks, or what it shows now, in one or two lines. `forecast` says from which
/// volume on there will be feedback; it is asked for where there is none.
[[nodiscard]] QString feedbackStateText(const SessionFeedback& feedback,
                                        const std::function<FeedbackForecast()>& forecast);
