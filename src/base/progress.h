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

/// The progress of one part of a work, 0 to 100, as a range of percent of the whole.
class PartProgress : public ProgressReporter {
public:
    PartProgress(ProgressReporter& whole, int from, int to) : whole_(whole), from_(from), to_(to) {}
    void setProgress(int percent) override {
        whole_.setProgress(from_ + percent * (to_ - from_) / 100);
    }
    [[nodiscard]] bool cancelled() const override { return whole_.cancelled(); }

private:
    ProgressReporter& whole_;
    int from_;
    int to_;
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
