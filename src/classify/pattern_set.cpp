// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/pattern_set.h"

#include <algorithm>
#include <cmath>
#include <set>

void PatternSet::append(double label, std::span<const double> features) {
    labels.push_back(label);
    values.insert(values.end(), features.begin(), features.end());
}

PatternSet PatternSet::exemplars(std::span<const int> chosen) const {
    PatternSet result;
    result.nrOfFeatures = nrOfFeatures;
    for (const int exemplar : chosen) {
        result.append(labels[size_t(exemplar)], features(exemplar));
        if (!runs.empty())
            result.runs.push_back(runs[size_t(exemplar)]);
    }
    return result;
}

PatternSet PatternSet::withFeatures(std::span<const int> chosen) const {
    PatternSet result;
    result.nrOfFeatures = int(chosen.size());
    result.labels = labels;
    result.runs = runs;
    result.values.reserve(labels.size() * chosen.size());
    for (int exemplar = 0; exemplar < count(); ++exemplar)
        for (const int feature : chosen)
            result.values.push_back(features(exemplar)[size_t(feature)]);
    return result;
}

int PatternSet::nrOfRuns() const {
    return runs.empty() ? 1 : int(std::set(runs.begin(), runs.end()).size());
}

bool PatternSet::isFinite() const {
    const auto finite = [](double value) { return std::isfinite(value); };
    return std::all_of(labels.begin(), labels.end(), finite) &&
           std::all_of(values.begin(), values.end(), finite);
}

std::vector<LabelCount> labelCounts(const PatternSet& patterns) {
    std::vector<LabelCount> counts;
    for (const double label : patterns.labels) {
        const auto found = std::find_if(counts.begin(), counts.end(), [&](const LabelCount& entry) {
            return entry.label == label;
        });
        if (found == counts.end())
            counts.push_back({label, 1});
        else
            ++found->count;
    }
    return counts;
}
