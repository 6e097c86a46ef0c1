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

PlaceCalled StageClock::listenersAs(VolumeStage stage) const {
    return [*this, stage](ListenerPlace place) {
        if (place == ListenerPlace::Journal)
            enter(VolumeStage::Journal);
        else
            enter(place == ListenerPlace::PlugIn ? VolumeStage::PlugIn : stage);
    };
}
