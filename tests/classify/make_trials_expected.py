#!/usr/bin/python3
# Single trials of a small run, estimated by NumPy straight from the formulas.
# SPDX-License-Identifier: GPL-3.0-or-later
"""Usage: make_trials_expected.py > expected_trials.tsv, or make_trials_expected.py FILE.fmp"""
import itertools
import math
import struct
import sys

import numpy

VOLUMES = 40
VOXELS = 6


def sample(kind, noise, t):
    return [noise % 65536 - 32768, 500, 30000 + noise % 3, 800 + noise % 61, -300 - noise % 200,
            1000 + 7 * t + noise % 11][kind]


def run():
    data = numpy.zeros((VOXELS, VOLUMES))
    for v in range(VOXELS):
        state = 4711 + 977 * v
        for t in range(VOLUMES):
            state = (state * 1103515245 + 12345) & 0x7FFFFFFF
            data[v, t] = sample(v, state >> 12, t)
    return data


def gamma_density(x, shape, rate):
    if x <= 0:
        return 0.0
    log_gamma = float(numpy.float32(math.lgamma(shape)))  # the density is defined with a float here
    return math.exp((shape - 1) * math.log(x) + shape * math.log(rate) - x * rate - log_gamma)


def kernel(TR):
    """Time to peak 6 s and 16 s, dispersions 1, ratio 6, 32 s long, 16 fine samples for each volume."""
    fine = TR / 1000 / 16
    count = int(32 / (TR / 1000)) + 1
    h = [gamma_density(16 * k, 6, fine) - gamma_density(16 * k, 16, fine) / 6 for k in range(count)]
    return numpy.array(h) / abs(sum(h))


def design(n, pre, dur, trend, TR):
    box = numpy.zeros(n)
    box[max(min(pre + 1, n), 1) - 1:max(min(dur + 1 + pre, n), 1)] = 1.0
    columns = [numpy.convolve(box, kernel(TR))[:n], numpy.ones(n)]
    if trend:
        columns.append(numpy.arange(n) / (n - 1))
    return numpy.array(columns).T


def squares(y):
    y = y.astype(numpy.longdouble)
    return max(numpy.sum(y * y) - numpy.sum(y) ** 2 / len(y), 0)


def value(y, X, estimate, z):
    n, p = X.shape
    if z and estimate != "percent" and n > 2:
        sd = numpy.std(y)
        y = (y - numpy.mean(y)) / (sd if sd >= 0.01 else 1.0)
    inverse = numpy.linalg.inv(X.T @ X)
    b = inverse @ X.T @ y
    if estimate == "t":
        if n <= p:
            return 0.0
        rest = squares(y) - squares(X @ b)
        error = math.sqrt(max(rest / (n - p) * inverse[0, 0], 0))
        return b[0] / error if error >= 1e-6 else 0.0
    if estimate == "percent" and b[0] > 0:
        return b[0] / b[1] * 100
    return b[0]


def write_table():
    data = run()
    for kind in data:
        print("samples", *(int(v) for v in kind), sep="\t")
    windows = [(2, 5, 0), (2, 3, 1), (0, 8, 0)]  # pre, post, with the trial's duration
    trials = [(1, 3), (12, 12), (36, 39)]
    cases = list(itertools.product([1000, 2000], windows, [0, 1], ["t", "beta", "percent"], [0, 1], trials))
    cases += [(2000, (0, 1, 0), 0, estimate, 1, (9, 9)) for estimate in ["t", "beta", "percent"]]
    for TR, (pre, post, duration), trend, estimate, z, (start, end) in cases:
        after = post + (end - start if duration else 0)
        window = [min(max(t, 0), VOLUMES - 1) for t in range(start - pre, start + after + 1)]
        X = design(len(window), pre, end - start, trend, TR)
        values = [value(data[v, window], X, estimate, z) for v in range(VOXELS)]
        print("trial", TR, pre, post, duration, trend, ["t", "beta", "percent"].index(estimate), z, start, end,
              *["%.9g" % v for v in values], sep="\t")


def write_maps(path):
    names = ["Left_Trial-1", "Left_Trial-2", "R\u00fccken_am Tag_Trial-1"]
    with open(path, "wb") as file:
        file.write(struct.pack("<hhiiii", 1, 1, len(names), 3, 2, 2))
        for name in names:
            file.write(name.encode("latin-1") + b"\0")
        for i in range(12 * len(names)):
            file.write(struct.pack("<f", i * 0.75 - 4))


if len(sys.argv) > 1:
    write_maps(sys.argv[1])
else:
    write_table()
