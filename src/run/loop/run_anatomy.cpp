// Loading: by the mode of the settings file, or the operator's own.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_anatomy.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "run/protocol/stimulation_protocol.h"
#include "volume/anatomy/nifti_anatomy.h"
#include "volume/anatomy/pos_file.h"
#include "volume/anatomy/vmr_file.h"

namespace {

enum OverlayMode { native = 1, acpc = 2, talairach = 3 };

bool refuse(const QString& text) {
    showWarning(text);
    return false;
}

bool readCentres(const QString& path, FMRPositionInfo& position) {
    PositionFile file;
    if (!readPositionFile(path, file))
        return false;
    if (!file.hasCentres())
        return refuse(QStringLiteral("ERROR: The POS file \"%1\" is of version %2, which has no "
                                     "centres of slices. Version 3 is needed.")
                          .arg(path)
                          .arg(file.version));
    position = file.position;
    return true;
}

bool readAlignment(const RunSettings& settings, std::array<C3dMatrix, 2>& matrices) {
    const QString& path = settings.ACPCTransformationFile;
    TransformationFile file;
    if (!readTransformationFile(path, file) && !fileExists(path))
        return false; // which has been told of
    if (!file.hasMatrix || !file.matrices[0].inverse())
        return refuse(
            QStringLiteral("ERROR: The TRF file \"%1\" holds no usable matrix.").arg(path));
    matrices = file.matrices;
    return true;
}

bool readScaling(const RunSettings& settings, std::optional<TalairachScaling>& scaling) {
    TalairachPoints points;
    if (!readTalairachFile(settings.TalairachCerebrumBorderFile, points))
        return false;
    scaling = TalairachScaling::fromPoints(points);
    return scaling || refuse(QStringLiteral("ERROR: The reference points in the TAL file \"%1\" "
                                            "are not those of a brain: some coincide, or lie in "
                                            "the wrong order.")
                                 .arg(settings.TalairachCerebrumBorderFile));
}

const QString& volumeOfMode(const RunSettings& settings) {
    if (settings.OverlayOnVMRMode == native)
        return settings.IntraSessionVMRFile;
    return settings.OverlayOnVMRMode == acpc ? settings.ACPCVMRFile : settings.TalairachVMRFile;
}

bool loadByMode(const AnatomyRun& run) {
    const RunSettings& settings = run.settings;
    Anatomy& anatomy = run.anatomy;
    AnatomicalCube& cube = anatomy.anatomical;
    const int mode = settings.OverlayOnVMRMode;
    if (!readCentres(settings.FMRVMRAlignVMRPosFile, anatomy.vmrPosition) ||
        (mode != native && !readAlignment(settings, anatomy.alignmentMatrices)) ||
        (mode == talairach && !readScaling(settings, cube.spaces.talairach)) ||
        !loadVMR(volumeOfMode(settings), cube.volume, mode != native))
        return false;
    constexpr CubeSpace spaces[] = {CubeSpace::Native, CubeSpace::ACPC, CubeSpace::Talairach};
    cube.spaces.cube = spaces[mode - native];
    cube.name = paths::fileName(volumeOfMode(settings));
    return true;
}

bool loadOperators(const AnatomyRun& run) {
    VMRVolume volume;
    const QString& path = run.requests.loadedAnatomy;
    if (!readAnatomyFile(path, volume))
        return false;
    placeLoadedAnatomy(run.anatomy, std::move(volume), path);
    return true;
}

void forgetAnatomy(Anatomy& anatomy) {
    anatomy.anatomical = {};
    anatomy.vmrPosition = {};
    anatomy.alignmentMatrices = {};
    anatomy.fmrToVmrHeaderMatrix = {};
    anatomy.vmrToFunctionalMatrix = {};
}

} // namespace

bool readAnatomyFile(const QString& path, VMRVolume& volume) {
    if (isNiftiName(path))
        return loadNiftiAnatomy(path, volume);
    if (!loadVMR(path, volume))
        return false;
    const QString positions = paths::withoutExtension(path) + ".pos";
    if (volume.position.positionInfoValid == 0 && fileExists(positions))
        static_cast<void>(readCentres(positions, volume.position));
    return true;
}

// What its header says of AC-PC and Talairach space is not enough to lay it over a run.
void placeLoadedAnatomy(Anatomy& anatomy, VMRVolume volume, const QString& path) {
    constexpr int acpcSpace = 2; // in VMRHeader::referenceSpace
    constexpr int talairachSpace = 3;
    forgetAnatomy(anatomy);
    AnatomicalCube& cube = anatomy.anatomical;
    if (volume.referenceSpace == acpcSpace)
        cube.spaces.cube = CubeSpace::ACPC;
    else if (volume.referenceSpace == talairachSpace)
        cube.spaces.cube = CubeSpace::Talairach;
    else
        anatomy.vmrPosition = volume.position;
    cube.volume = std::move(volume);
    cube.name = paths::fileName(path);
}

void prepareVmrOverlay(const AnatomyRun& run) {
    RunSettings& settings = run.settings;
    const bool loaded = !run.requests.loadedAnatomy.isEmpty();
    const bool wanted =
        settings.OverlayOnVMRMode >= native && settings.OverlayOnVMRMode <= talairach;
    run.requests.pendingOverlayVMR = -1;
    if (!loaded && !wanted)
        return;
    // An auto-started run must not wait for somebody who reads them.
    const ModelessMessages nobodyWaits;
    if (loaded ? loadOperators(run) : loadByMode(run)) {
        run.requests.pendingOverlayVMR = 0;
        return;
    }
    forgetAnatomy(run.anatomy);
    settings.OverlayOnVMRMode = 0;
}
