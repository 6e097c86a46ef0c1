// From the press of the run button to the first volume on the screen.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"

#include <functional>
#include <memory>

using ReaderMaker = std::function<std::unique_ptr<VolumeReader>(const IntakeContext&)>;

/// Reads settings, protocol and first volume and allocates what the loop needs. Returns the reader
/// of the run's volumes; nullptr after a message when the run can't start.
[[nodiscard]] std::unique_ptr<VolumeReader> prepareRun(const RunParts& run,
                                                       const ReaderMaker& makeReader,
                                                       const std::function<void()>& stopTimer);

/// Predictor names and contrasts of a prepared run: from the contrast file, or generated.
void setUpContrasts(QtCortivoDoc& document, const RunSettings& settings);

/// What the design of this run is built from.
[[nodiscard]] DesignSource designSource(const QtCortivoDoc& document, const RunSettings& settings);
