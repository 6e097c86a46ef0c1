// The one global way to the main window. It is there for the C functions of the plug-in interface,
// which get no argument that could carry it; nothing else may use it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class VeloCortivo;

/// Null before the window is made and after it is gone.
[[nodiscard]] VeloCortivo* mainWindow();
void setMainWindow(VeloCortivo* window);
