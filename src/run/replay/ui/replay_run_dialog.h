// The dialog in which the operator chooses a run that is played again.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dialogs/edit_dialog.h"
#include "run/loop/run_listeners.h"
#include "run/replay/replay_choices.h"

#include <memory>

class QLineEdit;
class RunSession;
class SettingsFileWatch;

namespace Ui {
class ReplayRunDlg;
}

/// Collects the choices and tells what will happen; it plays nothing itself. What can't work is
/// reported when "Replay" is pressed, and the dialog stays open. A run that begins closes it.
class ReplayRunDlg : public EditDialog, public RunListener {
    Q_OBJECT

public:
    /// Begins with the saved run of the current settings, if there is one.
    ReplayRunDlg(RunSettings current, QWidget* parent);
    ~ReplayRunDlg() override;

    [[nodiscard]] const ReplayableRun& run() const { return run_; }
    [[nodiscard]] ReplayChoices choices() const;

    void done(int result) override;
    void documentsLeaving() override { reject(); }

protected:
    [[nodiscard]] bool apply() override;

private:
    void connectControls();
    void browse(QLineEdit& field, const QString& filter);
    void runChanged();
    void choicesChanged();
    [[nodiscard]] QWidget* controlOf(ReplayChoice choice) const;

    const std::unique_ptr<Ui::ReplayRunDlg> ui_;
    const RunSettings current_;
    ReplayableRun run_;
    bool folderTyped_ = false; ///< otherwise it follows the run
};

/// Opens the dialog as a child of `window`, replacing one that is open, and returns. `watch` plays
/// the run.
void openReplayRunDialog(RunSession& session, SettingsFileWatch& watch, QWidget& window);
