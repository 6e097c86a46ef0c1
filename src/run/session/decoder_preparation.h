// What the operator prepares for the letter decoder, and its files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/decoder_files.h"

/// Where references and, offline, the data come from.
struct DecoderSources {
    /// Without a folder it is looked for in the target folder, then among those of the program. Its
    /// curves must have IdealResponseWindowSize points.
    QString referencesPath = idealResponsesFileName;
    bool offline = false;
    /// Offline: the curves. Of the file the first NrOfDataROIs and NrOfTimePoints of the settings
    /// are decoded; it must have them.
    QString dataPath;
};

struct DecoderPreparation : DecoderSources {
    DecoderSettings settings = defaultDecoderSettings(); ///< weights as entered, not yet scaled
};

/// A file of curves, offline, in the size that it has; with default settings else. A file that
/// can't be read leaves its size to be complained of when it is loaded.
[[nodiscard]] DecoderPreparation offlinePreparation(const QString& dataPath);

/// The file that is read for a path of references. No target folder: that of the program.
[[nodiscard]] QString foundReferences(const QString& referencesPath, const QString& targetFolder);

struct PreparedData {
    ReferenceCurves references;
    ROICurves curves; ///< empty unless they come from a file
};
/// Loads all that is prepared, or nothing after a message.
[[nodiscard]] std::optional<PreparedData> loadPrepared(const DecoderPreparation& preparation,
                                                       const QString& referencesPath);
