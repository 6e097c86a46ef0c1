// Which condition holds at each volume.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/stimulation_protocol.h"

/// Index of the condition that holds at a volume, counted from 0 among the analysed ones; -1 when
/// none does. In volumes an interval covers volumes from - 1 to to - 1; in milliseconds it holds
/// when the volume's start, volumeIndex times TR (milliseconds), lies in it, both bounds included.
/// Where intervals of two conditions overlap the one that stands first in the protocol wins.
[[nodiscard]] int conditionAtVolume(const StimulationProtocol& protocol, int volumeIndex, float TR);

/// conditionAtVolume() for the volumes from 0 to nrOfVolumes - 1.
[[nodiscard]] std::vector<int> volumeConditionIndex(const StimulationProtocol& protocol,
                                                    int nrOfVolumes, float TR);
