// The whole step of a volume on one thread and on several.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Sends volumes of each of five sizes through sessions with everything switched on, measures so
/// many of them, and prints the time of a volume on one thread and on `nrOfThreads`, and where it
/// went. With `columns` above 0, of the size with so many columns only.
void measureThreads(int volumes, int nrOfThreads, int columns);
