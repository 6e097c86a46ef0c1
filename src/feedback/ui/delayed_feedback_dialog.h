// The settings of delayed feedback.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dialogs/edit_dialog.h"
#include "feedback/delayed_feedback.h"
#include "run/loop/run_listeners.h"

#include <memory>

class RunSession;

namespace Ui {
class DelayedFeedbackDlg;
}

/// Edits the settings of the session's delayed feedback, which has some from the moment at which
/// this dialog is created, and says what was written last. It lists the conditions of the run in
/// memory and follows the runs; when another settings file is chosen it is deleted, as its settings
/// are. Closing only hides it.
class DelayedFeedbackDlg : public EditDialog, public RunListener {
    Q_OBJECT

public:
    /// Without a run in memory, `planned` is the protocol of the next one.
    DelayedFeedbackDlg(RunSession& session, const StimulationProtocol& planned, QWidget* parent);
    ~DelayedFeedbackDlg() override;

    void runPrepared(QtCortivoDoc& functional) override;
    void endOfVolume(const VolumeAtHand& hand) override;
    void recordPlayed(const RunRecord& record) override;
    void settingsFileChanged() override;

public Q_SLOTS:
    /// Hides the dialog; what was not applied is lost.
    void onClose();
    /// Gives the settings to the session, unless they are faulty, which is told.
    void onApply();
    /// The trials are the intervals of this condition, from 0: window and time of the update follow
    /// its first interval. Without an interval, or out of range, they stay.
    void onSelectedConditionChanged(int index);

protected:
    [[nodiscard]] bool apply() override;
    void revert() override;
    [[nodiscard]] bool isChanged() const override { return settings_.isChanged(); }

private:
    void fillConditions();
    void connectFields();
    void readFields();
    void showFields();
    void showMessage();

    RunSession& session_;
    const std::unique_ptr<Ui::DelayedFeedbackDlg> ui_;
    StimulationProtocol protocol_; ///< the run's, or the planned one's
    EditedCopy<DelayedFeedbackSettings> settings_;
    bool showing_ = false; ///< the fields are being filled
};

/// Opens the dialog as a child of `window`, or raises it; it stays open during a run. Without a run
/// in memory it reads the protocol that the settings name, with a message if that can't be used.
void openDelayedFeedbackDialog(RunSession& session, QWidget& window);
