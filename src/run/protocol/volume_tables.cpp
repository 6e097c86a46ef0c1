// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/volume_tables.h"

#include <algorithm>
#include <cmath>

namespace {

struct Cut {
    QString name;
    QString field;
};

std::optional<Cut> cutLastField(const QString& name) {
    const qsizetype at = name.lastIndexOf('_');
    if (at < 0)
        return {};
    return Cut{name.left(at), name.mid(at + 1)};
}

bool isRest(const QString& name) {
    const QString lower = name.toLower();
    return lower.contains("fix") || lower.contains("baseline") || lower.contains("rest");
}

/// A bound of an interval as the number of a volume, from 1.
int volumeNumber(int bound, const StimulationProtocol& protocol, int nrOfVolumes, float TR) {
    double number = bound;
    if (protocol.resolutionOfTime == ResolutionOfTime::Milliseconds)
        number = TR > 0.0f ? std::floor(double(bound) / double(TR) + 0.5) : 0.0;
    return int(std::clamp(number, 1.0, double(nrOfVolumes)));
}

} // namespace

ConditionTargets conditionTargets(const QString& name, int nrOfTargetLevels) {
    const std::optional<Cut> last = cutLastField(name);
    if (!last) {
        const int target = isRest(name) ? 0 : noTargetLevel;
        return {name, target, target};
    }
    const int level = last->field.toInt();
    const std::optional<Cut> first =
        nrOfTargetLevels == 2 ? cutLastField(last->name) : std::nullopt;
    if (!first)
        return {last->name, level, level};
    return {first->name, first->field.toInt(), level};
}

void buildVolumeTables(VolumeTables& tables, const StimulationProtocol& protocol, int nrOfVolumes,
                       float TR) {
    const auto count = size_t(std::max(nrOfVolumes, 0));
    tables.VolumeConditionIndex.assign(count, 0);
    tables.VolumeTargetLevel1.assign(count, 0);
    tables.VolumeTargetLevel2.assign(count, 0);
    tables.VolumeTablesReady = true;
    if (count == 0)
        return;
    for (int index = 0; index < protocol.nrOfConditions(); ++index) {
        const ProtocolCondition& condition = protocol.conditions[size_t(index)];
        const ConditionTargets targets = conditionTargets(condition.name, tables.NrOfTargetLevels);
        for (size_t i = 0; i < size_t(condition.nrOfIntervals); ++i) {
            const int from = volumeNumber(condition.from[i], protocol, nrOfVolumes, TR);
            const int to = volumeNumber(condition.to[i], protocol, nrOfVolumes, TR);
            for (auto volume = size_t(from) - 1; volume < size_t(to); ++volume) {
                tables.VolumeConditionIndex[volume] = index;
                tables.VolumeTargetLevel1[volume] = targets.target1;
                tables.VolumeTargetLevel2[volume] = targets.target2;
            }
        }
    }
}

QString instructionText(const QString& conditionName) {
    QString name = conditionName;
    for (int cuts = 0; cuts < 2; ++cuts)
        if (const std::optional<Cut> cut = cutLastField(name))
            name = cut->name;
    return name.replace('_', ' ');
}
