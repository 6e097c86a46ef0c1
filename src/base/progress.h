// Progress of long work, shown by whoever cares.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Told about progress from 0 to 100; the window shows a box, a test collects the values.
class ProgressReporter {
public:
    virtual ~ProgressReporter() = default;
    virtual void setProgress(int percent) = 0;
    /// True once the operator wants the work to stop. Work that can be cancelled asks after each
    /// call of setProgress().
    [[nodiscard]] virtual bool cancelled() const { return false; }
};
