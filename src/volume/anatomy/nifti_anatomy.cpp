// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/nifti_anatomy.h"

#include "base/messages.h"
#include "base/plain_file.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

struct IntensityWindow {
    float low = 0.0f;
    float high = 0.0f;
};

float quantile(std::vector<float>& values, double part) {
    const auto place = values.begin() + ptrdiff_t(part * double(values.size() - 1));
    std::nth_element(values.begin(), place, values.end());
    return *place;
}

/// From the darkest to the brightest values but for the outermost ones, which often are artefacts.
/// They are taken from some million values at equal distances.
IntensityWindow robustWindow(std::span<const float> values) {
    constexpr size_t wanted = 1 << 20;
    constexpr double darkest = 0.005;
    constexpr double brightest = 0.998;
    // An odd distance meets all columns of a matrix of the usual even sizes.
    const size_t distance = values.size() / wanted | 1;
    std::vector<float> some;
    some.reserve(values.size() / distance + 1);
    for (size_t i = 0; i < values.size(); i += distance)
        some.push_back(values[i]);
    const IntensityWindow window{quantile(some, darkest), quantile(some, brightest)};
    if (window.low < window.high)
        return window;
    const auto [lowest, highest] = std::ranges::minmax(values);
    return {lowest, highest};
}

uint8_t intensity(double value, const IntensityWindow& window) {
    const double range = double(window.high) - double(window.low);
    if (!(range > 0.0))
        return 0;
    const double scaled = (value - double(window.low)) / range * maximumAnatomicalIntensity;
    return uint8_t(std::clamp(scaled, 0.0, double(maximumAnatomicalIntensity)) + 0.5);
}

/// A coordinate between two neighbours of a grid.
struct Between {
    size_t lower = 0;
    size_t upper = 0;
    double part = 0.0; ///< of the way to the upper
};

Between between(double coordinate, int64_t size) {
    const double inside = std::clamp(coordinate, 0.0, double(size - 1));
    const auto lower = size_t(inside);
    return {lower, std::min(lower + 1, size_t(size - 1)), inside - double(lower)};
}

class Interpolation {
public:
    explicit Interpolation(const NiftiVolume& nifti)
        : values_(nifti.values.span()), size_(nifti.header.size) {}

    [[nodiscard]] bool contains(const NiftiPoint& voxel) const {
        for (size_t i = 0; i < 3; ++i)
            if (!(voxel[i] >= -0.5 && voxel[i] < double(size_[i]) - 0.5))
                return false;
        return true;
    }
    /// At a point that is contained.
    [[nodiscard]] double operator()(const NiftiPoint& voxel) const {
        const Between x = between(voxel[0], size_[0]);
        const Between y = between(voxel[1], size_[1]);
        const Between z = between(voxel[2], size_[2]);
        return std::lerp(plane(x, y, z.lower), plane(x, y, z.upper), z.part);
    }

private:
    [[nodiscard]] double plane(const Between& x, const Between& y, size_t z) const {
        return std::lerp(row(x, y.lower, z), row(x, y.upper, z), y.part);
    }
    [[nodiscard]] double row(const Between& x, size_t y, size_t z) const {
        const size_t start = (z * size_t(size_[1]) + y) * size_t(size_[0]);
        return std::lerp(double(values_[start + x.lower]), double(values_[start + x.upper]),
                         x.part);
    }

    std::span<const float> values_;
    std::array<int64_t, 3> size_;
};

/// A step of 1 mm along an axis of the cube (x back, y down, z left), in voxels of the file.
std::array<NiftiPoint, 3> stepsOfCube(const NiftiMatrix& toVoxels) {
    std::array<NiftiPoint, 3> steps{};
    for (size_t i = 0; i < 3; ++i) {
        steps[0][i] = -toVoxels.rows[i][1];
        steps[1][i] = -toVoxels.rows[i][2];
        steps[2][i] = -toVoxels.rows[i][0];
    }
    return steps;
}

void fillCube(const NiftiVolume& nifti, const NiftiMatrix& toVoxels, std::vector<uint8_t>& cube) {
    const IntensityWindow window = robustWindow(nifti.values.span());
    const Interpolation valueAt(nifti);
    const std::array<NiftiPoint, 3> steps = stepsOfCube(toVoxels);
    uint8_t* target = cube.data();
    for (int z = 0; z < cubeSide; ++z)
        for (int y = 0; y < cubeSide; ++y)
            for (int x = 0; x < cubeSide; ++x, ++target) {
                NiftiPoint voxel{};
                for (size_t i = 0; i < 3; ++i)
                    voxel[i] = double(nifti.header.size[i] - 1) / 2.0 +
                               (x - double(cubeCentre)) * steps[0][i] +
                               (y - double(cubeCentre)) * steps[1][i] +
                               (z - double(cubeCentre)) * steps[2][i];
                if (valueAt.contains(voxel))
                    *target = intensity(valueAt(voxel), window);
            }
}

NiftiMatrix matrixOfSizes(const NiftiPoint& sizes) {
    NiftiMatrix matrix;
    for (size_t i = 0; i < 3; ++i)
        matrix.rows[i][i] = sizes[i];
    return matrix;
}

/// Of the cube around `centre`, which is in the coordinates of the file: x right, y front, z up.
/// Those of the scanner are x left, y back, z up.
FMRPositionInfo positionOfCube(const NiftiPoint& centre) {
    FMRPositionInfo position;
    position.positionInfoValid = 1;
    position.sizesFromHeaders = true;
    position.rowDirection = {0.0f, 1.0f, 0.0f};
    position.columnDirection = {0.0f, 0.0f, -1.0f};
    const Vector3 middle = {float(-centre[0]), float(-centre[1]), float(centre[2])};
    position.sliceCenterFirst = {middle[0] - cubeCentre, middle[1], middle[2]};
    position.sliceCenterLast = {middle[0] + cubeCentre, middle[1], middle[2]};
    position.fovRows = float(cubeSide);
    position.fovColumns = float(cubeSide);
    return position;
}

} // namespace

bool isNiftiName(const QString& path) {
    return path.endsWith(".nii", Qt::CaseInsensitive) ||
           path.endsWith(".nii.gz", Qt::CaseInsensitive);
}

bool niftiToCube(const NiftiVolume& nifti, VMRVolume& volume) {
    volume = VMRVolume();
    VMRVolume made;
    if (!made.clearCube())
        return false;
    const std::optional<NiftiPlace> place = nifti.header.place();
    std::optional<NiftiMatrix> toVoxels =
        place ? place->matrix.inverse() : matrixOfSizes(nifti.header.voxelSizes).inverse();
    if (!toVoxels) // sizes that no volume has
        toVoxels = matrixOfSizes({1.0, 1.0, 1.0});
    fillCube(nifti, *toVoxels, made.cube);
    if (place) {
        constexpr int radiological = 1; // z begins at the right side
        made.LeftRightConvention = radiological;
        if (place->space == NiftiSpace::Scanner || place->space == NiftiSpace::Aligned) {
            NiftiPoint middle{};
            for (size_t i = 0; i < 3; ++i)
                middle[i] = double(nifti.header.size[i] - 1) / 2.0;
            made.position = positionOfCube(place->matrix * middle);
            made.referenceSpace = 1;
        }
    }
    volume = std::move(made);
    return true;
}

bool loadNiftiAnatomy(const QString& path, VMRVolume& volume) {
    volume = VMRVolume();
    QFile file(path);
    if (!openPlainFile(file)) {
        showWarning(QString("ERROR: Can not open NIfTI file: \"%1\" !").arg(path));
        return false;
    }
    NiftiVolume nifti;
    QString fault = readNiftiVolume(file, nifti);
    if (fault.isEmpty() && !niftiToCube(nifti, volume))
        fault = "needs more memory than there is";
    if (fault.isEmpty())
        return true;
    showWarning(QString("ERROR: Can not read the anatomy: \"%1\" %2.").arg(path, fault));
    return false;
}
