// Reference responses of a subject, averaged from a training run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoding.h"
#include "run/protocol/stimulation_protocol.h"

#include <optional>
#include <span>

enum class ResponseROIs { Tasks, Helpers, All }; ///< 1-3, 4-6, 1-6

struct EmpiricalOptions {
    int WindowTimePoints = 40; ///< of each response
    int PreTrialBeginDataPoints = 5;
    int PostTrialDataPoints = 10;
    int ShortestTaskDuration = 15; ///< volumes
    ResponseROIs rois = ResponseROIs::Tasks;
};

/// Why the responses can't be made, as the prescribed warning; empty when they can.
[[nodiscard]] QString empiricalFault(const EmpiricalOptions& options, int nrOfROIs,
                                     const StimulationProtocol& protocol);

/// The nine task conditions behind the rest condition give three durations (condition 1 + 3 * task
/// + duration), averaged over tasks, trials and the chosen ROIs, in percent of the mean of the
/// points before the onset; the responses of later onsets are the same curves, later by the onset's
/// volumes. `TR` in milliseconds. Nothing without a fault above only where a duration has no trial.
[[nodiscard]] std::optional<ReferenceCurves>
empiricalResponses(const EmpiricalOptions& options, std::span<const std::vector<float>> curves,
                   const StimulationProtocol& protocol, double TR);
