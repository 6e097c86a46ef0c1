// Accuracy of motion correction on simulated heads, and what limits it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "motion_courses.h"
#include "volume/motion_evaluation.h"
#include "volume/motion_tracking.h"

#include <cmath>
#include <cstdio>
#include <numbers>
#include <utility>

namespace {

/// How differences are summed. The first is that of the standard method; the others show what it
/// costs.
struct Variant {
    const char* name;
    bool allVoxels;       ///< instead of the sparse grid
    bool trueDerivatives; ///< of the moved volume by millimetres and degrees
    bool means;           ///< steps are compared by the mean of the squares instead of their sum
};
constexpr Variant variants[] = {
    {"standard", false, false, false},     {"means", false, false, true},
    {"all voxels", true, false, false},    {"true derivatives", false, true, false},
    {"voxels, deriv.", true, true, false}, {"all three", true, true, true}};

/// The evaluation of MotionEvaluator, with variants.
class VariedEvaluation {
public:
    VariedEvaluation(const VolumeGrid& grid, std::span<const int16_t> target,
                     const Variant& variant)
        : grid_(grid), target_(target), variant_(variant), moved_(grid.samples()) {}

    void evaluate(std::span<const int16_t> source, const RigidTransformation& t,
                  MotionEquations& equations) {
        resampleVolume(grid_, source, moved_, t);
        equations = {};
        const auto [sizeX, sizeY, nrOfSlices] = grid_.size;
        for (int z = 1; z < nrOfSlices - 1; z += step(nrOfSlices))
            for (int y = 2; y < sizeY - 2; y += step(sizeY))
                for (int x = 2; x < sizeX - 2; x += step(sizeX))
                    addVoxel({x, y, z}, t, equations);
        for (size_t i = 0; i < nrOfMotionParameters; ++i)
            for (size_t j = i + 1; j < nrOfMotionParameters; ++j)
                equations.curvature[i * nrOfMotionParameters + j] =
                    equations.curvature[j * nrOfMotionParameters + i];
        if (variant_.means && equations.voxelsUsed > 0)
            equations.sumOfSquares /= std::exchange(equations.voxelsUsed, 1);
    }

private:
    [[nodiscard]] int step(int size) const {
        return variant_.allVoxels ? 1 : motionSamplingStep(size);
    }
    /// Displacement of a voxel by a rotation, along the other two axes.
    [[nodiscard]] double lever(size_t axis, int voxel, double translation) const {
        if (variant_.trueDerivatives)
            return double(grid_.position(axis, voxel)) * std::numbers::pi / 180.0;
        const double distance = voxel - grid_.size[axis] * 0.5 + translation;
        return std::abs(distance) < 2.0 ? 0.0 : distance / grid_.size[axis] * 2.0;
    }
    void addVoxel(const std::array<int, 3>& at, const RigidTransformation& t,
                  MotionEquations& equations) {
        const size_t row = size_t(grid_.size[0]);
        const size_t slice = row * size_t(grid_.size[1]);
        const size_t voxel = size_t(at[2]) * slice + size_t(at[1]) * row + size_t(at[0]);
        if (target_[voxel] <= 100 || moved_[voxel] <= 100)
            return;
        const size_t neighbour[3] = {1, row, slice};
        const double translation[3] = {double(t.tx), double(t.ty), double(t.tz)};
        double g[3], c[3];
        for (size_t axis = 0; axis < 3; ++axis) {
            g[axis] = moved_[voxel + neighbour[axis]] - moved_[voxel - neighbour[axis]];
            if (variant_.trueDerivatives)
                g[axis] /= 2.0 * double(grid_.spacing[axis]);
            c[axis] = lever(axis, at[axis], translation[axis]);
        }
        const double turned = variant_.trueDerivatives ? 1.0 : 2.0;
        const MotionParameters derivative{-g[0],
                                          -g[1],
                                          -g[2],
                                          turned * (c[1] * g[2] - c[2] * g[1]),
                                          turned * (c[2] * g[0] - c[0] * g[2]),
                                          turned * (c[0] * g[1] - c[1] * g[0])};
        const double d = double(target_[voxel]) - moved_[voxel];
        for (size_t i = 0; i < nrOfMotionParameters; ++i) {
            for (size_t j = 0; j <= i; ++j)
                equations.curvature[i * nrOfMotionParameters + j] += derivative[i] * derivative[j];
            equations.gradient[i] += derivative[i] * d;
        }
        equations.sumOfSquares += d * d;
        ++equations.voxelsUsed;
    }

    VolumeGrid grid_;
    std::span<const int16_t> target_;
    Variant variant_;
    std::vector<int16_t> moved_;
};

std::array<double, nrOfMotionParameters> asArray(const RigidTransformation& t) {
    return {double(t.tx), double(t.ty), double(t.tz), double(t.rx), double(t.ry), double(t.rz)};
}

struct Errors {
    std::array<double, nrOfMotionParameters> of{}; ///< mean of each parameter
    double mean[2] = {}; ///< of translations, in millimetres, and of rotations, in degrees
    double largest[2] = {};
    double displacement = 0.0;        ///< mean inside the head, millimetres
    double largestDisplacement = 0.0; ///< of the volumes' means
    double steps = 0.0;
    /// Mean square at the true position divided by that at the estimate. Above 1 no search could
    /// have found the true position: it is not where the volumes agree best.
    double truthByFound = 0.0;
};

void addErrors(const Course& course, int v, const RigidTransformation& found, int steps,
               Errors& errors) {
    const std::array<double, nrOfMotionParameters> truth = asArray(course.truth(v));
    const std::array<double, nrOfMotionParameters> values = asArray(found);
    for (size_t i = 0; i < nrOfMotionParameters; ++i) {
        const double error = std::abs(values[i] - truth[i]);
        errors.of[i] += error / (course.nrOfVolumes - 1);
        errors.mean[i / 3] += error / (3 * (course.nrOfVolumes - 1));
        errors.largest[i / 3] = std::max(errors.largest[i / 3], error);
    }
    const double left = displacementBetween(course.grid, found, course.truth(v));
    errors.displacement += left / (course.nrOfVolumes - 1);
    errors.largestDisplacement = std::max(errors.largestDisplacement, left);
    errors.steps += double(steps) / (course.nrOfVolumes - 1);
}

/// The methods of least squares.
Errors followExactly(const Course& course) {
    std::vector<int16_t> target(course.grid.samples()), source(course.grid.samples());
    course.measure(0, target);
    MotionTracking tracking;
    Errors errors;
    if (!tracking.setTarget(course.grid, target))
        return errors;
    for (int v = 1; v < course.nrOfVolumes; ++v) {
        course.measure(v, source);
        const MotionTracking::Found found = tracking.follow(source);
        if (!found.good)
            std::printf("    volume %d was not found\n", v);
        addErrors(course, v, found.transformation, found.steps, errors);
    }
    return errors;
}

Errors follow(const Course& course, const Variant& variant) {
    std::vector<int16_t> target(course.grid.samples()), source(course.grid.samples());
    course.measure(0, target);
    VariedEvaluation evaluation(course.grid, target, variant);
    std::array<double, nrOfMotionParameters> found{};
    Errors errors;
    for (int v = 1; v < course.nrOfVolumes; ++v) {
        course.measure(v, source);
        MotionParameters start{};
        for (size_t i = 0; i < nrOfMotionParameters; ++i)
            start[i] = double(0.9f * float(found[i]));
        bool failed = false;
        const MotionFit fit = fitMotion(
            [&](const RigidTransformation& t, MotionEquations& equations) {
                evaluation.evaluate(source, t, equations);
            },
            start, failed);
        found = asArray(fit.transformation);
        addErrors(course, v, fit.transformation, fit.steps, errors);
        const auto meanSquareAt = [&](const RigidTransformation& t) {
            MotionEquations equations;
            evaluation.evaluate(source, t, equations);
            return equations.sumOfSquares / equations.voxelsUsed;
        };
        errors.truthByFound += meanSquareAt(course.truth(v)) / meanSquareAt(fit.transformation) /
                               (course.nrOfVolumes - 1);
    }
    return errors;
}

void printErrors(const Course& course, const char* method, const Errors& e) {
    std::printf(
        "%3d x %3d x %2d  %-14s  %-16s  %7.4f %7.4f  %7.4f %7.4f  %7.4f %7.4f  %5.1f  %11.3f\n",
        course.grid.size[0], course.grid.size[1], course.grid.size[2], course.name, method,
        e.displacement, e.largestDisplacement, e.mean[0], e.mean[1], e.largest[0], e.largest[1],
        e.steps, e.truthByFound);
}

void printCourse(const Course& course, bool allVariants) {
    printErrors(course, "least squares", followExactly(course));
    for (const Variant& variant : variants) {
        const Errors e = follow(course, variant);
        printErrors(course, variant.name, e);
        if (allVariants) {
            std::printf("    mean of each:");
            for (const double error : e.of)
                std::printf(" %.3f", error);
            std::printf("\n");
        }
        if (!allVariants)
            return;
    }
}

void printSize(std::array<int, 3> voxels, std::array<float, 3> millimetres, bool allVariants) {
    VolumeGrid grid;
    grid.size = voxels;
    grid.spacing = millimetres;
    const Course courses[] = {smoothCourse("smooth rest", grid, atRest),
                              smoothCourse("smooth drift", grid, drift),
                              withChangedVoxels("  5 % changed", smoothCourse("", grid, drift)),
                              smoothCourse("smooth jumps 1", grid, jumpsOf(1.0f)),
                              smoothCourse("smooth jumps 3", grid, jumpsOf(3.0f)),
                              simulatedCourse("sharp rest", grid, false),
                              simulatedCourse("sharp drift", grid, true),
                              withChangedVoxels("  5 % changed", simulatedCourse("", grid, true)),
                              sharpCourse("sharp jumps 1", grid, jumpsOf(1.0f)),
                              sharpCourse("sharp jumps 3", grid, jumpsOf(3.0f))};
    for (const Course& course : courses)
        printCourse(course, allVariants);
}

} // namespace

/// Arguments: none for simulated heads at three sizes, the program's variant; "all" for the
/// smallest size, all variants; a project file and a file of its motion for that run, all variants.
int main(int argc, char** argv) {
    std::printf(
        "Displacement left inside the head (mm), mean and that of the worst volume; absolute "
        "errors: mean of translations (mm) and rotations (degrees), then largest\n"
        "size            course          method               left   worst       mm     deg   "
        "max mm max deg  steps  truth/found\n");
    if (argc > 2) {
        printCourse(realRun(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2])),
                    true);
        return 0;
    }
    printSize({64, 64, 25}, {3.0f, 3.0f, 4.0f}, argc > 1);
    if (argc > 1)
        return 0;
    printSize({74, 74, 36}, {2.6f, 2.6f, 3.3f}, false);
    printSize({104, 104, 72}, {2.0f, 2.0f, 2.0f}, false);
    return 0;
}
