#!/usr/bin/python3
# Stacks of slices at random places with the functional voxels at points of the cube, as the table
# of coordinate_chain_test. Each point goes through the scanner's coordinates, in double; the
# internal axes are not used.
# SPDX-License-Identifier: GPL-3.0-or-later
"""Usage: make_chain_expected.py > expected_chain.tsv

Lines, tab separated:
vmr, functional   centres of the first and the last slice, row and column direction
alignment         the matrix, row by row
grid              columns, rows, slices, pixel sizes, slice distance, slices mirrored
point             voxel of the cube, voxel of the run
"""
import numpy

random = numpy.random.default_rng(7)


def printed(name, *values):
    """Prints them and returns what a float of four bytes holds."""
    numbers = numpy.float32(numpy.concatenate([numpy.ravel(v) for v in values]))
    print(name, *("%.9g" % v for v in numbers), sep="\t")
    return numpy.float64(numbers)


def rotation(limit):
    """About a random axis, by at most so many degrees."""
    a = random.normal(size=3)
    a /= numpy.linalg.norm(a)
    k = numpy.array([[0, -a[2], a[1]], [a[2], 0, -a[0]], [-a[1], a[0], 0]])
    angle = numpy.radians(random.uniform(-limit, limit))
    return numpy.eye(3) + numpy.sin(angle) * k + (1 - numpy.cos(angle)) * k @ k


def stack(name, turn, length):
    """A stack of slices; its centre and its axes as columns."""
    centre = random.uniform(-60, 60, 3)
    half = turn[:, 2] * length / 2
    v = printed(name, centre - half, centre + half, turn[:, 0], turn[:, 1]).reshape(4, 3)
    axes = numpy.array([v[2], v[3], v[1] - v[0]]).T
    return (v[0] + v[1]) / 2, axes / numpy.linalg.norm(axes, axis=0)


for case in range(12):
    # A sagittal anatomy: its rows go back, its columns down, its stack to either side.
    side = 1 if case % 2 else -1
    sagittal = numpy.array([[0, 0, side], [1, 0, 0], [0, -1, 0]])
    vmr_centre, vmr_axes = stack("vmr", rotation(20) @ sagittal, 175)
    counts = numpy.array([random.integers(32, 129), random.integers(32, 129),
                          random.integers(2, 73)])
    sizes = random.uniform(1.2, 4, 3)
    centre, axes = stack("functional", rotation(180 if case > 5 else 30),
                         (counts[2] - 1) * sizes[2])
    alignment = numpy.eye(4)
    if case > 1:
        alignment[:3, :3] = rotation(10)
        alignment[:3, 3] = random.uniform(-8, 8, 3)
    alignment = printed("alignment", alignment).reshape(4, 4)
    grid = printed("grid", counts, sizes, [case % 3 == 2])
    for _ in range(6):
        cube = random.integers(0, 256, 3)
        anatomical = alignment[:3, :3] @ (cube - 127.5) + alignment[:3, 3]
        scanner = vmr_axes @ anatomical + vmr_centre
        # Axes of unit length at right angles: the coordinates are the products with them.
        voxel = axes.T @ (scanner - centre) / grid[3:6] + (counts - 1) / 2
        if grid[6]:
            voxel[2] = counts[2] - 1 - voxel[2]
        print("point", *cube, *("%.6f" % v for v in voxel), sep="\t")
