// A protocol in plots over the volumes of a run, which are counted from 1.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_content.h"
#include "run/protocol/stimulation_protocol.h"

/// The intervals of all conditions; a volume reaches half a volume to both sides of its number.
/// `TR` in milliseconds; none without one where the protocol is in milliseconds.
[[nodiscard]] std::vector<PlotBand> protocolBands(const StimulationProtocol& protocol, float TR);

/// Reaction times (milliseconds) of the responses up to the volume of index `lastVolume`, of
/// nrOfVolumes. They stand under the condition to which they belong, that which holds at their
/// time: a disc when correct, or when that is not known; a circle when incorrect; a cross at 0 for
/// an omission.
[[nodiscard]] PlotContent responseContent(const StimulationProtocol& protocol, float TR,
                                          int nrOfVolumes, int lastVolume);
