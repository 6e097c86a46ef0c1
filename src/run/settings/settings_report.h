// Reports failures of a settings file, depending on the purpose of reading it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/token_check.h"
#include "run/settings/settings_file.h"

/// In an inspection a failure is a warning. The timer is stopped before each one: while the box is
/// open, or a second later, polling the file would raise it again.
class SettingsReport {
public:
    SettingsReport(const QString& filePath, SettingsUse use, std::function<void()> stopTimer);

    /// False, after a message, for a wrong key; for a run this ends the program.
    [[nodiscard]] bool keyFits(const QString& found, const QString& expected) const;
    /// For values that a run can't use but a display can: ends the program for a run (false); else
    /// warns (true).
    [[nodiscard]] bool refuseForRun(const QString& text) const;
    /// Ends the program for a run, else warns. Always false.
    [[nodiscard]] bool fail(const QString& text) const;
    /// Ends the program whatever the purpose; false.
    [[nodiscard]] static bool failFatally(const QString& text);

    /// Warns whatever the purpose.
    void warn(const QString& text) const;

    [[nodiscard]] bool forRun() const { return use_ != SettingsUse::Inspection; }
    [[nodiscard]] bool forReload() const { return use_ == SettingsUse::Reload || forRecorded(); }
    [[nodiscard]] bool forRecorded() const { return use_ == SettingsUse::Recorded; }

private:
    SettingsUse use_;
    std::function<void()> stopTimer_;
    TokenChecker checker_;
};
