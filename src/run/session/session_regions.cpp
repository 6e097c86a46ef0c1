// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/session_regions.h"

#include "base/messages.h"
#include "base/plain_file.h"
#include "regions/region_ranking.h"
#include "regions/roi_file.h"
#include "run/document/plotted_volumes.h"
#include "run/document/session_phase.h"
#include "run/loop/finished_run.h"
#include "run/session/region_records.h"

constexpr char fileFilter[] = "ROI definition files (*.roi)";

SessionRegions::SessionRegions(const Parts& parts) : parts_(parts) {
    parts_.listeners.add(*this, ListenerPlace::Regions);
}

const Regions* SessionRegions::list() const {
    return document_ ? &document_->regions : nullptr;
}

RegionRun SessionRegions::run() const {
    return {*document_, parts_.settings, parts_.requests,
            recordedVolumes(parts_.report, document_->project)};
}

// A document of several runs has no volumes; its regions get their curves from the saved runs.
bool SessionRegions::mayChange() const {
    return document_ && (parts_.phase.isIdle() || parts_.phase.runActive()) &&
           plottedVolumes(parts_.report, *document_).measured > 0;
}

void SessionRegions::noteChange() {
    if (parts_.phase.canBeStopped())
        parts_.listeners.record({regionsRecord, regionRecord(parts_.requests, document_->regions)});
}

void SessionRegions::listChanged() {
    noteChange();
    parts_.listeners.regionsChanged(*document_);
}

bool SessionRegions::selectRectangle(const VoxelRectangle& rectangle) {
    if (!mayChange() || !addSelectedRegion(run(), rectangle))
        return false;
    listChanged();
    return true;
}

void SessionRegions::removeAll() {
    if (!mayChange() || document_->regions.empty())
        return;
    document_->regions.clear();
    listChanged();
}

void SessionRegions::chooseFileToLoad() {
    if (!mayChange())
        return;
    chooseFileToOpen(
        "Open ROI File", document_->project.targetFolder, fileFilter,
        [this](const QString& fileName) { static_cast<void>(load(fileName)); }, &chooser_);
}

bool SessionRegions::load(const QString& fileName) {
    SavedRegions saved;
    if (!mayChange() || !readROIFile(fileName, document_->project.size(), saved))
        return false;
    if (saved.regions.empty()) {
        showWarning(QStringLiteral("WARNING: The regions-of-interest file \"%1\" holds no regions.")
                        .arg(fileName));
        return false;
    }
    return take(saved, RegionPlacing::Replace);
}

bool SessionRegions::take(const SavedRegions& saved, RegionPlacing placing) {
    if (!mayChange())
        return false;
    placeSavedRegions(run(), saved, placing);
    parts_.listeners.regionsLoaded(*document_);
    listChanged();
    return true;
}

void SessionRegions::chooseFileToSave() {
    if (!mayChange())
        return;
    ::chooseFileToSave(
        "Save ROI File", regionFilePath(document_->project), fileFilter,
        [this](const QString& fileName) {
            if (document_)
                static_cast<void>(
                    writeROIFile(fileName, document_->regions, parts_.requests.regions));
        },
        &chooser_);
}

QString SessionRegions::roiGLMHindrance() const {
    if (!parts_.phase.isIdle())
        return QStringLiteral("Not while a run is measured or worked on");
    return document_ ? regionGLMHindrance(*document_) : QStringLiteral("There is no run in memory");
}

std::optional<RegionGLM> SessionRegions::computeROIGLM(int roiIndex,
                                                       bool correctSerialCorrelations) {
    if (!parts_.phase.isIdle() || !document_)
        return {};
    return computeRegionGLM(*document_, roiIndex, correctSerialCorrelations, dataFolder_);
}

void SessionRegions::forEachRegion(const std::function<void(RegionOfInterest&)>& change) {
    for (int i = 0; document_ && i < document_->regions.count(); ++i)
        change(document_->regions[i]);
}

// During a run the next volume computes the curves anew.
void SessionRegions::voxelsInUseChanged() {
    if (!mayChange())
        return noteChoices();
    if (parts_.phase.isIdle())
        updateRegionsRounded(run());
    listChanged();
}

void SessionRegions::enableDynamicROIs(bool on) {
    parts_.requests.regions.BestVoxelSelection = on;
    if (!on && parts_.phase.runActive())
        forEachRegion([](RegionOfInterest& region) { region.SortedVoxelList.clear(); });
    voxelsInUseChanged();
}

void SessionRegions::changeBestROIVoxelsRatio(float ratio) {
    parts_.requests.regions.TopVoxelRatio = ratio;
    forEachRegion([ratio](RegionOfInterest& region) { region.TopVoxelRatio = ratio; });
    voxelsInUseChanged();
}

void SessionRegions::changeTopVoxelSelectionMode(int mode) {
    parts_.requests.regions.TopVoxelSelectionMode = mode;
    forEachRegion([mode](RegionOfInterest& region) { region.TopVoxelSelectionMode = mode; });
    noteChoices();
}

void SessionRegions::noteChoices() {
    if (document_)
        noteChange();
}

void SessionRegions::setSelectOnlyMapVoxels(bool on) {
    parts_.requests.regions.SelectOnlyMapVoxels = on;
    noteChoices();
}

void SessionRegions::setLog(bool OperatorRequests::*log, bool on) {
    parts_.requests.*log = on;
    noteChoices();
}

void SessionRegions::samplesChanged() {
    if (!document_ || document_->regions.empty())
        return;
    updateRegionsFromChangedSamples(run());
    parts_.listeners.regionsChanged(*document_);
}

void SessionRegions::loadSaved() {
    const QString fileName = regionFilePath(document_->project);
    SavedRegions saved;
    if (!fileExists(fileName) || !readROIFile(fileName, document_->project.size(), saved))
        return;
    placeSavedRegions(run(), saved);
    parts_.listeners.regionsLoaded(*document_);
}

void SessionRegions::documentsLeaving() {
    document_ = nullptr;
    chooser_.close();
}

void SessionRegions::documentsArrived(QtCortivoDoc& functional) {
    document_ = &functional;
    logs_.restart();
    played_ = false;
}

// What was chosen before there was a journal. A run that is reloaded brings its regions.
void SessionRegions::runPrepared(QtCortivoDoc& functional) {
    if (parts_.phase.now() == Phase::Reloading)
        loadSaved();
    noteChange();
    parts_.listeners.regionsChanged(functional);
}

bool SessionRegions::atStep(VolumeStep step, const VolumeAtHand& hand) {
    switch (step) {
    case VolumeStep::LoadRegions:
        // A run that is recovered has regions of its own.
        if (hand.volume == 0 && !parts_.requests.preLoadROIFile.isEmpty() && !played_)
            static_cast<void>(load(parts_.requests.preLoadROIFile));
        break;
    case VolumeStep::RegionTimeCourses:
        updateRegions(run());
        break;
    case VolumeStep::Logs:
        logs_.writeVolume(hand, parts_.settings, parts_.requests);
        break;
    case VolumeStep::SelectVoxels:
        if (parts_.requests.regions.BestVoxelSelection)
            rankROIVoxels(hand.document.regions, hand.document.glm, hand.document.design,
                          hand.document.project.size());
        break;
    default:
        break;
    }
    return true;
}

// A volume at which a listener or a protocol ended the run counts, but passed none of the steps.
void SessionRegions::loopEnded(QtCortivoDoc& document) {
    if (run().nrOfVolumes == 0 || document.regions.empty())
        return;
    updateRegions(run());
    parts_.listeners.regionsChanged(document);
}

void SessionRegions::recordPlayed(const RunRecord& record) {
    if (!document_ || record.name != regionsRecord)
        return;
    played_ = true;
    SavedRegions saved;
    if (!parseRegionRecord(record.content, document_->project.size(), parts_.requests, saved))
        return;
    if (recordedVolumes(parts_.report, document_->project) > 0) {
        placeSavedRegions(run(), saved);
        parts_.listeners.regionsChanged(*document_);
    }
}
