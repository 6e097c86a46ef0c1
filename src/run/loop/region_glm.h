// The model of the complete run, fitted to the time course of one region.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/roi_glm.h"

#include <QString>
#include <optional>

class QtCortivoDoc;

struct RegionGLM {
    ROIGLM fit;
    std::optional<ROIGLM> whitened; ///< with the correction of serial correlations
    QString page;                   ///< path of the HTML file that holds the tables
};

/// Why no region of the document can be modelled, in words for the operator; empty when one can.
[[nodiscard]] QString regionGLMHindrance(const QtCortivoDoc& document);

/// Fits the design of the document's model to the values of a region so far, with the correction a
/// second time, and writes HTMLOutput/ROI_GLM_Info.html below `dataFolder`. False without a message
/// when there is no such region or its values can't be modelled; false after one when the page
/// can't be written. Of a region that the model explains nothing of a modeless warning tells.
[[nodiscard]] bool computeRegionGLM(const QtCortivoDoc& document, int roiIndex,
                                    bool correctSerialCorrelations, const QString& dataFolder,
                                    RegionGLM& result);
