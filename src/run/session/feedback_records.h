// What is recorded of the feedback: the choices of the operator.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "feedback/delayed_feedback.h"
#include "feedback/feedback_choices.h"

/// Name of the records.
inline constexpr char feedbackRecord[] = "feedback";

/// What a run that goes on finds again.
struct RecordedFeedback {
    FeedbackChoices choices;
    std::optional<DelayedFeedbackSettings> delayed;
};

[[nodiscard]] QByteArray encodedFeedback(const RecordedFeedback& recorded);
/// Nothing when the content is damaged, or has numbers that the controls don't give.
[[nodiscard]] std::optional<RecordedFeedback> decodedFeedback(const QByteArray& content);
