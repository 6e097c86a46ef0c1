// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/trial_folds.h"

#include "classify/shuffling.h"

namespace {

std::vector<int> part(const std::vector<int>& exemplars, int fold, int nrOfFolds) {
    const ptrdiff_t length = ptrdiff_t(exemplars.size()) / nrOfFolds;
    const auto first = exemplars.begin() + fold * length;
    return {first, first + length};
}

QString numbers(const std::vector<int>& exemplars) {
    QStringList list;
    for (const int exemplar : exemplars)
        list << QString::number(exemplar + 1);
    return list.join(' ');
}

} // namespace

std::vector<int> TrialFold::exemplars() const {
    std::vector<int> all = class1;
    all.insert(all.end(), class2.begin(), class2.end());
    return all;
}

std::vector<TrialFold> dealFolds(const PatternSet& patterns, std::vector<int> exemplars,
                                 int nrOfFolds, std::mt19937& generator) {
    shuffle(std::span(exemplars), generator);
    TrialFold all;
    for (const int exemplar : exemplars)
        (isOfClass1(patterns.labels[size_t(exemplar)]) ? all.class1 : all.class2)
            .push_back(exemplar);
    std::vector<TrialFold> folds;
    for (int fold = 0; fold < nrOfFolds; ++fold)
        folds.push_back({part(all.class1, fold, nrOfFolds), part(all.class2, fold, nrOfFolds)});
    return folds;
}

std::vector<int> exemplarsOfOthers(const std::vector<TrialFold>& folds, size_t leftOut) {
    std::vector<int> others;
    for (size_t i = 0; i < folds.size(); ++i) {
        const std::vector<int> exemplars = folds[i].exemplars();
        if (i != leftOut)
            others.insert(others.end(), exemplars.begin(), exemplars.end());
    }
    return others;
}

QStringList foldLines(const QString& prefix, const std::vector<TrialFold>& folds) {
    QStringList lines;
    for (size_t i = 0; i < folds.size(); ++i) {
        const QString fold = prefix + QStringLiteral("Fold %1 patterns for class ").arg(i + 1);
        lines << fold + "1: " + numbers(folds[i].class1) << fold + "2: " + numbers(folds[i].class2);
    }
    return lines;
}
