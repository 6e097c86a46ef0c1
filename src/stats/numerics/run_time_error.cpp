// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/numerics/run_time_error.h"

#include "base/program_end.h"

#include <cstdio>

namespace numerics {

void nrerror(const char* text) {
    std::fprintf(stderr, "Numerical Recipes run-time error...\n%s\n...now exiting to system...\n",
                 text);
    endProgram(1);
}

} // namespace numerics
