// The end of the program on a fatal failure: the one place that leaves the process.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

/// Ends the program with this exit status. The message of the failure has been shown before.
///
/// A test installs a handler that records the status and returns; so a caller must return a failure
/// at once after the call.
void endProgram(int status);

/// Overrides the end of the process; an empty function restores it.
void installProgramEnd(std::function<void(int status)> handler);
