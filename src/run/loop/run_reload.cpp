// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/finished_run.h"

#include "base/paths.h"
#include "base/plain_file.h"
#include "run/loop/background_files.h"
#include "run/loop/motion_parameters_file.h"
#include "run/loop/run_anatomy.h"
#include "run/loop/run_model.h"
#include "run/loop/run_preparation.h"
#include "run/loop/run_statistics.h"
#include "run/loop/status_text.h"
#include "run/protocol/prt_file.h"
#include "run/settings/settings_file.h"
#include "stats/contrast_file.h"
#include "volume/first_volume_file.h"
#include "volume/fmr_project.h"

#include <QDir>

namespace {

bool readRecordedProtocol(QtCortivoDoc& document, const RunSettings& settings) {
    document.protocol.tdatPath.clear();
    document.protocol.realTimeProtocolPath.clear();
    document.protocol.protocolPath = protocolOfSavedRun(
        document.project, document.project.targetFolder, settings.StimulationProtocol);
    return readPRTFile(document.protocol, ResponseTable::Read);
}

bool loadProject(const RunParts& run) {
    QtCortivoDoc& document = run.document;
    const QString path = document.project.projectPath;
    if (!loadFMRProject(document.project, path, LoadData::Yes, &run.pump))
        return false;
    const FMRProject& project = document.project;
    document.mosaic.MosaicColumns = std::max(project.LayoutNColumns, 1);
    document.mosaic.MosaicRows = std::max(project.LayoutNRows, 1);
    return true;
}

// The slices show the first volume as it was measured; where its file is gone, as it was analysed.
void showSlices(FMRProject& project, QtCortivoDoc& document) {
    if (!readFirstVolume(project) && project.firstVolume.allocate(project.volumeSamples()))
        std::copy_n(project.volumes[0].data(), project.volumeSamples(), project.firstVolume.data());
    showFirstVolume(document);
}

} // namespace

QString protocolOfSavedRun(const FMRHeader& header, const QString& folder,
                           const QString& measuredWith) {
    const QString recorded =
        header.ProtocolFiles.isEmpty()
            ? QString()
            : paths::join(folder, paths::fileName(header.ProtocolFiles.first()));
    return fileExists(recorded) ? recorded : measuredWith;
}

bool reloadRun(const RunParts& run, const std::function<void()>& stopTimer) {
    RunSettings& settings = run.settings;
    QtCortivoDoc& document = run.document;
    if (!readSettingsFile(settings, SettingsUse::Reload, stopTimer))
        return false;
    run.setUpWorkers();
    copySettingsToDocument(document, settings);
    run.requests.thresholds = thresholdsAtStart(settings.Threshold, settings.ClusterSizePixels);
    const FMRProject& project = document.project;
    run.display.showLogText(reloadingText(run.requests.logFontSize,
                                          paths::fileName(settings.settingsFilePath),
                                          paths::fileName(project.projectPath)));
    run.pump.processEvents();
    if (!loadProject(run) || !readRecordedProtocol(document, settings) || !hasConditions(document))
        return false;
    const QString contrasts = contrastFilePath({}, project.projectPath);
    setUpContrasts(document, settings, fileExists(contrasts) ? contrasts : settings.ContrastFile);
    showSlices(document.project, document);
    readBackgroundImages(document);
    settings.OverlayInplaneData = settings.OverlayInplaneData && readInplaneImages(document);
    run.requests.pendingOverlayInplane =
        settings.OverlayInplaneData ? settings.pendingOverlayInplane : -1;
    prepareVmrOverlay(anatomyRun(run));
    computeVmrToFunctional(anatomyRun(run));
    showSavedCubes(anatomyRun(run));
    if (!preparePluginMaps(run))
        return false;
    // The log of a stimulation computer may have turned the correction off that the settings state.
    if (isProtocolPathSet(settings.TDatFile) && !fileExists(motionParametersFileName(project)))
        settings.MotionCorrection = false;
    // Without its motion a run is shown all the same.
    if (settings.MotionCorrection)
        (void)loadMotionParameters(document.motion, project, settings.MotionCorrection);
    modelAfterReload(run);
    buildVolumeTables(document.volumeTables, document.protocol, project.NrOfVolumes, project.TR);
    run.report.currentVolume = project.NrOfVolumes;
    return true;
}
