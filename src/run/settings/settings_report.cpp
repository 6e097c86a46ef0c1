// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/settings/settings_report.h"

#include "base/messages.h"
#include "base/program_end.h"

SettingsReport::SettingsReport(const QString& filePath, SettingsUse use,
                               std::function<void()> stopTimer)
    : use_(use), stopTimer_(std::move(stopTimer)), checker_(filePath, stopTimer_) {}

bool SettingsReport::keyFits(const QString& found, const QString& expected) const {
    return checker_.checkToken(found, expected, forRun() ? CheckMode::Fatal : CheckMode::Warning);
}

bool SettingsReport::refuseForRun(const QString& text) const {
    return fail(text) || !forRun();
}

bool SettingsReport::fail(const QString& text) const {
    if (forRun())
        return failFatally(text);
    warn(text);
    return false;
}

void SettingsReport::warn(const QString& text) const {
    if (stopTimer_)
        stopTimer_();
    showWarning(text);
}

bool SettingsReport::failFatally(const QString& text) {
    showCritical(text);
    endProgram(1);
    return false;
}
