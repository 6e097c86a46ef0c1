// A display that shows nothing; a benchmark overrides what it measures.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_display.h"

class SilentDisplay : public RunDisplay {
public:
    void workStarting() override {}
    void workEnded() override {}
    void setRunButtonState(RunButtonState) override {}
    void showLogText(const QString&) override {}
    void refreshViewButtons() override {}
    void updateViews() override {}
    [[nodiscard]] std::unique_ptr<ProgressReporter> openSavingProgress() override {
        return std::make_unique<SilentProgress>();
    }
    [[nodiscard]] std::unique_ptr<ProgressReporter> openModelProgress(const QString&) override {
        return std::make_unique<SilentProgress>();
    }
    [[nodiscard]] std::unique_ptr<ProgressReporter> openAnalysisProgress(const QString&) override {
        return std::make_unique<SilentProgress>();
    }

private:
    class SilentProgress : public ProgressReporter {
        void setProgress(int) override {}
    };
};
