// The master file: current settings file, auto-advance and auto-start, size and position of the
// window, and what becomes of the journals of runs.
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
    bool windowCentredX = true;  ///< centred on the screen
    bool windowCentredY = true;
    int windowX = 0; ///< pixels; ignored for a centred axis
    int windowY = 0;
    bool keepsJournals = false; ///< of runs that are saved, to be replayed
};

inline constexpr char masterFileName[] = "MasterVCO";
/// Folder below the data folder, and settings file in it, that are current after the first start.
inline constexpr char sampleFolderName[] = "VCO_FacesHouses";
inline constexpr char sampleSettingsName[] = "VCO_FacesHouses-1.vco";

/// Parses the text of a master file, comments removed. After a wrong key or a missing number shows
/// a message that names `filePath`, ends the program with status 1, and returns false.
[[nodiscard]] bool parseMasterFile(const QString& text, const QString& filePath,
                                   MasterFile& master);
/// The text of a master file, version 2.
[[nodiscard]] QString masterFileText(const MasterFile& master);

enum class MasterFileResult {
    Read,
    Created, ///< there was none; one that points at the sample session was written
    Missing, ///< it can't be opened; a message has been shown
    Failed,  ///< it could be neither read nor created
};

/// Reads `MasterVCO` in `folder` (with "/" at the end), or creates one that points at the sample
/// folder in `dataPath`. If nothing could be read, `master` is unchanged.
[[nodiscard]] MasterFileResult readMasterFile(const QString& folder, const QString& dataPath,
                                              MasterFile& master);
/// Writes `MasterVCO` in `folder`. False, after a message, when the file can't be written, or when
/// quotes, runs of blanks or the length of a folder or name couldn't be read back.
[[nodiscard]] bool writeMasterFile(const QString& folder, const MasterFile& master);
