// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/finished_run.h"

#include "run/loop/run_statistics.h"
#include "volume/postprocessing.h"
#include "volume/postprocessing_names.h"

#include <QDir>

namespace {

bool writeFiles(FMRProject& project, int nrOfVolumes, const PostprocessingOptions& options,
                ProgressReporter& progress) {
    for (;;) {
        QDir().mkpath(project.targetFolder);
        if (writePostprocessedRun(project, nrOfVolumes, options, &progress))
            return true;
        if (progress.cancelled() || !askToSaveAgain(project.targetFolder))
            return false;
    }
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
    VolumeBackup backup;
    if (postprocessRun(project, nrOfMeasuredVolumes, options, backup, steps) !=
        PostprocessingResult::Done)
        return false;
    if (!writeFiles(project, nrOfMeasuredVolumes, options, writing)) {
        backup.restore(project);
        return false;
    }
    backup.release();
    if (run.requests.overlayVolumeMode != 0)
        run.document.slices.updateSlicePixmaps(project.volumes[size_t(nrOfMeasuredVolumes) - 1],
                                               run.workers);
    return !recomputeStatistics ||
           fitCompleteRun(run, nrOfMeasuredVolumes, statistics) == WholeRunFit::Done;
}
