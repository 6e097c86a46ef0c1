// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/svm_prediction.h"

#include <algorithm>

namespace {

/// The slot with the most votes of its pairs, the first one on a tie.
size_t slotOfMostVotes(const std::vector<double>& pairValues, size_t classes) {
    std::vector<int> votes(classes, 0);
    size_t pair = 0;
    for (size_t i = 0; i < classes; ++i)
        for (size_t j = i + 1; j < classes; ++j)
            ++votes[pairValues[pair++] > 0.0 ? i : j];
    return size_t(std::ranges::max_element(votes) - votes.begin());
}

/// Position of a label among those of the report.
size_t placeOf(double label, const std::vector<double>& labels) {
    return size_t(std::ranges::lower_bound(labels, label) - labels.begin());
}

void countConfusions(PredictionReport& report) {
    const size_t labels = report.labels.size();
    report.confusion.assign(labels * labels, 0);
    for (size_t i = 0; i < report.targets.size(); ++i)
        ++report.confusion[placeOf(report.targets[i], report.labels) * labels +
                           placeOf(report.predictions[i].label, report.labels)];
}

} // namespace

bool signIsFlipped(const SVMModel& model) {
    const std::vector<int> labels = model.labels();
    if (labels.size() != 2 || labels[0] == 1)
        return false;
    return labels[1] == 1 || labels[0] < 0;
}

SVMPrediction predict(const SVMModel& model, std::span<const double> features) {
    const std::vector<int> labels = model.labels();
    SVMPrediction prediction;
    prediction.pairValues = model.decisionValues(features);
    if (labels.size() != 2) {
        prediction.classNumber = labels[slotOfMostVotes(prediction.pairValues, labels.size())];
        prediction.label = prediction.classNumber;
        prediction.output = prediction.label;
        return prediction;
    }
    const bool flipped = signIsFlipped(model);
    if (flipped)
        prediction.pairValues[0] = 0.0 - prediction.pairValues[0]; // no minus before a zero
    prediction.output = prediction.pairValues[0];
    const bool isFirstClass = prediction.output > 0.0;
    prediction.classNumber = isFirstClass ? 1 : 2;
    prediction.label = labels[isFirstClass != flipped ? 0 : 1];
    return prediction;
}

double PredictionReport::percentRight() const {
    return targets.empty() ? 0.0 : 100.0 * nrOfRight / double(targets.size());
}

PredictionReport predictAll(const SVMModel& model, const PatternSet& patterns) {
    PredictionReport report;
    report.targets = patterns.labels;
    for (const int label : model.labels())
        report.labels.push_back(label);
    report.labels.insert(report.labels.end(), patterns.labels.begin(), patterns.labels.end());
    std::ranges::sort(report.labels);
    report.labels.erase(std::unique(report.labels.begin(), report.labels.end()),
                        report.labels.end());
    for (int i = 0; i < patterns.count(); ++i) {
        report.predictions.push_back(predict(model, patterns.features(i)));
        report.nrOfRight += report.predictions.back().label == report.targets[size_t(i)];
    }
    countConfusions(report);
    return report;
}
