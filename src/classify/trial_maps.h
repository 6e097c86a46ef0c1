// One map for each trial of a run, and their file (.fmp).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "volume/volume_geometry.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// One float per voxel, x fastest, then y, then slices; map after map.
struct TrialMaps {
    VolumeSize size;
    QStringList names; ///< of the maps
    ZeroedBuffer<float> values;

    [[nodiscard]] int count() const { return int(names.size()); }
    [[nodiscard]] std::span<float> map(int index) {
        return values.span().subspan(size_t(index) * size.samples(), size.samples());
    }
    [[nodiscard]] std::span<const float> map(int index) const {
        return values.span().subspan(size_t(index) * size.samples(), size.samples());
    }
};

/// "<condition>_Trial-<number>", the number from 1 within the condition.
[[nodiscard]] QString trialMapName(const QString& condition, int trial);
/// The condition of a name: what stands before its last "_", if "Trial-" follows there.
[[nodiscard]] std::optional<QString> conditionOfMap(const QString& mapName);

/// A condition and how many trials it has.
struct TrialClass {
    QString name;
    int nrOfTrials = 0;

    bool operator==(const TrialClass&) const = default;
};
/// The conditions in order of their first map. None when one of the names is not a trial's.
[[nodiscard]] std::vector<TrialClass> classesOfMaps(const QStringList& mapNames);

/// The file of a run: its project file, in the same folder, without ".fmr", and "_Trials.fmp".
[[nodiscard]] QString trialMapsFileName(const QString& projectFile);

/// All of the file before the values: two numbers of 16 bits, each 1; number of maps and sizes in
/// 32 bits; the names, each with a zero behind it, in Latin-1 or, where that can't be, UTF-8.
[[nodiscard]] QByteArray trialMapsHeader(const TrialMaps& maps);
enum class TrialMapsResult { Ok, OtherVersion, Damaged, OutOfMemory };
/// Reads a file's bytes. `maps` is unchanged unless the result is Ok; its values are finite then.
[[nodiscard]] TrialMapsResult parseTrialMaps(std::span<const uint8_t> bytes, TrialMaps& maps);

/// Writes the file as a whole or not at all. False after "Can not open specified file for saving
/// map data !".
[[nodiscard]] bool writeTrialMaps(const QString& path, const TrialMaps& maps);
/// Reads names and sizes; `maps` gets no values. All counts are checked against the file's length
/// before anything is allocated. False after "Unable to open map file for reading!", or a message
/// about what is damaged; `maps` is unchanged then.
[[nodiscard]] bool readTrialMapNames(const QString& path, TrialMaps& maps);
/// Reads everything. False likewise, and when memory runs out. A value that is not finite is 0.
[[nodiscard]] bool readTrialMaps(const QString& path, TrialMaps& maps);
