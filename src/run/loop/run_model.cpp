// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_model.h"

#include "base/messages.h"
#include "base/program_end.h"
#include "stats/contrast_file.h"
#include "stats/design_rank.h"

namespace {

bool buildDesign(QtCortivoDoc& document) {
    DesignMatrix& design = document.design;
    const DesignSource source = designSource(document);
    releasePredictorColumns(design);
    if (!createConditionPredictors(design, source) ||
        !createConfoundPredictors(design, source, document.project.targetFolder))
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

// The name lists of the design, and the numbers of its predictors.
void buildPredictorNames(QtCortivoDoc& document) {
    DesignMatrix& design = document.design;
    const DesignSource source = designSource(document);
    buildConditionPredictorNames(design, source);
    buildConfoundPredictorNames(design, source);
    design.NrOfPredictors = design.NrOfConditionPredictors + design.NrOfConfoundPredictors;
}

// What the header of an arriving protocol says on contrasts.
ProtocolContrasts broughtContrasts(const QtCortivoDoc& document) {
    if (isProtocolPathSet(document.protocol.tdatPath))
        return document.tdatProtocol.state.contrasts;
    if (isProtocolPathSet(document.protocol.realTimeProtocolPath))
        return document.realTimeProtocol.state.contrasts;
    return {};
}

void takeContrastTable(ContrastDefinitions& contrasts, const ProtocolContrasts& brought) {
    contrasts.clear();
    for (const ProtocolContrasts::Contrast& contrast : brought.table) {
        const int state = contrast.selectionState;
        contrasts.ContrastNames << contrast.name;
        contrasts.ContrastValues.push_back(contrast.weights);
        contrasts.ContrastSelectionStates.push_back(
            state >= ContrastOff && state <= ContrastBoth ? state : ContrastOff);
        contrasts.ContrastColors.push_back(contrast.color);
        ++contrasts.NrOfContrasts;
    }
    contrasts.ActiveContrastStates.assign(brought.table.size(), ContrastOff);
}

// Contrasts of a run whose contrast file is none, or can't be used.
void takeContrasts(QtCortivoDoc& document, const ProtocolContrasts& brought, int automaticLevel) {
    ContrastDefinitions& contrasts = document.contrasts;
    if (brought.source == ProtocolContrasts::Source::Table)
        takeContrastTable(contrasts, brought);
    if (brought.source == ProtocolContrasts::Source::Generated)
        generateContrasts(contrasts, document.design, brought.level);
    if (contrasts.NrOfContrasts == 0) {
        contrasts.BaselinePosInProtocol = 1;
        generateContrasts(contrasts, document.design, automaticLevel);
    } else {
        rebuildContrastWeights(contrasts, document.design);
    }
}

} // namespace

DesignSource designSource(const QtCortivoDoc& document) {
    // A run that ended early has fewer volumes than its design, also when it is reloaded.
    const int volumes = std::max(document.project.NrOfVolumes, document.plan.nrOfVolumes);
    return {document.protocol, document.project.TR, volumes,
            document.contrasts.BaselinePosInProtocol, document.plan.DriftConfoundPredictors};
}

void setUpContrasts(QtCortivoDoc& document, const RunSettings& settings,
                    const QString& contrastFile) {
    ContrastDefinitions& contrasts = document.contrasts;
    const ProtocolContrasts brought = broughtContrasts(document);
    const bool isRealTime = isProtocolPathSet(document.protocol.realTimeProtocolPath);
    const bool takesFile =
        !contrastFile.isEmpty() &&
        (!isRealTime || brought.source == ProtocolContrasts::Source::ContrastFile);
    // Whether the model has a baseline must be known before its predictors get names.
    const int baselinePosition = contrasts.BaselinePosInProtocol;
    if (takesFile && contrastFileHasNoBaseline(contrastFile))
        contrasts.BaselinePosInProtocol = 0;
    buildPredictorNames(document);
    const bool fileRead = takesFile && readContrastFile(contrastFile, contrasts, document.design,
                                                        document.protocol.nrOfConditions());
    if (!fileRead) {
        if (contrasts.BaselinePosInProtocol != baselinePosition) {
            contrasts.BaselinePosInProtocol = baselinePosition;
            buildPredictorNames(document);
        }
        takeContrasts(document, brought, settings.AutoContrastGenerationLevel);
    }
    document.updateOverlayColors();
}

ModelLimits limitsOfPlannedModel(const QtCortivoDoc& document, const RunSettings& settings) {
    // A run that is too short for any model is meant so: a test of the export, a reference scan.
    if (!isProtocolPathSet(document.protocol.protocolPath) ||
        settings.nrOfAnalysedVolumes() < fewestModelVolumes)
        return {};
    // A design of its own: the document's gets its columns when the loop begins.
    DesignMatrix planned;
    DesignSource source = designSource(document);
    if (contrastFileHasNoBaseline(settings.ContrastFile))
        source.BaselinePosInProtocol = 0;
    buildConditionPredictorNames(planned, source);
    // What doesn't fit is told of with the document's own design.
    source.DriftConfoundPredictors =
        std::min(source.DriftConfoundPredictors,
                 DesignMatrix::maximumPredictors - planned.NrOfConditionPredictors - 1);
    buildConfoundPredictorNames(planned, source);
    if (!createConditionPredictors(planned, source) || !fillConfoundColumns(planned, source))
        return {};
    findPredictorOnsets(planned, source.NrOfVolumes);
    fillGLMStepVolumes(planned);
    return {conditionsWithoutModel(planned),
            predictorsThatDependOnOthers(planned, source.NrOfVolumes)};
}

PlannedModelSize plannedModelSize(const QtCortivoDoc& document, const RunSettings& settings) {
    const bool hasBaseline = document.contrasts.BaselinePosInProtocol != 0 &&
                             !contrastFileHasNoBaseline(settings.ContrastFile);
    constexpr int most = DesignMatrix::maximumPredictors;
    const int conditions =
        std::clamp(document.protocol.nrOfConditions() - (hasBaseline ? 1 : 0), 0, most - 1);
    // Comparisons with the baseline, and at level 2 of all pairs.
    const int level = settings.AutoContrastGenerationLevel;
    const int pairs = level == 2 ? conditions * (conditions - 1) / 2 : 0;
    const int generated = level >= 1 ? conditions + pairs : 0;
    return {std::min(conditions + 1 + std::max(settings.DriftConfoundPredictors, 0), most),
            std::max({generated, int(broughtContrasts(document).table.size()),
                      nrOfContrastsInFile(settings.ContrastFile)})};
}

bool rebuildDesign(DesignMatrix& design, const QtCortivoDoc& document) {
    const DesignSource source = designSource(document);
    design = document.design;
    if (!createConditionPredictors(design, source) || !fillConfoundColumns(design, source))
        return false;
    findPredictorOnsets(design, source.NrOfVolumes);
    return true;
}

bool hasConditions(const QtCortivoDoc& document) {
    if (document.protocol.nrOfConditions() > 0)
        return true;
    showCritical("ERROR: No conditions specified!");
    endProgram(1);
    return false;
}

bool prepareModel(QtCortivoDoc& document) {
    if (!hasConditions(document) || !buildDesign(document))
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

void tellOfDependentPredictors(const QStringList& predictors) {
    if (predictors.isEmpty())
        return;
    showModelessWarning(
        QStringLiteral("WARNING: These predictors can not be told apart, since they depend on each "
                       "other in the whole run: %1.\n\nContrasts that need them will have empty "
                       "maps. Check the protocol, the number of volumes and "
                       "\"DriftConfoundPredictors:\".")
            .arg(predictors.join(", ")));
}
