// The scanner's text block inside a Siemens file.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "intake/siemens_protocol.h"

namespace {

bool run(std::span<const uint8_t> bytes) {
    bool good = false;
    for (const int nrOfSlices : {0, 7, 16}) {
        FMRProject project;
        project.NrOfSlices = nrOfSlices;
        good = parseSiemensProtocol(bytes, project);
    }
    return good;
}

const bool added = addFuzzTarget({"siemens_protocol", run});

} // namespace
