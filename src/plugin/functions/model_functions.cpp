// The design matrix and the model of every voxel.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/functions/running_program.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

using namespace plugin_functions;

int tGetFullNrOfPredictors() {
    const QtCortivoDoc* run = document();
    return run ? run->design.NrOfPredictors : 0;
}

int tGetCurrentNrOfPredictors() {
    const QtCortivoDoc* run = activeDocument();
    const bool solved = run && run->glm.GLMStartVolume != GLMState::notStarted;
    return solved ? run->glm.nrOfActivePredictors : 0;
}

int tGetNrOfConfoundPredictors() {
    const QtCortivoDoc* run = document();
    return run ? run->design.NrOfConfoundPredictors : 0;
}

float tGetValueOfDesignMatrix(int predictor, int timePoint) {
    const QtCortivoDoc* run = activeDocument();
    if (!run || !isWithin(predictor, run->design.NrOfPredictors) || timePoint > currentVolume())
        return 0.0f;
    const std::vector<float>& column = run->design.PredictorColumns[size_t(predictor)];
    return isWithin(timePoint, column.size()) ? column[size_t(timePoint)] : 0.0f;
}

double tGetBetaOfVoxel(int predictor, int x, int y, int z) {
    const QtCortivoDoc* run = activeDocument();
    if (!run || !isWithin(predictor, tGetCurrentNrOfPredictors()))
        return 0.0;
    const auto offset = voxelOffset(run->project.size(), x, y, z);
    return offset ? run->glm.row(predictor)[*offset] : 0.0;
}

double* tGetBetaMaps() {
    QtCortivoDoc* run = activeDocument();
    return run && !run->glm.values.empty() ? run->glm.values.data() : nullptr;
}
