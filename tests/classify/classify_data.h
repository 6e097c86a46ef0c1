// Made-up patterns, and a reporter for long work.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"
#include "classify/pattern_set.h"

#include <random>

struct Planted {
    int trials = 40;
    int features = 30;
    int informative = 30;  ///< the first features; the others are noise
    double strength = 1.0; ///< distance of the class means, in standard deviations of the noise
    int runs = 2;
    int classes = 2;
    unsigned seed = 1;
};

/// Gaussian noise (deviation 1), with a shift of informative features by class: of two classes,
/// labelled 1 and -1, by half the strength, up or down by turns of the features; of more, labelled
/// from 1, by the strength at every feature of the class. Trials of the classes alternate; runs
/// follow each other.
inline PatternSet plantedPatterns(const Planted& planted) {
    std::mt19937 generator(planted.seed);
    std::normal_distribution<double> noise;
    PatternSet patterns;
    patterns.nrOfFeatures = planted.features;
    for (int trial = 0; trial < planted.trials; ++trial) {
        const int kind = trial % planted.classes;
        std::vector<double> features;
        for (int f = 0; f < planted.features; ++f) {
            double shift = f % planted.classes == kind ? planted.strength : 0.0;
            if (planted.classes == 2)
                shift = (f % 2 == kind ? 0.5 : -0.5) * planted.strength;
            features.push_back(noise(generator) + (f < planted.informative ? shift : 0.0));
        }
        const double label = planted.classes > 2 ? kind + 1 : (kind == 0 ? 1 : -1);
        patterns.append(label, features);
        patterns.runs.push_back(trial * planted.runs / planted.trials);
    }
    return patterns;
}

class CollectedReports : public ProgressReporter {
public:
    explicit CollectedReports(bool cancels = false) : cancels_(cancels) {}
    void setProgress(int percent) override { reports.push_back(percent); }
    [[nodiscard]] bool cancelled() const override { return cancels_; }

    std::vector<int> reports;

private:
    bool cancels_;
};
