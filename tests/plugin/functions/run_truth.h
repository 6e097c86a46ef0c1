// What plug-ins must be told of a scripted run, worked out without the program's own arithmetic.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>
#include <vector>

/// A moment of the run; the indices of volumes are -1 for none.
struct Moment {
    bool document = true;
    bool active = false;
    int volume = -1;   ///< as it is reported
    int modelled = -1; ///< the latest volume in the model
    int curves = -1;   ///< the latest volume in the curves of the regions
    int regions = 0;
    bool prepared = true; ///< contrasts and predictors are known
};

/// A run of 8 x 8 x 4 voxels in 40 volumes with the conditions Rest (volumes 0 to 3 and 8 to 19), A
/// (4 to 7) and B (20 to 25), with one region: x 2 to 3, y 3 to 5, slice 1.
class RunTruth {
public:
    /// By predictor, in double: A, B and the confounds.
    explicit RunTruth(std::vector<std::vector<double>> design) : design_(std::move(design)) {}

    /// The answer to a call at a moment.
    [[nodiscard]] double answer(const Moment& moment, const QString& name,
                                const std::vector<int>& arguments) const;

private:
    /// Least squares of the volumes 0 to `last` on the predictors that have begun by then.
    struct Fit {
        std::vector<size_t> columns;
        std::vector<double> betas; ///< of the columns
        std::vector<double> inverse;
        double variance = 0.0;
    };
    [[nodiscard]] Fit fit(int last, const std::function<double(int volume)>& curve) const;
    [[nodiscard]] Fit fitVoxel(int last, size_t voxel) const;
    [[nodiscard]] double regionMean(int volume) const;
    [[nodiscard]] double regionBeta(const Moment& moment, int predictor) const;
    [[nodiscard]] double voxelBeta(const Moment& moment, int predictor, size_t voxel) const;
    [[nodiscard]] double mapValue(const Moment& moment, int contrast, size_t voxel) const;
    [[nodiscard]] double region(const Moment& moment, const QString& name,
                                const std::vector<int>& arguments) const;
    [[nodiscard]] double number(const Moment& moment, const QString& name) const;

    std::vector<std::vector<double>> design_;
};
