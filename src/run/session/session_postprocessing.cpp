// Post-processing of the run in memory.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/paths.h"
#include "run/loop/finished_run.h"
#include "run/loop/status_text.h"
#include "run/session/run_session.h"
#include "volume/postprocessing_names.h"

int RunSession::volumesForPostprocessing() const {
    return phase.isIdle() && functionalDocument
               ? recordedVolumes(report, functionalDocument->project)
               : 0;
}

bool RunSession::postprocess(const PostprocessingOptions& options, bool recomputeStatistics,
                             ProgressReporter& progress) {
    // It changes the samples in memory, which may be nowhere else.
    if (volumesForPostprocessing() == 0 || !mayLeaveRun())
        return false;
    const int volumes = volumesForPostprocessing();
    if (volumes == 0)
        return false;
    return inPhase(Phase::PostProcessing, [&] {
        const bool done =
            postprocessRunInMemory(parts(), volumes, options, recomputeStatistics, progress);
        listeners.samplesChanged(); // where it was cancelled, they were changed and restored
        if (done)
            showPostprocessed(options);
        return done;
    });
}

void RunSession::showPostprocessed(const PostprocessingOptions& options) {
    const FMRProject& project = functionalDocument->project;
    const QString name = paths::fileName(
        makePostprocessedNames(project.projectPath, project.Prefix, options).fmrName);
    report.outcomeText = postprocessedText(
        requests.logFontSize, name, options.motion.checked ? report.volumesWithoutMotion : 0);
    display_.showLogText(report.outcomeText);
}
