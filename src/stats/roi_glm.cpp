// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/roi_glm.h"

#include "stats/whole_run_model.h"

bool canFitROIGLM(const WholeRunDesign&, int) {
    return false;
}

bool fitROIGLM(const WholeRunDesign&, std::span<const float>, ROIGLM&) {
    return false;
}

bool fitWhitenedROIGLM(const WholeRunDesign&, std::span<const float>, const ROIGLM&, ROIGLM&) {
    return false;
}

QByteArray roiGLMTable(const ROIGLM&, const ROIGLM*, const QStringList&) {
    return {};
}
