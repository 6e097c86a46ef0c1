// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/functional_cube.h"

#include "base/memory.h"
#include "base/simd_clones.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <utility>

namespace {

bool isUsable(const VolumeGeometry& geometry) {
    const auto isSize = [](float size) { return size > 0.0f && std::isfinite(size); };
    return geometry.volumeSamples() > 0 && isSize(geometry.pixelSizeX) &&
           isSize(geometry.pixelSizeY) && isSize(geometry.sliceDistance());
}

// The two neighbours of each voxel along a cube axis that lies in the run. Voxels within half a
// functional voxel of the border lie between the outermost one and itself.
struct CubeAxis {
    int from = 0; ///< the first of them in the cube
    std::vector<int> lower;
    std::vector<int> upper;
    std::vector<float> weight; ///< of the upper one

    [[nodiscard]] int length() const { return int(lower.size()); }
};

// `fieldOfView` counts functional voxels.
CubeAxis cubeAxis(int count, double size, double fieldOfView, bool mirrored) {
    const double half = fieldOfView * size / 2.0;
    const double middle = cubeSide / 2.0;
    const int first = int(std::clamp(std::floor(middle - half + 0.5), 0.0, cubeSide - 1.0));
    const int last = int(std::clamp(std::floor(middle + half + 0.5), 0.0, cubeSide - 1.0));
    CubeAxis axis;
    for (int voxel = first; voxel <= last; ++voxel) {
        const double offset = (voxel - double(cubeCentre)) / size;
        const double position = (mirrored ? -offset : offset) + (count - 1) / 2.0;
        if (!(position >= -0.5 && position < count - 0.5))
            continue;
        if (axis.lower.empty())
            axis.from = voxel;
        const double bounded = std::clamp(position, 0.0, count - 1.0);
        const int lower = int(bounded);
        axis.lower.push_back(lower);
        axis.upper.push_back(std::min(lower + 1, count - 1));
        axis.weight.push_back(float(bounded - lower));
    }
    return axis;
}

VELO_SIMD_CLONES void stretchLine(const float* line, const int* lower, const int* upper,
                                  const float* weight, float* out, int length) {
    for (int i = 0; i < length; ++i) {
        const float below = line[lower[i]];
        out[i] = below + weight[i] * (line[upper[i]] - below);
    }
}

VELO_SIMD_CLONES void blend(const float* below, const float* above, float weight, float* out,
                            size_t count) {
    for (size_t i = 0; i < count; ++i)
        out[i] = below[i] + weight * (above[i] - below[i]);
}

struct Window {
    float low;
    float range;

    [[nodiscard]] float intensity(float value) const {
        const float scaled = (value - low) / range * 215.0f + 10.5f;
        return std::min(std::max(scaled, 0.0f), float(maximumAnatomicalIntensity));
    }
};

VELO_SIMD_CLONES void blendToIntensities(const float* below, const float* above, float weight,
                                         const Window& window, uint8_t* out, int count) {
    const Window local = window;
    for (int i = 0; i < count; ++i)
        out[i] = uint8_t(int(local.intensity(below[i] + weight * (above[i] - below[i]))));
}

// Interpolates along one axis after the other, so that each sample is stretched only once and the
// cube, the largest of all, is touched by the last step alone.
class CubeFilling {
public:
    CubeFilling(const FunctionalSlices& slices, uint8_t* cube)
        : samples_(slices.samples),
          geometry_(slices.geometry), window_{float(slices.low),
                                              std::max(float(slices.high) - float(slices.low),
                                                       1.0f)},
          x_(cubeAxis(geometry_.ResolutionY, double(geometry_.pixelSizeY), geometry_.ResolutionY,
                      false)),
          y_(cubeAxis(geometry_.NrOfSlices, double(geometry_.sliceDistance()),
                      geometry_.NrOfSlices + 1.0, slices.mirrorSlices)),
          z_(cubeAxis(geometry_.ResolutionX, double(geometry_.pixelSizeX), geometry_.ResolutionX,
                      false)),
          cube_(cube) {}

    [[nodiscard]] bool allocate() {
        const size_t planeValues = size_t(x_.length()) * size_t(geometry_.NrOfSlices);
        return line_.allocate(size_t(geometry_.ResolutionY)) && plane_.allocate(planeValues) &&
               std::ranges::all_of(
                   columns_, [&](Column& column) { return column.values.allocate(planeValues); });
    }

    void fill() {
        for (int k = 0; k < z_.length(); ++k) {
            const size_t at = size_t(k);
            const float* lower = columnPlane(z_.lower[at]);
            const float* upper = columnPlane(z_.upper[at]);
            blend(lower, upper, z_.weight[at], plane_.data(), plane_.size());
            for (int j = 0; j < y_.length(); ++j)
                fillRow(size_t(j), &cube_[cubeIndex(x_.from, y_.from + j, z_.from + k)]);
        }
    }

private:
    // The samples of one functional column, stretched along cube x: slices of x_.length() values.
    struct Column {
        int number = -1;
        ZeroedBuffer<float> values;
    };

    // The columns are asked for in rising order, two at a time.
    const float* columnPlane(int number) {
        const auto kept = std::ranges::find(columns_, number, &Column::number);
        if (kept != columns_.end())
            return kept->values.data();
        Column& column = *std::ranges::min_element(columns_, {}, &Column::number);
        column.number = number;
        for (int slice = 0; slice < geometry_.NrOfSlices; ++slice)
            stretchSlice(number, slice, &column.values[size_t(slice) * size_t(x_.length())]);
        return column.values.data();
    }

    void stretchSlice(int column, int slice, float* out) {
        const int16_t* sample =
            &samples_[size_t(slice) * geometry_.sliceSamples() + size_t(column)];
        for (size_t row = 0; row < line_.size(); ++row)
            line_[row] = float(uint16_t(sample[row * size_t(geometry_.ResolutionX)]));
        stretchLine(line_.data(), x_.lower.data(), x_.upper.data(), x_.weight.data(), out,
                    x_.length());
    }

    void fillRow(size_t j, uint8_t* out) const {
        const size_t width = size_t(x_.length());
        blendToIntensities(plane_.data() + size_t(y_.lower[j]) * width,
                           plane_.data() + size_t(y_.upper[j]) * width, y_.weight[j], window_, out,
                           x_.length());
    }

    std::span<const int16_t> samples_;
    const VolumeGeometry& geometry_;
    Window window_;
    CubeAxis x_;
    CubeAxis y_;
    CubeAxis z_;
    uint8_t* cube_;
    ZeroedBuffer<float> line_;
    ZeroedBuffer<float> plane_;
    std::array<Column, 2> columns_;
};

} // namespace

std::optional<CubeMapping> functionalCubeMapping(const VolumeGeometry& geometry,
                                                 bool mirrorSlices) {
    if (!isUsable(geometry))
        return std::nullopt;
    C3dMatrix toFunctional = C3dMatrix::scale(0.0f, 0.0f, 0.0f);
    toFunctional.at(0, 2) = 1.0f / geometry.pixelSizeX;
    toFunctional.at(1, 0) = 1.0f / geometry.pixelSizeY;
    toFunctional.at(2, 1) = 1.0f / geometry.sliceDistance();
    return cubeMapping(toFunctional, geometry, mirrorSlices);
}

bool mapFunctionalToCube(const FunctionalSlices& slices, VMRVolume& volume) {
    if (!isUsable(slices.geometry) || slices.samples.size() < slices.geometry.volumeSamples() ||
        !volume.clearCube())
        return false;
    volume.DimX = volume.DimY = volume.DimZ = cubeSide;
    volume.offsetX = volume.offsetY = volume.offsetZ = 0;
    CubeFilling filling(slices, volume.cube.data());
    if (!filling.allocate())
        return false;
    filling.fill();
    return true;
}
