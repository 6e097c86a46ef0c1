// Headers of functional projects.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "volume/fmr_file.h"

namespace {

bool run(std::span<const uint8_t> bytes) {
    const QString text = QString::fromUtf8(bytesAsText(bytes));
    bool good = false;
    for (const FMRScope scope : {FMRScope::Inspection, FMRScope::Project}) {
        FMRHeader header;
        if (parseFMR(text, scope, header) != FMRParseResult::Ok)
            continue;
        good = true;
        FMRHeader again;
        require(parseFMR(QString::fromUtf8(fmrText(header, header.NrOfVolumes)), scope, again) ==
                    FMRParseResult::Ok,
                "a written header reads");
        require(again.NrOfVolumes == header.NrOfVolumes && again.NrOfSlices == header.NrOfSlices &&
                    again.ResolutionX == header.ResolutionX &&
                    again.ResolutionY == header.ResolutionY,
                "written sizes stay");
    }
    return good;
}

const bool added = addFuzzTarget({"fmr", run});

} // namespace
