// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation_options.h"

#include <cmath>

namespace {

/// What a condition of a protocol has room for.
constexpr int largestNrOfIntervals = 300;

bool isFileName(const QString& name) {
    return !name.isEmpty() && name.size() <= 100 && !name.contains('/') && !name.contains('\\') &&
           !name.contains('"') && !name.startsWith('.') && !name.contains(' ') &&
           !name.startsWith(';');
}

} // namespace

QString problemOf(const SimulationOptions& options) {
    struct Range {
        const char* what;
        double value;
        double smallest;
        double largest;
    };
    // The largest mosaic, 16 x 16 tiles of 256 x 256, still fits the 16-bit rows of an image file.
    const Range ranges[] = {
        {"matrix columns", double(options.sizeX), 8, 256},
        {"matrix rows", double(options.sizeY), 8, 256},
        {"number of slices", double(options.nrOfSlices), 1, 256},
        {"number of volumes", double(options.nrOfVolumes), 1, 9999},
        {"number of volumes to skip", double(options.nrOfVolumesToSkip), 0,
         double(options.nrOfVolumes - 1)},
        {"TR", double(options.repetitionTime), 10, 60000},
        {"field of view", double(options.fieldOfView), 32, 1000},
        {"slice distance", options.sliceDistance, 0, 100},
        {"block length", double(options.blockLength), 1, 10000},
        {"run number", double(options.run), 1, 999},
        {"noise", options.noise, 0, 1000},
        {"amplitude", options.amplitude, -1, 1},
    };
    for (const Range& range : ranges)
        if (!std::isfinite(range.value) || range.value < range.smallest ||
            range.value > range.largest)
            return QString("The %1 (%2) must lie between %3 and %4.")
                .arg(range.what)
                .arg(range.value)
                .arg(range.smallest)
                .arg(range.largest);
    // The baseline has every other block.
    const int analysed = options.nrOfVolumes - options.nrOfVolumesToSkip;
    if ((analysed + options.blockLength - 1) / options.blockLength > 2 * largestNrOfIntervals)
        return QString("Blocks of %1 volumes give a condition more than %2 intervals.")
            .arg(options.blockLength)
            .arg(largestNrOfIntervals);
    if (!isFileName(options.name))
        return QString("The name \"%1\" can't be the beginning of file names.").arg(options.name);
    return {};
}
