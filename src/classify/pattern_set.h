// Patterns of brain activity with their labels: what a classifier learns from.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <vector>

/// Exemplars, each with a label and the same number of features.
struct PatternSet {
    int nrOfFeatures = 0;
    std::vector<double> labels; ///< one for each exemplar
    std::vector<double> values; ///< features, exemplar after exemplar
    /// The run that each exemplar comes from, from 0; empty where that isn't known.
    std::vector<int> runs;

    [[nodiscard]] int count() const { return int(labels.size()); }
    [[nodiscard]] std::span<const double> features(int exemplar) const {
        return std::span(values).subspan(size_t(exemplar) * size_t(nrOfFeatures),
                                         size_t(nrOfFeatures));
    }
    [[nodiscard]] std::span<double> features(int exemplar) {
        return std::span(values).subspan(size_t(exemplar) * size_t(nrOfFeatures),
                                         size_t(nrOfFeatures));
    }
    void append(double label, std::span<const double> features);
    /// These exemplars, in this order.
    [[nodiscard]] PatternSet exemplars(std::span<const int> chosen) const;
    /// All exemplars with these features only, in this order.
    [[nodiscard]] PatternSet withFeatures(std::span<const int> chosen) const;
    /// Number of different runs; 1 where they aren't known.
    [[nodiscard]] int nrOfRuns() const;
    /// No label and no feature is NaN or infinite.
    [[nodiscard]] bool isFinite() const;
};

/// A label and its exemplars.
struct LabelCount {
    double label = 0.0;
    int count = 0;

    bool operator==(const LabelCount&) const = default;
};
/// In order of first appearance, as libsvm takes the classes.
[[nodiscard]] std::vector<LabelCount> labelCounts(const PatternSet& patterns);
