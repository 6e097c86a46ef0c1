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

/// Work space of a thread: one slice as read and one smoothed along X, or a block of columns of all
/// slices.
size_t workFloats(const VolumeGeometry& geometry) {
    return std::max(2 * geometry.sliceSamples(), columnBlock * size_t(geometry.NrOfSlices));
}

/// Along X and Y.
void smoothSlice(const VolumeGeometry& geometry, const GaussianKernel& kernelX,
                 const GaussianKernel& kernelY, int16_t* slice, float* work) {
    const size_t columns = size_t(geometry.ResolutionX);
    float* const asRead = work;
    float* const alongX = asRead + geometry.sliceSamples();
    convertSamples(slice, geometry.sliceSamples(), asRead);
    for (size_t first = 0; first < geometry.sliceSamples(); first += columns)
        smoothAlongRow(kernelX.taps(), {asRead + first, columns}, alongX + first);
    RowPointers rows;
    for (int y = 0; y < geometry.ResolutionY; ++y) {
        pointAtRows(rows, kernelY, alongX, columns, y, geometry.ResolutionY);
        smoothRows(kernelY.taps(), rows.data(), columns, slice + size_t(y) * columns);
    }
}

/// Along Z, `count` neighbours at most `columnBlock`; `samples` are those of the first slice.
void smoothAcrossSlices(const VolumeGeometry& geometry, const GaussianKernel& kernel,
                        int16_t* samples, size_t count, float* work) {
    const size_t sliceSamples = geometry.sliceSamples();
    for (int z = 0; z < geometry.NrOfSlices; ++z)
        convertSamples(samples + size_t(z) * sliceSamples, count, work + size_t(z) * columnBlock);
    RowPointers rows;
    for (int z = 0; z < geometry.NrOfSlices; ++z) {
        pointAtRows(rows, kernel, work, columnBlock, z, geometry.NrOfSlices);
        smoothRows(kernel.taps(), rows.data(), count, samples + size_t(z) * sliceSamples);
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

bool SpatialSmoothing::allocate(const VolumeGeometry& geometry, int nrOfThreads) {
    const size_t needed = workFloats(geometry) * size_t(nrOfThreads);
    if (work_.size() >= needed || work_.allocate(needed))
        return true;
    showCritical("ERROR: Insufficient memory for creating STC volume!");
    return false;
}

bool SpatialSmoothing::applyKernels(FMRProject& project, int v, const Kernels& kernels,
                                    WorkerPool& workers) {
    const size_t volumeSamples = project.volumeSamples();
    if (v < 0 || size_t(v) >= project.volumes.size() || volumeSamples == 0 ||
        project.volumes.samplesOfEach() < volumeSamples ||
        !allocate(project, workers.nrOfThreads()))
        return false;
    int16_t* const samples = project.volumes[size_t(v)].data();
    const auto workOf = [&](size_t thread) { return work_.data() + thread * workFloats(project); };
    const size_t sliceSamples = project.sliceSamples();
    workers.forParts(size_t(project.NrOfSlices), [&](size_t slice, size_t thread) {
        smoothSlice(project, kernels[0], kernels[1], samples + slice * sliceSamples,
                    workOf(thread));
    });
    const size_t blocks = (sliceSamples + columnBlock - 1) / columnBlock;
    workers.forParts(blocks, [&](size_t block, size_t thread) {
        const size_t first = block * columnBlock;
        smoothAcrossSlices(project, kernels[2], samples + first,
                           std::min(columnBlock, sliceSamples - first), workOf(thread));
    });
    return true;
}

bool SpatialSmoothing::smoothVolume(FMRProject& project, int v, float fwhmMillimetres,
                                    WorkerPool& workers) {
    const VoxelWidths widths = voxelWidths(project, double(fwhmMillimetres));
    Kernels kernels;
    return fwhmMillimetres >= 0.0f && kernels[0].setWidth(widths.x) &&
           kernels[1].setWidth(widths.y) && kernels[2].setWidth(widths.z) &&
           applyKernels(project, v, kernels, workers);
}

bool SpatialSmoothing::smoothVolume(FMRProject& project, int v, const VoxelWidths& widths,
                                    WorkerPool& workers) {
    Kernels kernels;
    return makeKernels(widths, kernels) && applyKernels(project, v, kernels, workers);
}
