// Made-up patterns and models, and the tools of libsvm.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/file_writing.h"
#include "classify/feature_elimination.h"
#include "support/recorded_progress.h"

#include <QProcess>
#include <gtest/gtest.h>
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

/// A model with as many classes as there are labels, in this order; class slot i is higher in
/// feature i.
inline SVMModel modelOf(const std::vector<double>& labels, int features) {
    PatternSet patterns;
    patterns.nrOfFeatures = features;
    for (size_t i = 0; i < labels.size(); ++i) {
        std::vector<double> values(size_t(features), 0.1);
        values[i] = 3.0;
        patterns.append(labels[i], values);
    }
    SVMModel model;
    EXPECT_EQ(SVMTrainer().train(patterns, {}, model), SVMResult::Done);
    return model;
}

/// An elimination that is small and quick.
inline EliminationOptions quickOptions() {
    return {.firstLevelFolds = 3, .secondLevelFolds = 2, .steps = 3, .svm = {}};
}

/// In the format of libsvm's own tools.
inline QByteArray toolText(const PatternSet& patterns) {
    QByteArray text;
    for (int i = 0; i < patterns.count(); ++i) {
        text += formatted("%g", patterns.labels[size_t(i)]);
        int index = 0;
        for (const double value : patterns.features(i))
            text += formatted(" %d:%.17g", ++index, value);
        text += '\n';
    }
    return text;
}

/// What the tool printed.
inline QByteArray runTool(const QString& tool, const QStringList& arguments) {
    QProcess process;
    process.start(tool, arguments);
    EXPECT_TRUE(process.waitForFinished() && process.exitCode() == 0)
        << tool.toStdString() << " is needed: scripts/install_packages test";
    return process.readAllStandardOutput();
}
