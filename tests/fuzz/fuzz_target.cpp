// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"

#include <cstdio>
#include <cstdlib>

std::vector<FuzzTarget>& fuzzTargets() {
    static std::vector<FuzzTarget> targets;
    return targets;
}

bool addFuzzTarget(const FuzzTarget& target) {
    fuzzTargets().push_back(target);
    return true;
}

void require(bool kept, const char* promise) {
    if (kept)
        return;
    std::fprintf(stderr, "not kept: %s\n", promise);
    std::abort();
}
