// Reading the inplane overlay series: once, when a run is prepared.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/intake_context.h"
#include "volume/inplane_scan.h"

/// Waits for the files of "OverlayInplaneDataType:" in "OverlayInplaneFolder:" and reads them into
/// `scan`, which has the sizes of the settings. Each file has the full time-out of the settings;
/// events are processed meanwhile, and the scan must stay alive. Samples, even of DICOM files, are
/// in the byte order of the run (state.rawDataByteOrder). False on a time-out, and after a message
/// for an invalid name, data type or file.
[[nodiscard]] bool readInplaneSeries(const IntakeContext& context, InplaneScan& scan);
