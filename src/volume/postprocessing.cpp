// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/postprocessing.h"

#include "base/messages.h"
#include "base/paths.h"
#include "volume/fmr_file.h"
#include "volume/high_pass.h"
#include "volume/postprocessing_names.h"
#include "volume/run_smoothing.h"
#include "volume/slice_timing.h"
#include "volume/stc_file.h"
#include "volume/temporal_smoothing.h"
#include "volume/time_courses.h"

namespace {

struct Step {
    std::function<bool()> isPossible; ///< shows a message when it is not
    std::function<bool(const StepProgress&)> run;
};

std::vector<Step> checkedSteps(FMRProject& project, int volumes,
                               const PostprocessingOptions& options) {
    const TemporalOptions& temporal = options.temporal;
    std::vector<Step> steps;
    if (options.sliceScanTime.checked)
        steps.push_back({[&] { return sliceTimesAreValid(project); },
                         [&, volumes](const StepProgress& progress) {
                             return correctSliceScanTime(project, volumes, options.sliceScanTime,
                                                         progress);
                         }});
    if (options.spatial.checked)
        steps.push_back({[&] { return runSmoothingIsPossible(project, options.spatial); },
                         [&, volumes](const StepProgress& progress) {
                             return smoothRun(project, volumes, options.spatial, progress);
                         }});
    if (temporal.checked && temporal.highPass)
        steps.push_back(
            {[&, volumes] { return highPassIsPossible(volumes, temporal.nrOfHighPassCycles()); },
             [&, volumes](const StepProgress& progress) {
                 return highPassFourier(project, volumes, temporal.nrOfHighPassCycles(), progress);
             }});
    else if (temporal.checked && temporal.linearTrendRemoval)
        steps.push_back({[] { return true; },
                         [&, volumes](const StepProgress& progress) {
                             return removeLinearTrend(project, volumes, progress);
                         }});
    if (temporal.checked && temporal.gaussian)
        steps.push_back({[&] { return temporalSmoothingIsPossible(project, temporal); },
                         [&, volumes](const StepProgress& progress) {
                             return smoothTimeCourses(project, volumes, temporal, progress);
                         }});
    return steps;
}

/// The samples of the first volumes, to be brought back when the work is cancelled.
class KeptVolumes {
public:
    [[nodiscard]] bool keep(const FMRProject& project, int volumes) {
        FMRHeader sizes = project;
        sizes.NrOfVolumes = volumes;
        static_cast<FMRHeader&>(kept_) = sizes;
        if (!kept_.allocateVolumes())
            return false;
        for (size_t v = 0; v < kept_.volumes.size(); ++v)
            std::copy_n(project.volumes[v].data(), project.volumeSamples(),
                        kept_.volumes[v].data());
        return true;
    }
    /// The volumes of the project stay where they are in memory.
    void bringBack(FMRProject& project) const {
        for (size_t v = 0; v < kept_.volumes.size(); ++v)
            std::ranges::copy(kept_.volumes[v].span(), project.volumes[v].data());
    }

private:
    FMRProject kept_;
};

} // namespace

PostprocessingResult postprocessRun(FMRProject& project, int nrOfMeasuredVolumes,
                                    const PostprocessingOptions& options,
                                    ProgressReporter& progress) {
    const int volumes =
        nrOfCompleteVolumes(project, std::min(nrOfMeasuredVolumes, project.NrOfVolumes));
    const std::vector<Step> steps = checkedSteps(project, volumes, options);
    if (volumes == 0 || steps.empty())
        return PostprocessingResult::NothingToDo;
    for (const Step& step : steps)
        if (!step.isPossible())
            return PostprocessingResult::Failed;
    KeptVolumes kept;
    if (!kept.keep(project, volumes)) {
        showCritical("ERROR: Insufficient memory for a copy of the run during post-processing!");
        return PostprocessingResult::Failed;
    }
    const int count = int(steps.size());
    for (int i = 0; i < count; ++i) {
        if (steps[size_t(i)].run(StepProgress(progress, 100 * i / count, 100 * (i + 1) / count)))
            continue;
        if (!progress.cancelled())
            return PostprocessingResult::Failed;
        kept.bringBack(project);
        return PostprocessingResult::Cancelled;
    }
    return PostprocessingResult::Done;
}

bool writePostprocessedRun(FMRProject& project, int nrOfMeasuredVolumes,
                           const PostprocessingOptions& options, ProgressReporter* progress) {
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
                         writeFMRHeader(project, project.projectPath, nrOfMeasuredVolumes);
    project.projectPath = oldPath;
    project.Prefix = oldPrefix;
    return written;
}
