// A subject's own reference responses, made from a training run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/empirical_responses.h"

#include <QString>

/// What the responses are averaged from.
struct TrainingRun {
    std::vector<std::vector<float>> curves; ///< of the ROIs in their order
    StimulationProtocol protocol;
    double TR = 0.0; ///< milliseconds; 0 where nothing states it
};

/// From a file of curves and a protocol in volumes. Nothing after a message.
[[nodiscard]] std::optional<TrainingRun> readTrainingRun(const QString& curvesPath,
                                                         const QString& protocolPath);
/// A name that is free in this folder: EmpiricalResponses.rtc or one with a number; empty without a
/// folder.
[[nodiscard]] QString freeResponsesPath(const QString& folder);
/// The averaged responses. Nothing after a message.
[[nodiscard]] std::optional<ReferenceCurves> trainedResponses(const EmpiricalOptions& options,
                                                              const TrainingRun& run);
