// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/motion_preparation.h"

#include "base/messages.h"
#include "base/program_end.h"
#include "volume/motion_correction.h"

bool prepareMotionTarget(const RunParts& run) {
    const RunSettings& settings = run.settings;
    QtCortivoDoc& document = run.document;
    if (!settings.MotionCorrection)
        return true;
    if (settings.IntraSessionMotionCorrection)
        return loadIntraSessionTarget(settings.IntraSessionMotionCorrectionFile, document.project,
                                      document.motion);
    if (document.motion.motionTarget.allocate(document.project.volumeSamples()))
        return true;
    showCritical("FATAL ERROR: Can not get enough memory to continue !");
    endProgram(1);
    return false;
}
