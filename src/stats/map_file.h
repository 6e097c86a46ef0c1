// The map file (.mps): the contrast maps of a run with their display settings.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "stats/contrasts.h"
#include "stats/thresholds.h"

#include <QString>
#include <vector>

/// One map of a file.
struct MapFileEntry {
    QString name; ///< of its contrast
    MapKind type = MapKind::T;
    int df1 = 0; ///< degrees of freedom; 0 when unknown
    int df2 = 0;
    OverlayThresholds thresholds; ///< with which it was shown
    RgbColor color;
    int selectionState = ContrastPositive;
    ZeroedBuffer<float> values; ///< x fastest, then y, then slices
};

/// The content of a file.
struct MapFile {
    VolumeSize size; ///< of each map
    std::vector<MapFileEntry> maps;
};

/// Writes the maps in use atomically, under the names of their contrasts; with none in use, a file
/// without maps. docs/file_formats_statistics.md has the layout. False after a critical message
/// when the file can't be written.
[[nodiscard]] bool writeMapFile(const QString& fileName, const StatisticalMaps& maps,
                                const OverlayThresholds& thresholds,
                                const ContrastDefinitions& contrasts);

/// Reads a map file. False, after a critical message and with `file` unchanged, when it can't be
/// opened, is not a map file or of a newer version, is damaged, or when memory runs out.
[[nodiscard]] bool readMapFile(const QString& fileName, MapFile& file);
