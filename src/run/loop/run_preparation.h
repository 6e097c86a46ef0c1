// From the press of the run button to the first volume on the screen.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"
#include "run/loop/run_source.h"

/// Reads settings, protocol and first volume and allocates what the loop needs. Returns the reader
/// of the run's volumes; nullptr after a message when the run can't start, or without one when the
/// pump gives up waiting. The target folder is locked then, unless another program holds it.
[[nodiscard]] std::unique_ptr<VolumeReader> prepareRun(const RunParts& run, RunSource& source,
                                                       const std::function<void()>& stopTimer);

/// The values of the settings that the document keeps.
void copySettingsToDocument(QtCortivoDoc& document, const RunSettings& settings);

/// The maps that a plug-in has registered, zeroed; without any they are not shown. False, after a
/// message, when there is not enough memory for them: the run does not start.
[[nodiscard]] bool preparePluginMaps(const RunParts& run);

/// Display range and slice images from the first volume.
void showFirstVolume(QtCortivoDoc& document);
