// What is recorded of regions: the list with its rankings, the choices for it, and the logs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/roi_file.h"
#include "run/document/operator_requests.h"

/// Name of the records.
inline constexpr char regionsRecord[] = "regions";

/// Content of a record: choices and logs as they are now, the ranking of each region (a file holds
/// it only where it is whole for all of them), then the regions as in their file.
[[nodiscard]] QByteArray regionRecord(const OperatorRequests& requests, const Regions& regions);

/// Reads the content of a record of a run with volumes of this size. Logs and choices go into
/// `requests`, of which the rest stays. A ranking that does not fit its region is left out. False,
/// with nothing changed, when the content is damaged.
[[nodiscard]] bool parseRegionRecord(const QByteArray& content, const VolumeSize& size,
                                     OperatorRequests& requests, SavedRegions& regions);
