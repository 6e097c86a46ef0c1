// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/background_files.h"

#include "base/messages.h"
#include "base/plain_file.h"
#include "run/document/amr_file.h"

bool writeFirstVolumeImages(const QtCortivoDoc& document) {
    const FMRProject& project = document.project;
    SliceImages first;
    first.greyScale = document.slices.greyScale;
    first.createSlicePixmaps(project.firstVolume.span(), project.size());
    return writeAMR(amrPath(project.projectPath), first.SlicePixmaps, first.greyScale,
                    document.overlayColors.active);
}

bool writeInplaneImages(const QtCortivoDoc& document) {
    return writeAMR(inplaneAmrPath(document.project.projectPath), document.slices.InplanePixmaps,
                    document.slices.greyScale, document.overlayColors.active);
}

bool readInplaneImages(QtCortivoDoc& document) {
    const QString path = inplaneAmrPath(document.project.projectPath);
    const ModelessMessages nobodyWaits;
    AmrFile file;
    document.slices.InplanePixmaps.clear();
    if (!fileExists(path) || !readAMR(path, document.project.NrOfSlices, file))
        return false;
    document.slices.InplanePixmaps = std::move(file.images);
    return true;
}
