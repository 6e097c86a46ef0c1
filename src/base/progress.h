// Progress of long work, and cancelling it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Receives progress from 0 to 100; the window shows a box, a test collects the values.
class ProgressReporter {
public:
    virtual ~ProgressReporter() = default;
    virtual void setProgress(int percent) = 0;
    /// True once the operator wants the work to stop. Work that can be cancelled asks after each
    /// call of setProgress().
    [[nodiscard]] virtual bool cancelled() const { return false; }
};

/// Maps a step's own progress to a range of percent, and reports cancelling.
class StepProgress {
public:
    explicit StepProgress(ProgressReporter& reporter, int from = 0, int to = 100)
        : reporter_(&reporter), from_(from), to_(to) {}

    /// False once the work has been cancelled.
    [[nodiscard]] bool advance(int64_t done, int64_t total) const {
        reporter_->setProgress(from_ + int(done * (to_ - from_) / (total > 0 ? total : 1)));
        return !reporter_->cancelled();
    }

private:
    ProgressReporter* reporter_;
    int from_;
    int to_;
};
