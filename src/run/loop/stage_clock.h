// What the loop does at the moment, for the ledger of the volumes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "run/document/volume_ledger.h"
#include "run/loop/run_listeners.h"

/// What the time of a step's listeners is counted as.
[[nodiscard]] VolumeStage stageOf(VolumeStep step);

/// A ledger with the clock of a pump.
class StageClock {
public:
    StageClock(VolumeLedger& ledger, const EventPump& pump) : ledger_(ledger), pump_(pump) {}

    [[nodiscard]] qint64 now() const { return pump_.microseconds(); }
    void enter(VolumeStage stage) const { ledger_.enter(stage, now()); }
    /// For a hook whose time is counted as `stage`. Journal and plug-in take part in several hooks;
    /// theirs is counted as their own in each.
    [[nodiscard]] PlaceCalled listenersAs(VolumeStage stage) const;

private:
    VolumeLedger& ledger_;
    const EventPump& pump_;
};
