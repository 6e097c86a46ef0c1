// Headers of GE P files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "intake/ge_p_header.h"

namespace {

bool run(std::span<const uint8_t> bytes) {
    FMRProject project;
    takeHeaderSizes(parsePFileHeader(QString::fromUtf8(bytesAsText(bytes))), "fuzz", project);
    require(project.sliceDistance() >= 0.0f && project.position.fovRows <= largestLength,
            "sizes are possible ones");
    return project.position.fovRows > 0.0f;
}

const bool added = addFuzzTarget({"ge_p_header", run});

} // namespace
