// SPDX-License-Identifier: GPL-3.0-or-later
#include "motion_courses.h"

#include "base/text_reading.h"
#include "scanner_simulator/random_numbers.h"
#include "scanner_simulator/simulated_scan.h"
#include "volume/fmr_project.h"
#include "volume/head_volume.h"

#include <QStringList>
#include <memory>

namespace {

constexpr std::array<double, 3> semiAxes{68.0, 86.0, 48.0}; // millimetres

std::function<RigidTransformation(int)> byVolume(const CourseOfMotion& motion, int nrOfVolumes) {
    return [=](int v) { return motion(float(v) / float(nrOfVolumes - 1)); };
}

/// The transformation that moves a head with this pose back to rest.
RigidTransformation transformationOf(const HeadPose& pose) {
    const PoseInverse toHead(pose);
    // Its matrix is the transpose of Rx(rx) Ry(ry) Rz(rz).
    const Point origin = toHead({0, 0, 0}), x = toHead({1, 0, 0}), y = toHead({0, 1, 0});
    const auto degrees = [](double radians) { return float(radians * 180.0 / std::numbers::pi); };
    const double ry = std::asin(x.z - origin.z);
    return {float(-pose.translation[0]),
            float(-pose.translation[1]),
            float(-pose.translation[2]),
            degrees(std::asin(-(y.z - origin.z) / std::cos(ry))),
            degrees(ry),
            degrees(std::asin(-(x.y - origin.y) / std::cos(ry)))};
}

SimulationOptions optionsFor(const VolumeGrid& grid) {
    SimulationOptions options;
    options.sizeX = grid.size[0];
    options.sizeY = grid.size[1];
    options.nrOfSlices = grid.size[2];
    options.fieldOfView = int(std::lround(grid.spacing[0] * float(grid.size[0])));
    options.sliceDistance = double(grid.spacing[2]);
    options.nrOfVolumes = 150;
    options.nrOfVolumesToSkip = 0;
    return options;
}

void fillSharpHead(const VolumeGrid& grid, const HeadPose& pose, int v,
                   std::span<int16_t> samples) {
    constexpr double noise = 8.0;
    const HeadPhantom phantom{ScanGeometry(optionsFor(grid))};
    const PoseInverse toHead(pose);
    RandomNumbers random(uint64_t(1000 + v));
    size_t i = 0;
    for (int z = 0; z < grid.size[2]; ++z)
        for (int y = 0; y < grid.size[1]; ++y)
            for (int x = 0; x < grid.size[0]; ++x, ++i) {
                const Point point{double(grid.position(0, x)), double(grid.position(1, y)),
                                  double(grid.position(2, z))};
                const double value =
                    phantom.signal(toHead(point)) + noise * double(random.gaussian());
                samples[i] = int16_t(std::lround(std::abs(value)));
            }
}

/// A pose whose transformation has these parameters but for the order of its turns.
HeadPose poseOf(const RigidTransformation& t) {
    return {{-double(t.tx), -double(t.ty), -double(t.tz)},
            {double(t.rx), double(t.ry), double(t.rz)}};
}

} // namespace

RigidTransformation atRest(float) {
    return {};
}

RigidTransformation drift(float part) {
    return {0.5f * part, -0.4f * part, 0.6f * part, 0.6f * part, -0.3f * part, 0.5f * part};
}

CourseOfMotion jumpsOf(float size) {
    return [size](float part) {
        // Two jumps in different directions, then the first one back.
        const float a = part >= 0.25f && part < 0.75f ? size / 3.0f : 0.0f;
        const float b = part >= 0.5f ? size / 3.0f : 0.0f;
        return RigidTransformation{2.0f * a - b,  -a + 2.0f * b, 2.0f * a + 2.0f * b,
                                   -a + 2.0f * b, 2.0f * a - b,  2.0f * a + 2.0f * b};
    };
}

Course smoothCourse(const char* name, const VolumeGrid& grid, const CourseOfMotion& motion) {
    constexpr int nrOfVolumes = 40;
    const auto truth = byVolume(motion, nrOfVolumes);
    return {name, grid, nrOfVolumes,
            [head = HeadVolume(grid), truth](int v, std::span<int16_t> samples) {
                head.fill(truth(v), 10.0, unsigned(v + 1), samples);
            },
            truth};
}

Course sharpCourse(const char* name, const VolumeGrid& grid, const CourseOfMotion& motion) {
    constexpr int nrOfVolumes = 40;
    const auto at = byVolume(motion, nrOfVolumes);
    return {name, grid, nrOfVolumes,
            [grid, at](int v, std::span<int16_t> samples) {
                fillSharpHead(grid, poseOf(at(v)), v, samples);
            },
            [at](int v) { return transformationOf(poseOf(at(v))); }};
}

Course simulatedCourse(const char* name, const VolumeGrid& grid, bool drifts) {
    SimulationOptions options = optionsFor(grid);
    options.motion = drifts ? HeadMotion::Drift : HeadMotion::None;
    const auto scan = std::make_shared<SimulatedScan>(options);
    return {name, grid, options.nrOfVolumes,
            [scan](int v, std::span<int16_t> samples) {
                std::ranges::copy(scan->volume(v), samples.begin());
            },
            [scan](int v) { return transformationOf(scan->pose(v)); }};
}

Course withChangedVoxels(const char* name, Course course) {
    const auto change = [measure = course.measure, grid = course.grid](int v,
                                                                       std::span<int16_t> samples) {
        constexpr double part = 0.368; // of the head's half axes: 5 % of its volume
        constexpr std::array<double, 3> centre{-22.0, 27.0, 4.0};
        measure(v, samples);
        size_t i = 0;
        for (int z = 0; z < grid.size[2]; ++z)
            for (int y = 0; y < grid.size[1]; ++y)
                for (int x = 0; x < grid.size[0]; ++x, ++i) {
                    const std::array<int, 3> voxel{x, y, z};
                    double squared = 0.0;
                    for (size_t axis = 0; axis < 3; ++axis)
                        squared +=
                            std::pow((double(grid.position(axis, voxel[axis])) - centre[axis]) /
                                         (part * semiAxes[axis]),
                                     2.0);
                    if (v > 0 && squared < 1.0)
                        samples[i] = int16_t(std::lround(1.03 * samples[i]));
                }
    };
    course.name = name;
    course.measure = change;
    return course;
}

Course realRun(const QString& fmrFile, const QString& reference) {
    const auto project = std::make_shared<FMRProject>();
    QString text;
    if (!loadFMRProject(*project, fmrFile, LoadData::Yes) || !readTextFile(reference, text))
        return {};
    std::vector<RigidTransformation> motion;
    for (const QString& line : text.split('\n')) {
        const QStringList values = line.simplified().split(' ');
        const auto value = [&](int i) { return values[i].toFloat(); };
        if (!line.startsWith('#') && values.size() >= 6)
            motion.push_back({value(0), value(1), value(2), value(3), value(4), value(5)});
    }
    return {"measured run", VolumeGrid(*project),
            std::min(project->NrOfVolumes, int(motion.size())),
            [project](int v, std::span<int16_t> samples) {
                std::ranges::copy(project->volumes[size_t(v)], samples.begin());
            },
            [motion](int v) { return motion[size_t(v)]; }};
}

double displacementBetween(const VolumeGrid& grid, const RigidTransformation& a,
                           const RigidTransformation& b) {
    const C3dMatrix first = a.matrix(), second = b.matrix();
    double sum = 0.0;
    int count = 0;
    for (int z = 0; z < grid.size[2]; ++z)
        for (int y = 0; y < grid.size[1]; y += 2)
            for (int x = 0; x < grid.size[0]; x += 2) {
                const C3dVector p{grid.position(0, x), grid.position(1, y), grid.position(2, z)};
                if (std::hypot(double(p.x) / semiAxes[0], double(p.y) / semiAxes[1],
                               double(p.z) / semiAxes[2]) > 1.0)
                    continue;
                const C3dVector q = first * p, r = second * p;
                sum += std::hypot(double(q.x - r.x), double(q.y - r.y), double(q.z - r.z));
                ++count;
            }
    return sum / count;
}
