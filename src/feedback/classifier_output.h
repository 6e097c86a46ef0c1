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
    /// One value for each pair of classes, n (n - 1) / 2, 0 1, 0 2, and so on. False when there is
    /// none.
    [[nodiscard]] virtual bool currentOutput(std::span<float> values) const = 0;
};
