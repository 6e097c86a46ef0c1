// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_preparation.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/program_end.h"
#include "intake/inplane_reader.h"
#include "run/loop/model_setup.h"
#include "run/loop/motion_preparation.h"
#include "run/loop/protocol_reading.h"
#include "run/settings/settings_file.h"

#include <QDir>

namespace {

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
    project.projectPath = paths::join(settings.TargetFolder,
                                      paths::withDefaultExtension(settings.ProjectName, "fmr"));
}

// A shortage of memory is found here and not in the middle of a run.
bool allocateRun(QtCortivoDoc& document) {
    if (!document.project.allocateVolumes()) {
        showCritical("ERROR: Insufficient memory for creating slice time courses!");
        endProgram(1);
        return false;
    }
    const size_t samples = document.project.volumeSamples();
    const QString outOfMemory = "FATAL ERROR: Can not get enough memory to continue !";
    if (!document.project.firstVolume.allocate(samples)) {
        showCritical(outOfMemory);
        endProgram(1);
        return false;
    }
    if (!document.workingVolume.allocate(samples)) {
        showCritical(outOfMemory);
        // The other status is what programs that start this one look at.
        endProgram(0);
        return false;
    }
    return true;
}

bool readFirstVolume(VolumeReader& reader) {
    if (reader.readFirstVolume())
        return true;
    showWarning("TIME OUT: Expected first file did not arrive!");
    return false;
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
    showModelessWarning(
        QStringLiteral("WARNING: The inplane images in \"%1\" did not arrive in time "
                       "or can not be read.\n\nThe run goes on without them.")
            .arg(run.settings.OverlayInplaneFolder));
}

} // namespace

void copySettingsToDocument(QtCortivoDoc& document, const RunSettings& settings) {
    copySettingsToProject(document.project, settings);
    document.protocol.tdatPath = settings.TDatFile;
    document.protocol.realTimeProtocolPath = settings.RealTimeProtocol;
    document.protocol.protocolPath = settings.StimulationProtocol;
    document.mosaic.MosaicColumns = std::max(settings.NrOfColumns, 1);
    document.mosaic.MosaicRows = std::max(settings.NrOfRows, 1);
    document.workingFolder = settings.TargetFolder;
}

void showFirstVolume(QtCortivoDoc& document) {
    const FMRProject& project = document.project;
    computeDisplayRange(document.slices.greyScale, project.firstVolume.span());
    document.slices.createSlicePixmaps(project.firstVolume.span(), project.size());
}

std::unique_ptr<VolumeReader> prepareRun(const RunParts& run, const ReaderMaker& makeReader,
                                         const std::function<void()>& stopTimer) {
    RunSettings& settings = run.settings;
    QtCortivoDoc& document = run.document;
    if (!readSettingsFile(settings, SettingsUse::Run, stopTimer))
        return nullptr;
    if (settings.MergeType) {
        showWarning("ERROR: Multi-run projects are not supported by this version.");
        return nullptr;
    }
    // A version 1 file has no such key, and the flag keeps the value that a start gives it.
    if (settings.forceTRDelayRead)
        run.requests.forceTRDelay = settings.ForceTRDelay;
    run.requests.pendingOverlayInplane = settings.pendingOverlayInplane;
    run.requests.pendingOverlayVMR = settings.pendingOverlayVMR;
    run.requests.pendingOverlaySRF = settings.pendingOverlaySRF;
    copySettingsToDocument(document, settings);
    run.requests.thresholds = thresholdsAtStart(settings.Threshold, settings.ClusterSizePixels);
    if (!document.workingFolder.isEmpty())
        QDir::setCurrent(document.workingFolder);

    if (!readProtocol(run) || !allocateRun(document))
        return nullptr;
    if (settings.ShowGODlgAfterPreparation)
        announce(" Velo-Cortivo", "Press return or click the GO button to start!", "GO");

    run.intake.rawDataByteOrder = settings.byteOrderCode();
    run.intake.watchFolder = settings.WatchFolder;
    std::unique_ptr<VolumeReader> reader =
        makeReader({settings, document.project, run.intake, run.pump});
    if (!reader) {
        showCritical(QStringLiteral("ERROR: Data type not supported!\n\nCheck settings file: "
                                    "\"%1\".")
                         .arg(settings.settingsFilePath));
        endProgram(1);
        return nullptr;
    }
    if (!reader->prepare() || !readFirstVolume(*reader))
        return nullptr;
    if (!reader->readHeaders() || !prepareMotionTarget(run))
        return nullptr;
    document.maps.MapType = MapKind::T;
    showFirstVolume(document);
    prepareInplanes(run);
    setUpContrasts(document, settings, settings.ContrastFile);
    return reader;
}
