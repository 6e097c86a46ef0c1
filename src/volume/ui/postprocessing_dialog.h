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

/// Collects the options and shows the names that the result will bear; it changes nothing itself.
/// What can't be carried out is named when "OK" is pressed, and the dialog stays.
class PostprocessingDlg : public EditDialog, public RunListener {
    Q_OBJECT

public:
    /// What the dialog shows of the run is copied: the project may go while the dialog is open.
    PostprocessingDlg(const FMRProject& project, int nrOfMeasuredVolumes, QWidget* parent);
    ~PostprocessingDlg() override;

    /// As chosen. A text that is no number gives NaN, which does not pass "OK".
    [[nodiscard]] PostprocessingOptions options() const;
    /// True to go on with the statistics of the changed data.
    [[nodiscard]] bool recomputeStatistics() const;

    // It goes with the run that it is about.
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

/// Opens the dialog for the run in memory as a child of `window`, in place of one that is open, and
/// returns; "OK" post-processes the run under a progress box. Nothing happens without a run, or
/// unless the session is idle.
void openPostprocessingDialog(RunSession& session, EventPump& pump, QWidget& window);
