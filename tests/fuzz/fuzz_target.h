// One function for each parser, which the fuzzer calls with its own bytes and a test with kept
// ones. SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <vector>

struct FuzzTarget {
    const char* name;                            ///< of its corpus folder, too
    bool (*run)(std::span<const uint8_t> bytes); ///< true when the parser took them for good
};

[[nodiscard]] std::vector<FuzzTarget> imageHeaderTargets();
[[nodiscard]] std::vector<FuzzTarget> textFileTargets();

/// Ends the process when a parser did not keep what its header says.
inline void require(bool kept, const char* promise) {
    if (kept)
        return;
    std::fprintf(stderr, "not kept: %s\n", promise);
    std::abort();
}
