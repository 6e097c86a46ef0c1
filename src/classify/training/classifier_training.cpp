// Lists of runs and trial files, the estimation, and the patterns.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/training/classifier_training.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/program_end.h"
#include "classify/pattern_file.h"
#include "classify/training/finished_runs.h"
#include "classify/training/pattern_creation.h"
#include "classify/training/restored_files.h"
#include "classify/training/training_reports.h"
#include "classify/training/trial_estimation.h"
#include "classify/voxels_file.h"
#include "regions/roi_file.h"
#include "run/session/run_session.h"

namespace {

bool fail(const QString& text) {
    showWarning(text);
    return false;
}

bool checkProtocol(const StimulationProtocol& protocol, const QStringList& conditions) {
    if (protocol.protocolPath.isEmpty())
        return fail("At least one protocol not found for checks");
    if (protocol.resolutionOfTime == ResolutionOfTime::Milliseconds)
        return fail(QStringLiteral("At present, protocols must have \"volume\" resolution.\n\nYou "
                                   "may convert the resolution of protocol \"%1\" from "
                                   "\"millisecond\" to \"volume\" resolution using the Stimulation "
                                   "Protocol dialog.")
                        .arg(paths::fileName(protocol.protocolPath)));
    return hasConditions(protocol, conditions) ||
           fail("At least one protocol does not contain all selected conditions!");
}

/// One condition can be estimated, but not classified.
bool wantsToGoOn(qsizetype nrOfConditions) {
    if (nrOfConditions >= 2)
        return true;
    if (askQuestion("You have selected only 1 condition.\n\nYou may run single-trial analysis, "
                    "but you need to select at least 2 conditions to perform classifier "
                    "training.\n\nDo you want to coninue?"))
        return true;
    showInformation("For classifier training, you need to select at least two conditions.");
    return false;
}

void addClasses(std::vector<TrialClass>& all, const std::vector<TrialClass>& more) {
    for (const TrialClass& added : more) {
        const auto found = std::find_if(all.begin(), all.end(), [&](const TrialClass& known) {
            return known.name == added.name;
        });
        if (found == all.end())
            all.push_back(added);
        else
            found->nrOfTrials += added.nrOfTrials;
    }
}

bool endsProgram(EstimationEnd end) {
    return end == EstimationEnd::OutOfMemory || end == EstimationEnd::OutOfMemoryOfMaps;
}

void tellFault(const QString& text, bool fatal) {
    if (text.isEmpty())
        return;
    if (!fatal) {
        showWarning(text);
        return;
    }
    showCritical(text);
    endProgram(1);
}

} // namespace

ClassifierTraining::ClassifierTraining(RunSession& session, TrainingDisplay& display)
    : weightMaps(display), session_(session), display_(display) {}

ClassifierTraining::~ClassifierTraining() = default;

// Unless the session is idle, analyse() tells the operator to wait; its work here is empty.
bool ClassifierTraining::isIdle() {
    return session_.phase.isIdle() || session_.analyse({}, [](ProgressReporter&) { return true; });
}

const RegionOfInterest* ClassifierTraining::chosenRegion() const {
    const QtCortivoDoc* document = session_.functionalDocument.get();
    return document && choices.region >= 0 && choices.region < document->regions.count()
               ? &document->regions[choices.region]
               : nullptr;
}

void ClassifierTraining::listConditions(const StimulationProtocol& protocol) {
    conditions_ = conditionNames(protocol);
}

void ClassifierTraining::addRuns(const QStringList& paths) {
    for (const QString& path : paths) {
        StimulationProtocol protocol;
        if (runs_.contains(path) || !readConditionsOfRun(path, protocol))
            continue;
        if (runs_.isEmpty()) {
            listConditions(protocol);
            selectedConditions_ = conditions_.mid(1);
        }
        runs_ << path;
    }
    display_.refreshControls();
}

void ClassifierTraining::clearRuns() {
    runs_.clear();
    conditions_.clear();
    selectedConditions_.clear();
    display_.refreshControls();
}

void ClassifierTraining::showRun(int row) {
    StimulationProtocol protocol;
    if (row < 0 || row >= runs_.size() || !readConditionsOfRun(runs_[row], protocol))
        return;
    listConditions(protocol);
    display_.refreshControls();
}

bool ClassifierTraining::hasRunsAndConditions() const {
    if (runs_.isEmpty())
        return fail("No time course data available as input!\n\nAdd functional data sets and then "
                    "try again.");
    return !selectedConditions_.isEmpty() ||
           fail("No condition selected; you must select at least one condition in the "
                "protocol condition list in order to run single-trial analysis.");
}

bool ClassifierTraining::readProtocols(std::vector<StimulationProtocol>& protocols) const {
    const QStringList conditions = selectedConditions_;
    for (const QString& run : QStringList(runs_)) {
        StimulationProtocol protocol;
        if (!readConditionsOfRun(run, protocol) || !checkProtocol(protocol, conditions))
            return false;
        protocols.push_back(std::move(protocol));
    }
    return true;
}

bool ClassifierTraining::suggestWindow() {
    std::vector<StimulationProtocol> protocols;
    if (!hasRunsAndConditions() || !readProtocols(protocols))
        return false;
    IntervalHistogram histogram;
    for (const StimulationProtocol& protocol : protocols)
        addIntervals(histogram, trialsOf(protocol, selectedConditions_));
    const WindowSuggestion suggestion = suggestedWindow(histogram, options);
    options.postOnset = suggestion.postOnset;
    display_.log(suggestion.report.join('\n'));
    display_.refreshControls();
    return true;
}

bool ClassifierTraining::estimateTrials() {
    if (!isIdle() || !hasRunsAndConditions() || !wantsToGoOn(selectedConditions_.size()))
        return false;
    EstimationPlan plan{runs_, {}, selectedConditions_, options, {}, {}};
    if (!readProtocols(plan.protocols))
        return false;
    if (const RegionOfInterest* region = chosenRegion()) {
        plan.region = region->voxels;
        plan.regionSize = session_.functionalDocument->project.size();
    }
    EstimationOutcome outcome;
    const bool done =
        session_.analyse("Estimating single trials...", [&](ProgressReporter& progress) {
            outcome = estimateRuns(
                plan, [this](const QString& text) { display_.log(text); }, progress);
            return outcome.end == EstimationEnd::Done;
        });
    for (const QString& file : outcome.trialFiles) {
        TrialMaps maps;
        if (readTrialMapNames(file, maps))
            addTrialFile(file, classesOfMaps(maps.names));
    }
    if (outcome.document)
        weightMaps.setDocument(std::move(outcome.document));
    display_.refreshControls();
    tellFault(estimationFault(outcome), endsProgram(outcome.end));
    return done;
}

void ClassifierTraining::addTrialFile(const QString& path, const std::vector<TrialClass>& classes) {
    if (!trialFiles_.contains(path))
        trialFiles_ << path;
    classesOfFiles_[path] = classes;
    gatherClasses();
}

void ClassifierTraining::gatherClasses() {
    classes_.clear();
    for (const QString& file : trialFiles_)
        addClasses(classes_, classesOfFiles_[file]);
    const auto isKnown = [this](const QString& name) {
        return std::any_of(classes_.begin(), classes_.end(),
                           [&](const TrialClass& known) { return known.name == name; });
    };
    const auto nameAt = [this](size_t index) {
        return index < classes_.size() ? classes_[index].name : QString();
    };
    if (!isKnown(choices.class1) || !isKnown(choices.class2)) {
        choices.class1 = nameAt(0);
        choices.class2 = nameAt(1);
    }
}

bool ClassifierTraining::addTrialFiles(const QStringList& paths) {
    bool allAdded = true;
    for (const QString& path : paths) {
        TrialMaps maps;
        const bool wasRead = readTrialMapNames(path, maps);
        const std::vector<TrialClass> classes = classesOfMaps(maps.names);
        if (wasRead && classes.size() < 2)
            showWarning(QStringLiteral("%1\n\n\"%2\" has no trials of two or more conditions.")
                            .arg(classes.empty() ? "This .FMP file is not suited for MVPA!"
                                                 : "Not enough conditions!",
                                 paths::fileName(path)));
        else if (wasRead)
            addTrialFile(path, classes);
        allAdded = allAdded && classes.size() >= 2;
    }
    display_.refreshControls();
    return allAdded;
}

void ClassifierTraining::clearTrialFiles() {
    trialFiles_.clear();
    classesOfFiles_.clear();
    gatherClasses();
    display_.refreshControls();
}

QStringList ClassifierTraining::regions() const {
    QStringList names;
    const QtCortivoDoc* document = session_.functionalDocument.get();
    for (int i = 0; document && i < document->regions.count(); ++i)
        names << regionText(i);
    return names;
}

bool ClassifierTraining::planPatterns(PatternPlan& plan) const {
    if (regions().isEmpty())
        return fail("You must specify/load ROIs before entering this dialog!");
    const RegionOfInterest* region = chosenRegion();
    if (!region || region->voxels.size() == 0)
        return fail("No ROI selected for SVM data creation");
    if (trialFiles_.isEmpty())
        return fail("No trial data files available!\n\nEstimate single trials, or add trial data "
                    "files (*.fmp), and then try again.");
    if (!choices.multiClass && choices.class1 == choices.class2)
        return fail("Can not continue - two conditions do not differ!\n\nYou must select two "
                    "different conditions for SVM training!");
    if (classes_.size() < 2)
        return fail("Not enough conditions!");
    plan = {trialFiles_,
            {choices.class1, choices.class2},
            choices.multiClass,
            region->voxels,
            session_.functionalDocument->project.size()};
    if (plan.multiClass) {
        plan.classes.clear();
        for (const TrialClass& known : classes_)
            plan.classes << known.name;
    }
    return true;
}

bool ClassifierTraining::createPatterns() {
    PatternPlan plan;
    if (!isIdle() || !planPatterns(plan))
        return false;
    MadePatterns made = checkTrialFiles(plan);
    if (made.end == PatternEnd::Done &&
        !session_.analyse("Creating patterns...",
                          [&](ProgressReporter& progress) {
                              made = makePatterns(plan, progress);
                              return made.end == PatternEnd::Done;
                          }) &&
        made.end == PatternEnd::Done)
        return false; // other work has begun meanwhile
    if (made.end != PatternEnd::Done) {
        tellFault(patternFault(made), made.end == PatternEnd::UnknownClass);
        return false;
    }
    display_.log(trialCountsReport(plan.classes, made.counts));
    return writePatterns(plan, made);
}

bool ClassifierTraining::writePatterns(const PatternPlan& plan, const MadePatterns& made) {
    const QString target = folder();
    const QString path =
        target + patternFileName(choices.trainingPatterns, regionText(choices.region), plan.classes,
                                 made.counts);
    const QString voxels = target + voxelsFileName;
    const QString region = target + voxelsRegionFileName;
    Regions regions;
    regions.add({}).voxels = plan.voxels;
    RestoredFiles old({voxels, region});
    if (!writeFileAtomically(voxels, voxelsText(plan.voxels))) {
        showCritical(QStringLiteral("Unable to write the voxels of the region: %1\n\nCheck that "
                                    "the folder can be written, and that the disk is not full.")
                         .arg(voxels));
        return false;
    }
    if (!writeROIFile(region, regions, {}) ||
        !writePatternFile(path, made.patterns, PatternFileForm::Binary))
        return false;
    old.keep();
    patternPath_ = path;
    display_.log(QStringLiteral("Saved patterns: \"%1\"").arg(path));
    display_.refreshControls();
    return true;
}

QString ClassifierTraining::folder() const {
    if (const QtCortivoDoc* run = weightMaps.document())
        return run->project.targetFolder;
    return paths::folderWithSlash(trialFiles_.value(0));
}
