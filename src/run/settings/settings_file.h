// Reading and writing settings files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/settings/run_settings.h"

#include <functional>

/// What a settings file is read for.
enum class SettingsUse {
    Inspection, ///< display or editing: wrong keys warn
    Run,        ///< preparation of a run: wrong keys and values end the program
    Reload,     ///< as Run, for saved data: a missing inplane folder doesn't matter
};

/// Reads settings.settingsFilePath, key by key: a failing read leaves the keys before the failure
/// changed. `stopTimer` stops the periodic look at the settings file; it is called before a warning
/// about a wrong key. False after any failure, whose message has been shown.
[[nodiscard]] bool readSettingsFile(RunSettings& settings, SettingsUse use,
                                    const std::function<void()>& stopTimer);

/// Writes the values to settings.settingsFilePath as file version 4. False after its message.
[[nodiscard]] bool writeSettingsFile(RunSettings& settings);

/// The quick look into one settings file that a multi-run project needs: the project's path, from
/// target folder and project name alone. A name without folder is looked for in
/// `currentSettingsDir`. Empty when the file can't be read (after a message) or lacks the keys.
[[nodiscard]] QString resolveProjectPath(const QString& vcoFileName,
                                         const QString& currentSettingsDir);

/// The values that the window starts with, and that a new file is written with.
[[nodiscard]] RunSettings defaultRunSettings();

/// Sets the data type and those values whose default depends on it: "FirstFileName:" and
/// "DicomNameDelimiter:".
void applyDataTypeDefaults(RunSettings& settings, const QString& dataType);

/// The message about a data type that no reader serves.
[[nodiscard]] QString unsupportedDataTypeText(const QString& dataType,
                                              const QString& settingsFilePath);
