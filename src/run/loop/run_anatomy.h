// The anatomy of a run: loaded, laid over the run, and made from its slices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/qt_cortivo_doc.h"
#include "run/loop/run_parts.h"

/// What work on the anatomy of a run needs.
struct AnatomyRun {
    Anatomy& anatomy;
    QtCortivoDoc& document; ///< the functional one
    RunSettings& settings;
    OperatorRequests& requests;
};
[[nodiscard]] inline AnatomyRun anatomyRun(const RunParts& run) {
    return {run.anatomical.anatomy, run.document, run.settings, run.requests};
}

/// Reads an anatomy of the kind that its name tells: NIfTI, else .vmr. One without a position of
/// its own takes that of the file beside it with the extension .pos, where there is one. False
/// after a message, with `volume` empty.
[[nodiscard]] bool readAnatomyFile(const QString& path, VMRVolume& volume);

/// Makes a volume that was read so the anatomy of the run, with nothing known but what it says
/// itself. It is not yet laid over the run.
void placeLoadedAnatomy(Anatomy& anatomy, VMRVolume volume, const QString& path);

/// Loads the operator's anatomy, or what OverlayOnVMRMode asks for. What can't be read is told of
/// modelessly; there is no anatomy then: OverlayOnVMRMode is 0 for the run, pendingOverlayVMR -1.
void prepareVmrOverlay(const AnatomyRun& run);

/// Finds the positions of the run's slices and lays the anatomy that is loaded over them. False
/// without an anatomy, or when either place is not known: it is then shown without maps. Messages
/// of files that can't be read are modeless.
bool computeVmrToFunctional(const AnatomyRun& run);

/// Lays the anatomy over the positions that are known. False when either is not.
bool mapRunIntoAnatomy(const AnatomyRun& run);

/// The cube of the run's slices: of the high-resolution ones, or of the first volume. There is none
/// where the size of the voxels is not known, and, after a modeless warning, without memory for it.
void prepareCubes(const AnatomyRun& run);
/// The same for a run that was saved: the cube of its file, or where that can't be used, one that
/// is made anew.
void showSavedCubes(const AnatomyRun& run);

/// The file of that cube: _Inplane.vmr, or _EPI.vmr.
[[nodiscard]] QString cubeFilePath(const FMRProject& project, bool ofInplanes);
