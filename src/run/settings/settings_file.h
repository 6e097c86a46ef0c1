// Reading and writing settings files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/settings/run_settings.h"

#include <functional>

/// Purpose of reading a settings file.
enum class SettingsUse {
    Inspection, ///< display or editing: wrong keys give a warning
    Run,        ///< preparation of a run: wrong keys and values end the program
    Reload,     ///< as Run, for saved data: a missing inplane folder doesn't matter
    Recorded,   ///< as Reload, for data that are played again: no folder needs to exist
};

/// Reads settings.settingsFilePath, key by key: on failure the keys before it have been changed.
/// `stopTimer` stops polling the settings file; it is called before a warning about a wrong key.
/// False after any failure, with its message shown.
[[nodiscard]] bool readSettingsFile(RunSettings& settings, SettingsUse use,
                                    const std::function<void()>& stopTimer);

/// The same from the text of the file, which may be gone: settings.settingsFilePath says where it
/// lay, since its relative paths begin there.
[[nodiscard]] bool readSettingsText(RunSettings& settings, const QString& text, SettingsUse use,
                                    const std::function<void()>& stopTimer);

inline constexpr int writtenFileVersion = 4;

struct WrittenSettings {
    QString text;
    bool dataTypeSupported = true; ///< otherwise the text ends with the data type
};

/// The text of a file with all entries that apply. A data type of "ANALYZE_DRIN" is changed to
/// "PHILIPS_ANALYZE_DRIN" in `settings` after it has been written.
[[nodiscard]] WrittenSettings settingsText(RunSettings& settings);

/// Writes the values to settings.settingsFilePath as file version 4. False after a message.
[[nodiscard]] bool writeSettingsFile(RunSettings& settings);

/// Path of the project that a settings file describes, for multi-run projects; reads only target
/// folder and project name. A file name without folder is searched in `currentSettingsDir`. Empty
/// when the file can't be read (after a message) or lacks the keys.
[[nodiscard]] QString resolveProjectPath(const QString& vcoFileName,
                                         const QString& currentSettingsDir);

/// The protocol that such a settings file states under "StimulationProtocol:"; empty without one,
/// or when the file can't be read. Shows nothing.
[[nodiscard]] QString statedProtocol(const QString& vcoFileName, const QString& currentSettingsDir);

/// Whether the file has "MergeType:" set. False also when it can't be read, which is not told.
[[nodiscard]] bool describesSeveralRuns(const QString& settingsFilePath);

/// The initial values of the window and of a new file.
[[nodiscard]] RunSettings defaultRunSettings();

/// Sets the data type and those values whose default depends on it: "FirstFileName:" and
/// "DicomNameDelimiter:".
void applyDataTypeDefaults(RunSettings& settings, const QString& dataType);

/// The message about an unsupported data type.
[[nodiscard]] QString unsupportedDataTypeText(const QString& dataType,
                                              const QString& settingsFilePath);
