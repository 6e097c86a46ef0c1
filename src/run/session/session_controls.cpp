// Operations on the controls of maps and background: when what they change is computed.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_statistics.h"
#include "run/loop/status_text.h"
#include "run/session/run_session.h"
#include "stats/clusters.h"
#include "stats/thresholds.h"

// What changes before a run has ended belongs to it: see OperatorRecords.
void RunSession::noteChange() {
    if (phase.canBeStopped())
        operatorRecords_.changed();
}

// Unless the session is idle the document belongs to the work that goes on. During a run the loop
// finds the clusters of the next volume anew, but that may never come.
void RunSession::mapsChanged() {
    if (phase.isIdle())
        computeClusterSizes(functionalDocument->maps, requests.thresholds,
                            functionalDocument->contrasts.ConjunctionAnalysis, workers);
    else
        clustersOutdated_ = true;
    report.mapsPresent = true;
    display_.updateViews();
    noteChange();
}

void RunSession::takeUpChanges() {
    const bool outdated = clustersOutdated_;
    clustersOutdated_ = false;
    if (!functionalDocument)
        return;
    resetBackground();
    if (functionalDocument->contrasts.ContrastsChanged)
        contrastsChanged();
    else if (outdated)
        mapsChanged();
}

void RunSession::changeThreshold(float threshold) {
    if (!functionalDocument)
        return;
    ::changeThreshold(requests.thresholds, threshold);
    mapsChanged();
}

// Cluster sizes don't depend on it.
void RunSession::changeColorMaxThreshold(float threshold) {
    if (!functionalDocument)
        return;
    ::changeColorMaxThreshold(requests.thresholds, threshold);
    display_.updateViews();
    noteChange();
}

void RunSession::changeClusterSize(int pixels) {
    if (!functionalDocument)
        return;
    ::changeClusterSize(requests.thresholds, pixels);
    mapsChanged();
}

void RunSession::stepThreshold(bool up) {
    if (!functionalDocument)
        return;
    ::stepThreshold(requests.thresholds, functionalDocument->maps.MapType, up);
    mapsChanged();
}

void RunSession::shiftStartOffset(bool up) {
    if (functionalDocument)
        requests.startOffsetSeconds += up ? 1 : -1;
}

void RunSession::contrastsChanged() {
    if (!functionalDocument)
        return;
    functionalDocument->contrasts.ContrastsChanged = !phase.isIdle();
    noteChange();
    // A run that ended before its first solution has no model and no maps.
    if (!phase.isIdle() || !showModel(parts()))
        return;
    display_.updateViews();
}

bool RunSession::changeConjunction(bool wanted) {
    if (!functionalDocument)
        return false;
    ContrastDefinitions& contrasts = functionalDocument->contrasts;
    if (wanted && contrasts.shownStatistic != ShownStatistic::T) {
        showInformation("INFO: The conjunction is one of t maps, as F has no sign.\n\nChoose "
                        "\"t Maps\" in the menu of the contrast list first.");
        return false;
    }
    if (!setConjunction(contrasts, wanted))
        return false;
    contrastsChanged();
    return true;
}

bool RunSession::mayChangeStatistic() const {
    return phase.isIdle() && functionalDocument && functionalDocument->wholeRunModel.isValid();
}

bool RunSession::changeShownStatistic(ShownStatistic statistic, int contrast) {
    if (!mayChangeStatistic() || !showStatistic(functionalDocument->contrasts, statistic, contrast))
        return false;
    contrastsChanged();
    return true;
}

bool RunSession::changeOneSidedTesting(bool on) {
    if (!mayChangeStatistic())
        return false;
    functionalDocument->contrasts.oneSidedTesting = on;
    contrastsChanged();
    return true;
}

void RunSession::changeColorCoding(bool significance) {
    if (!functionalDocument)
        return;
    functionalDocument->SignificanceColorCoding = significance;
    functionalDocument->updateOverlayColors();
    display_.updateViews();
}

void RunSession::changeMultiSliceROISelection(int slices) {
    settings.MultiSliceROISelection = std::max(slices, 1);
    chosenROISlices_ = settings.MultiSliceROISelection;
}

void RunSession::resetBackground() {
    if (!requests.overlayReset)
        return;
    functionalDocument->slices.updateSlicePixmaps(functionalDocument->project.firstVolume.span(),
                                                  workers);
    requests.overlayReset = false;
}

void RunSession::showOnFirstVolume() {
    if (requests.overlayVolumeMode == 1)
        requests.overlayReset = true;
    requests.overlayVolumeMode = 0;
    // During a run the loop takes the request up at its next volume.
    if (phase.isIdle() && functionalDocument)
        resetBackground();
    if (requests.pendingOverlayInplane != -1)
        requests.pendingOverlayInplane = 0;
    display_.updateViews();
}

void RunSession::showOnCurrentVolume() {
    requests.overlayVolumeMode = 1;
    if (requests.pendingOverlayInplane != -1)
        requests.pendingOverlayInplane = 0;
    display_.updateViews();
}

void RunSession::showOnInplanes() {
    if (requests.pendingOverlayInplane == -1)
        return;
    requests.overlayVolumeMode = 0;
    requests.pendingOverlayInplane = 1;
    display_.updateViews();
}

void RunSession::showBeforePreprocessing(bool on) {
    requests.overlayAfterPreprocessing = !on;
}

QString RunSession::panelText() {
    if (!functionalDocument)
        return {};
    return report.outcomeText = betweenRunsText(report, requests, *functionalDocument);
}
