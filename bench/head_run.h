// A run of a moving head for the benchmarks: its files, and a reader that has it in memory.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/volume_reader.h"
#include "run/settings/run_settings.h"

#include <functional>
#include <vector>

struct HeadRunSize {
    int columns;
    int rows;
    int slices;
    int tiles; ///< in a row of the scanner's mosaic
    float pixelMillimetres;
    float sliceMillimetres;

    [[nodiscard]] size_t bytes() const {
        return size_t(columns) * size_t(rows) * size_t(slices) * sizeof(int16_t);
    }
};

inline constexpr HeadRunSize headRunSizes[] = {
    {64, 64, 25, 5, 3.0f, 4.0f}, {74, 74, 36, 6, 2.6f, 3.3f}, {104, 104, 72, 9, 2.0f, 2.0f}};

/// Supplies volumes of a head that moves to and fro, in negligible time. The air is as bright as
/// tissue, so that every voxel is inside the mask.
class HeadRunReader : public VolumeReader {
public:
    /// `volumeRead` is called when a volume of the run is in memory.
    HeadRunReader(FMRProject& project, const HeadRunSize& size, std::function<void()> volumeRead);
    bool readFirstVolume() override;
    bool readVolume(int volume) override;

private:
    void fill(std::span<int16_t> volume, int index);

    FMRProject& project_;
    std::function<void()> volumeRead_;
    std::vector<std::vector<int16_t>> heads_; ///< one for each place on its way
};

/// Writes the settings file and those that it names into a folder, and fills `settings` like it:
/// blocks of so many conditions after a baseline, three contrasts. False when that fails.
[[nodiscard]] bool writeHeadRun(const QString& folder, const HeadRunSize& size, int volumes,
                                int nrOfConditions, RunSettings& settings);
