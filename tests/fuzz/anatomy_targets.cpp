// Files of anatomies, and of what links them to a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/byte_views.h"
#include "fuzz/fuzz_target.h"
#include "volume/anatomy/nifti_volume.h"
#include "volume/anatomy/pos_file.h"
#include "volume/anatomy/tal_file.h"
#include "volume/anatomy/trf_file.h"
#include "volume/anatomy/vmr_layout.h"

#include <QBuffer>
#include <cmath>

namespace {

bool isFinite(const FMRPositionInfo& position) {
    float sum = position.fovRows * 0.0f + position.fovColumns * 0.0f;
    for (size_t i = 0; i < 3; ++i)
        sum += (position.sliceCenterFirst[i] * 0.0f + position.sliceCenterLast[i] * 0.0f) +
               (position.rowDirection[i] * 0.0f + position.columnDirection[i] * 0.0f);
    return sum == 0.0f; // NaN where any isn't
}

// Anatomical volumes: what stands before and behind the voxels.
bool vmr(std::span<const uint8_t> bytes) {
    VMRHeader header;
    const VMRStart start = parseVMRStart(bytes, header);
    if (start.result != VMRParseResult::Good)
        return false;
    require(start.length <= std::min(bytes.size(), longestVMRStart), "the start lies in the file");
    require(voxelsOfBlock(header) > 0, "no side is 0");
    VMRHeader again;
    if (header.hasExtendedHeader || !readsAsVersion(header.DimX))
        require(parseVMRStart(vmrStartBytes(header), again).length ==
                        size_t(header.hasExtendedHeader ? 10 : 6) &&
                    again.DimX == header.DimX && again.DimZ == header.DimZ,
                "a written start reads");
    if (voxelsOfBlock(header) > bytes.size() - start.length)
        return false;
    const bool good = parseVMREnd(bytes.subspan(start.length + voxelsOfBlock(header)), header);
    require(isFinite(header.position), "places are numbers");
    require(good || header.position.positionInfoValid == 0, "a damaged end gives no place");
    return good;
}

// Positions of slices.
bool pos(std::span<const uint8_t> bytes) {
    PositionFile file;
    if (!parsePositions(textOf(bytes), file))
        return false;
    require(isFinite(file.position), "positions are numbers");
    require(file.position.positionInfoValid == int(file.hasCentres()), "valid with centres");
    return true;
}

// Transformations.
bool trf(std::span<const uint8_t> bytes) {
    TransformationFile file;
    if (!parseTransformation(textOf(bytes), "fuzz_ACPC.trf", file))
        return false;
    TransformationFile again;
    require(parseTransformation(textOf(transformationText(file.matrices[0], "a", textOf(bytes))),
                                "", again) &&
                again.hasMatrix,
            "a written transformation reads");
    return true;
}

// Reference points.
bool tal(std::span<const uint8_t> bytes) {
    TalairachPoints points;
    return parseTalairachPoints(textOf(bytes), points);
}

// Images in the NIfTI formats, compressed or not.
bool nifti(std::span<const uint8_t> bytes) {
    NiftiHeader header;
    if (parseNiftiHeader(bytes, header).isEmpty()) {
        for (const int64_t side : header.size)
            require(side >= 1 && side <= largestNiftiSide, "sides are small");
        require(header.dataOffset <= 64u << 20 && bytesOf(header.kind) > 0, "data can be found");
        const std::optional<NiftiPlace> place = header.place();
        require(!place || place->matrix.inverse(), "a place has an inverse");
    }
    QByteArray copy = byteArray(bytes);
    QBuffer device(&copy);
    NiftiVolume volume;
    if (!device.open(QIODevice::ReadOnly) || !readNiftiVolume(device, volume).isEmpty())
        return false;
    require(volume.values.size() == volume.header.volumeSamples(), "all voxels are there");
    for (const float value : volume.values.span())
        require(std::isfinite(value), "values are finite");
    return true;
}

} // namespace

std::vector<FuzzTarget> anatomyTargets() {
    return {{"vmr", vmr}, {"pos", pos}, {"trf", trf}, {"tal", tal}, {"nifti", nifti}};
}
