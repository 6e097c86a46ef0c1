// The weights of a trained model as maps over the slices of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/svm_weights.h"
#include "classify/training/training_display.h"
#include "run/document/qt_cortivo_doc.h"
#include "stats/thresholds.h"

#include <memory>

inline constexpr float smallestWeightThreshold = 1e-8f;
/// The lower one is 0.01, or a tenth of the largest magnitude if no weight reaches that; the upper
/// one is the largest magnitude, if that is more; single voxels are shown.
[[nodiscard]] OverlayThresholds weightThresholds(const std::vector<SVMWeights>& weights);
/// The lower threshold as entered, at least the smallest one. Weights have no scale of their own:
/// an upper one that is not above it becomes its double.
void changeWeightThreshold(OverlayThresholds& thresholds, float value);
/// The upper threshold as entered; if not above the lower one, the double of that.
void changeStrongestWeight(OverlayThresholds& thresholds, float value);

/// Owns a run, whose contrasts and maps it replaces by rows of weights, and tells the display of
/// what comes and goes. Each voxel takes the weight of its feature, others 0. Both signs are shown;
/// the first row is red, the second green, ...
class WeightMaps {
public:
    explicit WeightMaps(TrainingDisplay& display) : display_(display) {}

    /// The run; null before one was loaded.
    [[nodiscard]] QtCortivoDoc* document() const { return document_.get(); }
    /// Takes another run, which has no weights yet.
    void setDocument(std::unique_ptr<QtCortivoDoc> document);

    /// Shows all rows. There is a run, in which the voxels lie, one for each weight. The
    /// thresholds become weightThresholds(). Ends the program after a message when memory runs out.
    void show(std::vector<SVMWeights> weights, VoxelList voxels);
    /// There are no weights.
    void clear();
    OverlayThresholds thresholds; ///< for the view of the slices

    /// "SVM Weights", or for each class "SVM Pref Weights, Class %1" with its label; none without
    /// weights.
    [[nodiscard]] QStringList names() const;
    /// Puts one of these maps into the document, from 0, or with allMaps all of them, of which a
    /// view shows the first four.
    void select(int map);
    static constexpr int allMaps = -1;

private:
    TrainingDisplay& display_;
    std::unique_ptr<QtCortivoDoc> document_;
    std::vector<SVMWeights> weights_;
    VoxelList voxels_;
};
