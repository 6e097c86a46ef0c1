// What a session is doing: the one place that says so.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

enum class Phase {
    Idle,
    Preparing,      ///< from the press of the run button to the first pass of the loop
    Recording,      ///< the volume loop, from its start to its end
    Saving,         ///< from the end of the loop until the run is on disk
    Reloading,      ///< a finished run comes back from disk
    PostProcessing, ///< the volumes in memory are changed and written under new names
};

/// Owned by the session. Menus, controls, the timer and every slot ask it what may happen now.
class SessionPhase {
public:
    [[nodiscard]] Phase now() const { return now_; }
    [[nodiscard]] bool isIdle() const { return now_ == Phase::Idle; }
    /// From the start of the volume loop to its end and at no other time.
    [[nodiscard]] bool runActive() const { return now_ == Phase::Recording; }
    /// There is a run that can be asked to stop.
    [[nodiscard]] bool canBeStopped() const {
        return now_ == Phase::Preparing || now_ == Phase::Recording;
    }
    void enter(Phase phase) { now_ = phase; }

private:
    Phase now_ = Phase::Idle;
};

/// The session is in this phase, or in one that work inside enters, until the scope ends; it is
/// idle then.
class PhaseScope {
public:
    PhaseScope(SessionPhase& phase, Phase first) : phase_(phase) { phase_.enter(first); }
    ~PhaseScope() { phase_.enter(Phase::Idle); }
    PhaseScope(const PhaseScope&) = delete;
    PhaseScope& operator=(const PhaseScope&) = delete;

private:
    SessionPhase& phase_;
};
