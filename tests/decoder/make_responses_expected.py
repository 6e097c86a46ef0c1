#!/usr/bin/python3
# Reference responses: the ideal ones in closed form, those of a training run averaged by NumPy.
# SPDX-License-Identifier: GPL-3.0-or-later
"""Usage: make_responses_expected.py > expected_responses.tsv"""
import math

import numpy

VOLUMES = 385
ROIS = {0: [0, 1, 2], 1: [3, 4, 5], 2: [0, 1, 2, 3, 4, 5]}


def lasting(t):
    """Response at t seconds to a task that lasts, with whole shapes 6 and 16; the kernel has 32 s."""
    def gamma(shape, t):
        return 1 - math.exp(-t) * sum(t ** k / math.factorial(k) for k in range(shape))

    def both(t):
        return gamma(6, t) - gamma(16, t) / 6
    return both(min(max(t, 0), 32)) / both(32)


def write_ideal(points, TR):
    for r in range(9):
        begin, held = 10 * (r // 3), 10 * (1 + r % 3)
        times = [(k + 0.5) * TR / 1000 - begin for k in range(points)]
        change = numpy.array([lasting(t) - lasting(t - held) for t in times])
        values = 100 + 0.5 * change / change.std()
        print("ideal", points, TR, r, *(f"{v:.5f}" for v in values), sep="\t")


def run():
    data = numpy.zeros((6, VOLUMES))
    for roi in range(6):
        state = 815 + roi
        for t in range(VOLUMES):
            state = (state * 1103515245 + 12345) & 0x7FFFFFFF
            data[roi, t] = 1000 + 100 * roi + (state >> 12) % 301
    data[1, 26:32] = 0  # before a trial: it has no percent signal
    return data


def trials(TR):
    """(duration, first bound of the interval): volumes from 1, or with a TR milliseconds."""
    for c in range(1, 10):
        for i in range(1 + c % 3):
            volume = 31 * (c - 1) + 113 * i
            yield (c - 1) % 3, volume * TR + (c - 5) * (TR // 10) if TR else volume + 1


def write_empirical(window, pre, post, shortest, rois, ms, TR):
    data = run()
    rows = {d: [] for d in range(3)}
    for d, bound in trials(TR if ms else 0):
        onset = int(numpy.rint(bound / TR)) if ms else bound - 1
        for roi in ROIS[rois]:
            if onset >= VOLUMES:
                continue
            before = data[roi, max(onset - pre, 0):onset]
            base = before.mean() if len(before) else data[roi, onset]
            if base == 0:
                continue
            row = numpy.full(shortest * (d + 1) + pre + post, numpy.nan)
            for k in range(len(row)):
                if 0 <= onset - pre + k < VOLUMES:
                    row[k] = data[roi, onset - pre + k] / base * 100
            rows[d].append(row)
    step = int(numpy.rint(10000 / TR)) if TR else shortest
    for r in range(9):
        known = numpy.ma.masked_invalid(rows[r % 3])
        mean = known.mean(axis=0).filled(100)
        curve = numpy.full(window, 100.0)
        for k in range(window):
            from_onset = k - step * (r // 3)  # volumes from the task's begin
            if -pre <= from_onset < len(mean) - pre:
                curve[k] = mean[from_onset + pre]
        print("empirical", window, pre, post, shortest, rois, ms, TR, r, *(f"{v:.4f}" for v in curve), sep="\t")


for curve in run():
    print("run", *(int(v) for v in curve), sep="\t")
write_ideal(40, 70000 / 42)
write_ideal(20, 2500)
write_empirical(40, 5, 10, 6, 0, 0, 1667)
write_empirical(10, 0, 3, 4, 1, 0, 3000)
write_empirical(50, 35, 0, 2, 2, 1, 2100)
write_empirical(3, 8, 9, 5, 2, 0, 9000)
write_empirical(30, 3, 2, 4, 1, 0, 0)
