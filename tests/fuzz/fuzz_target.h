// One function for each parser, called by the fuzzer, and by a test with the corpus.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <vector>

struct FuzzTarget {
    const char* name;                            ///< also of its corpus folder
    bool (*run)(std::span<const uint8_t> bytes); ///< true when the parser accepted them
};

[[nodiscard]] std::vector<FuzzTarget> imageHeaderTargets();
[[nodiscard]] std::vector<FuzzTarget> textFileTargets();
[[nodiscard]] std::vector<FuzzTarget> journalTargets();
[[nodiscard]] std::vector<FuzzTarget> modelFileTargets();
[[nodiscard]] std::vector<FuzzTarget> classificationTargets();
[[nodiscard]] std::vector<FuzzTarget> decoderTargets();
[[nodiscard]] std::vector<FuzzTarget> pluginTargets();
[[nodiscard]] std::vector<FuzzTarget> anatomyTargets();
[[nodiscard]] std::vector<FuzzTarget> sliceSpaceTargets();
[[nodiscard]] std::vector<FuzzTarget> niftiTargets();

/// All of them, for the fuzzer and the test alike.
[[nodiscard]] inline std::vector<FuzzTarget> allTargets() {
    std::vector<FuzzTarget> all;
    for (const auto& targets :
         {imageHeaderTargets(), textFileTargets(), journalTargets(), modelFileTargets(),
          classificationTargets(), decoderTargets(), pluginTargets(), anatomyTargets(),
          sliceSpaceTargets(), niftiTargets()})
        all.insert(all.end(), targets.begin(), targets.end());
    return all;
}

/// Aborts when a parser breaks the contract of its header.
inline void require(bool kept, const char* promise) {
    if (kept)
        return;
    std::fprintf(stderr, "not kept: %s\n", promise);
    std::abort();
}
