// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/smoothing.h"

#include "base/messages.h"
#include "volume/smoothing_kernels.h"

#include <limits>

namespace {

/// Voxels of a slice that are smoothed together along Z: the columns of all slices stay in the
/// cache between their conversion and their use.
constexpr size_t columnBlock = 256;

using RowPointers = std::array<const float*, GaussianKernel::maximumTaps>;

/// The rows under the taps that are centred on row `center` of `count` rows.
void pointAtRows(RowPointers& rows, const GaussianKernel& kernel, const float* first, size_t stride,
                 int center, int count) {
    for (int d = -kernel.halfWidth(); d <= kernel.halfWidth(); ++d) {
        const bool inside = center + d >= 0 && center + d < count;
        rows[size_t(d + kernel.halfWidth())] =
            first + size_t(inside ? center + d : center) * stride;
    }
}

double inVoxels(double millimetres, float voxelSize) {
    return voxelSize > 0.0f ? millimetres / double(voxelSize)
                            : std::numeric_limits<double>::infinity();
}

} // namespace

VoxelWidths voxelWidths(const VolumeGeometry& geometry, double fwhmMillimetres) {
    return {inVoxels(fwhmMillimetres, geometry.pixelSizeX),
            inVoxels(fwhmMillimetres, geometry.pixelSizeY),
            inVoxels(fwhmMillimetres, geometry.sliceDistance())};
}

bool SpatialSmoothing::makeKernels(const VoxelWidths& widths, Kernels& kernels) {
    bool smooths = false;
    const std::array<double, 3> perAxis{widths.x, widths.y, widths.z};
    for (size_t axis = 0; axis < 3; ++axis) {
        if (!(perAxis[axis] > 0.0)) {
            kernels[axis].setIdentity();
            continue;
        }
        if (!kernels[axis].setWidth(perAxis[axis]))
            return false;
        smooths = true;
    }
    return smooths;
}

bool SpatialSmoothing::isPossible(const VoxelWidths& widths) {
    Kernels kernels;
    return makeKernels(widths, kernels);
}

bool SpatialSmoothing::allocate(const VolumeGeometry& geometry) {
    const size_t sliceFloats = 2 * geometry.sliceSamples();
    const size_t columnFloats = columnBlock * size_t(geometry.NrOfSlices);
    if ((slices_.size() == sliceFloats || slices_.allocate(sliceFloats)) &&
        (columns_.size() == columnFloats || columns_.allocate(columnFloats)))
        return true;
    showCritical("ERROR: Insufficient memory for creating STC volume!");
    return false;
}

void SpatialSmoothing::smoothSlice(const VolumeGeometry& geometry, const Kernels& kernels,
                                   int16_t* slice) {
    const size_t columns = size_t(geometry.ResolutionX);
    float* const asRead = slices_.data();
    float* const alongX = asRead + geometry.sliceSamples();
    convertSamples(slice, geometry.sliceSamples(), asRead);
    for (size_t first = 0; first < geometry.sliceSamples(); first += columns)
        smoothAlongRow(kernels[0].taps(), {asRead + first, columns}, alongX + first);
    RowPointers rows;
    for (int y = 0; y < geometry.ResolutionY; ++y) {
        pointAtRows(rows, kernels[1], alongX, columns, y, geometry.ResolutionY);
        smoothRows(kernels[1].taps(), rows.data(), columns, slice + size_t(y) * columns);
    }
}

void SpatialSmoothing::smoothAcrossSlices(const VolumeGeometry& geometry,
                                          const GaussianKernel& kernel, int16_t* samples) {
    const size_t sliceSamples = geometry.sliceSamples();
    RowPointers rows;
    for (size_t first = 0; first < sliceSamples; first += columnBlock) {
        const size_t count = std::min(columnBlock, sliceSamples - first);
        for (int z = 0; z < geometry.NrOfSlices; ++z)
            convertSamples(samples + size_t(z) * sliceSamples + first, count,
                           columns_.data() + size_t(z) * columnBlock);
        for (int z = 0; z < geometry.NrOfSlices; ++z) {
            pointAtRows(rows, kernel, columns_.data(), columnBlock, z, geometry.NrOfSlices);
            smoothRows(kernel.taps(), rows.data(), count,
                       samples + size_t(z) * sliceSamples + first);
        }
    }
}

bool SpatialSmoothing::applyKernels(FMRProject& project, int v, const Kernels& kernels) {
    const size_t volumeSamples = project.volumeSamples();
    if (v < 0 || size_t(v) >= project.volumes.size() || volumeSamples == 0 ||
        project.volumes.samplesOfEach() < volumeSamples || !allocate(project))
        return false;
    int16_t* const samples = project.volumes[size_t(v)].data();
    for (size_t first = 0; first < volumeSamples; first += project.sliceSamples())
        smoothSlice(project, kernels, samples + first);
    smoothAcrossSlices(project, kernels[2], samples);
    return true;
}

bool SpatialSmoothing::smoothVolume(FMRProject& project, int v, float fwhmMillimetres,
                                    WorkerPool&) {
    const VoxelWidths widths = voxelWidths(project, double(fwhmMillimetres));
    Kernels kernels;
    return fwhmMillimetres >= 0.0f && kernels[0].setWidth(widths.x) &&
           kernels[1].setWidth(widths.y) && kernels[2].setWidth(widths.z) &&
           applyKernels(project, v, kernels);
}

bool SpatialSmoothing::smoothVolume(FMRProject& project, int v, const VoxelWidths& widths,
                                    WorkerPool&) {
    Kernels kernels;
    return makeKernels(widths, kernels) && applyKernels(project, v, kernels);
}
