// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/feature_elimination.h"

#include "classify/elimination_fold.h"
#include "classify/trial_folds.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <map>
#include <numeric>

namespace {

int roundHalfUp(double value) {
    return int(std::floor(value + 0.5));
}

EliminationFault notEnoughTrials(int class1, int class2, int folds, const QString& level) {
    return {QStringLiteral("Not enough trials (%1 / %2) for learning when using \"%3\" "
                           "%4-level folds")
                .arg(class1)
                .arg(class2)
                .arg(folds)
                .arg(level),
            "Can not continue!"};
}

/// Reports levels in place of folds, of which there are few.
class LevelProgress : public ProgressReporter {
public:
    LevelProgress(ProgressReporter& reporter, const std::atomic<int>& done, int total)
        : reporter_(reporter), done_(done), total_(total) {}

    void setProgress(int) override { reporter_.setProgress(done_ * 100 / total_); }
    [[nodiscard]] bool cancelled() const override { return reporter_.cancelled(); }

private:
    ProgressReporter& reporter_;
    const std::atomic<int>& done_;
    int total_;
};

/// A voxel that at least one fold has chosen.
struct MergedVoxel {
    int voxel = 0;
    int nrOfFolds = 0; ///< that chose it
    double sum = 0.0;  ///< of their weights

    [[nodiscard]] double weight() const { return sum / nrOfFolds; }
};

bool ranksBefore(const MergedVoxel& a, const MergedVoxel& b) {
    if (a.nrOfFolds != b.nrOfFolds)
        return a.nrOfFolds > b.nrOfFolds;
    return std::abs(a.weight()) > std::abs(b.weight());
}

/// Ranked; equal ones in the order of their numbers.
std::vector<MergedVoxel> mergedVoxels(const std::vector<EliminationFold>& folds) {
    std::map<int, MergedVoxel> byNumber;
    for (const EliminationFold& fold : folds)
        for (size_t i = 0; i < fold.voxels.size(); ++i) {
            MergedVoxel& merged = byNumber[fold.voxels[i]];
            merged.voxel = fold.voxels[i];
            ++merged.nrOfFolds;
            merged.sum += fold.weights[i];
        }
    std::vector<MergedVoxel> ranked;
    for (const auto& [number, voxel] : byNumber)
        ranked.push_back(voxel);
    std::stable_sort(ranked.begin(), ranked.end(), ranksBefore);
    return ranked;
}

/// Adds what the folds have found.
void merge(const std::vector<EliminationFold>& folds, EliminationResult& result) {
    result.meanAccuracy.assign(result.nrOfVoxels.size(), 0.0);
    for (const EliminationFold& fold : folds) {
        result.log += fold.log;
        for (size_t level = 0; level < fold.accuracy.size(); ++level)
            result.meanAccuracy[level] += fold.accuracy[level] / double(folds.size());
    }
    const std::vector<MergedVoxel> ranked = mergedVoxels(folds);
    result.mergedVoxels = int(ranked.size());
    for (const MergedVoxel& voxel : std::span(ranked).first(size_t(result.voxelsPerFold))) {
        result.voxels.push_back(voxel.voxel);
        result.weights.push_back(voxel.weight());
    }
    result.log << QStringLiteral("No. of RFE voxels per fold: %1  No. of unique voxels merged over "
                                 "folds: %2 from which top %1 voxels have been finally selected.")
                      .arg(result.voxelsPerFold)
                      .arg(result.mergedVoxels);
}

} // namespace

std::vector<int> voxelsAtLevels(int nrOfVoxels, int steps, double finalPercent) {
    std::vector<int> counts = {nrOfVoxels};
    for (int step = 0; step < steps; ++step)
        counts.push_back(roundHalfUp(counts.back() * std::pow(finalPercent / 100.0, 1.0 / steps)));
    return counts;
}

int voxelsAfterUnivariateSelection(int nrOfVoxels, const EliminationOptions& options) {
    return options.univariateSelection ? roundHalfUp(nrOfVoxels * options.univariatePercent / 100.0)
                                       : nrOfVoxels;
}

std::optional<EliminationFault> faultOfElimination(const PatternSet& patterns,
                                                   const EliminationOptions& options) {
    const size_t classes = labelCounts(patterns).size();
    if (classes != 2)
        return EliminationFault{classes < 2 ? "Not enough classes for RFE"
                                            : "Too many classes for RFE",
                                "At present RFE only works for learning tasks with 2 classes."};
    const auto class1 =
        int(std::count_if(patterns.labels.begin(), patterns.labels.end(), isOfClass1));
    const int class2 = patterns.count() - class1;
    if (class1 != class2)
        return EliminationFault{
            QStringLiteral("Unequal number of trials (%1/%2) per class!").arg(class1).arg(class2),
            "At present, RFE requires an equal number of trials per classs"};
    const int folds = options.firstLevelFolds;
    if (folds < 2 || options.secondLevelFolds < 2)
        return EliminationFault{"Each level needs at least 2 folds.", "Can not continue!"};
    if (class1 < folds)
        return notEnoughTrials(class1, class2, folds, "first");
    const int training = class1 / folds * (folds - 1);
    if (training < options.secondLevelFolds)
        return notEnoughTrials(training, training, options.secondLevelFolds, "second");
    const int selected = voxelsAfterUnivariateSelection(patterns.nrOfFeatures, options);
    if (selected < 1)
        return EliminationFault{"Univariate selection removes too many voxels.",
                                "Increase percent selection value or skip univariate selection"};
    if (voxelsAtLevels(selected, options.steps, options.finalPercent).back() < 1)
        return EliminationFault{"RFE selection removes too many voxels.",
                                "Increase percent selection value"};
    return {};
}

EliminationResult eliminateFeatures(const PatternSet& patterns, const EliminationOptions& options,
                                    const VoxelList* places, ProgressReporter& progress,
                                    int nrOfThreads) {
    EliminationResult result;
    result.fault = faultOfElimination(patterns, options);
    if (result.fault)
        return result;
    const std::vector<int> counts =
        voxelsAtLevels(voxelsAfterUnivariateSelection(patterns.nrOfFeatures, options),
                       options.steps, options.finalPercent);
    result.nrOfVoxels.assign(counts.begin(), counts.end());
    result.voxelsPerFold = counts.back();

    std::vector<int> all(patterns.labels.size());
    std::iota(all.begin(), all.end(), 0);
    std::mt19937 generator(options.seed);
    const std::vector<TrialFold> folds =
        dealFolds(patterns, all, options.firstLevelFolds, generator);
    result.log << QStringLiteral("Random orders with seed %1").arg(options.seed)
               << "First-level folds:" << foldLines({}, folds);

    std::vector<EliminationFold> found(folds.size());
    std::atomic<int> levelsDone = 0;
    const auto eliminate = [&](int fold, const std::stop_token& stop) {
        const EliminationTask task{patterns,
                                   options,
                                   places,
                                   exemplarsOfOthers(folds, size_t(fold)),
                                   folds[size_t(fold)].exemplars(),
                                   options.seed + 1 + unsigned(fold)};
        found[size_t(fold)] = eliminateInFold(task, stop, [&] { ++levelsDone; });
        return found[size_t(fold)].result;
    };
    LevelProgress levels(progress, levelsDone, int(folds.size() * counts.size()));
    result.result = doSVMTasks(int(folds.size()), eliminate, levels, nrOfThreads);
    if (result.result == SVMResult::Done)
        merge(found, result);
    return result;
}
