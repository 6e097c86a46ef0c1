// What the feedback asks of a classifier of brain patterns.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

/// The prediction of the current volume.
class ClassifierOutput {
public:
    virtual ~ClassifierOutput() = default;
    /// It predicts at each volume of the run.
    [[nodiscard]] virtual bool isPredicting() const = 0;
    [[nodiscard]] virtual int nrOfClasses() const = 0; ///< 0 without a model
    /// n (n - 1) / 2 values, one for each pair of n classes: 0 and 1, 0 and 2, ..., 1 and 2, ...
    /// False when there is no prediction.
    [[nodiscard]] virtual bool currentOutput(std::span<float> values) const = 0;
};
