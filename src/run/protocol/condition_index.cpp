// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/condition_index.h"

namespace {

bool holdsAt(const ProtocolCondition& condition, double moment) {
    for (size_t i = 0; i < size_t(condition.nrOfIntervals); ++i)
        if (condition.from[i] <= moment && moment <= condition.to[i])
            return true;
    return false;
}

} // namespace

int conditionAtVolume(const StimulationProtocol& protocol, int volumeIndex, float TR) {
    if (volumeIndex < 0)
        return -1;
    const double moment = protocol.resolutionOfTime == ResolutionOfTime::Volumes
                              ? volumeIndex + 1.0
                              : double(volumeIndex) * double(TR);
    for (int condition = 0; condition < protocol.nrOfConditions(); ++condition)
        if (holdsAt(protocol.conditions[size_t(condition)], moment))
            return condition;
    return -1;
}

std::vector<int> volumeConditionIndex(const StimulationProtocol& protocol, int nrOfVolumes,
                                      float TR) {
    std::vector<int> conditions(size_t(std::max(nrOfVolumes, 0)));
    for (size_t volume = 0; volume < conditions.size(); ++volume)
        conditions[volume] = conditionAtVolume(protocol, int(volume), TR);
    return conditions;
}
