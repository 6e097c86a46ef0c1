// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/stage_clock.h"

VolumeStage stageOf(VolumeStep step) {
    switch (step) {
    case VolumeStep::LoadRegions:
    case VolumeStep::RegionTimeCourses:
    case VolumeStep::SelectVoxels:
        return VolumeStage::Regions;
    case VolumeStep::Plots:
        return VolumeStage::Plots;
    case VolumeStep::Logs:
        return VolumeStage::Logs;
    case VolumeStep::Classification:
        return VolumeStage::Classification;
    case VolumeStep::LetterDecoder:
        return VolumeStage::Decoder;
    case VolumeStep::AfterModel:
        break;
    }
    return VolumeStage::Window;
}

void StageClock::startVolume(IntakeState& intake) {
    intake.lastFileNoticed = -1;
    intake.waitedForFiles = 0;
    eventTime_ = pump_.eventTime();
    ledger_.startVolume(now());
}

void StageClock::volumeRead(const IntakeState& intake, bool played) {
    const qint64 noticed = intake.lastFileNoticed; // milliseconds
    ledger_.volumeRead(now(), {.waited = intake.waitedForFiles,
                               .noticed = noticed < 0 ? -1 : 1000 * noticed,
                               .events = pump_.eventTime() - eventTime_,
                               .played = played});
}

PlaceCalled StageClock::listenersAs(VolumeStage stage) const {
    return [*this, stage](ListenerPlace place) {
        if (place == ListenerPlace::Journal)
            enter(VolumeStage::Journal);
        else
            enter(place == ListenerPlace::PlugIn ? VolumeStage::PlugIn : stage);
    };
}
