// What a protocol says of each volume: its condition and its target levels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/stimulation_protocol.h"

/// The target level of a condition whose name gives none, unless it is one of rest.
inline constexpr int noTargetLevel = -99;

/// One entry for each volume of the run, counted from 0 among the analysed ones.
struct VolumeTables {
    /// Condition of each volume. Volumes outside all intervals count as condition 0.
    std::vector<int> VolumeConditionIndex;
    /// Target level of the feedback, and that of a second thermometer: 0 or noTargetLevel for none.
    std::vector<int> VolumeTargetLevel1;
    std::vector<int> VolumeTargetLevel2;
    int NrOfTargetLevels = 2; ///< that a condition's name may hold
    bool VolumeTablesReady = false;

    /// 0 outside the tables.
    [[nodiscard]] int condition(int volume) const { return entry(VolumeConditionIndex, volume); }
    [[nodiscard]] int target1(int volume) const { return entry(VolumeTargetLevel1, volume); }
    [[nodiscard]] int target2(int volume) const { return entry(VolumeTargetLevel2, volume); }

private:
    [[nodiscard]] static int entry(const std::vector<int>& table, int volume) {
        return volume >= 0 && size_t(volume) < table.size() ? table[size_t(volume)] : 0;
    }
};

/// A condition's name without the target levels at its end, and these.
struct ConditionTargets {
    QString name;
    int target1 = noTargetLevel;
    int target2 = noTargetLevel;
};

/// Cuts the name at its last "_": what is behind it is the target level, 0 if it is no number. With
/// `nrOfTargetLevels` of 2 and a further "_" before it, that is the second one, and the field
/// before it the first. A name without "_" has the target 0 if it contains "fix", "baseline" or
/// "rest" in any case, else noTargetLevel.
[[nodiscard]] ConditionTargets conditionTargets(const QString& name, int nrOfTargetLevels);

/// Fills the tables for `nrOfVolumes`. An interval in milliseconds is turned into volumes: time
/// over TR (milliseconds), where a remainder of half a volume or more counts as a whole one. The
/// bounds of all intervals are clamped to 1 and nrOfVolumes. Later conditions overwrite earlier
/// ones.
void buildVolumeTables(VolumeTables& tables, const StimulationProtocol& protocol, int nrOfVolumes,
                       float TR);

/// A condition's name as an instruction to the subject: cut at its last "_", and there again if it
/// has another; each "_" that is left is a blank.
[[nodiscard]] QString instructionText(const QString& conditionName);
