#!/usr/bin/python3
# What NumPy's least squares finds in the runs of whole_run_glm_test, as the table of that test.
# SPDX-License-Identifier: GPL-3.0-or-later
"""Usage: make_whole_run_expected.py > expected_whole_run.tsv"""
import numpy

LENGTHS = [61, 45, 50]
SUBJECTS = [0, 0, 1]
PATTERNS = 8
# name, studies, columns (run: with constant and trend), z transformation, correction
CASES = [("plain", 1, "run", 0, 0), ("bare", 1, "no constant", 0, 0), ("zeros", 1, "zeros", 0, 0),
         ("z", 1, "run", 1, 0), ("z model", 1, "run", 2, 0), ("corrected", 1, "run", 0, 1),
         ("bare corrected", 1, "no constant", 0, 1), ("zeros corrected", 1, "zeros", 2, 1),
         ("common", 3, "common", 0, 0), ("common z", 3, "common", 1, 0),
         ("studies", 3, "studies", 0, 0), ("studies z model", 3, "studies", 2, 0),
         ("subjects", 3, "subjects", 0, 0), ("subjects z", 3, "subjects", 1, 0),
         ("common corrected", 3, "common", 0, 1), ("studies corrected", 3, "studies", 1, 1)]


def sixteenths(j, s, t):
    return (t * (3 + 2 * j) + s * 5) % 17 if (t + 4 * s) // 6 % 3 == j + 1 else 0


def samples(pattern, s):
    if pattern == 6:
        return numpy.full(LENGTHS[s], 500.0)
    state, e, values = 12345 + 977 * pattern + 7919 * s, 0, []
    for t in range(LENGTHS[s]):
        state = (state * 1103515245 + 12345) & 0x7FFFFFFF
        e = (e * (pattern % 4) >> 2) + (state >> 16) % 61 - 30
        values.append(200 + 4900 * pattern % 31000 + 40 * s + e + t // 4 +
                      (pattern * sixteenths(0, s, t) >> 1) - sixteenths(1, s, t))
    if pattern == 5 and s > 0:
        values[0] = -20000
    if pattern == 7 and s == 1:
        values[1] = values[-1] = 100
    return numpy.array(values, float)


def design(studies, layout):
    rows = []
    for s in range(studies):
        for t in range(LENGTHS[s]):
            conditions = [sixteenths(j, s, t) / 16 for j in range(2)]
            if layout in ("run", "zeros", "no constant"):
                extra = {"run": [1.0], "zeros": [0.0, 1.0], "no constant": []}[layout]
                rows.append(conditions + extra + [t / 64])
                continue
            groups = {"common": [0, 0, 0], "studies": [0, 1, 2], "subjects": SUBJECTS}[layout]
            row = [0.0] * (2 * (max(groups) + 1) + studies)
            row[2 * groups[s]:2 * groups[s] + 2] = conditions
            row[len(row) - studies + s] = 1.0
            rows.append(row)
    return numpy.array(rows)


def scaled(y, s, transformation):
    if transformation == 0:
        return y
    model = numpy.array([transformation == 1 or sixteenths(0, s, t) + sixteenths(1, s, t) > 0
                         for t in range(len(y))])
    deviation = y[model].std()
    return (y - y[model].mean()) / (1.0 if deviation < 0.01 else deviation)


def lag_one(parts):
    return sum((e[1:] * e[:-1]).sum() for e in parts) / sum((e * e).sum() for e in parts)


def fit(xs, ys):
    """R, total, betas, X'y and residuals by study."""
    x, y = numpy.vstack(xs), numpy.concatenate(ys)
    b = numpy.linalg.lstsq(x, y, rcond=None)[0]
    total = ((y - y.mean()) ** 2).sum()
    r = numpy.sqrt(((x @ b - (x @ b).mean()) ** 2).sum() / total)
    return [r, total, *b, *(x.T @ y)], [y - x @ b for x, y in zip(xs, ys)]


def whitened(parts, a):
    return [part[1:] - a * part[:-1] for part in parts]


def rows_of(pattern, studies, x, transformation, corrects):
    raw = [samples(pattern, s) for s in range(studies)]
    limits = [(y[-1] + y[min(s, 1)]) / 2 for s, y in enumerate(raw)]
    if min(limits) <= 100 or pattern == 6:
        return [0.0] * (2 * x.shape[1] + 3 + corrects)
    ys = [scaled(y, s, transformation) for s, y in enumerate(raw)]
    xs = numpy.split(x, numpy.cumsum(LENGTHS[:studies])[:-1])
    values, residuals = fit(xs, ys)
    if not corrects:
        return values + [numpy.concatenate(raw).mean()]
    before = lag_one(residuals)
    a = (min(max(int(before * 20 + 0.5) - 1, 0), 19) + 1) / 20
    values, residuals = fit(whitened(xs, a), whitened(ys, a))
    return values + [before, lag_one(residuals)]


def show(name, *values):
    print(name, *[f"{value:.12g}" for value in values], sep="\t")


# Voxels of a pattern hold its samples, study after study; rows of a design follow each other.
for k in range(PATTERNS):
    show(f"samples {k}", *numpy.concatenate([samples(k, s) for s in range(len(LENGTHS))]))
for name, studies, others in (("run", 1, 2), ("no constant", 1, 1), ("zeros", 1, 3),
                              ("common", 3, 3), ("studies", 3, 3), ("subjects", 3, 3)):
    x = design(studies, name)
    show(f"design {name}", *x.ravel())
    conditions = x.shape[1] - others
    show(f"conditions {name}", *[j % 2 if j < conditions else -1 for j in range(x.shape[1])])
for name, studies, layout, transformation, corrects in CASES:
    x = design(studies, layout)
    found = [rows_of(k, studies, x, transformation, corrects) for k in range(PATTERNS)]
    for k, values in enumerate(found):
        show(f"{name}: voxel {k}", *values)
    show(f"{name}: inverse", *numpy.linalg.pinv(x.T @ x).ravel())
    if corrects:
        inside = numpy.array([values for values in found if values[1] > 0])
        show(f"{name}: means", *inside[:, -2:].mean(axis=0))
        xs = numpy.split(x, numpy.cumsum(LENGTHS[:studies])[:-1])
        for number in (0, 13, 19):
            w = numpy.vstack(whitened(xs, (number + 1) / 20))
            show(f"{name}: bin {number}", *numpy.linalg.pinv(w.T @ w).ravel())
