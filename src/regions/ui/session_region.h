// A region of the session's run, as plots need it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/ui/region_plot_content.h"
#include "run/session/run_session.h"

/// Number of regions of the run in memory; 0 without one.
[[nodiscard]] int nrOfRegions(const RunSession& session);
/// The region of this number; nothing if there is none. Valid until the regions change.
[[nodiscard]] std::optional<PlottedRegion> regionOfSession(const RunSession& session, int number);

/// What a region's curve is plotted against: the protocol of the run in memory, or of the run that
/// its plot shows. `TR` in milliseconds.
struct PlottedTiming {
    const StimulationProtocol& protocol;
    float TR;
};
/// The session must have a document. Valid as long as the region's curve.
[[nodiscard]] PlottedTiming timingOfRegion(const RunSession& session, int number);
