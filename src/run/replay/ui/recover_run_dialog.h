// The dialog in which the operator decides about runs that were not saved.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/replay/recovery_choices.h"
#include "run/session/run_session.h"

#include <QDialog>
#include <memory>
#include <vector>

class SettingsFileWatch;

namespace Ui {
class RecoverRunDlg;
}

/// Lists the journals of unfinished runs, the latest first and chosen. It is accepted with
/// "Recover" and "Go On"; it plays nothing itself. A run that begins closes it.
class RecoverRunDlg : public QDialog, public RunListener {
    Q_OBJECT

public:
    RecoverRunDlg(RunSession& session, QWidget* parent);
    ~RecoverRunDlg() override;

    /// What the operator chose.
    [[nodiscard]] PlayOptions options() const;
    [[nodiscard]] PlayPurpose purpose() const { return purpose_; }

    void done(int result) override;
    void documentsLeaving() override { reject(); }

private:
    void connectControls();
    [[nodiscard]] const JournalDescription* chosen() const;
    void fillTable(int chosenRow);
    void showChosen();
    void play(PlayPurpose purpose);
    void openJournal();
    void addJournal(const QString& path);
    void removeJournal();

    const std::unique_ptr<Ui::RecoverRunDlg> ui_;
    RunSession& session_;
    std::vector<JournalDescription> journals_; ///< in the order of the rows
    PlayPurpose purpose_ = PlayPurpose::Recover;
};

/// Opens the dialog as a child of `window`, replacing one that is open, and returns. What the
/// operator decides is carried out by `watch`.
RecoverRunDlg& openRecoverRunDialog(RunSession& session, SettingsFileWatch& watch, QWidget& window);

/// The same at the start of the program, if there is a run to decide about. Until it has closed no
/// run starts by itself.
void offerRecovery(RunSession& session, SettingsFileWatch& watch, QWidget& window);
