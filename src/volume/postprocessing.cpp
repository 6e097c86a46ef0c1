// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/postprocessing.h"

#include "base/messages.h"
#include "base/paths.h"
#include "volume/fmr_file.h"
#include "volume/high_pass.h"
#include "volume/postprocessing_choices.h"
#include "volume/postprocessing_names.h"
#include "volume/run_motion.h"
#include "volume/run_smoothing.h"
#include "volume/slice_timing.h"
#include "volume/stc_file.h"
#include "volume/time_courses.h"

namespace {

using Step = std::function<bool(const StepProgress&)>;

/// In the order of the work.
std::vector<Step> checkedSteps(FMRProject& project, int volumes,
                               const PostprocessingOptions& options, MotionCorrection& motion,
                               WorkerPool& workers) {
    const TemporalOptions& temporal = options.temporal;
    std::vector<Step> steps;
    if (options.sliceScanTime.checked)
        steps.push_back([&, volumes](const StepProgress& progress) {
            return correctSliceScanTime(project, volumes, options.sliceScanTime, progress);
        });
    if (options.motion.checked)
        steps.push_back([&, volumes](const StepProgress& progress) {
            return correctRunMotion(project, volumes, options.motion, motion, progress, workers);
        });
    if (options.spatial.checked)
        steps.push_back([&, volumes](const StepProgress& progress) {
            return smoothRun(project, volumes, options.spatial, progress, workers);
        });
    if (temporal.checked && temporal.highPass)
        steps.push_back([&, volumes](const StepProgress& progress) {
            return highPassFourier(project, volumes, temporal.nrOfHighPassCycles(), progress);
        });
    else if (temporal.checked && temporal.linearTrendRemoval)
        steps.push_back([&, volumes](const StepProgress& progress) {
            return removeLinearTrend(project, volumes, progress);
        });
    if (temporal.checked && temporal.gaussian)
        steps.push_back([&, volumes](const StepProgress& progress) {
            return smoothTimeCourses(project, volumes, temporal, progress);
        });
    return steps;
}

} // namespace

PostprocessingResult postprocessRun(FMRProject& project, int nrOfMeasuredVolumes,
                                    const PostprocessingOptions& options, VolumeBackup& backup,
                                    MotionCorrection& motion, ProgressReporter& progress,
                                    WorkerPool& workers) {
    const int volumes =
        nrOfCompleteVolumes(project, std::min(nrOfMeasuredVolumes, project.NrOfVolumes));
    const std::vector<Step> steps = checkedSteps(project, volumes, options, motion, workers);
    if (volumes == 0 || steps.empty())
        return PostprocessingResult::NothingToDo;
    if (findImpossibleStep(project, volumes, options) != PostprocessingChoice::None)
        return PostprocessingResult::Failed;
    if (!backup.copy(project, volumes, StepProgress(progress)))
        return progress.cancelled() ? PostprocessingResult::Cancelled
                                    : PostprocessingResult::Failed;
    const int count = int(steps.size());
    for (int i = 0; i < count; ++i) {
        if (steps[size_t(i)](StepProgress(progress, 100 * i / count, 100 * (i + 1) / count)))
            continue;
        // Half a run in its old place and half in a new one would be of no use.
        if (progress.cancelled() || options.motion.checked)
            backup.restore(project);
        return progress.cancelled() ? PostprocessingResult::Cancelled
                                    : PostprocessingResult::Failed;
    }
    return PostprocessingResult::Done;
}

bool writePostprocessedRun(FMRProject& project, int nrOfMeasuredVolumes,
                           const PostprocessingOptions& options, ProgressReporter* progress,
                           const std::function<bool()>& writeMore) {
    const QString oldPath = project.projectPath;
    const QString oldPrefix = project.Prefix;
    const PostprocessedNames names = makePostprocessedNames(oldPath, oldPrefix, options);
    if (names.prefix == prefixOfFiles(oldPrefix)) {
        showWarning("ERROR: The options give the post-processed run no name of its own!");
        return false;
    }
    project.projectPath = paths::join(project.targetFolder, paths::fileName(names.fmrName));
    project.Prefix = names.prefix;
    const bool written = writeSTCData(project, nrOfMeasuredVolumes, progress, nullptr, 0, 100) &&
                         (!writeMore || writeMore()) &&
                         writeFMRHeader(project, project.projectPath, nrOfMeasuredVolumes);
    project.projectPath = oldPath;
    project.Prefix = oldPrefix;
    return written;
}
