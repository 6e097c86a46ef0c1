// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/training/elimination_work.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "classify/pattern_file.h"
#include "classify/training/machine_training.h"
#include "regions/roi_file.h"
#include "regions/vom_file.h"
#include "run/session/run_session.h"

#include <QRegularExpression>
#include <algorithm>
#include <numeric>

namespace {

/// The region's file need not belong to the run in memory.
constexpr VolumeSize anyVolume{32768, 32768, 32768};

void warn(const QString& text, const QString& detail) {
    showWarning(text + "\n\n" + detail);
}

/// The number, from 1, of the region that the file of patterns names; 0 for none.
int regionOfPatterns(const QString& patternPath) {
    static const QRegularExpression pattern(QStringLiteral("_ROI (\\d+)_"));
    return pattern.match(paths::fileName(patternPath)).captured(1).toInt();
}

/// The region that the patterns were cut from: one with a voxel for each feature. Of several the
/// one that the patterns' file names, else the first. Null for none.
const SavedRegion* matchingRegion(const SavedRegions& saved, int nrOfFeatures, int named) {
    const auto fits = [nrOfFeatures](const SavedRegion& region) {
        return region.voxels && region.voxels->size() == size_t(nrOfFeatures);
    };
    const std::vector<SavedRegion>& regions = saved.regions;
    if (named >= 1 && size_t(named) <= regions.size() && fits(regions[size_t(named) - 1]))
        return &regions[size_t(named) - 1];
    const auto found = std::find_if(regions.begin(), regions.end(), fits);
    return found == regions.end() ? nullptr : &*found;
}

/// False after a message. No region without a file of regions.
bool readRegion(const EliminationFiles& files, int nrOfFeatures,
                std::optional<SavedRegion>& region) {
    SavedRegions saved;
    if (!fileExists(files.region))
        return true;
    if (!readROIFile(files.region, anyVolume, saved))
        return false;
    const SavedRegion* found =
        matchingRegion(saved, nrOfFeatures, regionOfPatterns(files.patterns));
    if (!found) {
        warn("No matching ROI file found",
             QStringLiteral("\"%1\" has no region of %2 voxels, one for each feature of \"%3\".")
                 .arg(paths::fileName(files.region))
                 .arg(nrOfFeatures)
                 .arg(paths::fileName(files.patterns)));
        return false;
    }
    region = *found;
    return true;
}

bool filesAreGiven(const EliminationFiles& files) {
    if (!fileExists(files.patterns)) {
        warn("MVP file with training data not found!",
             "Select a MVP file using the Browse (\"...\") button. To create a MVP file, use the "
             "tools in the \"Multi-Voxel Pattern Classification\" dialog.");
        return false;
    }
    return fileExists(files.region) ||
           askQuestion("ROI file with voxel coordinates not found! Visualization of resulting "
                       "weights and rank smoothing not possible\n\nSelect a ROI file using the "
                       "Browse (\"...\") button. Do you want to continue?");
}

struct Inputs {
    PatternSet patterns;
    std::optional<SavedRegion> region;
};

/// False after a message, or when the operator wants to choose a region first.
bool readInputs(const EliminationFiles& files, const EliminationOptions& options, Inputs& inputs) {
    if (!filesAreGiven(files) || !readPatternFile(files.patterns, inputs.patterns))
        return false;
    if (const auto fault = faultOfElimination(inputs.patterns, options)) {
        warn(fault->text, fault->detail);
        return false;
    }
    if (const QString fault = faultOfTraining(inputs.patterns, options.svm); !fault.isEmpty()) {
        warn(fault, "Can not continue!");
        return false;
    }
    return readRegion(files, inputs.patterns.nrOfFeatures, inputs.region);
}

/// Writes the voxels that were chosen and their weights, in the order of the region. A file that
/// can't be written is told of.
void save(const EliminationResult& result, const SavedRegion& region, const EliminationFiles& files,
          int steps, QStringList& log) {
    std::vector<size_t> order(result.voxels.size());
    std::iota(order.begin(), order.end(), size_t(0));
    std::sort(order.begin(), order.end(),
              [&](size_t a, size_t b) { return result.voxels[a] < result.voxels[b]; });
    VoxelMap map;
    map.name = "SVM Weights";
    for (const size_t i : order) {
        const auto voxel = size_t(result.voxels[i]);
        map.voxels.append(region.voxels->x[voxel], region.voxels->y[voxel],
                          region.voxels->z[voxel]);
        map.values.push_back(float(result.weights[i]));
    }
    RegionOfInterest chosen;
    chosen.FromSlice = region.rectangle.slice + 1;
    chosen.Left = region.rectangle.left + 1;
    chosen.Right = region.rectangle.right + 1;
    chosen.Top = region.rectangle.top + 1;
    chosen.Bottom = region.rectangle.bottom + 1;
    chosen.voxels = map.voxels;
    Regions regions;
    regions.add(std::move(chosen));
    const QString stem = paths::withoutExtension(files.region) + "_RFE";
    const QString regionPath = stem + ".roi";
    const QString mapPath =
        stem + QStringLiteral("-%1_V-%2.vom").arg(steps).arg(result.voxels.size());
    if (writeROIFile(regionPath, regions, RegionOptions()))
        log << QStringLiteral("Saved voxels: \"%1\"").arg(regionPath);
    if (writeVomFile(mapPath, VomHeader(), {map}))
        log << QStringLiteral("Saved weights: \"%1\"").arg(mapPath);
}

} // namespace

std::optional<EliminationResult> runElimination(RunSession& session, const EliminationFiles& files,
                                                const EliminationOptions& options) {
    Inputs inputs;
    // Unless the session is idle, analyse() says that this has to wait.
    if (session.phase.isIdle() && !readInputs(files, options, inputs))
        return {};
    EliminationResult result;
    const auto eliminate = [&](ProgressReporter& progress) {
        const VoxelList* places = inputs.region ? &*inputs.region->voxels : nullptr;
        result = eliminateFeatures(inputs.patterns, options, places, progress);
        if (result.result == SVMResult::OutOfMemory)
            showWarning("ERROR: Not enough memory for the feature elimination.");
        if (result.result == SVMResult::Done && inputs.region)
            save(result, *inputs.region, files, options.steps, result.log);
        return result.result == SVMResult::Done;
    };
    if (!session.analyse("Recursive feature elimination...", eliminate))
        return {};
    return result;
}
