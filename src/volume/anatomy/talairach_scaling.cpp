// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/talairach_scaling.h"

#include <algorithm>

namespace {

// Distances in the atlas, in millimetres: Talairach and Tournoux (1988).
constexpr double anteriorToAC = 70.0;
constexpr double acToPC = 23.0;
constexpr double pcToPosterior = 79.0;
constexpr double superiorToAC = 74.0;
constexpr double acToInferior = 42.0;
constexpr double acToSide = 68.0;

} // namespace

bool TalairachScaling::Axis::setLandmarks(const std::vector<Landmark>& landmarks) {
    landmarks_ = landmarks;
    const auto before = [](const Landmark& a, const Landmark& b) { return a.acpc >= b.acpc; };
    return std::ranges::adjacent_find(landmarks_, before) == landmarks_.end();
}

float TalairachScaling::Axis::mapped(float value, double Landmark::*from,
                                     double Landmark::*to) const {
    // The first and the last part go on beyond their borders.
    size_t part = 1;
    while (part + 1 < landmarks_.size() && double(value) > landmarks_[part].*from)
        ++part;
    const Landmark& low = landmarks_[part - 1];
    const Landmark& high = landmarks_[part];
    const double scale = (high.*to - low.*to) / (high.*from - low.*from);
    return float(low.*to + (double(value) - low.*from) * scale);
}

std::optional<TalairachScaling> TalairachScaling::fromPoints(const TalairachPoints& points) {
    const CubePoint& ac = points.referencePoint1;
    const auto landmark = [](int voxel, double distance) {
        return Landmark{double(voxel), talairachAC + distance};
    };
    // Files differ in which side they name first, so the sides are told by their coordinates.
    const auto [right, left] = std::minmax(points.referencePoint7[2], points.referencePoint8[2]);
    TalairachScaling scaling;
    scaling.ac_ = {float(ac[0]), float(ac[1]), float(ac[2])};
    const bool ordered =
        scaling.x_.setLandmarks({landmark(points.referencePoint3[0], -anteriorToAC),
                                 landmark(ac[0], 0.0), landmark(points.referencePoint2[0], acToPC),
                                 landmark(points.referencePoint4[0], acToPC + pcToPosterior)}) &&
        scaling.y_.setLandmarks({landmark(points.referencePoint5[1], -superiorToAC),
                                 landmark(ac[1], 0.0),
                                 landmark(points.referencePoint6[1], acToInferior)}) &&
        scaling.z_.setLandmarks(
            {landmark(right, -acToSide), landmark(ac[2], 0.0), landmark(left, acToSide)});
    return ordered ? std::optional(scaling) : std::nullopt;
}

C3dVector TalairachScaling::toTalairach(const C3dVector& acpcVoxel) const {
    const auto mapped = [](const Axis& axis, float value) {
        return axis.mapped(value, &Landmark::acpc, &Landmark::talairach);
    };
    return {mapped(x_, acpcVoxel.x), mapped(y_, acpcVoxel.y), mapped(z_, acpcVoxel.z)};
}

C3dVector TalairachScaling::toACPC(const C3dVector& talairachVoxel) const {
    const auto mapped = [](const Axis& axis, float value) {
        return axis.mapped(value, &Landmark::talairach, &Landmark::acpc);
    };
    return {mapped(x_, talairachVoxel.x), mapped(y_, talairachVoxel.y),
            mapped(z_, talairachVoxel.z)};
}
