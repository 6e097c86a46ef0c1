// An analytic head phantom: the noise-free signal at any point.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scan_geometry.h"

/// Position of the head: rotation about the x, then the y, then the z axis through the centre of
/// the volume, then translation. Rotations are counter-clockwise when seen from the positive end of
/// the axis.
struct HeadPose {
    double translation[3] = {}; ///< millimetres along x, y, z
    double rotation[3] = {};    ///< degrees about x, y, z
    [[nodiscard]] bool isAtRest() const;
};

/// Maps points in the scanner to points in the head at rest.
class PoseInverse {
public:
    explicit PoseInverse(const HeadPose& pose);
    [[nodiscard]] Point operator()(const Point& point) const;

private:
    double rotation_[3][3];
    double translation_[3];
};

/// Ellipsoids of scalp, skull, brain and ventricles. Brain samples lie between 600 and 1200 and
/// vary smoothly; borders are blurred over about one voxel, like partial volume effects.
class HeadPhantom {
public:
    static constexpr int nrOfConditions = 2;  ///< conditions with active regions
    static constexpr int nrOfTaskRegions = 6; ///< of mental tasks

    explicit HeadPhantom(const ScanGeometry& geometry);
    [[nodiscard]] double signal(const Point& point) const;
    /// True inside the brain, away from its blurred border.
    [[nodiscard]] bool isBrain(const Point& point) const;
    /// 1 or 2: the condition whose regions hold the point; 0 outside all.
    [[nodiscard]] int activeCondition(const Point& point) const;
    /// 1 to 6: the region of mental tasks that holds the point, 1 to 3 in one hemisphere, 4 to 6 in
    /// the other; 0 outside all. They share no point with the other regions.
    [[nodiscard]] int taskRegion(const Point& point) const;
    /// In the region of the fine pattern, at the back of the head: 1 where the voxel there prefers
    /// the first condition, -1 where it prefers the second; 0 outside. The pattern has cubes of 3
    /// mm, and moves with the head.
    [[nodiscard]] int preference(const Point& point) const;
    /// Strength of pulsation, from 0 to 1: highest near the large vessels at the centre.
    [[nodiscard]] static double pulsationWeight(const Point& point);

private:
    struct Ellipsoid {
        Point centre;
        Point halfAxis;
        [[nodiscard]] double squaredRadius(const Point& point) const;
    };

    double borderWidth_; ///< millimetres
    Ellipsoid regions_[nrOfConditions][2];
    Ellipsoid codedRegion_;
    Ellipsoid taskRegions_[nrOfTaskRegions];
    Ellipsoid scalp_{{0, 0, 0}, {73, 88, 82}};
    Ellipsoid skull_{{0, 0, 0}, {68, 83, 77}};
    Ellipsoid brain_{{0, 0, 0}, {63, 78, 72}};
    Ellipsoid ventricles_[2] = {{{-9, -4, 6}, {5, 18, 10}}, {{9, -4, 6}, {5, 18, 10}}};

    [[nodiscard]] double share(const Ellipsoid& ellipsoid, const Point& point) const;
};
