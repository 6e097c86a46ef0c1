// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_memory.h"

#include "base/memory.h"
#include "base/messages.h"
#include "base/paths.h"
#include "run/journal/journal_writer.h"
#include "run/loop/run_model.h"
#include "run/loop/status_text.h"
#include "volume/anatomy/vmr_volume.h"

#include <algorithm>

namespace {

constexpr size_t sampleBytes = sizeof(int16_t);
constexpr size_t pixelBytes = sizeof(uint32_t);
constexpr size_t gigabyte = 1000000000;

size_t atLeast0(int count) {
    return size_t(std::max(count, 0));
}

size_t imageBytes(const RunMemorySizes& sizes) {
    constexpr size_t volumesBesideTheRun = 2; // the first and the working one
    return sizes.volume.samples() * (volumesBesideTheRun * sampleBytes + pixelBytes) +
           sizes.inplanes.samples() * (sampleBytes + pixelBytes) +
           sizes.volume.sliceSamples() * atLeast0(sizes.nrOfTiles) * pixelBytes + cubeVoxels;
}

size_t mapBytes(const RunMemorySizes& sizes) {
    return sizes.volume.samples() *
           (atLeast0(sizes.nrOfContrasts) * sizeof(float) + sizeof(int) + sizeof(uint8_t));
}

// The target, the volume that is resampled, and coefficients of two splines.
size_t motionBytes(const RunMemorySizes& sizes) {
    if (!sizes.motion)
        return 0;
    const size_t splines = *sizes.motion == MotionMethod::Standard       ? 0
                           : *sizes.motion == MotionMethod::LeastSquares ? 2
                                                                         : 1;
    return sizes.volume.samples() * (2 * sampleBytes + splines * sizeof(float));
}

size_t modelBytes(const RunMemorySizes& sizes) {
    const size_t rows = atLeast0(sizes.nrOfPredictors) + 1;
    const size_t values = sizes.volume.samples() * rows;
    // While cosines can't be told from the constant there are sums as well, of the voxels of
    // the mask: a head fills no more than half of its volume.
    return (values + (sizes.hasCosines ? values / 2 : 0)) * sizeof(double);
}

size_t wholeRunBytes(const RunMemorySizes& sizes) {
    const size_t rows = 2 * atLeast0(sizes.nrOfPredictors) + 3;
    return sizes.volume.samples() * (rows * sizeof(float) + sizeof(uint8_t));
}

// As an integer it might overflow: a plug-in may register any number of maps.
double pluginMapBytes(const RunParts& run) {
    return double(run.requests.pluginMaps.count()) * double(run.document.project.volumeSamples()) *
           double(sizeof(float));
}

QString refusal(const RunMemory& need, size_t available, int nrOfVolumes) {
    return QStringLiteral("ERROR: This run needs %1 of memory, and %2 are free. It is not "
                          "started.\n\nIts %3 volumes take %4. Close other programs, or state "
                          "fewer volumes or smaller ones in the settings file.")
        .arg(memoryText(need.ofRun()), memoryText(available), QString::number(nrOfVolumes),
             memoryText(need.volumes));
}

} // namespace

size_t RunMemory::ofRun() const {
    return volumes + images + maps + std::max(reading + motion + model, wholeRunModel);
}

RunMemory memoryOfRun(const RunMemorySizes& sizes) {
    const size_t volume = sizes.volume.samples() * sampleBytes;
    RunMemory need;
    need.volumes = atLeast0(sizes.nrOfVolumes) * volume;
    need.images = imageBytes(sizes);
    need.maps = mapBytes(sizes);
    need.reading = 2 * volume + std::max(JournalLimits().queueBytes, volume);
    need.motion = motionBytes(sizes);
    need.model = modelBytes(sizes);
    need.wholeRunModel = wholeRunBytes(sizes);
    // The copy of the volumes and the work space of the step that needs most, then a second model.
    RunMemorySizes corrected = sizes;
    corrected.motion = MotionMethod::LeastSquares;
    need.postprocessing = std::max(need.volumes + motionBytes(corrected), need.wholeRunModel);
    return need;
}

RunMemorySizes memorySizes(const QtCortivoDoc& document, const RunSettings& settings) {
    RunMemorySizes sizes;
    sizes.volume = document.project.size();
    sizes.nrOfVolumes = document.project.NrOfVolumes;
    if (settings.OverlayInplaneData)
        sizes.inplanes = {settings.OverlayInplaneMatrixSizeX, settings.OverlayInplaneMatrixSizeY,
                          settings.NrOfSlices};
    // No more places than slices are filled, and none of a screen that can't be composed.
    sizes.nrOfTiles =
        int(std::min<int64_t>(int64_t(document.mosaic.MosaicColumns) * document.mosaic.MosaicRows,
                              2 * int64_t(settings.NrOfSlices)));
    const PlannedModelSize model = plannedModelSize(document, settings);
    sizes.nrOfPredictors = model.nrOfPredictors;
    sizes.hasCosines = settings.DriftConfoundPredictors > 1;
    sizes.nrOfContrasts = model.nrOfContrasts;
    if (settings.MotionCorrection)
        sizes.motion = MotionMethod(settings.MotionCorrectionMethod);
    return sizes;
}

QString memoryText(size_t bytes) {
    constexpr double megabyte = 1e6;
    return bytes < gigabyte
               ? QStringLiteral("%1 MB").arg(double(bytes) / megabyte, 0, 'f', 0)
               : QStringLiteral("%1 GB").arg(double(bytes) / double(gigabyte), 0, 'f', 1);
}

bool runFitsIntoMemory(const RunParts& run) {
    const RunMemory need = memoryOfRun(memorySizes(run.document, run.settings));
    returnFreedMemory(); // that of the run before
    const size_t available = availableMemoryBytes();
    if (need.ofRun() > available) {
        showWarning(refusal(need, available, run.document.project.NrOfVolumes));
        return false;
    }
    if (double(need.ofRun()) + pluginMapBytes(run) > double(available)) {
        tellOfPluginMapsWithoutMemory(run);
        return false;
    }
    if (need.ofRun() >= gigabyte) {
        run.display.showLogText(memoryNeedText(run.requests.logFontSize,
                                               paths::fileName(run.settings.settingsFilePath),
                                               memoryText(need.ofRun()), memoryText(available),
                                               available - need.ofRun() < need.postprocessing));
        run.pump.processEvents();
    }
    return true;
}

void tellOfPluginMapsWithoutMemory(const RunParts& run) {
    showWarning(QStringLiteral("ERROR: The plug-in has registered %1 maps, which need %2 GB of "
                               "memory. There is not that much.\n\nClose the window of the plug-in "
                               "and start again.")
                    .arg(run.requests.pluginMaps.count())
                    .arg(pluginMapBytes(run) / double(gigabyte), 0, 'f', 1));
}
