// The upper edge of the main window: logo, menu bar, and the buttons for size, icon and end.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QMenuBar;
class VeloCortivo;

/// Makes the frames of the row as children of the window and connects the buttons. Returns the
/// menu bar, still empty.
[[nodiscard]] QMenuBar* createTitleRow(VeloCortivo& window);
