// What a session is doing.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

enum class Phase {
    Idle,
    Preparing,      ///< from the press of the run button to the start of the loop
    Recording,      ///< the volume loop, from its start to its end
    Saving,         ///< from the end of the loop until the run is on disk
    Reloading,      ///< a finished run is loaded from disk, with its model
    PostProcessing, ///< the volumes in memory are changed, written under new names and fitted
    Analysing,      ///< a model of complete data is fitted, or a dialog does long work
};

/// Owned by the session. Menus, controls, the timer and all slots query it for what is allowed now.
class SessionPhase {
public:
    [[nodiscard]] Phase now() const { return now_; }
    [[nodiscard]] bool isIdle() const { return now_ == Phase::Idle; }
    /// True exactly while the volume loop runs.
    [[nodiscard]] bool runActive() const { return now_ == Phase::Recording; }
    /// True when there is a run that can be stopped.
    [[nodiscard]] bool canBeStopped() const {
        return now_ == Phase::Preparing || now_ == Phase::Recording;
    }
    void enter(Phase phase) { now_ = phase; }

private:
    Phase now_ = Phase::Idle;
};

/// Enters a phase; work inside may enter others. The session is idle again when the scope ends.
class PhaseScope {
public:
    PhaseScope(SessionPhase& phase, Phase first) : phase_(phase) { phase_.enter(first); }
    ~PhaseScope() { phase_.enter(Phase::Idle); }
    PhaseScope(const PhaseScope&) = delete;
    PhaseScope& operator=(const PhaseScope&) = delete;

private:
    SessionPhase& phase_;
};
