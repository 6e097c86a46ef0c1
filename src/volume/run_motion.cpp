// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/run_motion.h"

#include "base/messages.h"
#include "volume/time_courses.h"

namespace {

/// The target is a copy: its volume belongs to the run that is changed.
bool begin(const FMRProject& project, const RunMotionOptions& options, MotionCorrection& motion) {
    motion.method = options.method;
    motion.foundAfterRun = true;
    motion.keepLog();
    if (!motion.motionTarget.allocate(project.volumeSamples())) {
        showWarning("ERROR: Insufficient memory for creating volume for motion correction!");
        return false;
    }
    std::ranges::copy(project.volumes[size_t(options.targetVolume)], motion.motionTarget.data());
    return motion.prepare(project);
}

bool tellThatItCannotBeCorrected() {
    showInformation("INFO: This data set did not allow to perform 3D motion correction properly.");
    return false;
}

} // namespace

bool runMotionIsPossible(int nrOfVolumes, const RunMotionOptions& options) {
    if (nrOfVolumes < 2) {
        showWarning("ERROR: A motion correction needs at least 2 volumes!");
        return false;
    }
    if (options.targetVolume < 0 || options.targetVolume >= nrOfVolumes) {
        showWarning(QString("ERROR: The target of the motion correction must be one of the %1 "
                            "volumes of the run!")
                        .arg(nrOfVolumes));
        return false;
    }
    return true;
}

bool correctRunMotion(FMRProject& project, int nrOfVolumes, const RunMotionOptions& options,
                      MotionCorrection& motion, const StepProgress& progress, WorkerPool& workers) {
    const int volumes = nrOfCompleteVolumes(project, nrOfVolumes);
    if (!runMotionIsPossible(volumes, options) || !begin(project, options, motion))
        return false;
    bool failed = false;
    for (int v = 0; v < volumes; ++v) {
        if (v != options.targetVolume && !motion.correct(project, v, failed, workers))
            return false;
        // From here on volumes would be moved without a fit.
        if (failed)
            return tellThatItCannotBeCorrected();
        if (!progress.advance(v + 1, volumes))
            return false;
    }
    motion.releaseTarget();
    return int(motion.volumesNotFound.size()) < volumes - 1 || tellThatItCannotBeCorrected();
}
