// Headers of ANALYZE images.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "intake/analyze_header.h"

namespace {

bool run(std::span<const uint8_t> bytes) {
    ByteOrder order = ByteOrder::Little;
    AnalyzeHeader header;
    const bool good = parseAnalyzeHeader(bytes, order, header);
    require(good == (bytes.size() >= size_t(analyzeHeaderBytes)), "whole headers are read");
    return good;
}

const bool added = addFuzzTarget({"analyze_header", run});

} // namespace
