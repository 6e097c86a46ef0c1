// The folder that the scanner writes to, and its entry in the settings.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "settings_lines.h"
#include "simulation_options.h"

/// incoming/ in the session folder, or the series folder below it.
[[nodiscard]] QString watchFolder(const SimulationOptions& options);
/// Creates the folder, and the list of folders if the settings name one. False when that fails.
[[nodiscard]] bool makeWatchFolder(const SimulationOptions& options);
/// "WatchFolder:" or "WATCHFOLDERLIST:", relative to the settings file.
void addWatchFolderEntry(SettingsLines& lines, const SimulationOptions& options);
