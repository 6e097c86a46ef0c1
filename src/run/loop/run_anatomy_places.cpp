// Where cubes lie over the run, and the cube of its slices.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "run/loop/finished_run.h"
#include "run/loop/run_anatomy.h"
#include "volume/anatomy/functional_cube.h"
#include "volume/anatomy/pos_file.h"
#include "volume/anatomy/vmr_file.h"

namespace {

bool readRunPositions(const QString& path, FMRPositionInfo& position) {
    const ModelessMessages nobodyWaits;
    PositionFile file;
    if (!readPositionFile(path, file))
        return false;
    position = file.position;
    return position.positionInfoValid != 0;
}

/// Of the slices of the run: image headers state them, or a file of the scanner.
bool takeFunctionalPosition(const AnatomyRun& run) {
    FMRPositionInfo& position = run.anatomy.functionalPosition;
    const RunSettings& settings = run.settings;
    const FMRProject& project = run.document.project;
    if (project.position.positionInfoValid != 0)
        position = centredOnGrid(project.position, project);
    else if (run.anatomy.anatomical.empty())
        position = {}; // nobody needs them
    else if (settings.documentDataType == "ANALYZE_NW")
        return readRunPositions(
            paths::join(settings.WatchFolder, settings.philipsFilePrefix + "00001.pos"), position);
    else if (settings.documentDataType == "PHILIPS_ANALYZE_DRIN")
        return readRunPositions(settings.FMRVMRAlignFMRPosFile, position);
    else
        position = {};
    return position.positionInfoValid != 0;
}

/// Image headers state the order of the slices; for other runs the settings file does.
bool slicesAreMirrored(const AnatomyRun& run) {
    return run.settings.FlipSliceOrder != 0 && run.document.project.position.positionInfoValid == 0;
}

C3dMatrix fromCentreOfCube() {
    return C3dMatrix::translation(-cubeCentre, -cubeCentre, -cubeCentre);
}

/// From a voxel of the run to the millimetres of its slice frame.
C3dMatrix voxelToFrame(const VolumeGeometry& geometry, bool mirrorSlices) {
    const auto centre = [](int voxels) { return float(voxels - 1) / 2.0f; };
    C3dMatrix size;
    size.at(0, 0) = geometry.pixelSizeX;
    size.at(1, 1) = geometry.pixelSizeY;
    size.at(2, 2) = mirrorSlices ? -geometry.sliceDistance() : geometry.sliceDistance();
    return size * C3dMatrix::translation(-centre(geometry.ResolutionX),
                                         -centre(geometry.ResolutionY),
                                         -centre(geometry.NrOfSlices));
}

/// What is known of the cube of the run's slices, once it is there.
void placeFunctionalCube(const AnatomyRun& run) {
    AnatomicalCube& cube = run.anatomy.functional;
    const FMRProject& project = run.document.project;
    const bool mirrored = slicesAreMirrored(run);
    cube.mapping = functionalCubeMapping(project, mirrored);
    cube.spaces.cube = CubeSpace::Functional;
    const auto toScanner = frameToScanner(run.anatomy.functionalPosition);
    if (toScanner && cube.mapping)
        cube.spaces.cubeToScanner =
            *toScanner * voxelToFrame(project, mirrored) * cube.mapping->cubeToFunctional;
}

bool ofInplanes(const AnatomyRun& run) {
    return !run.document.inplanes.samples.span().empty();
}

FunctionalSlices slicesOfCube(const AnatomyRun& run) {
    QtCortivoDoc& document = run.document;
    const GreyScale& scale = document.slices.greyScale;
    FunctionalSlices slices{document.project.firstVolume.span(), document.project, scale.low,
                            scale.high, slicesAreMirrored(run)};
    if (!ofInplanes(run))
        return slices;
    // They cover the field of view of the run.
    const InplaneScan& scan = document.inplanes;
    slices.samples = document.inplanes.samples.span();
    slices.geometry.ResolutionX = scan.size.x;
    slices.geometry.ResolutionY = scan.size.y;
    slices.geometry.pixelSizeX *= float(document.project.ResolutionX) / float(scan.size.x);
    slices.geometry.pixelSizeY *= float(document.project.ResolutionY) / float(scan.size.y);
    GreyScale window;
    computeDisplayRange(window, slices.samples);
    slices.low = window.low;
    slices.high = window.high;
    return slices;
}

QString shownInCube(bool inplanes) {
    return inplanes ? QStringLiteral("Inplanes") : QStringLiteral("First volume");
}

} // namespace

bool computeVmrToFunctional(const AnatomyRun& run) {
    static_cast<void>(takeFunctionalPosition(run));
    return mapRunIntoAnatomy(run);
}

bool mapRunIntoAnatomy(const AnatomyRun& run) {
    Anatomy& anatomy = run.anatomy;
    AnatomicalCube& cube = anatomy.anatomical;
    cube.mapping.reset();
    cube.spaces.cubeToScanner.reset();
    if (cube.empty() || anatomy.vmrPosition.positionInfoValid == 0)
        return false;
    const C3dMatrix& alignment = anatomy.alignmentMatrices[0];
    if (const auto toScanner = frameToScanner(anatomy.vmrPosition))
        cube.spaces.cubeToScanner = *toScanner * alignment * fromCentreOfCube();
    if (anatomy.functionalPosition.positionInfoValid == 0)
        return false;
    const FMRProject& project = run.document.project;
    const auto headers =
        computeHeaderAlignment(anatomy.vmrPosition, anatomy.functionalPosition, alignment);
    const auto toRun = headers ? vmrToFunctionalMatrix(headers->aligned, project) : std::nullopt;
    if (!toRun)
        return false;
    anatomy.fmrToVmrHeaderMatrix = headers->fmrToVmrHeaderMatrix;
    anatomy.vmrToFunctionalMatrix = *toRun;
    cube.mapping = cubeMapping(*toRun, project, slicesAreMirrored(run));
    if (cube.mapping && cube.spaces.cube == CubeSpace::Talairach)
        cube.mapping->talairach = cube.spaces.talairach;
    return cube.mapping.has_value();
}

void prepareCubes(const AnatomyRun& run) {
    AnatomicalCube& cube = run.anatomy.functional;
    const FMRProject& project = run.document.project;
    cube = {};
    if (!(project.pixelSizeX > 0.0f && project.pixelSizeY > 0.0f && project.sliceDistance() > 0.0f))
        return;
    cube.name = shownInCube(ofInplanes(run));
    if (mapFunctionalToCube(slicesOfCube(run), cube.volume)) {
        placeFunctionalCube(run);
        return;
    }
    cube = {};
    showModelessWarning("WARNING: The slices can not be shown as a volume: there is not enough "
                        "memory.");
}

void showSavedCubes(const AnatomyRun& run) {
    const FMRProject& project = run.document.project;
    const ModelessMessages nobodyWaits;
    for (const bool inplanes : {true, false}) {
        const QString path = cubeFilePath(project, inplanes);
        AnatomicalCube& cube = run.anatomy.functional;
        if (!fileExists(path) || !loadVMR(path, cube.volume, true))
            continue;
        cube.name = shownInCube(inplanes);
        placeFunctionalCube(run);
        return;
    }
    prepareCubes(run);
}

QString cubeFilePath(const FMRProject& project, bool ofInplanes) {
    return ofInplanes ? resultPath(project, "_Inplane.vmr", "realtime_Inplane.vmr")
                      : resultPath(project, "_EPI.vmr", "realtime_EPI.vmr");
}
