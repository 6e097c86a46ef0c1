// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/multi_run.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "run/loop/background_files.h"
#include "run/loop/finished_run.h"
#include "run/loop/motion_parameters_file.h"
#include "run/loop/run_anatomy.h"
#include "run/loop/run_preparation.h"
#include "run/loop/run_statistics.h"
#include "run/loop/status_text.h"
#include "run/protocol/prt_file.h"
#include "run/settings/settings_file.h"
#include "stats/glm_file.h"
#include "volume/first_volume_file.h"
#include "volume/fmr_file.h"
#include "volume/stc_file.h"

#include <QDir>

namespace {

constexpr char noProtocol[] = "ERROR: No protocol file associated with FMR file.";

SeparatePredictors separationOf(const RunSettings& settings) {
    if (!settings.MergeSeparatePredictors)
        return SeparatePredictors::None;
    return settings.MergeSubjects.empty() ? SeparatePredictors::Studies
                                          : SeparatePredictors::Subjects;
}

// A condition of a column's name: without the study or subject that it is separate for.
QString conditionName(const WholeRunDesign& design, size_t column) {
    const QString& name = design.predictors[column].name;
    return design.separation == SeparatePredictors::None ? name : name.section(": ", 1);
}

// The file may be that of another list of runs, with other conditions: contrasts find their columns
// by name.
std::vector<int> columnsByName(const WholeRunDesign& design,
                               const std::vector<StudyCondition>& conditions) {
    std::vector<int> columns = conditionsOfColumns(design);
    columns.resize(design.predictors.size(), -1);
    for (size_t column = 0; column < columns.size(); ++column) {
        if (columns[column] < 0)
            continue;
        const QString name = conditionName(design, column);
        const auto found =
            std::find_if(conditions.begin() + 1, conditions.end(),
                         [&](const StudyCondition& condition) { return condition.name == name; });
        columns[column] =
            found == conditions.end() ? -1 : int(std::distance(conditions.begin(), found)) - 1;
    }
    return columns;
}

/// The steps of one analysis.
class Analysis {
public:
    Analysis(const RunParts& run, const MultiRunProject& project)
        : run_(run), document_(run.document), project_(project) {}

    MultiRunEnd perform(MultiRunAnalysis& analysis);

private:
    bool loadFirstProject(const QString& path);
    void showBackground();
    bool loadRuns();
    bool openSamples();
    bool writeDesigns();
    MultiRunEnd fitModel();
    bool readModel();
    void tellOfOtherRuns();
    void setUpContrasts();
    bool computeMaps();
    QString unreadable(int index) const;

    const RunParts& run_;
    QtCortivoDoc& document_;
    const MultiRunProject& project_;
    std::vector<RunOfStudy> runs_;
    std::vector<StudyCondition> conditions_;
    MultiStudyList list_;
    QString modelFile_;
    std::unique_ptr<SliceSource> samples_; ///< of all runs; null where the model is read
};

QString Analysis::unreadable(int index) const {
    return QStringLiteral(" ERROR: Can not read vco file \"%1\" for multi-run analysis.")
        .arg(project_.multiRunFiles.value(index));
}

MultiRunEnd Analysis::perform(MultiRunAnalysis& analysis) {
    run_.display.showLogText(analysingText(run_.requests.logFontSize,
                                           paths::fileName(run_.settings.settingsFilePath),
                                           paths::fileName(project_.multiRunProjectPath)));
    run_.pump.processEvents();
    const QString first = projectPathOf(project_, 0);
    if (first.isEmpty()) {
        showWarning(unreadable(0));
        return MultiRunEnd::Failed;
    }
    document_.multiRunDocument = true;
    modelFile_ = project_.multiRunProjectPath + ".glm";
    if (!loadFirstProject(paths::withDefaultExtension(first, "fmr")) || !preparePluginMaps(run_) ||
        !loadRuns() || !openSamples())
        return MultiRunEnd::Failed;
    run_.display.updateViews();
    if (!writeDesigns())
        return MultiRunEnd::Failed;
    MultiRunEnd made = MultiRunEnd::Failed;
    if (samples_)
        made = fitModel();
    else if (readModel())
        made = MultiRunEnd::Done;
    if (made != MultiRunEnd::Done)
        return made;
    setUpContrasts();
    if (!computeMaps())
        return MultiRunEnd::Failed;
    analysis.conditions = conditions_;
    return MultiRunEnd::Done;
}

bool Analysis::loadFirstProject(const QString& path) {
    FMRProject& project = document_.project;
    if (!loadFMRProjectHeader(project, path))
        return false;
    QDir::setCurrent(project.targetFolder);
    document_.mosaic.MosaicColumns = std::max(project.LayoutNColumns, 1);
    document_.mosaic.MosaicRows = std::max(project.LayoutNRows, 1);
    run_.requests.pendingOverlayInplane = -1;
    run_.settings.MotionCorrection = fileExists(motionParametersFileName(project));
    // Without its motion a run is shown all the same.
    if (run_.settings.MotionCorrection)
        (void)loadMotionParameters(document_.motion, project, run_.settings.MotionCorrection);
    showBackground();
    return true;
}

// The first volume as it was measured, or as it was analysed, or, where neither is left, none.
void Analysis::showBackground() {
    FMRProject& project = document_.project;
    FMRHeader header = project;
    const bool shown = (fileExists(firstVolumeFileName(project)) && readFirstVolume(project)) ||
                       (savedDataFault(project, project.projectPath).isEmpty() &&
                        readSTCVolume(0, project.projectPath, header, project.firstVolume)) ||
                       project.firstVolume.allocate(project.volumeSamples());
    if (!shown)
        return;
    showFirstVolume(document_);
    readBackgroundImages(document_);
    prepareVmrOverlay(anatomyRun(run_));
    computeVmrToFunctional(anatomyRun(run_));
    showSavedCubes(anatomyRun(run_));
}

bool Analysis::loadRuns() {
    for (int i = 0; i < project_.nrOfMultiRunFiles; ++i) {
        const QString path = projectPathOf(project_, i);
        if (path.isEmpty()) {
            showWarning(unreadable(i));
            return false;
        }
        RunOfStudy& study = runs_.emplace_back();
        if (!readRunHeader(study, project_, i, path) || !readRunProtocol(study, noProtocol))
            return false;
        if (size_t(i) < run_.settings.MergeSubjects.size())
            study.subject = run_.settings.MergeSubjects[size_t(i)];
    }
    conditions_ = unionOfConditions(runs_);
    if (conditions_.empty()) {
        showCritical("ERROR: No conditions specified!");
        return false;
    }
    document_.protocol = runs_.front().protocol;
    buildVolumeTables(document_.volumeTables, document_.protocol, document_.project.NrOfVolumes,
                      document_.project.TR);
    return true;
}

// Before anything is written: runs that don't fit together leave the target folder as it was.
bool Analysis::openSamples() {
    if (fileExists(modelFile_))
        return true;
    MultiStudyList runs;
    for (const RunOfStudy& run : runs_)
        runs.studies.emplace_back().studyFile = run.studyFile;
    samples_ = openRunsOnDisk(runs);
    return samples_ != nullptr;
}

bool Analysis::writeDesigns() {
    list_.transformation = ZTransformation(run_.settings.MergeZTransformation);
    list_.separation = separationOf(run_.settings);
    return createRunDesignMatrices(runs_, project_.multiRunProjectPath, list_);
}

MultiRunEnd Analysis::fitModel() {
    std::vector<RgbColor> colors;
    for (size_t i = 1; i < conditions_.size(); ++i)
        colors.push_back(conditions_[i].color);
    WholeRunDesign design;
    VolumeSize size;
    // The model is that of the list as it is on disk.
    MultiStudyList list;
    if (!readMDMFile(project_.multiRunProjectPath + ".mdm", list) ||
        !assembleMultiStudyDesign(list, colors, design, size) ||
        !addDriftTerms(design, run_.settings.MergeDriftConfoundPredictors))
        return MultiRunEnd::Failed;
    design.CorrectSerialCorrelations = run_.settings.MergeCorrectSerialCorrelations;
    writeDesignText(design, document_.project.targetFolder);
    WholeRunFit fit = WholeRunFit::Failed;
    {
        const std::unique_ptr<ProgressReporter> progress =
            run_.display.openModelProgress(" Computing Multi-Run GLM... ");
        fit = fitWholeRunModel(document_.wholeRunModel, design, size, *samples_, *progress,
                               run_.workers);
    }
    if (fit != WholeRunFit::Done)
        return fit == WholeRunFit::Cancelled ? MultiRunEnd::Cancelled : MultiRunEnd::Failed;
    // What could not be kept is shown all the same.
    (void)writeGLMFile(modelFile_, document_.wholeRunModel);
    return MultiRunEnd::Done;
}

bool Analysis::readModel() {
    WholeRunModel& model = document_.wholeRunModel;
    if (!readGLMFile(modelFile_, document_.project.size(), model))
        return false;
    model.conditionOfColumn = columnsByName(model, conditions_);
    tellOfOtherRuns();
    return true;
}

void Analysis::tellOfOtherRuns() {
    const WholeRunModel& model = document_.wholeRunModel;
    const auto isSame = [](const GLMStudy& study, const RunOfStudy& run) {
        return study.studyFile == run.studyFile && study.dataPoints == run.NrOfVolumes;
    };
    const bool sameRuns = std::ranges::equal(model.studies, runs_, isSame);
    const auto confounds = std::ranges::count(conditionsOfColumns(model), -1);
    if (sameRuns && model.transformation == list_.transformation &&
        model.separation == list_.separation &&
        model.CorrectSerialCorrelations == run_.settings.MergeCorrectSerialCorrelations &&
        confounds == model.nrOfStudies() * (1 + run_.settings.MergeDriftConfoundPredictors))
        return;
    showInformation(
        QStringLiteral("INFO: The model in file \"%1\" %2 \"%3\" %4 now. It is shown as it is; "
                       "delete the file to have the listed runs analyzed.")
            .arg(modelFile_,
                 sameRuns ? "was fitted with other options than those which"
                          : "is that of other runs than those which",
                 paths::fileName(run_.settings.settingsFilePath), sameRuns ? "states" : "lists"));
}

// Names and contrasts are those of a run with all conditions.
void Analysis::setUpContrasts() {
    StimulationProtocol united;
    for (const StudyCondition& condition : conditions_) {
        ProtocolCondition& entry = united.conditions.emplace_back();
        entry.name = condition.name;
        entry.color = condition.color;
    }
    DesignMatrix& design = document_.design;
    const DesignSource source{united, document_.project.TR, document_.project.NrOfVolumes, 1,
                              run_.settings.MergeDriftConfoundPredictors};
    buildConditionPredictorNames(design, source);
    buildConfoundPredictorNames(design, source);
    constexpr int againstFirstCondition = 1;
    generateContrasts(document_.contrasts, design, againstFirstCondition);
}

bool Analysis::computeMaps() {
    const WholeRunModel& model = document_.wholeRunModel;
    return createMaskOfModel(document_.mask, model.row(GLMMapRows::total)) && showModel(run_);
}

} // namespace

MultiRunProject multiRunProjectOf(const RunSettings& settings) {
    MultiRunProject project;
    project.settingsFolder =
        paths::folderWithSlash(paths::withForwardSlashes(settings.settingsFilePath));
    project.multiRunProject = settings.MergeType;
    project.multiRunFiles =
        settings.MergeType
            ? settings.MergeFiles
            : QStringList(paths::withoutExtension(paths::fileName(settings.settingsFilePath)));
    project.nrOfMultiRunFiles = int(project.multiRunFiles.size());
    if (settings.MergeType)
        project.multiRunProjectPath = paths::join(settings.TargetFolder, settings.ProjectName);
    return project;
}

QString projectPathOf(const MultiRunProject& project, int index) {
    return index >= 0 && index < project.multiRunFiles.size()
               ? resolveProjectPath(project.multiRunFiles[index], project.settingsFolder)
               : QString();
}

bool readRunHeader(RunOfStudy& study, const MultiRunProject& project, int index,
                   const QString& path) {
    FMRHeader header;
    study.studyFile = paths::withDefaultExtension(path, "fmr");
    if (!readFMRHeader(study.studyFile, header))
        return false;
    study.NrOfVolumes = header.NrOfVolumes;
    study.TR = header.TR;
    study.protocol.protocolPath =
        protocolOfSavedRun(header, paths::folderWithSlash(study.studyFile),
                           statedProtocol(project.multiRunFiles[index], project.settingsFolder));
    return true;
}

bool readRunProtocol(RunOfStudy& study, const QString& missingText) {
    if (fileExists(study.protocol.protocolPath))
        return readPRTFile(study.protocol, ResponseTable::Read);
    showCritical(missingText);
    return false;
}

MultiRunEnd analyseMultiRun(const RunParts& run, const MultiRunProject& project,
                            MultiRunAnalysis& analysis) {
    const MultiRunEnd end = Analysis(run, project).perform(analysis);
    if (end != MultiRunEnd::Done)
        return end;
    run.report.currentVolume = run.document.project.NrOfVolumes;
    return end;
}
