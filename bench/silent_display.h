// A run that shows nothing; a benchmark overrides what it takes the time of.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_display.h"

#include <cstdio>

class SilentDisplay : public RunDisplay {
public:
    void runStarting() override {}
    void documentsLeaving() override {}
    void documentsArrived() override {}
    void runPrepared() override {}
    void preparationFailed() override { std::printf("preparation failed\n"); }
    void runEnded() override {}
    void setRunButtonState(RunButtonState) override {}
    void showLogText(const QString&) override {}
    void refreshViewButtons() override {}
    void updateViews() override {}
    [[nodiscard]] std::unique_ptr<ProgressReporter> openSavingProgress() override {
        class SilentProgress : public ProgressReporter {
            void setProgress(int) override {}
        };
        return std::make_unique<SilentProgress>();
    }
};
