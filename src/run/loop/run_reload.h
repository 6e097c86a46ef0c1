// Bringing a finished run back from disk.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"

#include <functional>

/// Loads project, protocol and contrasts of the run that the settings file describes into the empty
/// document, and fits the model again, volume by volume as it was fitted while the run was
/// measured, so that the maps are those of the run's end. False after a message.
[[nodiscard]] bool reloadRun(const RunParts& run, const std::function<void()>& stopTimer);
