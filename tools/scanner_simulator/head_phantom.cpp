// SPDX-License-Identifier: GPL-3.0-or-later
#include "head_phantom.h"

#include "random_numbers.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double scalpSignal = 330.0;
constexpr double skullSignal = 160.0;
constexpr double ventricleSignal = 1150.0;

/// Between 650 and 1130: three slow waves of different length and direction.
double brainTissue(const Point& p) {
    return 890.0 + 110.0 * std::sin(0.11 * p.x + 0.05 * p.y + 0.4) +
           80.0 * std::sin(0.13 * p.y - 0.06 * p.z + 1.1) +
           50.0 * std::sin(0.17 * p.z + 0.07 * p.x - 0.6);
}

} // namespace

bool HeadPose::isAtRest() const {
    return std::all_of(std::begin(translation), std::end(translation),
                       [](double value) { return value == 0.0; }) &&
           std::all_of(std::begin(rotation), std::end(rotation),
                       [](double value) { return value == 0.0; });
}

PoseInverse::PoseInverse(const HeadPose& pose) {
    double sine[3];
    double cosine[3];
    for (int axis = 0; axis < 3; ++axis) {
        const double angle = pose.rotation[axis] * std::numbers::pi / 180.0;
        sine[axis] = std::sin(angle);
        cosine[axis] = std::cos(angle);
        translation_[axis] = pose.translation[axis];
    }
    // Rows of the transpose of Rz Ry Rx.
    const double rows[3][3] = {
        {cosine[2] * cosine[1], sine[2] * cosine[1], -sine[1]},
        {cosine[2] * sine[1] * sine[0] - sine[2] * cosine[0],
         sine[2] * sine[1] * sine[0] + cosine[2] * cosine[0], cosine[1] * sine[0]},
        {cosine[2] * sine[1] * cosine[0] + sine[2] * sine[0],
         sine[2] * sine[1] * cosine[0] - cosine[2] * sine[0], cosine[1] * cosine[0]}};
    std::copy(&rows[0][0], &rows[0][0] + 9, &rotation_[0][0]);
}

Point PoseInverse::operator()(const Point& point) const {
    const double x = point.x - translation_[0];
    const double y = point.y - translation_[1];
    const double z = point.z - translation_[2];
    return {rotation_[0][0] * x + rotation_[0][1] * y + rotation_[0][2] * z,
            rotation_[1][0] * x + rotation_[1][1] * y + rotation_[1][2] * z,
            rotation_[2][0] * x + rotation_[2][1] * y + rotation_[2][2] * z};
}

double HeadPhantom::Ellipsoid::squaredRadius(const Point& point) const {
    const double x = (point.x - centre.x) / halfAxis.x;
    const double y = (point.y - centre.y) / halfAxis.y;
    const double z = (point.z - centre.z) / halfAxis.z;
    return x * x + y * y + z * z;
}

HeadPhantom::HeadPhantom(const ScanGeometry& geometry)
    : borderWidth_(std::max(geometry.pixelSize, 2.0)) {
    // The regions stay clear of the outermost slices, even for a small coverage.
    const double height = std::min(10.0, 0.5 * geometry.halfCoverage());
    const double level = std::min(20.0, 0.25 * geometry.halfCoverage());
    const Point halfAxis{10.0, 10.0, height};
    // Those of tasks lie between the two middle slices where their number is even.
    const double taskHeight = 0.8 * std::max(height, geometry.sliceDistance);
    for (int side = 0; side < 2; ++side) {
        const double sign = side == 0 ? -1.0 : 1.0;
        regions_[0][side] = {{sign * 36.0, 26.0, -level}, halfAxis};
        regions_[1][side] = {{sign * 27.0, -18.0, level}, halfAxis};
        // Away from the others already in x and y, however few slices there are.
        const Point places[] = {{30.0, -48.0, 0.0}, {48.0, -2.0, 0.0}, {30.0, 52.0, 0.0}};
        for (int task = 0; task < 3; ++task)
            taskRegions_[3 * side + task] = {{sign * places[task].x, places[task].y, 0.0},
                                             {8.0, 8.0, taskHeight}};
    }
    codedRegion_ = {{0.0, 48.0, 0.0}, {16.0, 12.0, height}};
}

double HeadPhantom::share(const Ellipsoid& ellipsoid, const Point& point) const {
    const double squared = ellipsoid.squaredRadius(point);
    const double smallest =
        std::min({ellipsoid.halfAxis.x, ellipsoid.halfAxis.y, ellipsoid.halfAxis.z});
    const double halfBorder = 0.5 * borderWidth_ / smallest;
    if (squared >= (1.0 + halfBorder) * (1.0 + halfBorder))
        return 0.0;
    const double inner = std::max(0.0, 1.0 - halfBorder);
    if (squared <= inner * inner)
        return 1.0;
    const double t =
        std::clamp((1.0 + halfBorder - std::sqrt(squared)) / (2.0 * halfBorder), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

double HeadPhantom::signal(const Point& point) const {
    const double scalp = share(scalp_, point);
    if (scalp == 0.0)
        return 0.0;
    const double skull = share(skull_, point);
    const double brain = skull > 0.0 ? share(brain_, point) : 0.0;
    double value = scalp * scalpSignal + skull * (skullSignal - scalpSignal);
    if (brain > 0.0) {
        double tissue = brainTissue(point);
        for (const Ellipsoid& ventricle : ventricles_)
            tissue += share(ventricle, point) * (ventricleSignal - tissue);
        value += brain * (tissue - skullSignal);
    }
    return value;
}

bool HeadPhantom::isBrain(const Point& point) const {
    return share(brain_, point) == 1.0;
}

int HeadPhantom::activeCondition(const Point& point) const {
    for (int condition = 0; condition < nrOfConditions; ++condition)
        for (const Ellipsoid& region : regions_[condition])
            if (region.squaredRadius(point) <= 1.0)
                return condition + 1;
    return 0;
}

int HeadPhantom::taskRegion(const Point& point) const {
    for (int region = 0; region < nrOfTaskRegions; ++region)
        if (taskRegions_[region].squaredRadius(point) <= 1.0)
            return region + 1;
    return 0;
}

int HeadPhantom::preference(const Point& point) const {
    if (codedRegion_.squaredRadius(point) > 1.0)
        return 0;
    constexpr double cube = 3.0; // millimetres
    const auto index = [](double place) {
        return uint64_t(int64_t(std::floor(place / cube)) + 100);
    };
    const uint64_t place = index(point.x) << 32 | index(point.y) << 16 | index(point.z);
    return (RandomNumbers(place).bits() & 1) != 0 ? 1 : -1;
}

double HeadPhantom::pulsationWeight(const Point& point) {
    const double squared = point.x * point.x + point.y * point.y + point.z * point.z;
    return std::exp(-squared / (2.0 * 30.0 * 30.0));
}
