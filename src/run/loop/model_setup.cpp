// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/model_setup.h"

#include "base/messages.h"
#include "base/program_end.h"
#include "stats/contrast_file.h"

namespace {

bool buildDesign(QtCortivoDoc& document, const RunSettings& settings) {
    DesignMatrix& design = document.design;
    const DesignSource source = designSource(document, settings);
    releasePredictorColumns(design);
    if (!createConditionPredictors(design, source) ||
        !createConfoundPredictors(design, source, document.workingFolder))
        return false;
    if (isProtocolPathSet(document.protocol.protocolPath)) {
        findPredictorOnsets(design, source.NrOfVolumes);
        fillGLMStepVolumes(design);
    } else {
        design.GLMStepVolumes.assign(size_t(design.NrOfConditionPredictors), -1);
    }
    document.contrasts.ContrastsChanged = false;
    return true;
}

} // namespace

DesignSource designSource(const QtCortivoDoc& document, const RunSettings& settings) {
    // A run that ended early has fewer volumes than its design, also when it is reloaded.
    const int volumes = std::max(document.project.NrOfVolumes, settings.nrOfAnalysedVolumes());
    return {document.protocol, document.project.TR, volumes,
            document.contrasts.BaselinePosInProtocol, settings.DriftConfoundPredictors};
}

void buildPredictorNames(QtCortivoDoc& document, const RunSettings& settings) {
    DesignMatrix& design = document.design;
    const DesignSource source = designSource(document, settings);
    buildConditionPredictorNames(design, source);
    buildConfoundPredictorNames(design, source);
    design.NrOfPredictors = design.NrOfConditionPredictors + design.NrOfConfoundPredictors;
}

void setUpContrasts(QtCortivoDoc& document, const RunSettings& settings,
                    const QString& contrastFile) {
    DesignMatrix& design = document.design;
    ContrastDefinitions& contrasts = document.contrasts;
    // A real-time protocol says itself whether the file is of use, and it has been read then.
    const bool takesFile =
        !contrastFile.isEmpty() && !isProtocolPathSet(document.protocol.realTimeProtocolPath);
    const int baselinePosition = contrasts.BaselinePosInProtocol;
    if (takesFile && contrastFileHasNoBaseline(contrastFile))
        contrasts.BaselinePosInProtocol = 0;
    buildPredictorNames(document, settings);
    const bool fileRead = takesFile && readContrastFile(contrastFile, contrasts, design,
                                                        document.protocol.nrOfConditions());
    if (!fileRead && contrasts.BaselinePosInProtocol != baselinePosition) {
        contrasts.BaselinePosInProtocol = baselinePosition;
        buildPredictorNames(document, settings);
    }
    if (contrasts.NrOfContrasts == 0) {
        contrasts.BaselinePosInProtocol = 1;
        generateContrasts(contrasts, design, settings.AutoContrastGenerationLevel);
    } else if (!fileRead) {
        rebuildContrastWeights(contrasts, design);
    }
    document.updateOverlayColors();
}

bool prepareModel(QtCortivoDoc& document, const RunSettings& settings) {
    if (document.protocol.nrOfConditions() == 0) {
        showCritical("ERROR: No conditions specified!");
        endProgram(1);
        return false;
    }
    if (!buildDesign(document, settings))
        return false;
    if (!document.glm.allocate(document.design.NrOfPredictors, document.project.volumeSamples())) {
        showWarning("ERROR: Insufficient memory for creating GLM file!");
        return false;
    }
    if (!document.maps.allocateMaps(document.contrasts.NrOfContrasts, document.project.size())) {
        showWarning("ERROR: Insufficient memory for creating contrast maps!");
        return false;
    }
    return true;
}
