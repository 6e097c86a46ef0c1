// One function for each parser, called by the fuzzer, and by a test with the corpus.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
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
[[nodiscard]] std::vector<FuzzTarget> pluginTargets();
[[nodiscard]] std::vector<FuzzTarget> anatomyTargets();
[[nodiscard]] std::vector<FuzzTarget> sliceSpaceTargets();

/// All of them, for the fuzzer and the test alike.
[[nodiscard]] inline std::vector<FuzzTarget> allTargets() {
    std::vector<FuzzTarget> all;
    for (const auto& targets :
         {imageHeaderTargets(), textFileTargets(), journalTargets(), modelFileTargets(),
          pluginTargets(), anatomyTargets(), sliceSpaceTargets()})
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

/// Of a parser that takes text.
[[nodiscard]] inline QString textOf(QByteArrayView bytes) {
    return QString::fromUtf8(bytes);
}

/// What was read, once written, reads again and is written as before. `parse(written, again)` is
/// true when it reads.
template<typename Content, typename Write, typename Parse>
void requireWrittenReads(const Content& content, Write write, Parse parse) {
    const auto written = write(content);
    Content again;
    require(parse(written, again), "what is written reads");
    require(write(again) == written, "what is written stays as it is");
}
