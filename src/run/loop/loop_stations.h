// The steps of the loop that others fill in, in the order in which a volume passes them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <functional>

/// In loop order. A station that nobody fills does nothing.
enum class Station {
    PluginBeforeVolume,
    MotionCorrection,
    Smoothing,
    PreLoadedRegions,
    RegionTimeCourses,
    ResponseAndMotionPlots,
    RegionLogs,
    Classification,
    Feedback,
    LetterDecoder,
    PluginAfterVolume,
    BestVoxels,
    Count
};

class LoopStations {
public:
    /// Works on one volume; false ends the run, after the station has shown why.
    using Step = std::function<bool(int volumeIndex)>;

    void set(Station station, Step step) { steps_[size_t(station)] = std::move(step); }
    /// Runs the station; true when nobody has filled it.
    [[nodiscard]] bool run(Station station, int volumeIndex) const {
        const Step& step = steps_[size_t(station)];
        return !step || step(volumeIndex);
    }
    /// Called once after the last volume, whichever way the loop ended.
    std::function<void()> afterRun;

private:
    std::array<Step, size_t(Station::Count)> steps_;
};
