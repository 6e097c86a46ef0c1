// The texts of a session: settings, protocol, truth.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanner_files.h"
#include "simulated_course.h"

/// What a settings file says about a run, simulated or replayed.
struct RunDescription {
    QString title;
    FileNaming naming;
    QString firstFileName;
    SimulationOptions options;
    ScanGeometry geometry;
};

[[nodiscard]] RunDescription runDescription(const SimulationOptions& options,
                                            const ScanGeometry& geometry);
/// Name, without folder, of the settings file of a run.
[[nodiscard]] QString settingsFileName(const SimulationOptions& options);
/// Folder into which the scanner writes: incoming/ in the session folder.
[[nodiscard]] QString watchFolder(const SimulationOptions& options);
/// Writes the settings file and creates the folders that it names. False when any of it fails.
[[nodiscard]] bool writeSettingsFile(const RunDescription& run);
/// Writes the protocol file. False when that fails.
[[nodiscard]] bool writeProtocolFile(const SimulationOptions& options);
/// A settings file of version 4. Folders are named relative to its own.
[[nodiscard]] QByteArray settingsText(const RunDescription& run);
/// A protocol in volumes.
[[nodiscard]] QByteArray protocolText(const std::vector<SimulatedCondition>& conditions);
/// One line for each volume, translations in millimetres and rotations in degrees.
[[nodiscard]] QByteArray motionText(const std::vector<HeadPose>& poses);
/// One digit for each voxel: the condition to which it responds.
[[nodiscard]] QByteArray activeText(const ScanGeometry& geometry,
                                    const std::vector<SimulatedCondition>& conditions,
                                    const std::vector<uint8_t>& active);
[[nodiscard]] QByteArray truthReadme();
