// Times of what the anatomical view computes: for each volume the mapping of its three sections, at
// each move of the cross their grey values too, and the cube of a volume's intensities.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor_time.h"
#include "volume/anatomy/cube_sections.h"
#include "volume/anatomy/functional_cube.h"

#include <cstdio>
#include <cstdlib>
#include <random>

namespace {

constexpr int repeats = 101;
constexpr CubeVoxel middle{};
constexpr SectionAxis axes[] = {SectionAxis::X, SectionAxis::Y, SectionAxis::Z};

VolumeGeometry cubic(int matrix, int slices, float millimetres) {
    return {.ResolutionX = matrix,
            .ResolutionY = matrix,
            .NrOfSlices = slices,
            .pixelSizeX = millimetres,
            .pixelSizeY = millimetres,
            .sliceThickness = millimetres};
}

void printSize(const VolumeGeometry& geometry) {
    std::vector<int16_t> samples(geometry.volumeSamples());
    std::minstd_rand random(1);
    for (int16_t& sample : samples)
        sample = int16_t(random() >> 8 & 2047);
    VMRVolume volume;
    const FunctionalSlices slices{samples, geometry, 100, 1800, false};
    const C3dMatrix turn = C3dMatrix::rotationX(20) * C3dMatrix::rotationZ(-8);
    const auto matrix = vmrToFunctionalMatrix(turn, geometry);
    const auto mapping = matrix ? cubeMapping(*matrix, geometry, false) : std::nullopt;
    if (!mapping || !mapFunctionalToCube(slices, volume))
        std::abort();
    std::vector<int32_t> indices(size_t(cubeSide) * cubeSide);
    std::vector<uint8_t> section(indices.size());
    const double map = medianTime(repeats, [&] {
        for (const SectionAxis axis : axes)
            mapSection(*mapping, geometry.size(), axis, middle, indices);
    });
    const double cut = medianTime(repeats, [&] {
        for (const SectionAxis axis : axes)
            cutSection(volume.cube, axis, middle, section);
    });
    const double fill = medianTime(repeats, [&] {
        if (!mapFunctionalToCube(slices, volume))
            std::abort();
    });
    std::printf("%3d x %3d x %2d  %12.2f  %12.2f  %8.2f\n", geometry.ResolutionX,
                geometry.ResolutionY, geometry.NrOfSlices, map, cut, fill);
}

} // namespace

int main() {
    std::printf("Milliseconds of processor time, medians of %d\n"
                "size            map sections  cut sections      cube\n",
                repeats);
    for (const VolumeGeometry& geometry :
         {cubic(64, 25, 3.0f), cubic(74, 36, 3.0f), cubic(104, 72, 2.0f)})
        printSize(geometry);
}
