// What the loop does at the moment, for the ledger of the volumes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/intake_context.h"
#include "run/document/volume_ledger.h"
#include "run/loop/run_listeners.h"

/// What the time of a step's listeners is counted as.
[[nodiscard]] VolumeStage stageOf(VolumeStep step);

/// A ledger with the clock of a pump.
class StageClock {
public:
    StageClock(VolumeLedger& ledger, const EventPump& pump) : ledger_(ledger), pump_(pump) {}

    [[nodiscard]] qint64 now() const { return pump_.microseconds(); }
    /// The reader is about to be asked for a volume: resets what it said of the one before.
    void startVolume(IntakeState& intake);
    /// The volume has been read and counts.
    void volumeRead(const IntakeState& intake, bool played);
    void enter(VolumeStage stage) const { ledger_.enter(stage, now()); }
    /// For a hook whose time is counted as `stage`. Journal and plug-in take part in several hooks;
    /// theirs is counted as their own in each.
    [[nodiscard]] PlaceCalled listenersAs(VolumeStage stage) const;

private:
    VolumeLedger& ledger_;
    const EventPump& pump_;
    qint64 eventTime_ = 0; ///< of the pump, when the volume was asked for
};
