// Steps stand in the order in which prepareRun(), at the end, takes them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_preparation.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/program_end.h"
#include "intake/inplane_reader.h"
#include "run/loop/run_anatomy.h"
#include "run/loop/run_disk.h"
#include "run/loop/run_memory.h"
#include "run/loop/run_model.h"
#include "run/loop/run_protocol.h"
#include "run/settings/settings_paths.h"
#include "volume/motion_correction.h"

#include <QDir>

namespace {

const QString outOfMemory = "FATAL ERROR: Can not get enough memory to continue !";
const QString folderInUse =
    "WARNING: Another Velo-Cortivo (%1) is using the folder \"%2\". Both would write their "
    "results there.\n\nDo you want to start the run all the same?";

bool failFatally(const QString& text, int status = 1) {
    showCritical(text);
    endProgram(status);
    return false;
}

bool readRunSettings(const RunParts& run, RunSource& source,
                     const std::function<void()>& stopTimer) {
    RunSettings& settings = run.settings;
    if (!source.readSettings(settings, stopTimer))
        return false;
    if (settings.MergeType) {
        showWarning(QStringLiteral("ERROR: The settings file \"%1\" describes a project of several "
                                   "runs. Choose it as the current settings file and press the run "
                                   "button to have them analyzed.")
                        .arg(settings.settingsFilePath));
        return false;
    }
    run.setUpWorkers();
    OperatorRequests& requests = run.requests;
    // A version 1 file has no such key, and the flag keeps the value that a start gives it.
    if (settings.forceTRDelayRead)
        requests.forceTRDelay = settings.ForceTRDelay;
    requests.pendingOverlayInplane = settings.pendingOverlayInplane;
    requests.pendingOverlayVMR = settings.pendingOverlayVMR;
    requests.pendingOverlaySRF = settings.pendingOverlaySRF;
    requests.thresholds = thresholdsAtStart(settings.Threshold, settings.ClusterSizePixels);
    return true;
}

// Two programs that save into one folder may overwrite each other's results.
bool lockTargetFolder(const RunParts& run) {
    const QString& folder = run.settings.TargetFolder;
    if (run.targetLock.take(folder))
        return true;
    if (!askBeforeLoss(folderInUse.arg(run.targetLock.holder(), folder)))
        return false;
    static_cast<void>(run.targetLock.takeOver(folder)); // without a lock if the other one lives
    return true;
}

// The values of the settings that belong to the project.
void copySettingsToProject(FMRProject& project, const RunSettings& settings) {
    project.NrOfVolumes = settings.nrOfAnalysedVolumes();
    project.NrOfSlices = settings.NrOfSlices;
    project.NrOfSkippedVolumes = settings.NrOfVolumesToSkip;
    project.Prefix = settings.SlicePrefix;
    project.TR = settings.TR;
    project.InterSliceTime = settings.InterSliceTime;
    project.ResolutionX = settings.MatrixSizeX;
    project.ResolutionY = settings.MatrixSizeY;
    project.LayoutNColumns = settings.NrOfColumns;
    project.LayoutNRows = settings.NrOfRows;
    project.sliceThickness = settings.SliceThickness;
    project.sliceGap = settings.GapThickness;
    project.pixelSizeX = settings.pixelSizeX;
    project.pixelSizeY = settings.pixelSizeY;
    // Where the settings reader had no reason to work it out, and until an image header tells
    // better, the field of view that the operator stated is all that is known.
    if (project.pixelSizeX == 0.0f && settings.MatrixSizeX > 0)
        project.pixelSizeX = float(settings.InplaneFoVX) / float(settings.MatrixSizeX);
    if (project.pixelSizeY == 0.0f && settings.MatrixSizeY > 0)
        project.pixelSizeY = float(settings.InplaneFoVY) / float(settings.MatrixSizeY);
    project.targetFolder = settings.TargetFolder;
    project.projectPath = projectFile(settings.TargetFolder, settings.ProjectName);
}

} // namespace

void copySettingsToDocument(QtCortivoDoc& document, const RunSettings& settings) {
    copySettingsToProject(document.project, settings);
    document.plan = {settings.nrOfAnalysedVolumes(), settings.DriftConfoundPredictors};
    document.protocol.tdatPath = settings.TDatFile;
    document.protocol.realTimeProtocolPath = settings.RealTimeProtocol;
    document.protocol.protocolPath = settings.StimulationProtocol;
    document.mosaic.MosaicColumns = std::max(settings.NrOfColumns, 1);
    document.mosaic.MosaicRows = std::max(settings.NrOfRows, 1);
}

bool preparePluginMaps(const RunParts& run) {
    RegisteredPluginMaps& maps = run.requests.pluginMaps;
    if (maps.count() < 1) {
        maps.shown = false;
        run.listeners.mapListChanged();
        return true;
    }
    const VolumeSize size = run.document.project.size();
    if (run.document.pluginMaps.allocate(maps.count(), size))
        return true;
    tellOfPluginMapsWithoutMemory(run);
    return false;
}

void showFirstVolume(QtCortivoDoc& document) {
    const FMRProject& project = document.project;
    computeDisplayRange(document.slices.greyScale, project.firstVolume.span());
    document.slices.createSlicePixmaps(project.firstVolume.span(), project.size());
}

namespace {

// The operator hears of it before the first volume is waited for, and may mend the protocol.
void tellOfModelLimits(const QtCortivoDoc& document, const RunSettings& settings) {
    const ModelLimits limits = limitsOfPlannedModel(document, settings);
    if (!limits.conditionsThatNeverEnter.isEmpty())
        showModelessWarning(
            QStringLiteral("WARNING: The model will not hold these conditions, since "
                           "their response does not begin in time within the run: "
                           "%1.")
                .arg(limits.conditionsThatNeverEnter.join(", ")));
    tellOfDependentPredictors(limits.dependentPredictors);
}

// A shortage of memory is found here and not in the middle of a run.
bool allocateRun(QtCortivoDoc& document, EventPump& pump) {
    if (!document.project.allocateVolumes(&pump))
        return failFatally("ERROR: Insufficient memory for creating slice time courses!");
    const size_t samples = document.project.volumeSamples();
    if (!document.project.firstVolume.allocate(samples))
        return failFatally(outOfMemory);
    // A program that starts this one tells this failure by its status.
    return document.workingVolume.allocate(samples) || failFatally(outOfMemory, 0);
}

std::unique_ptr<VolumeReader> makeRunReader(const RunParts& run, RunSource& source) {
    run.intake.rawDataByteOrder = run.settings.byteOrderCode();
    run.intake.watchFolder = run.settings.WatchFolder;
    std::unique_ptr<VolumeReader> reader =
        source.makeReader({run.settings, run.document.project, run.intake, run.pump});
    if (!reader)
        failFatally(QStringLiteral("ERROR: Data type not supported!\n\nCheck settings file: "
                                   "\"%1\".")
                        .arg(run.settings.settingsFilePath));
    return reader;
}

bool readFirstVolume(const RunParts& run, VolumeReader& reader) {
    if (reader.readFirstVolume())
        return true;
    if (!run.pump.waitsGivenUp())
        showWarning("TIME OUT: Expected first file did not arrive!");
    return false;
}

// Memory for the target, which volume 0 fills, or the target of another run of the session. False
// after a message; data files of the other run that are missing or too short end the program.
bool prepareMotionTarget(const RunParts& run, RunSource& source) {
    const RunSettings& settings = run.settings;
    QtCortivoDoc& document = run.document;
    if (!settings.MotionCorrection)
        return true;
    document.motion.method = MotionMethod(settings.MotionCorrectionMethod);
    if (settings.IntraSessionMotionCorrection)
        return source.loadMotionTarget(settings, document.project, document.motion);
    return document.motion.motionTarget.allocate(document.project.volumeSamples()) ||
           failFatally(outOfMemory);
}

bool readInplanes(const RunParts& run) {
    const RunSettings& settings = run.settings;
    QtCortivoDoc& document = run.document;
    InplaneScan& scan = document.inplanes;
    if (!scan.allocate({settings.OverlayInplaneMatrixSizeX, settings.OverlayInplaneMatrixSizeY,
                        document.project.NrOfSlices}) ||
        !readInplaneSeries({run.settings, document.project, run.intake, run.pump}, scan))
        return false;
    document.slices.createInplanePixmaps(scan.samples.span(), scan.size);
    return !document.slices.InplanePixmaps.empty();
}

// The extra scan is only a background: a run is not given up for the lack of it.
void prepareInplanes(const RunParts& run) {
    if (!run.settings.OverlayInplaneData || readInplanes(run))
        return;
    run.document.inplanes = {};
    run.requests.pendingOverlayInplane = -1;
    if (run.pump.waitsGivenUp())
        return;
    showModelessWarning(
        QStringLiteral("WARNING: The inplane images in \"%1\" did not arrive in time "
                       "or can not be read.\n\nThe run goes on without them.")
            .arg(run.settings.OverlayInplaneFolder));
}

} // namespace

std::unique_ptr<VolumeReader> prepareRun(const RunParts& run, RunSource& source,
                                         const std::function<void()>& stopTimer) {
    const RunSettings& settings = run.settings;
    QtCortivoDoc& document = run.document;
    if (!readRunSettings(run, source, stopTimer))
        return nullptr;
    copySettingsToDocument(document, settings);
    if (!lockTargetFolder(run))
        return nullptr;
    if (!settings.TargetFolder.isEmpty())
        QDir::setCurrent(settings.TargetFolder);
    if (!readProtocol(run))
        return nullptr;
    prepareVmrOverlay(anatomyRun(run));
    if (!runFitsIntoMemory(run) || !allocateRun(document, run.pump))
        return nullptr;
    tellOfModelLimits(document, settings);
    if (source.isMeasured())
        tellOfDiskWithoutRoom(document.project, settings.TargetFolder, source.bytesOfJournal());
    if (settings.ShowGODlgAfterPreparation)
        announce(" Velo-Cortivo", "Press return or click the GO button to start!", "GO");

    std::unique_ptr<VolumeReader> reader = makeRunReader(run, source);
    if (!reader || !reader->prepare() || !readFirstVolume(run, *reader) || !reader->readHeaders() ||
        !prepareMotionTarget(run, source))
        return nullptr;
    document.maps.MapType = MapKind::T;
    showFirstVolume(document);
    prepareInplanes(run);
    computeVmrToFunctional(anatomyRun(run));
    prepareCubes(anatomyRun(run));
    setUpContrasts(document, settings, settings.ContrastFile);
    return run.pump.waitsGivenUp() || !preparePluginMaps(run) ? nullptr : std::move(reader);
}
