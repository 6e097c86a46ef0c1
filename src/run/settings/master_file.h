// The master file: which settings file is current, how runs follow each other, where the window is.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Content of `MasterVCO`.
struct MasterFile {
    QString settingsDirectory; ///< with "/" at the end
    QString settingsFileName;
    bool autoAdvanceRun = false; ///< go on to the next numbered settings file
    bool autoStartRun = false;   ///< start a run as soon as its settings file exists
    int windowSize = 2;          ///< 1: 1024 x 768, 2: 1280 x 1024
    bool windowCentredX = true;  ///< the position follows from the screen
    bool windowCentredY = true;
    int windowX = 0; ///< pixels; not used for a centred axis
    int windowY = 0;
};

inline constexpr char masterFileName[] = "MasterVCO";
/// Folder below the data folder, and settings file in it, that a first start points at.
inline constexpr char sampleFolderName[] = "VCO_FacesHouses";
inline constexpr char sampleSettingsName[] = "VCO_FacesHouses-1.vco";

/// Parses the text of a master file, comments removed. A wrong key or a number that is missing
/// shows its message, naming `filePath`, and ends the program with status 1; then false.
[[nodiscard]] bool parseMasterFile(const QString& text, const QString& filePath,
                                   MasterFile& master);
/// The text of a master file, version 2.
[[nodiscard]] QString masterFileText(const MasterFile& master);

enum class MasterFileResult {
    Read,
    Created, ///< there was none: the sample session is current, and the file is written
    Missing, ///< it can't be opened; the message has been shown
    Failed,  ///< it could be neither read nor made
};

/// Reads `MasterVCO` in `folder` (with "/" at the end), or makes one that points at the sample
/// folder in `dataPath`. Where nothing could be read, `master` keeps what it holds.
[[nodiscard]] MasterFileResult readMasterFile(const QString& folder, const QString& dataPath,
                                              MasterFile& master);
/// Writes `MasterVCO` in `folder`. False after its message: the file can't be written, or a folder
/// or name has quotes, runs of blanks or a length that could not be read back.
[[nodiscard]] bool writeMasterFile(const QString& folder, const MasterFile& master);
