// Contrast files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "stats/contrast_file.h"

namespace {

bool run(std::span<const uint8_t> bytes) {
    constexpr int nrOfConditions = 3;
    DesignMatrix design;
    design.NrOfContrastPredictors = nrOfConditions;
    design.NrOfConditionPredictors = nrOfConditions - 1;
    design.NrOfPredictors = nrOfConditions + 1;
    ContrastDefinitions contrasts;
    QString message;
    if (!parseContrasts(QString::fromUtf8(bytesAsText(bytes)), contrasts, design, nrOfConditions,
                        message))
        return false;
    const QByteArray written = contrastFileText(contrasts, nrOfConditions);
    ContrastDefinitions again;
    require(parseContrasts(QString::fromUtf8(written), again, design, nrOfConditions, message),
            "a written contrast file reads");
    require(again.ContrastValues == contrasts.ContrastValues, "no weight changes");
    return true;
}

const bool added = addFuzzTarget({"ctr", run});

} // namespace
