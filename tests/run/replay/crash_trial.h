// One run that is ended somewhere in its middle, and the same run undisturbed.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/session_fixture.h"
#include "scanner_simulator/simulated_scan.h"

/// Changes thresholds, contrasts and colours at fixed moments of fixed volumes.
class TrialOperator : public RunListener {
public:
    explicit TrialOperator(RunSession& session) : session_(session) {
        session.listeners.add(*this, ListenerPlace::Dialogs);
    }
    int firstChange = 0; ///< earlier ones have been made already
    int endOfChanges = 1000;
    std::function<void(int volume)> whenRead;

    [[nodiscard]] bool beforeVolume(const VolumeAtHand& hand) override {
        if (whenRead)
            whenRead(hand.volume);
        return true;
    }
    [[nodiscard]] bool atStep(VolumeStep step, const VolumeAtHand& hand) override;
    void endOfVolume(const VolumeAtHand& hand) override;

private:
    void change(int volume, int moment);

    RunSession& session_;
};

/// A session of simulated files in one folder, which several runs and processes work on in turn.
class CrashTrial {
public:
    /// Writes all files of the run, the whole of an arriving protocol included.
    explicit CrashTrial(const SimulationOptions& options);
    ~CrashTrial();

    [[nodiscard]] QString path(const QString& name) const { return options_.folder + '/' + name; }
    /// A session on the files of a trial's folder, here or in another process.
    static void prepare(RunSession& session, const QString& folder);
    /// The run from its start; stopped when volume `stopAt` has been read, if that is one.
    void run(int stopAt, int nrOfChanges);
    /// The journals in the results.
    [[nodiscard]] QStringList journals() const;
    void play(const QString& journal, PlayPurpose purpose, int firstChange);
    /// Moves the results away; all files of the run by name.
    [[nodiscard]] QMap<QString, QByteArray> takeResults();

    ScriptedMessages messages;
    RecordedProgramEnd programEnd;
    bool keepsJournals = false;

private:
    SimulationOptions options_;
};

/// Volumes, and changes by the operator, that a journal holds.
struct JournalCount {
    int volumes = 0;
    int changes = 0;
};
[[nodiscard]] JournalCount countJournal(const QString& path);
