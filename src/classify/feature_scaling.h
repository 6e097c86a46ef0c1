// Scaling of features, alike for all patterns that a classifier sees.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/pattern_set.h"

#include <QByteArray>
#include <QString>
#include <optional>

enum class ScalingMode { None = 0, Standardize = 1, Range = 2 };

struct ScalingOptions {
    ScalingMode mode = ScalingMode::None;
    double low = -1.0; ///< of Range
    double high = 1.0;

    bool operator==(const ScalingOptions&) const = default;
};

/// What was learnt from the training patterns; the vectors have one entry for each feature, those
/// of the other modes are empty.
struct FeatureScaling {
    ScalingOptions options;
    std::vector<double> mean;
    std::vector<double> deviation; ///< of the population; 1 where it is below 0.0001
    std::vector<double> minimum;
    std::vector<double> maximum;

    bool operator==(const FeatureScaling&) const = default;
};

/// Learns from the patterns. Minimum and maximum are searched from 10000000 and -10000000.
[[nodiscard]] FeatureScaling learnScaling(const PatternSet& patterns,
                                          const ScalingOptions& options);
/// Standardize: (value - mean) / deviation. Range: (value - min) / (max - min) * (high - low) + low
/// where min is below max; other features stay. The patterns have the learnt number of features.
void applyScaling(const FeatureScaling& scaling, PatternSet& patterns);
/// The line for the log; empty for None.
[[nodiscard]] QString scalingReport(const ScalingOptions& options);

/// Name of the file that keeps the scaling of a model beside it: "_scaling.txt" in place of the
/// extension. It is written with every model, so that one that was trained on scaled features can
/// be told, and new data can be scaled alike.
[[nodiscard]] QString scalingPath(const QString& modelPath);
[[nodiscard]] QByteArray scalingText(const FeatureScaling& scaling);
/// Of a model, from the file beside it; nothing when there is none, or it is damaged.
[[nodiscard]] std::optional<FeatureScaling> readScaling(const QString& modelPath);
/// Nothing when the text is cut, or not such a file, or has a number that is not finite.
[[nodiscard]] std::optional<FeatureScaling> parseScaling(const QString& text);
