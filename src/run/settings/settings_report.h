// What a failure of a settings file leads to, by the use that the file is read for.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/token_check.h"
#include "run/settings/settings_file.h"

/// In an inspection a failure is a warning. The timer is stopped before each of them: while the box
/// is open, or the next second, the periodic look at the file would raise it again.
class SettingsReport {
public:
    SettingsReport(const QString& filePath, SettingsUse use, std::function<void()> stopTimer);

    /// False after the message about a wrong key, which ends the program for a run.
    [[nodiscard]] bool keyFits(const QString& found, const QString& expected) const;
    /// For values with which a run can't start but a display can go on: ends the program for a run
    /// (false); else warns (true).
    [[nodiscard]] bool refuseForRun(const QString& text) const;
    /// Ends the program for a run, else warns; false in both cases.
    [[nodiscard]] bool fail(const QString& text) const;
    /// Ends the program whatever the file is read for; false.
    [[nodiscard]] static bool failFatally(const QString& text);

    /// Warns whatever the file is read for.
    void warn(const QString& text) const;

    [[nodiscard]] bool forRun() const { return use_ != SettingsUse::Inspection; }
    [[nodiscard]] bool forReload() const { return use_ == SettingsUse::Reload; }

private:
    SettingsUse use_;
    std::function<void()> stopTimer_;
    TokenChecker checker_;
};
