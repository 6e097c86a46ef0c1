// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/model_fit.h"

#include "run/loop/model_setup.h"
#include "stats/clusters.h"

#include <utility>

namespace {

bool fitVolumes(QtCortivoDoc& document, const RunSettings& settings, OverlayThresholds& thresholds,
                int nrOfVolumes, const AfterVolume& afterVolume) {
    if (!prepareModel(document, settings) ||
        !createBrainMask(document.mask, document.project, brainMaskThreshold))
        return false;
    // Known whole by now, also where the protocol arrived during the run.
    findPredictorOnsets(document.design, document.design.NrOfVolumes);
    fillGLMStepVolumes(document.design);
    for (int volume = 0; volume < nrOfVolumes; ++volume) {
        if (updateGLM(document.glmRun(), volume))
            document.updateOverlayColors();
        if (!afterVolume(volume))
            return false;
    }
    if (!finishModel(document.finishedModel, document.glm, document.project, document.mask,
                     nrOfVolumes))
        document.finishedModel.release();
    computeClusterSizes(document.maps, thresholds, document.contrasts.ConjunctionAnalysis);
    return true;
}

} // namespace

bool fitModelToVolumes(QtCortivoDoc& document, const RunSettings& settings,
                       OverlayThresholds& thresholds, int nrOfVolumes,
                       const AfterVolume& afterVolume) {
    StatisticalMaps formerMaps = std::exchange(document.maps, {});
    BrainMask formerMask = std::exchange(document.mask, {});
    const bool fitted = fitVolumes(document, settings, thresholds, nrOfVolumes, afterVolume);
    if (!fitted) {
        document.maps = std::move(formerMaps);
        document.mask = std::move(formerMask);
        document.updateOverlayColors();
    }
    document.glm.release();
    releasePredictorColumns(document.design);
    return fitted;
}
