// One run that is ended somewhere in its middle, and the same run undisturbed.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/session_fixture.h"
#include "scanner_simulator/simulated_scan.h"

/// Of a run of 32 volumes, two of them skipped.
struct TrialKind {
    int size;
    int slices;
    HeadMotion motion;
    ProtocolKind protocol;
};
// The first ones are tests; all of them, with many kills, are a trial of some minutes:
// VELO_TRIAL_KINDS=6 VELO_TRIAL_KILLS=35 VELO_TRIAL_SEED=1.
inline constexpr TrialKind trialKinds[] = {
    {24, 6, HeadMotion::None, ProtocolKind::Prt},    {32, 8, HeadMotion::Drift, ProtocolKind::Tdat},
    {24, 6, HeadMotion::Jumps, ProtocolKind::Rtp},   {64, 25, HeadMotion::Drift, ProtocolKind::Prt},
    {104, 72, HeadMotion::Drift, ProtocolKind::Prt}, {104, 72, HeadMotion::None, ProtocolKind::Rtp},
};
[[nodiscard]] int numberFrom(const char* variable, int otherwise);

/// Lets the listener change thresholds, contrasts and colours of the session at fixed moments of
/// fixed volumes; the changes before `first` have been made already.
void operate(ProbeListener& listener, RunSession& session, int first = 0, int end = 1000);

/// Volumes, and changes by the operator, that a journal holds.
struct JournalCount {
    int volumes = 0;
    int changes = 0;
};
[[nodiscard]] JournalCount countJournal(const QString& path);

/// A session of simulated files in one folder, which several runs and processes work on in turn.
class CrashTrial {
public:
    using Results = QMap<QString, QByteArray>;

    /// Writes all files of the run, the whole of an arriving protocol included.
    explicit CrashTrial(const TrialKind& kind);
    ~CrashTrial();

    [[nodiscard]] QString path(const QString& name) const { return folder_.filePath(name); }
    /// A session on the files of a trial's folder, here or in another process.
    static void prepare(RunSession& session, const QString& folder);
    /// Switches all logs of regions on, and the ranking of their voxels.
    static void followRegions(RunSession& session);
    /// The run from its start; stopped when volume `stopAt` has been read, if that is one.
    void run(int stopAt = -1, int nrOfChanges = 1000);
    /// The journals in a folder.
    [[nodiscard]] QStringList journals(const QString& folder = "results") const;
    void play(const QString& journal, PlayPurpose purpose, int firstChange = 0);
    /// What comes back of a journal is what a run gives that was stopped there. One without volumes
    /// can only be gone on with.
    void expectComesBack(const QString& journal, bool goesOn);
    /// Moves the results away; all files of the run by name.
    [[nodiscard]] Results takeResults();
    [[nodiscard]] Results results() const; ///< the same, which stay

    ScriptedMessages messages;
    RecordedProgramEnd programEnd;
    bool keepsJournals = false;
    bool followsRegions = true; ///< writes their logs and ranks their voxels

private:
    QTemporaryDir folder_;
};
