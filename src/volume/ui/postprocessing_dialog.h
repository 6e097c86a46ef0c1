// The dialog in which the operator chooses how a finished run is post-processed.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dialogs/edit_dialog.h"
#include "run/loop/run_listeners.h"
#include "volume/fmr_project.h"
#include "volume/postprocessing_choices.h"

#include <memory>

class EventPump;
class RunSession;

namespace Ui {
class PostprocessingDlg;
}

/// Collects the options and shows the names of the result; it changes nothing itself. Impossible
/// choices are reported when "OK" is pressed, and the dialog stays open.
class PostprocessingDlg : public EditDialog, public RunListener {
    Q_OBJECT

public:
    /// What the dialog shows of the run is copied, since the project may be replaced meanwhile.
    PostprocessingDlg(const FMRProject& project, int nrOfMeasuredVolumes, QWidget* parent);
    ~PostprocessingDlg() override;

    /// The current choices. Text that is not a number gives NaN, which "OK" rejects.
    [[nodiscard]] PostprocessingOptions options() const;
    /// True to go on with the statistics of the changed data.
    [[nodiscard]] bool recomputeStatistics() const;

    // The dialog closes with its run.
    void documentsLeaving() override { leave(); }
    void settingsFileChanged() override { leave(); }

protected:
    [[nodiscard]] bool apply() override;

private:
    void leave();
    void setOptions(const PostprocessingOptions& options);
    void onChanged();
    [[nodiscard]] QString shown(const QString& fileName) const;
    [[nodiscard]] QString resultText() const;
    [[nodiscard]] QWidget* controlOf(PostprocessingChoice choice) const;

    const std::unique_ptr<Ui::PostprocessingDlg> ui_;
    const FMRHeader header_;
    const QString projectPath_;
    const QString targetFolder_;
    const int nrOfVolumes_;
};

/// Opens the dialog for the run in memory as a child of `window`, replacing one that is open, and
/// returns; "OK" post-processes the run under a progress box. Nothing happens without a run, or
/// unless the session is idle.
void openPostprocessingDialog(RunSession& session, EventPump& pump, QWidget& window);
