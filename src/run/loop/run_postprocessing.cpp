// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/finished_run.h"

#include "run/loop/run_statistics.h"
#include "volume/postprocessing.h"
#include "volume/postprocessing_names.h"

#include <QDir>

namespace {

/// A share of the whole progress.
class ProgressShare : public ProgressReporter {
public:
    ProgressShare(ProgressReporter& whole, int from, int to)
        : whole_(whole), from_(from), to_(to) {}
    void setProgress(int percent) override {
        whole_.setProgress(from_ + percent * (to_ - from_) / 100);
    }
    [[nodiscard]] bool cancelled() const override { return whole_.cancelled(); }

private:
    ProgressReporter& whole_;
    int from_;
    int to_;
};

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
    ProgressShare steps(progress, 0, 60);
    ProgressShare writing(progress, 60, recomputeStatistics ? 80 : 100);
    ProgressShare statistics(progress, 80, 100);
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
        run.document.slices.updateSlicePixmaps(project.volumes[size_t(nrOfMeasuredVolumes) - 1]);
    return !recomputeStatistics ||
           fitCompleteRun(run, nrOfMeasuredVolumes, statistics) == WholeRunFit::Done;
}
