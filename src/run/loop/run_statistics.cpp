// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_statistics.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "run/loop/finished_run.h"
#include "run/loop/run_model.h"
#include "stats/clusters.h"
#include "stats/design_matrix_rtc.h"
#include "stats/design_rank.h"
#include "stats/glm_batch.h"
#include "stats/glm_file.h"
#include "stats/whole_run_maps.h"

#include <QFile>
#include <algorithm>

namespace {

constexpr const char* progressText = " Computing Standard GLM... ";

/// The condition columns keep their numbers; constant and drift terms belong to none.
std::vector<int> conditionsOfOwnColumns(const DesignMatrix& design) {
    std::vector<int> conditions(size_t(std::max(design.NrOfPredictors, 0)), -1);
    for (int j = 0; j < std::min(design.NrOfConditionPredictors, design.NrOfPredictors); ++j)
        conditions[size_t(j)] = j;
    return conditions;
}

/// The design of the run as a model of one study. Its files lie beside the model's, so that their
/// names need no folder.
bool makeRunDesign(WholeRunDesign& whole, const RunParts& run, int nrOfVolumes) {
    const FMRProject& project = run.document.project;
    DesignMatrix design;
    if (!rebuildDesign(design, run.document))
        return false;
    whole.studies = {{nrOfVolumes, paths::fileName(project.projectPath),
                      paths::fileName(modelDesignFilePath(project)), 1}};
    for (int j = 0; j < design.NrOfPredictors; ++j)
        whole.predictors.push_back(
            {design.PredictorNumberLabels.value(j), design.PredictorNames.value(j),
             size_t(j) < design.PredictorColors.size() ? design.PredictorColors[size_t(j)]
                                                       : RgbColor()});
    whole.conditionOfColumn = conditionsOfOwnColumns(design);
    for (int t = 0; t < nrOfVolumes; ++t)
        for (int j = 0; j < design.NrOfPredictors; ++j)
            whole.GLMDesign.push_back(designValue(design, j, t));
    return true;
}

/// Of a protocol that arrived nothing was known before the run.
void tellOfArrivedDesign(const RunParts& run, int nrOfVolumes) {
    const StimulationProtocol& protocol = run.document.protocol;
    DesignMatrix design;
    if ((isProtocolPathSet(protocol.tdatPath) ||
         isProtocolPathSet(protocol.realTimeProtocolPath)) &&
        rebuildDesign(design, run.document))
        tellOfDependentPredictors(predictorsThatDependOnOthers(design, nrOfVolumes));
}

/// The design of the model as a file: the run's columns up to its last volume.
RTCFile rtcFileOf(const WholeRunDesign& whole) {
    RTCFile file;
    file.nrOfDataPoints = whole.GLMDataPoints();
    const size_t p = whole.predictors.size();
    for (size_t j = 0; j < p; ++j) {
        file.names << whole.predictors[j].name;
        std::vector<float>& column = file.columns.emplace_back();
        for (size_t t = 0; t < size_t(file.nrOfDataPoints); ++t)
            column.push_back(whole.GLMDesign[t * p + j]);
    }
    return file;
}

void writeModel(const RunParts& run) {
    const FMRProject& project = run.document.project;
    WholeRunModel& model = run.document.wholeRunModel;
    writeDesignText(model, project.targetFolder);
    if (writeGLMDesignMatrixRTC(rtcFileOf(model), modelDesignFilePath(project)))
        (void)writeGLMFile(modelFilePath(project), model);
}

/// The columns of the file are those of the run's design.
bool hasColumnsOf(const WholeRunDesign& model, const DesignMatrix& design) {
    const auto isColumn = [](const GLMPredictor& predictor, const QString& name) {
        return predictor.name == name;
    };
    return model.GLMPredictors() == design.NrOfPredictors &&
           std::ranges::equal(model.predictors, design.PredictorNames, isColumn);
}

/// Reads the model of the run's file. False when it can't be read, after a message, or is not that
/// of this run.
bool readModel(const RunParts& run) {
    QtCortivoDoc& document = run.document;
    const QString path = modelFilePath(document.project);
    WholeRunModel model;
    if (!readGLMFile(path, document.project.size(), model))
        return false;
    if (model.nrOfStudies() != 1 || model.GLMDataPoints() != document.project.NrOfVolumes ||
        !hasColumnsOf(model, document.design)) {
        showWarning(QStringLiteral("WARNING: The model in \"%1\" is that of another run or of "
                                   "another protocol. It is computed again.")
                        .arg(path));
        return false;
    }
    model.conditionOfColumn = conditionsOfOwnColumns(document.design);
    document.wholeRunModel = std::move(model);
    return true;
}

} // namespace

QString modelFilePath(const FMRProject& project) {
    return resultPath(project, ".glm", defaultGLMFileName);
}

QString modelDesignFilePath(const FMRProject& project) {
    return resultPath(project, "_WithConfounds_run-1.rtc", "vco_WithConfounds_run-1.rtc");
}

WholeRunFit fitCompleteRun(const RunParts& run, int nrOfVolumes, ProgressReporter& progress) {
    QtCortivoDoc& document = run.document;
    if (nrOfVolumes < fewestModelVolumes) {
        dropModel(run);
        return WholeRunFit::Done;
    }
    WholeRunDesign design;
    if (!makeRunDesign(design, run, nrOfVolumes))
        return WholeRunFit::Failed;
    BrainMask mask;
    if (!createBrainMask(mask, document.project, brainMaskThreshold))
        return WholeRunFit::Failed;
    RunInMemory samples(document.project);
    WholeRunModel model;
    const WholeRunFit fit =
        fitWholeRunModel(model, design, document.project.size(), samples, progress, run.workers);
    if (fit != WholeRunFit::Done)
        return fit;
    document.mask = std::move(mask);
    document.wholeRunModel = std::move(model);
    (void)showModel(run);
    return fit;
}

bool showModel(const RunParts& run) {
    QtCortivoDoc& document = run.document;
    if (!computeContrastMaps(document.wholeRunModel, document.mask, document.contrasts,
                             document.maps, run.workers))
        return false;
    document.updateOverlayColors();
    computeClusterSizes(document.maps, run.requests.thresholds,
                        document.contrasts.ConjunctionAnalysis, run.workers);
    run.report.mapsPresent = document.maps.NrOfActiveContrasts > 0;
    return true;
}

void dropModel(const RunParts& run) {
    run.document.wholeRunModel.release();
    (void)run.document.maps.allocateMaps(0, run.document.maps.size);
    run.document.updateOverlayColors();
    run.report.mapsPresent = false;
}

void fitAfterRun(const RunParts& run) {
    run.phase.enter(Phase::Analysing);
    const int volumes = recordedVolumes(run.report, run.document.project);
    const std::unique_ptr<ProgressReporter> progress = run.display.openModelProgress(progressText);
    if (fitCompleteRun(run, volumes, *progress) != WholeRunFit::Done)
        return dropModel(run);
    if (!run.document.wholeRunModel.isValid())
        return;
    tellOfArrivedDesign(run, volumes);
    if (run.report.savedCompletely)
        writeModel(run);
    run.display.updateViews();
}

void modelAfterReload(const RunParts& run) {
    QtCortivoDoc& document = run.document;
    if (!createBrainMask(document.mask, document.project, brainMaskThreshold))
        return;
    if (fileExists(modelFilePath(document.project)) && readModel(run)) {
        (void)showModel(run);
        return;
    }
    const std::unique_ptr<ProgressReporter> progress = run.display.openModelProgress(progressText);
    if (fitCompleteRun(run, document.project.NrOfVolumes, *progress) != WholeRunFit::Done)
        dropModel(run);
}
