// Post-processing of the run in memory: the dialog, and the work with its progress.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/progress_boxes.h"
#include "run/window/velo_cortivo.h"
#include "volume/ui/postprocessing_dialog.h"

void VeloCortivo::slotPostProcessData() {
    const int volumes = session_.measuredVolumes();
    if (runInProgress_ || volumes == 0)
        return;
    delete postprocessingDialog_;
    auto* dialog = new PostprocessingDlg(session_.functionalDocument->project, volumes, this);
    postprocessingDialog_ = dialog;
    connect(dialog, &QDialog::accepted, this,
            [this, dialog] { postprocess(dialog->options(), dialog->recomputeStatistics()); });
    // Not waited for: auto-start may begin a run, which closes it.
    dialog->open();
}

void VeloCortivo::postprocess(const PostprocessingOptions& options, bool recomputeStatistics) {
    if (runInProgress_)
        return;
    const std::unique_ptr<ProgressReporter> progress = openCancellableProgressBox(
        this, {"PostprocessingProgressDlg", "Post-processing the run..."}, pump_);
    session_.postprocess(options, recomputeStatistics, *progress);
}
