// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/program_end.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

std::function<void(int)>& currentEnd() {
    static std::function<void(int)> handler;
    return handler;
}

} // namespace

void installProgramEnd(std::function<void(int status)> handler) {
    currentEnd() = std::move(handler);
}

void endProgram(int status) {
    if (currentEnd()) {
        currentEnd()(status);
        return;
    }
    // Fatal failures happen deep inside slots, with windows and documents alive: their destructors
    // would run against a half-built state, so the process ends without them.
    std::fflush(nullptr);
    std::_Exit(status);
}
