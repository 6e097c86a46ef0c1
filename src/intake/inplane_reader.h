// Reading the inplane overlay series: once, when a run is prepared.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/intake_context.h"
#include "volume/inplane_scan.h"

/// Waits for the files of "OverlayInplaneDataType:" in "OverlayInplaneFolder:" and reads them into
/// `scan`, which has the sizes of the settings. Each file has the time-out of the settings for
/// itself; events are processed meanwhile, in which the scan must stay. Samples, those of DICOM
/// files too, are in the byte order that the run has settled on (state.rawDataByteOrder). False on
/// a time-out, and after a message when a name, the data type or a file is no good.
[[nodiscard]] bool readInplaneSeries(const IntakeContext& context, InplaneScan& scan);
