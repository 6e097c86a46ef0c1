// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/voxel_scores.h"

#include "classify/trial_folds.h"
#include "stats/numerics/sorting.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace {

struct MeanAndDeviation {
    double mean = 0.0;
    double deviation = 0.0; ///< of the population
};

MeanAndDeviation ofClass(const PatternSet& patterns, bool class1, int feature) {
    MeanAndDeviation result;
    int count = 0;
    for (int i = 0; i < patterns.count(); ++i)
        if (isOfClass1(patterns.labels[size_t(i)]) == class1) {
            result.mean += patterns.features(i)[size_t(feature)];
            ++count;
        }
    result.mean /= count;
    double squares = 0.0;
    for (int i = 0; i < patterns.count(); ++i)
        if (isOfClass1(patterns.labels[size_t(i)]) == class1)
            squares += std::pow(patterns.features(i)[size_t(feature)] - result.mean, 2);
    result.deviation = std::sqrt(squares / count);
    return result;
}

constexpr double fwhmPerDeviation = 2.3548; // 2 sqrt(2 ln 2)
constexpr double reach = 3.0;               // standard deviations

struct Place {
    int z = 0;
    int y = 0;
    int x = 0;
    double score = 0.0;
};

bool isBefore(const Place& a, const Place& b) {
    return std::tie(a.z, a.y, a.x) < std::tie(b.z, b.y, b.x);
}

/// Sums over the neighbours of a place.
class Kernel {
public:
    explicit Kernel(double fwhm) {
        const double deviation = fwhm / fwhmPerDeviation;
        const double limit = reach * deviation;
        radius_ = int(limit);
        for (int square = 0; double(square) <= limit * limit; ++square)
            weights_.push_back(std::exp(-square / (2.0 * deviation * deviation)));
    }

    /// `places` are sorted, so that each row of voxels is a stretch of them.
    [[nodiscard]] double meanAround(const Place& centre, const std::vector<Place>& places) const {
        Sums sums;
        for (int dz = -radius_; dz <= radius_; ++dz)
            for (int dy = -radius_; dy <= radius_; ++dy)
                addRow(centre, dz, dy, places, sums);
        return sums.scores / sums.weights;
    }

private:
    struct Sums {
        double scores = 0.0;
        double weights = 0.0;
    };

    void addRow(const Place& centre, int dz, int dy, const std::vector<Place>& places,
                Sums& sums) const {
        const auto nrOfWeights = int(weights_.size());
        if (dz * dz + dy * dy >= nrOfWeights)
            return;
        const Place first{centre.z + dz, centre.y + dy, centre.x - radius_};
        const Place last{first.z, first.y, centre.x + radius_};
        for (auto place = std::lower_bound(places.begin(), places.end(), first, isBefore);
             place != places.end() && !isBefore(last, *place); ++place) {
            const int dx = place->x - centre.x;
            const int square = dx * dx + dy * dy + dz * dz;
            if (square >= nrOfWeights)
                continue;
            sums.scores += weights_[size_t(square)] * place->score;
            sums.weights += weights_[size_t(square)];
        }
    }

    int radius_ = 0;
    std::vector<double> weights_; ///< by the square of the distance
};

} // namespace

std::vector<double> univariateScores(const PatternSet& training, bool meansOnly) {
    std::vector<double> scores;
    for (int feature = 0; feature < training.nrOfFeatures; ++feature) {
        const MeanAndDeviation first = ofClass(training, true, feature);
        const MeanAndDeviation second = ofClass(training, false, feature);
        const bool inDeviations = !meansOnly && first.deviation > 0.0 && second.deviation > 0.0;
        scores.push_back(
            inDeviations ? std::max(first.mean / first.deviation, second.mean / second.deviation)
                         : std::max(first.mean, second.mean));
    }
    return scores;
}

std::vector<double> smoothedScores(std::span<const double> scores, const VoxelList& places,
                                   double fwhm, const std::stop_token& stop) {
    std::vector<double> result(scores.begin(), scores.end());
    if (!(fwhm > 0.0))
        return result;
    std::vector<Place> sorted;
    for (size_t i = 0; i < scores.size(); ++i)
        sorted.push_back({places.z[i], places.y[i], places.x[i], scores[i]});
    std::stable_sort(sorted.begin(), sorted.end(), isBefore);
    const Kernel kernel(fwhm);
    for (size_t i = 0; i < scores.size() && !stop.stop_requested(); ++i)
        result[i] = kernel.meanAround({places.z[i], places.y[i], places.x[i]}, sorted);
    return result;
}

std::vector<int> highestScores(const std::vector<double>& scores, int count) {
    const std::vector<float> keys(scores.begin(), scores.end());
    const std::vector<int> order = numerics::indexx(keys);
    std::vector<int> best(order.end() - count, order.end());
    std::sort(best.begin(), best.end());
    return best;
}
