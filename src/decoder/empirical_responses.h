// Reference responses of a subject, averaged from a training run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoding.h"
#include "run/protocol/stimulation_protocol.h"

#include <optional>
#include <span>

enum class ResponseROIs { Tasks, Helpers, All }; ///< 1-3, 4-6, 1-6

/// All in volumes. Ranges: window and duration 1 to 999, the others 0 to 999.
struct EmpiricalOptions {
    static constexpr int mostPoints = 999;

    int WindowTimePoints = 40; ///< of each response
    int PreTrialBeginDataPoints = 5;
    int PostTrialDataPoints = 10;
    int ShortestTaskDuration = 15;
    ResponseROIs rois = ResponseROIs::Tasks;
};

/// Why the responses can't be made, as the prescribed warning; empty when they can.
[[nodiscard]] QString empiricalFault(const EmpiricalOptions& options, int nrOfROIs,
                                     const StimulationProtocol& protocol);

/// The nine task conditions after the rest condition give three durations (condition 1 + 3 * task
/// + duration). The response to a duration is gathered from `PreTrialBeginDataPoints` before the
/// onset to `PostTrialDataPoints` after the task (ShortestTaskDuration * (1 + duration)); each of
/// its points is the mean over the tasks, trials and chosen ROIs that have it. A trial is taken in
/// percent of its mean before the onset, or where it has no point there, of its first point; a
/// trial whose base is 0 or whose onset is not in the data is left out.
///
/// The references have this response with the task starting at their onset: 0, 10 and 20 s in
/// volumes from their first point, which is the first one that a decoding compares. Points that
/// were not gathered, and points that no trial has, are 100. `TR` in milliseconds; without one,
/// times of the protocol that are in milliseconds give nothing, and the shortest duration stands
/// for 10 s.
///
/// `curves` are those of the ROIs in their order. Nothing where empiricalFault() has one, an option
/// is out of range, or a duration has no trial.
[[nodiscard]] std::optional<ReferenceCurves>
empiricalResponses(const EmpiricalOptions& options, std::span<const std::vector<float>> curves,
                   const StimulationProtocol& protocol, double TR);
