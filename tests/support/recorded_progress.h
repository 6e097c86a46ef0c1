// What long work reports.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/progress.h"

#include <vector>

/// Collects the values, and cancels once `cancelAt` percent are reached.
struct RecordedProgress : ProgressReporter {
    void setProgress(int percent) override { values.push_back(percent); }
    [[nodiscard]] bool cancelled() const override {
        return !values.empty() && values.back() >= cancelAt;
    }
    std::vector<int> values;
    int cancelAt = 101; ///< percent
};
