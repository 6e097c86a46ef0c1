// Headers of GE I files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "intake/ge_i_header.h"

namespace {

bool run(std::span<const uint8_t> bytes) {
    const std::optional<HeaderSizes> sizes = parseGEIHeader(bytes);
    FMRProject project;
    if (sizes)
        takeHeaderSizes(*sizes, "fuzz", project);
    require(project.sliceDistance() >= 0.0f && project.position.fovRows <= largestLength,
            "sizes are possible ones");
    return sizes.has_value();
}

const bool added = addFuzzTarget({"ge_i_header", run});

} // namespace
