// Images in the NIfTI formats, compressed or not.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/byte_views.h"
#include "fuzz/fuzz_target.h"
#include "volume/anatomy/nifti_volume.h"

#include <QBuffer>
#include <cmath>

namespace {

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

std::vector<FuzzTarget> niftiTargets() {
    return {{"nifti", nifti}};
}
