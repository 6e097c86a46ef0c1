// The text files of a session: settings and ground truth.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scanner_files.h"
#include "simulated_dynamics.h"

/// Content of the settings file of a run, simulated or replayed.
struct RunDescription {
    QString title;
    SimulationOptions options;
    ScanGeometry geometry;
    std::shared_ptr<const ScannerFormat> format;
};

[[nodiscard]] RunDescription runDescription(const SimulationOptions& options,
                                            const ScanGeometry& geometry);
/// Name, without folder, of the settings file of a run.
[[nodiscard]] QString settingsFileName(const SimulationOptions& options);
/// Writes the settings file and creates the folders named in it. False when any of it fails.
[[nodiscard]] bool writeSettingsFile(const RunDescription& run);
/// A settings file of version 4. Folders are named relative to its own.
[[nodiscard]] QByteArray settingsText(const RunDescription& run);
/// One line for each volume, translations in millimetres and rotations in degrees.
[[nodiscard]] QByteArray motionText(const std::vector<HeadPose>& poses);
/// One digit for each voxel: the region that it is in, from 1, or 0.
[[nodiscard]] QByteArray activeText(const ScanGeometry& geometry,
                                    const std::vector<RespondingRegion>& regions,
                                    const std::vector<uint8_t>& active);
/// One character for each voxel: "+" where a voxel of the fine pattern prefers the first condition,
/// "-" where it prefers the second, "." elsewhere.
[[nodiscard]] QByteArray preferenceText(const ScanGeometry& geometry,
                                        const std::vector<SimulatedCondition>& conditions,
                                        const std::vector<int8_t>& preferences);
[[nodiscard]] QByteArray truthReadme();
