// The whole step of a volume on one thread and on several.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Sends so many volumes (at least 40) of each of five sizes through a session with everything
/// switched on, and prints the time of a volume on one thread and on `nrOfThreads`.
void measureThreads(int volumes, int nrOfThreads);
