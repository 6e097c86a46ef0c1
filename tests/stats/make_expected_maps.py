#!/usr/bin/python3
# What NumPy and SciPy find for the models of whole_run_maps_test, as its table.
# SPDX-License-Identifier: GPL-3.0-or-later
"""Usage: make_expected_maps.py > expected_maps.tsv. Needs NumPy and SciPy."""
import numpy
import scipy.linalg
import scipy.stats

STUDIES, POINTS, VOXELS = 2, 40, 3
CONTRASTS = [[1, 0, 0], [0, 1, 0], [1, -1, 0], [1, 1, 0], [1, 1, -2]]
SELECTIONS = [[0, 1], [2, 4], [0, 1, 2, 4]]


def design():
    x = numpy.zeros((STUDIES * POINTS, 5))
    for t in range(STUDIES * POINTS):
        x[t, :3] = [((t * (3 + 2 * j) + 5 * j) % 9) / 8 for j in range(3)]
        x[t, 3 + t // POINTS] = 1
    return x


def samples(voxel):
    x, noise, y = design(), 0.0, []
    for t in range(STUDIES * POINTS):
        noise = 0.2 * (voxel + 1) * noise + (t * t * 37 + voxel * 101 + t * 13) % 97 - 48
        effect = 40 * x[t, 0] - 25 * voxel * x[t, 1] + 12 * x[t, 2]
        y.append(numpy.floor(9000 * (voxel + 1) + 70 * (t // POINTS) + effect + noise))
    return numpy.array(y)


def rss(x, y):
    residuals = y - x @ numpy.linalg.lstsq(x, y, rcond=None)[0]
    return residuals @ residuals


def whitened(values, a):
    parts = numpy.split(values, STUDIES)
    return numpy.concatenate([part[1:] - a * part[:-1] for part in parts])


def lag_one_value(x, y):
    residuals = y - x @ numpy.linalg.lstsq(x, y, rcond=None)[0]
    pairs = sum((part[1:] * part[:-1]).sum() for part in numpy.split(residuals, STUDIES))
    return pairs / (residuals @ residuals)


def model(voxel, corrected):
    x, y = design(), samples(voxel)
    if corrected:
        a = lag_one_value(x, y)
        a = (min(max(int(a * 20 + 0.5) - 1, 0), 19) + 1) / 20
        x, y = whitened(x, a), whitened(y, a)
    return x, y


def restrictions(weights):
    if min(weights) < 0:
        return [weights + [0, 0]]
    return [row.tolist() for row, weight in zip(numpy.eye(5), weights) if weight]


def t_value(x, y, weights):
    c = numpy.array(weights + [0, 0])
    b = numpy.linalg.lstsq(x, y, rcond=None)[0]
    variance = rss(x, y) / (len(y) - 5)
    return c @ b / numpy.sqrt(variance * (c @ numpy.linalg.inv(x.T @ x) @ c))


def f_value(x, y, rows):
    df1 = numpy.linalg.matrix_rank(numpy.array(rows))
    df2 = len(y) - 5
    restricted = rss(x @ scipy.linalg.null_space(numpy.array(rows)), y)
    f = (restricted - rss(x, y)) / df1 / (rss(x, y) / df2)
    return f, df1, scipy.stats.f.sf(f, df1, df2)


def show(name, *values):
    print(name, *[f"{value:.8g}" for value in values], sep="\t")


def row(shown, which, df1, values, p):
    """Correction, kind of statistic, contrasts, first degrees of freedom, the values of the voxels,
    and the probability of the first."""
    print("map", int(corrected), shown, " ".join(map(str, which)), sep="\t", end="\t")
    print(df1, *[f"{value:.8g}" for value in values], f"{p:.4g}", sep="\t")


show("design", *design().ravel())
for voxel in range(VOXELS):
    show(f"samples {voxel}", *samples(voxel))
for corrected in (False, True):
    models = [model(voxel, corrected) for voxel in range(VOXELS)]
    for index, weights in enumerate(CONTRASTS):
        t = [t_value(x, y, weights) for x, y in models]
        p = 2 * scipy.stats.t.sf(abs(t[0]), len(models[0][1]) - 5)
        row(0, [index], len(models[0][1]) - 5, t, p)
    for shown, choices in ((1, [[0], [2], [3], [4]]), (2, SELECTIONS)):
        for choice in choices:
            rows = [r for index in choice for r in restrictions(CONTRASTS[index])]
            f = [f_value(x, y, rows) for x, y in models]
            row(shown, choice, f[0][1], [value[0] for value in f], f[0][2])
