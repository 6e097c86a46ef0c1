// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/elimination_fold.h"

#include "classify/svm_prediction.h"
#include "classify/svm_weights.h"
#include "classify/trial_folds.h"
#include "classify/voxel_scores.h"

#include <cmath>
#include <numeric>

namespace {

/// The steps of a fold, on fewer and fewer voxels.
class FoldElimination {
public:
    FoldElimination(const EliminationTask& task, const std::stop_token& stop)
        : task_(task), stop_(stop), generator_(task.seed), patterns_(task.patterns) {
        found_.voxels.resize(size_t(patterns_.nrOfFeatures));
        std::iota(found_.voxels.begin(), found_.voxels.end(), 0);
        svm_ = task.options.svm;
        svm_.kernel = SVMKernel::Linear;
    }

    EliminationFold run(const std::function<void()>& levelDone) {
        if (task_.options.univariateSelection)
            selectUnivariately();
        found_.log << QStringLiteral("RFE: no. of trials=%1  no. of features=%2")
                          .arg(task_.training.size())
                          .arg(patterns_.nrOfFeatures);
        const std::vector<int> counts =
            voxelsAtLevels(patterns_.nrOfFeatures, task_.options.steps, task_.options.finalPercent);
        const auto lastLevel = int(counts.size()) - 1;
        for (int level = 0; level <= lastLevel; ++level) {
            found_.result = rank(level);
            if (found_.result != SVMResult::Done)
                break;
            if (level < lastLevel)
                reduce(level, counts[size_t(level) + 1]);
            levelDone();
        }
        return std::move(found_);
    }

private:
    void keep(const std::vector<int>& positions) {
        patterns_ = patterns_.withFeatures(positions);
        std::vector<int> kept;
        for (const int position : positions)
            kept.push_back(found_.voxels[size_t(position)]);
        found_.voxels = std::move(kept);
    }

    void selectUnivariately() {
        const int before = patterns_.nrOfFeatures;
        const std::vector<double> scores = univariateScores(patterns_.exemplars(task_.training),
                                                            task_.options.univariateMeansOnly);
        keep(highestScores(scores, voxelsAfterUnivariateSelection(before, task_.options)));
        found_.log << QStringLiteral("Univariate selection: Voxels reduced from N_prev=%1 to N=%2")
                          .arg(before)
                          .arg(patterns_.nrOfFeatures);
    }

    /// Mean weights over the second-level folds, and the mean accuracy of their machines.
    SVMResult rank(int level) {
        const std::vector<TrialFold> folds =
            dealFolds(task_.patterns, task_.training, task_.options.secondLevelFolds, generator_);
        found_.log += foldLines(QStringLiteral("   RFE level %1: ").arg(level), folds);
        found_.weights.assign(found_.voxels.size(), 0.0);
        const PatternSet test = patterns_.exemplars(task_.test);
        double accuracy = 0.0;
        for (size_t fold = 0; fold < folds.size(); ++fold) {
            SVMModel model;
            found_.log << QStringLiteral("   Running SVM with C=%1 and linear kernel").arg(svm_.C);
            const SVMResult result = SVMTrainer(stop_).train(
                patterns_.exemplars(exemplarsOfOthers(folds, fold)), svm_, model);
            if (result != SVMResult::Done)
                return result;
            const std::vector<double> weights = svmWeights(model).front().values;
            for (size_t i = 0; i < weights.size(); ++i)
                found_.weights[i] += weights[i] / double(folds.size());
            accuracy += predictAll(model, test).percentRight() / double(folds.size());
        }
        found_.log << QStringLiteral("   Average accuracy value for separate test data set: %1%")
                          .arg(accuracy);
        found_.accuracy.push_back(accuracy);
        return SVMResult::Done;
    }

    void reduce(int level, int count) {
        std::vector<double> scores;
        for (const double weight : found_.weights)
            scores.push_back(std::abs(weight));
        if (task_.options.smoothRanking && task_.places)
            scores = smoothedScores(scores, placesOfVoxels(), task_.options.smoothingFWHM, stop_);
        const int before = patterns_.nrOfFeatures;
        keep(highestScores(scores, count));
        found_.log << QStringLiteral("   RFE level %1- Voxels reduced from N_prev=%2 to N=%3")
                          .arg(level)
                          .arg(before)
                          .arg(count);
    }

    [[nodiscard]] VoxelList placesOfVoxels() const {
        VoxelList places;
        for (const int voxel : found_.voxels) {
            const auto i = size_t(voxel);
            places.append(task_.places->x[i], task_.places->y[i], task_.places->z[i]);
        }
        return places;
    }

    const EliminationTask& task_;
    const std::stop_token& stop_;
    std::mt19937 generator_;
    PatternSet patterns_; ///< all exemplars with the voxels that are left
    SVMOptions svm_;
    EliminationFold found_;
};

} // namespace

EliminationFold eliminateInFold(const EliminationTask& task, const std::stop_token& stop,
                                const std::function<void()>& levelDone) {
    return FoldElimination(task, stop).run(levelDone);
}
