// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/finished_run.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "run/loop/motion_parameters_file.h"
#include "run/loop/run_statistics.h"
#include "volume/postprocessing.h"
#include "volume/postprocessing_names.h"

#include <QDir>

namespace {

/// Beside the project, as for a run that is corrected while it is measured.
bool writeMotionFiles(const FMRProject& project, int nrOfVolumes, const MotionCorrection& motion) {
    if (!saveMotionParameters(motion, project, nrOfVolumes))
        return false;
    if (writeFileAtomically(motionLogFileName(project), motion.keptLog()))
        return true;
    showWarning("ERROR: Can not open motion correction log file.");
    return false;
}

bool writeFiles(FMRProject& project, int nrOfVolumes, const PostprocessingOptions& options,
                const MotionCorrection& motion, ProgressReporter& progress) {
    const auto writeMotion = [&] {
        return !options.motion.checked || writeMotionFiles(project, nrOfVolumes, motion);
    };
    for (;;) {
        QDir().mkpath(project.targetFolder);
        if (writePostprocessedRun(project, nrOfVolumes, options, &progress, writeMotion))
            return true;
        if (progress.cancelled() || !askToSaveAgain(project.targetFolder))
            return false;
    }
}

/// The motion of the samples in memory, for plots and panel.
void takeMotion(const RunParts& run, MotionCorrection& found) {
    MotionCorrection& motion = run.document.motion;
    motion.method = found.method;
    motion.motionParameters = std::move(found.motionParameters);
    motion.volumesNotFound = std::move(found.volumesNotFound);
    motion.foundAfterRun = true;
    run.report.volumesWithoutMotion = int(motion.volumesNotFound.size());
}

/// True when the changed samples are on disk. What the work needs is freed at its end.
bool changeSamples(const RunParts& run, int nrOfVolumes, const PostprocessingOptions& options,
                   ProgressReporter& steps, ProgressReporter& writing) {
    FMRProject& project = run.document.project;
    VolumeBackup backup;
    MotionCorrection motion;
    if (postprocessRun(project, nrOfVolumes, options, backup, motion, steps, run.workers) !=
        PostprocessingResult::Done)
        return false;
    if (!writeFiles(project, nrOfVolumes, options, motion, writing)) {
        backup.restore(project);
        return false;
    }
    if (options.motion.checked)
        takeMotion(run, motion);
    return true;
}

} // namespace

bool postprocessRunInMemory(const RunParts& run, int nrOfMeasuredVolumes,
                            const PostprocessingOptions& options, bool recomputeStatistics,
                            ProgressReporter& progress) {
    FMRProject& project = run.document.project;
    // By and large what the steps take of the time.
    PartProgress steps(progress, 0, 60);
    PartProgress writing(progress, 60, recomputeStatistics ? 80 : 100);
    PartProgress statistics(progress, 80, 100);
    if (!changeSamples(run, nrOfMeasuredVolumes, options, steps, writing))
        return false;
    if (run.requests.overlayVolumeMode != 0)
        run.document.slices.updateSlicePixmaps(project.volumes[size_t(nrOfMeasuredVolumes) - 1],
                                               run.workers);
    return !recomputeStatistics ||
           fitCompleteRun(run, nrOfMeasuredVolumes, statistics) == WholeRunFit::Done;
}
