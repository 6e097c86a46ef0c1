// Protocols in a few lines.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/stimulation_protocol.h"

/// From and to, in the unit of the protocol.
using Intervals = std::vector<std::pair<int, int>>;

/// With any intervals, also those that no file may hold.
inline ProtocolCondition conditionWith(const QString& name, const Intervals& intervals) {
    ProtocolCondition condition;
    condition.name = name;
    for (const auto& [from, to] : intervals) {
        condition.from[size_t(condition.nrOfIntervals)] = from;
        condition.to[size_t(condition.nrOfIntervals++)] = to;
    }
    return condition;
}

/// As the last one.
inline void addCondition(StimulationProtocol& protocol, const QString& name,
                         const Intervals& intervals) {
    protocol.conditions.push_back(conditionWith(name, intervals));
}
