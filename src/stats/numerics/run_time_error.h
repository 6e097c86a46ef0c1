// The end of a computation that can't go on.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace numerics {

/// Prints the text to the standard error output and ends the program with status 1. A test may
/// catch the end of the program, so the caller leaves its own function with a failure afterwards.
void nrerror(const char* text);

} // namespace numerics
