// What is recorded of the classifier of a run: the choices of the operator.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/live_trial.h"

/// Name of the records.
inline constexpr char classifierRecord[] = "classifier";

/// What a run that goes on finds again.
struct RecordedClassifier {
    LiveOptions options;
    QString modelPath;
    QString voxelsPath; ///< of the list of voxels; empty where there was none
    bool isPredicting = false;
};

[[nodiscard]] QByteArray encodedClassifier(const RecordedClassifier& recorded);
/// Nothing when the content is damaged, or has numbers that the controls don't give.
[[nodiscard]] std::optional<RecordedClassifier> decodedClassifier(const QByteArray& content);
