// One function for each parser, which the fuzzer calls with its own bytes and a test with kept
// ones. SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <cstdint>
#include <span>
#include <vector>

struct FuzzTarget {
    const char* name;                            ///< of its corpus folder, too
    bool (*run)(std::span<const uint8_t> bytes); ///< true when the parser took them for good
};

/// The targets that are linked into this program.
[[nodiscard]] std::vector<FuzzTarget>& fuzzTargets();

/// Adds a target; always true.
bool addFuzzTarget(const FuzzTarget& target);

/// Ends the process when a parser did not keep what its header says.
void require(bool kept, const char* promise);

[[nodiscard]] inline QByteArray bytesAsText(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size())};
}
