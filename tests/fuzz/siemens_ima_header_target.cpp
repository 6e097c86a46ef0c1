// Binary headers of Siemens ".ima" files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "intake/siemens_ima_header.h"

#include <cmath>

namespace {

bool run(std::span<const uint8_t> bytes) {
    bool good = false;
    for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
        FMRProject project;
        takeHeaderSizes(parseSiemensIMAHeader(bytes, order, {64, 64}), "fuzz", project);
        require(std::isfinite(project.sliceThickness) && std::isfinite(project.sliceGap) &&
                    std::isfinite(project.pixelSizeX) && std::isfinite(project.pixelSizeY),
                "sizes are numbers");
        good = good || project.sliceThickness > 0.0f;
    }
    return good;
}

const bool added = addFuzzTarget({"siemens_ima_header", run});

} // namespace
