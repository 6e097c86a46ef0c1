#!/usr/bin/python3
# Letters of random runs, decoded by NumPy in double, straight from the formulas.
# SPDX-License-Identifier: GPL-3.0-or-later
"""Usage: make_letters_expected.py [WINDOWS [STREAMS]] > expected_letters.tsv"""
import random
import sys

import numpy

LETTERS = "_ABCDEFGHIJKLMNOPQRSTUVWXYZ"
FOUR = {"A": "A", "U": "B", "E": "C", "Y": "D"}
POINTS = 200


def make_references(rng):
    """Sets of [reference][point]: of the odd ones some are equal, and one is flat."""
    usual = numpy.float32([[rng.randrange(1000) / 8 for _ in range(50)] for _ in range(9)])
    odd = usual.copy()
    odd[1], odd[6], odd[4] = odd[0], odd[2], 0.1
    return {"usual": usual, "odd": odd}


def make_curves(rng, references):
    """Sets of [ROI][volume]: noise, and one response to a reference after the other. Of the odd ones
    one is constant, and one has mean 0 over any three volumes."""
    usual = numpy.zeros((6, POINTS), numpy.float32)
    for roi in range(6):
        for t in range(POINTS):
            response = (-1) ** (t // 25 + roi) * references["usual"][(t // 50 + 2 * roi) % 9, t % 50] / 8
            usual[roi, t] = 400 + 60 * roi + rng.randrange(41) + response
    odd, equal, constant = usual.copy(), usual.copy(), numpy.full_like(usual, 1234.567)
    odd[1], odd[2], equal[:] = 0.1, numpy.resize([5, -5, 0], POINTS), usual[0]
    return {"usual": usual, "odd": odd, "equal": equal, "constant": constant}


def measured(c, sets):
    """The first volumes of the measured ROIs; others hold 0.5."""
    curves = numpy.full((6, c["available"]), 0.5, numpy.float32)
    curves[:c["rois"]] = sets[c["curves"]][:c["rois"], :c["available"]]
    return curves


def make_weights(rng, kind):
    """[task][ROI], not scaled."""
    w = numpy.array([[rng.randrange(100) for _ in range(6)] for _ in range(3)])
    if kind == "own":
        return numpy.eye(3, 6, dtype=int)
    if kind == "signed":
        w -= 50
    if kind == "equal":
        w[1:] = w[0]
    if kind == "norow":
        w[1] = 0
    return w


def decode(c, references, curves, letter):
    """None, or the tables in the order of the log as [column][reference], the ranks, and more."""
    start = c["full"] * letter + c["skiprun"] + c["skipbegin"]
    n = min(c["full"] - c["skipend"] - c["skipbegin"], c["ideal"])
    if start + c["ideal"] - 1 >= c["points"] or n < 1 or curves.shape[1] < start + n:
        return None
    corr, beta = numpy.zeros((6, 9)), numpy.zeros((6, 9))
    for roi in range(6):
        y = numpy.array(curves[roi, start:start + c["ideal"]], float)
        base = y[c["from"]:min(c["to"] + 1, n)]
        if len(base) and numpy.mean(base) != 0:
            y = numpy.array(numpy.float32(y / numpy.mean(base) * 100), float)  # kept as float
        y = y[:n]
        for r in range(9):
            x = numpy.array(references[r, :n], float)
            if numpy.ptp(curves[roi, start:start + n]) > 0 and numpy.ptp(references[r, :n]) > 0:
                corr[roi, r] = numpy.corrcoef(x, y)[0, 1]
                beta[roi, r] = numpy.linalg.lstsq(numpy.column_stack([numpy.ones(n), x]), y, rcond=None)[0][1]
    norms = numpy.sqrt(numpy.sum(beta ** 2, axis=0))
    normalized = beta / max(norms) if max(norms) > 0 else beta
    w = numpy.array(c["weights"].split(), float).reshape(3, 6)
    for k in range(3):
        if w[k].any():
            w[k] /= numpy.sqrt(numpy.sum(w[k] ** 2))
    S = numpy.zeros((3, 6))
    for k in range(3):
        if c["mode"] != 2:
            S[k, 3 + k] = 0.5 if c["mode"] == 3 else 1
        if c["mode"] != 1:
            S[k, k] = 0.5 if c["mode"] == 3 else 1
    pattern = w @ normalized
    tables = ([corr] if c["corr"] else []) + ([beta, normalized] if c["beta"] else [])
    if c["corr"] and c["beta"]:
        shape = S @ corr
        product = numpy.where((shape < 0) & (pattern < 0), 0, shape * pattern)
        score = (1 - c["tau"]) * shape + c["tau"] * pattern
        if c["abcd"]:
            found = numpy.zeros((3, 9), bool)
            found[0, 1] = found[0, 5] = found[2, 3] = found[2, 7] = True
            score = numpy.where(found, score, -1)
        tables += [shape, pattern, product, score]
    elif c["corr"]:
        score = w @ corr
        tables += [score]
    elif c["beta"]:
        score = pattern
        tables += [score]
    else:
        score = numpy.full((3, 9), -1.0)
    score = numpy.round(score, 7)  # equal ones are equal, whatever the order of their sums
    pairs = sorted((-score[k, r], k, r) for k in range(3) for r in range(9) if score[k, r] > -1)
    ranks = [(LETTERS[k * 9 + r], -s) for s, k, r in pairs[:3]] + [("-", -1)] * (3 - min(3, len(pairs)))
    if c["abcd"] and c["corr"] and c["beta"]:
        ranks = [(FOUR.get(name, name), s) for name, s in ranks]
    best = [int(numpy.argmax(score[k])) for k in range(3)]
    return tables, ranks, best


def make_case(rng):
    c = {}
    c["full"] = rng.choice([42, 42, 20, 31])
    c["skipbegin"] = rng.choice([3, 0, 5])
    c["skipend"] = rng.choice([-1, -1, 0, -4, 2])
    n = c["full"] - c["skipend"] - c["skipbegin"]
    c["ideal"] = rng.choice([n, n, n - 4, n + 3])
    c["skiprun"] = rng.choice([0, 0, 7])
    c["from"] = rng.choice([0, 0, 2, 5])
    c["to"] = c["from"] + rng.choice([0, 2, 4, -1])
    c["letter"] = rng.choice([0, 1, 2])
    start = c["full"] * c["letter"] + c["skiprun"] + c["skipbegin"]
    c["points"] = start + c["ideal"] + rng.choice([0, 0, 0, 1, 30, 30, 30, 30, 30, -1])
    c["available"] = start + min(n, c["ideal"]) + rng.choice([0, 0, 1, 40, 40, 40, 40, 40, 40, -1])
    c["mode"] = rng.choice([1, 2, 3])
    c["corr"], c["beta"] = rng.choice([(1, 1)] * 5 + [(1, 0)] * 4 + [(0, 1), (0, 0)])
    c["abcd"] = rng.choice([0, 0, 0, 1])
    c["tau"] = rng.choice([0.5, 0, 1, 0.3])
    c["rois"] = rng.choice([6, 6, 6, 3, 4])
    kind = rng.choice(["own", "positive", "signed", "signed", "equal", "norow"])
    c["weights"] = " ".join(str(w) for w in make_weights(rng, kind).ravel())
    c["references"] = rng.choice(["usual"] * 5 + ["odd"])
    c["curves"] = rng.choice(["usual"] * 6 + ["odd", "odd", "equal", "constant"])
    return c


def write_windows(rng, count):
    for _ in range(count):
        c = make_case(rng)
        result = decode(c, references[c["references"]], measured(c, curves), c["letter"])
        cells = [] if result is None else expected_cells(*result)
        print("window", *["%s" % value for value in c.values()], *cells, sep="\t")


def expected_cells(tables, ranks, best):
    numbers = [value for table in tables for column in table for value in column]
    letters = "".join(name for name, _ in ranks)
    return [letters, "%d%d%d" % tuple(best),
            *["%.7g" % value for value in numbers + [s for _, s in ranks]]]


def make_stream(rng):
    c = make_case(rng)
    c["ideal"] = min(c["ideal"], c["full"] - c["skipend"] - c["skipbegin"])
    c["letter"] = rng.choice([1, 2, 1000])  # slots
    c["points"] = rng.choice([3 * c["full"], 3 * c["full"] + c["skiprun"] + max(-c["skipend"], 0), 100])
    c["available"] = 170
    c["corr"], c["beta"], c["abcd"] = 1, rng.choice([0, 1]), 0
    return c


def write_streams(rng, count):
    """Events: v a volume, e the end of the run, n and p next and previous letter, c correlation alone,
    b both scores, f and F four-letter mode on and off."""
    for number in range(count):
        c = make_stream(rng)
        live = number % 3 != 2
        volumes = list("v" * rng.choice([c["points"], c["points"] + 2, 70]))
        for change in rng.choice(["", "c", "cb", "f", "fF"]):
            volumes.insert(rng.randrange(len(volumes)), change)
        events = "".join(volumes + ["e", "e"] + rng.choices("npp", k=6))
        begin = ["p", "", "", "", "n"][number % 5]
        print("stream", *["%s" % value for value in c.values()], int(live), begin + events,
              *play(dict(c), references[c["references"]], measured(c, curves), live, begin + events), sep="\t")


def play(c, references, curves, live, events):
    letter, volume, ended, texts, steps = -1, -1, False, ["", "", ""], []
    s = max(-c["skipend"], 0)
    for i, event in enumerate(events):
        due, seen = False, curves
        if event == "v":
            volume += 1
            if live:
                seen = curves[:, :volume + 1]
            passed = volume - c["skiprun"] - s
            ends = volume < c["points"] and passed >= 0 and (passed + 1) % c["full"] == 0
            due, ended = (ended, ends) if live else (ends, False)
            letter += due
        elif event == "e":
            due, ended = ended, False
            letter += due
        elif event in "np":
            due = True
            letter = min(max(letter + (1 if event == "n" else -1), 0), c["letter"] - 1)
            if event == "p":
                texts = [text[:-2] for text in texts]
        else:
            c.update({"c": {"corr": 1, "beta": 0}, "b": {"corr": 1, "beta": 1}, "f": {"abcd": 1}, "F": {"abcd": 0}}[event])
        result = decode(c, references, seen, letter) if due and letter < c["letter"] else None
        if result:
            letters = "".join(name for name, _ in result[1])
            texts = [text + name for text, name in zip(texts, letters)]
            steps.append("%d:%d:%s" % (i, letter, letters))
    return [" ".join(steps), "/".join([str(letter), str(volume), *texts])]


numbers = [int(argument) for argument in sys.argv[1:]] + [210, 40][len(sys.argv) - 1:]
generator = random.Random(1)
references = make_references(generator)
curves = make_curves(generator, references)
for kind, sets in (("references", references), ("curves", curves)):
    for name, rows in sets.items():
        for row in rows:
            print("%s %s" % (kind, name), *["%.9g" % value for value in row], sep="\t")
write_windows(generator, numbers[0])
write_streams(generator, numbers[1])
