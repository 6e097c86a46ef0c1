// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/host/program_access.h"

namespace {
ProgramAccess* running = nullptr;
}

ProgramAccess* programAccess() {
    return running;
}

void setProgramAccess(ProgramAccess* program) {
    running = program;
}
