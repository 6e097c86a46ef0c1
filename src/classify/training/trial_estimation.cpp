// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/training/trial_estimation.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/worker_tasks.h"
#include "classify/training/finished_runs.h"
#include "classify/training/mean_response.h"
#include "classify/training/restored_files.h"
#include "classify/trial_fit.h"
#include "classify/trial_settings_file.h"
#include "volume/fmr_file.h"

namespace {

/// Numbers in protocols may be any; beyond what a run can have they would overflow.
bool isPossible(const Trial& trial) {
    return trial.start >= -maximumFMRVolumes && trial.start <= trial.end &&
           trial.end <= maximumFMRVolumes;
}

EstimationEnd faultOfTrials(const std::vector<Trial>& trials, const TrialOptions& options,
                            int nrOfVolumes) {
    if (trials.empty())
        return EstimationEnd::NoTrials;
    for (const Trial& trial : trials) {
        if (!isPossible(trial))
            return EstimationEnd::ImpossibleTrial;
        if (pointsOfWindow(options, trial.duration()) >= nrOfVolumes)
            return EstimationEnd::WindowTooLong;
    }
    return EstimationEnd::Done;
}

/// One fit for each duration.
using TrialFits = std::map<int, TrialFit>;

class RunEstimation {
public:
    RunEstimation(const FMRProject& project, const std::vector<Trial>& trials,
                  const TrialOptions& options)
        : project_(project), trials_(trials), options_(options) {}

    EstimationEnd makeFits(const std::vector<size_t>& responsePlaces, ProgressReporter& progress);
    /// Where the data don't allow what is wanted of a trial.
    void logLimits(QStringList& log) const;
    [[nodiscard]] bool fillMaps(TrialMaps& maps, ProgressReporter& progress) const;

private:
    [[nodiscard]] TrialDesign designOf(int duration) const;

    const FMRProject& project_;
    const std::vector<Trial>& trials_;
    const TrialOptions& options_;
    std::vector<double> curve_; ///< of a measured response
    TrialFits fits_;
};

TrialDesign RunEstimation::designOf(int duration) const {
    return options_.response == TrialResponse::MeanResponse
               ? measuredResponseDesign(measuredResponse(curve_, trials_, duration, options_),
                                        options_)
               : trialDesign(options_, duration, project_.TR);
}

EstimationEnd RunEstimation::makeFits(const std::vector<size_t>& responsePlaces,
                                      ProgressReporter& progress) {
    const bool measured = options_.response == TrialResponse::MeanResponse;
    if (measured) {
        auto curve = meanCurve(project_.volumes, responsePlaces, options_.intensityLimit, progress);
        if (!curve)
            return EstimationEnd::Stopped;
        curve_ = std::move(*curve);
    }
    for (const Trial& trial : trials_) {
        if (fits_.contains(trial.duration()))
            continue;
        if (measured && measuredResponse(curve_, trials_, trial.duration(), options_).empty())
            return EstimationEnd::FlatResponse;
        TrialFit fit{designOf(trial.duration()), options_.estimate, options_.zNormalization};
        if (fit.design.nrOfPoints == 0)
            return EstimationEnd::OutOfMemory;
        fits_.emplace(trial.duration(), std::move(fit));
    }
    return EstimationEnd::Done;
}

void RunEstimation::logLimits(QStringList& log) const {
    for (const Trial& trial : trials_) {
        if (fits_.at(trial.duration()).skipsNormalization())
            log << "z normalization skipped - less than 3 data points";
        if (size_t(std::max(trial.start, 0)) >= project_.volumes.size())
            log << QStringLiteral("WARNING: Trial %1 of \"%2\" begins behind the last volume: "
                                  "its values mean nothing")
                       .arg(trial.number)
                       .arg(trial.condition);
    }
}

bool RunEstimation::fillMaps(TrialMaps& maps, ProgressReporter& progress) const {
    const int slices = project_.NrOfSlices;
    const size_t voxels = project_.sliceSamples();
    return doTasks(
        int(trials_.size()) * slices,
        [&](int task, const std::stop_token&) {
            const Trial& trial = trials_[size_t(task / slices)];
            const TrialFit& fit = fits_.at(trial.duration());
            const size_t place = size_t(task % slices) * voxels;
            estimateConsecutiveVoxels(
                fit, project_.volumes,
                windowVolumes(trial.start - options_.preOnset, fit.design.nrOfPoints,
                              int(project_.volumes.size())),
                place, options_.intensityLimit, maps.map(task / slices).subspan(place, voxels));
        },
        progress);
}

/// Writes maps and settings beside the run. False after a message, with both files as before.
bool writeResults(const QString& trialFile, const TrialMaps& maps, const TrialOptions& options) {
    const QString settings = paths::join(paths::folderWithSlash(trialFile), trialSettingsFileName);
    RestoredFiles old({settings});
    if (!writeFileAtomically(settings, trialSettingsText(options))) {
        showCritical(
            QStringLiteral("Unable to write the settings of the estimation: %1").arg(settings));
        return false;
    }
    if (!writeTrialMaps(trialFile, maps))
        return false;
    old.keep();
    return true;
}

std::vector<size_t> placesOf(const EstimationPlan& plan, const VolumeSize& size) {
    std::vector<size_t> places;
    if (plan.regionSize == size)
        for (size_t i = 0; i < plan.region.size(); ++i)
            places.push_back(plan.region.offset(i, size));
    return places;
}

EstimationEnd estimateOneRun(const EstimationPlan& plan, int index, EstimationOutcome& outcome,
                             const std::function<void(const QString&)>& log,
                             ProgressReporter& progress) {
    auto document = loadFinishedRun(outcome.run);
    if (!document)
        return EstimationEnd::MessageShown;
    document->protocol = plan.protocols[size_t(index)];
    FMRProject& project = document->project;
    const std::vector<Trial> trials = trialsOf(document->protocol, plan.conditions);
    TrialMaps maps;
    QStringList lines;
    const EstimationEnd end = estimateRun(project, trials, plan.options,
                                          placesOf(plan, project.size()), maps, lines, progress);
    if (!lines.isEmpty())
        log(lines.join('\n'));
    if (end != EstimationEnd::Done)
        return end;
    const QString trialFile = trialMapsFileName(outcome.run);
    if (!writeResults(trialFile, maps, plan.options))
        return EstimationEnd::MessageShown;
    log(QStringLiteral("Estimated %1 trials of \"%2\": \"%3\"")
            .arg(maps.count())
            .arg(paths::fileName(outcome.run), paths::fileName(trialFile)));
    project.volumes.clear();
    outcome.trialFiles << trialFile;
    outcome.document = std::move(document);
    return EstimationEnd::Done;
}

} // namespace

EstimationEnd estimateRun(const FMRProject& project, const std::vector<Trial>& trials,
                          const TrialOptions& options, const std::vector<size_t>& responsePlaces,
                          TrialMaps& maps, QStringList& log, ProgressReporter& progress) {
    EstimationEnd end = faultOfTrials(trials, options, int(project.volumes.size()));
    if (end != EstimationEnd::Done)
        return end;
    maps.size = project.size();
    for (const Trial& trial : trials)
        maps.names << trialMapName(trial.condition, trial.number);
    if (!maps.values.allocate(trials.size() * project.volumeSamples()))
        return EstimationEnd::OutOfMemoryOfMaps;
    RunEstimation run(project, trials, options);
    end = run.makeFits(responsePlaces, progress);
    if (end != EstimationEnd::Done)
        return end;
    run.logLimits(log);
    return run.fillMaps(maps, progress) ? EstimationEnd::Done : EstimationEnd::Stopped;
}

EstimationOutcome estimateRuns(const EstimationPlan& plan,
                               const std::function<void(const QString&)>& log,
                               ProgressReporter& progress) {
    EstimationOutcome outcome;
    const int count = int(plan.runs.size());
    for (int i = 0; i < count && outcome.end == EstimationEnd::Done; ++i) {
        PartProgress part(progress, 100 * i / count, 100 * (i + 1) / count);
        outcome.run = plan.runs[i];
        outcome.end = estimateOneRun(plan, i, outcome, log, part);
    }
    return outcome;
}

QString estimationFault(const EstimationOutcome& outcome) {
    const QString run = paths::fileName(outcome.run);
    switch (outcome.end) {
    case EstimationEnd::Done:
    case EstimationEnd::Stopped:
    case EstimationEnd::MessageShown:
        return {};
    case EstimationEnd::NoTrials:
        return QStringLiteral("The selected conditions have no trials in \"%1\".").arg(run);
    case EstimationEnd::WindowTooLong:
        return "Can not estimate all trials!\n\nNot enough data points available - reduce "
               "post-onset value and try again.";
    case EstimationEnd::ImpossibleTrial:
        return QStringLiteral("The protocol of \"%1\" has a trial that ends before it begins, or "
                              "lies far outside the run.\n\nCorrect its intervals.")
            .arg(run);
    case EstimationEnd::FlatResponse:
        return QStringLiteral("The mean response to the trials of \"%1\" is flat, so that it can "
                              "not serve as predictor.\n\nCheck the data window, the region and "
                              "the intensity limit, or use a two-gamma response.")
            .arg(run);
    case EstimationEnd::OutOfMemory:
        return "Insufficient memory!";
    case EstimationEnd::OutOfMemoryOfMaps:
        return "ERROR - Insufficient memory for allocating volume map data structure!";
    }
    return {};
}
