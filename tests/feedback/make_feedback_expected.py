#!/usr/bin/python3
# Recorded feedback runs with the values that follow from the formulas, as the table of
# feedback_levels_test. Written from the mathematics, with plain loops, and apart from the program.
# SPDX-License-Identifier: GPL-3.0-or-later
"""Usage: make_feedback_expected.py > expected_feedback.tsv

Lines, tab separated:
run         name, volumes, regions, TR (ms), unit (1 volumes, 2 ms), confounds, levels in a name
condition   name, then first and last of each interval
choice      volume, field, value: chosen before this volume is computed
constant    volume, region, value of the model's constant from then on
volume      signals, "|", then from volume 10 on: signal 1, signal 2, suppressed, level 1,
            level 2, relative level, target 1, target 2, baseline 1, baseline 2, its source,
            maximum 1, 2, 3
"""
import numpy

F = numpy.float32
PAIRS = {3: (0, 1), 4: (0, 2), 5: (1, 2)}


def half_away(v):
    """Rounding by truncation, a negative value shifted to positive first."""
    if v >= 0:
        return int(v + 0.5)
    shift = int(v - 1)
    return int(v - shift + 0.5) + shift


def field(v):
    """What a spin box of two decimals from 0.01 to 100 holds."""
    return min(max(float(f"{v:.2f}"), 0.01), 100.0)


def tables(run):
    n = run["n"]
    condition, target1, target2 = [0] * n, [0] * n, [0] * n
    for index, (name, intervals) in enumerate(run["conditions"]):
        parts = name.split("_")
        if len(parts) == 1:
            rest = any(word in name.lower() for word in ("fix", "baseline", "rest"))
            a = b = 0 if rest else -99
        elif len(parts) > 2 and run["levels"] == 2:
            a, b = int(parts[-2]), int(parts[-1])
        else:
            a = b = int(parts[-1])
        for start, stop in intervals:
            if run["unit"] == 2:
                start, stop = (int(x // run["TR"] + (1 if x % run["TR"] >= run["TR"] / 2 else 0))
                               for x in (start, stop))
            start, stop = (min(max(x, 1), n) for x in (start, stop))
            for v in range(start - 1, stop):
                condition[v], target1[v], target2[v] = index, a, b
    return condition, target1, target2


class Display:
    def __init__(self, run):
        self.run = run
        self.condition, self.target1, self.target2 = tables(run)
        self.maximum = [F(2)] * 3
        self.baseline = [F(0), F(0)]
        self.source = "none"
        self.level, self.relative, self.target = [4, 4], F(0), [0, 0]
        self.suppressed = 0
        self.last_mode = -1
        self.history = [numpy.zeros(run["n"], F), numpy.zeros(run["n"], F)]
        self.choice = dict(roiMode=0, type=0, VisualizeROIs=0, SetToMaxValue=0, NrOfPastValues=3,
                           DisplayBaseLevel=0, UseTCGLMB0ForBaseline=0, NoFbCondition=-1,
                           NoFbStartShift=3, NoFbStopShift=2, BaselineStartShift=3,
                           BaselineEndShift=2)
        self.constants = [0.0] * 3

    def choose(self, name, value):
        if name.startswith("MaxPSC"):
            self.maximum[int(name[-1]) - 1] = F(value)
        else:
            assert name in self.choice
            self.choice[name] = value

    # Signals

    def is_pair(self):
        return self.choice["VisualizeROIs"] and self.choice["roiMode"] in PAIRS

    def combine(self, value_of):
        """Two values with a pair of thermometers, else one and 0."""
        mode, regions = self.choice["roiMode"], self.run["regions"]
        if 0 <= mode <= 2 and mode < regions:
            return value_of(mode), 0.0
        if mode in PAIRS:
            a, b = PAIRS[mode]
            if self.is_pair():
                return tuple(value_of(r) if r < regions else 0.0 for r in (a, b))
            return ((value_of(a) + value_of(b)) / 2 if b < regions else 0.0), 0.0
        return ((value_of(0) + value_of(1) + value_of(2)) / 3 if regions >= 3 else 0.0), 0.0

    def signal(self, v):
        return self.combine(lambda region: float(self.run["signals"][region][v]))

    # Baseline

    def find_baseline(self, t, mode_changed, current):
        c = self.choice
        b = 0  # the first condition
        if c["UseTCGLMB0ForBaseline"]:
            both = (0.0, 0.0)
            if t > 5 and self.run["confounds"]:
                missing = []
                both = self.combine(lambda r: missing.append(self.constants[r] == 0) or
                                    self.constants[r])
                if any(missing) and not self.is_pair():
                    both = (0.0, 0.0)
            return self.set_baseline(both, "model")
        if mode_changed:
            self.set_baseline((0.0, 0.0), "none")
        e = t - c["BaselineEndShift"]
        if e < 6:
            return self.set_baseline(current, "current")
        if self.condition[e] == b or self.condition[e - 1] != b:
            return
        self.set_baseline((0.0, 0.0), "none")
        first = last = 0
        i = e
        while i > 5 and not (first >= 1 and last >= 1):
            if self.condition[i] == b:
                if self.condition[i + 1] != b:
                    last = i
                if self.condition[i - 1] != b:
                    first = i
            i -= 1
        if first < 1 or last < 1:
            return
        window = range(first + c["BaselineStartShift"],
                       min(last + c["BaselineEndShift"], t) + 1)
        if len(window) >= 4:
            rows = numpy.array([self.signal(v) for v in window])
            self.set_baseline(rows.sum(axis=0) / len(window), "block")

    def set_baseline(self, both, source):
        self.baseline = [F(x) for x in both]
        self.source = source if any(x > 0 for x in self.baseline) else "none"

    # Levels

    def smoothed(self, fraction, history, t):
        past = self.choice["NrOfPastValues"]
        if past < 2:
            return fraction
        entries = [float(x) for x in history[max(1, t - past + 1):t + 1] if x != 0]
        return sum(entries) / len(entries) if len(entries) > 1 else fraction

    def shown_maxima(self):
        mode = self.choice["roiMode"]
        if 0 <= mode <= 2:
            return [field(self.maximum[mode]), None]
        if mode in PAIRS:
            return [field(self.maximum[r]) for r in PAIRS[mode]]
        return [field(sum(float(m) for m in self.maximum) / 3), None]

    def single_level(self, t, current, steps, spin):
        if self.baseline[0] <= 0:
            self.level, self.relative = [0, 0], F(0)
            return
        f = float(current[0]) / float(self.baseline[0]) - 1
        self.history[0][t] = F(f)
        f = self.smoothed(f, self.history[0], t)
        if self.choice["SetToMaxValue"]:
            mode = self.choice["roiMode"]
            members = [mode] if 0 <= mode <= 2 else PAIRS.get(mode, (0, 1, 2))
            if 100 * f > sum(float(self.maximum[m]) for m in members) / len(members):
                for m in members:
                    self.maximum[m] = F(100 * f)
                spin[0] = field(F(100 * f))
        self.relative = F(100 * f / spin[0])
        self.level[0] = half_away(steps * (100 * f / spin[0]))

    def pair_levels(self, t, current, steps, spin):
        for k in (0, 1):
            if self.baseline[k] <= 0:
                continue
            f = float(current[k]) / float(self.baseline[k]) - 1
            if self.choice["NrOfPastValues"] < 2:
                self.history[0][t] = F(f)
            else:
                self.history[k][t] = F(f)
                f = self.smoothed(f, self.history[k], t)
            if self.choice["SetToMaxValue"] and 100 * f > self.maximum[k]:
                self.maximum[k] = F(100 * f)
                spin[k] = field(self.maximum[k])
            self.level[k] = half_away(100 * f / spin[k] * steps)

    def update(self, t):
        c = self.choice
        mode_changed = c["roiMode"] != self.last_mode
        self.last_mode = c["roiMode"]
        spin = self.shown_maxima()
        quiet = c["NoFbCondition"]
        self.suppressed = 0
        if quiet != -1 and max(c["NoFbStartShift"], c["NoFbStopShift"]) < t:
            shift = "NoFbStartShift" if self.condition[t] == quiet else "NoFbStopShift"
            self.suppressed = int(self.condition[t - c[shift]] == quiet)
        current = [F(x) for x in self.signal(t)]
        self.current = current
        if c["type"] == 1:
            return
        self.find_baseline(t, mode_changed, current)
        d = min(max(c["DisplayBaseLevel"], 0), 10)
        steps = max(d, 10 - d)
        pair = self.is_pair()
        self.target = [self.target1[t],
                       self.target2[t] if pair and self.run["levels"] == 2 else 0]
        (self.pair_levels if pair else self.single_level)(t, current, steps, spin)

    def row(self):
        numbers = [*(f"{x:.8g}" for x in self.current), self.suppressed, *self.level,
                   f"{self.relative:.7g}", *self.target,
                   f"{self.baseline[0]:.8g}", f"{self.baseline[1]:.8g}", self.source,
                   *(f"{m:.7g}" for m in self.maximum)]
        return "\t".join(str(x) for x in numbers)


def blocks(first, length, gap, n):
    """Intervals, from 1, of `length` every `length + gap`."""
    return [(start, start + length - 1) for start in range(first, n + 1, length + gap)]


def made_signals(run, seed, noise, amplitude):
    random = numpy.random.default_rng(seed)
    condition = tables(run)[0]
    signals = []
    for region in range(run["regions"]):
        active = numpy.array([x != 0 for x in condition], float)
        response = numpy.convolve(active, [0, .1, .25, .3, .2, .15])[:run["n"]]
        drift = numpy.sin(numpy.arange(run["n"]) / (17 + 5 * region))
        values = (800 + 150 * region) * (1 + amplitude / 100 * (1 - .3 * region) * response) \
            + drift + random.normal(0, noise, run["n"])
        signals.append([F(f"{v:.2f}") for v in values])
    return signals


REST = [("Rest", blocks(1, 10, 10, 90)), ("Up_7", blocks(11, 10, 10, 90))]
TARGETS = [("Baseline", blocks(3, 9, 11, 90)), ("Up_Fast_7_3", blocks(12, 6, 14, 90)),
           ("Down_4", blocks(18, 5, 15, 90))]
QUIET = [("Fixation", blocks(1, 8, 16, 90)), ("Task", blocks(9, 8, 16, 90)),
         ("Quiet_2", blocks(17, 8, 16, 90))]
MILLISECONDS = [("rest", [(0, 13499), (27500, 41900), (55700, 70000), (82000, 300000)]),
                ("Task_5_9", [(13500, 27499), (41901, 55600), (70100, 81999)])]
SHORT = [("Rest", [(1, 9), (20, 21), (33, 35), (46, 52), (63, 76)]),
         ("Task", [(10, 19), (22, 32), (36, 45), (53, 62), (77, 90)])]

# Name, protocol, seed, then choices by volume, with ("constant", region) for the model's.
RUNS = [
    ("one region", REST, 1, {0: {}}),
    ("no running mean", REST, 2, {0: {"NrOfPastValues": 1}}),
    ("mean of two", REST, 3, {0: {"NrOfPastValues": 2, "roiMode": 1}}),
    ("mean of five", REST, 4, {0: {"NrOfPastValues": 5, "roiMode": 2}, 60: {"NrOfPastValues": 4}}),
    ("ROI 1 and 2", TARGETS, 5, {0: {"roiMode": 3, "MaxPSC1": 1.5}}),
    ("ROI 1 and 3", TARGETS, 6, {0: {"roiMode": 4, "DisplayBaseLevel": 5}}),
    ("ROI 2 and 3", TARGETS, 7, {0: {"roiMode": 5, "DisplayBaseLevel": 10, "MaxPSC2": 0.777}}),
    ("all three", TARGETS, 8, {0: {"roiMode": 6, "MaxPSC1": 1, "MaxPSC3": 4.3}}),
    ("pair 1 2", TARGETS, 9, {0: {"roiMode": 3, "VisualizeROIs": 1, "MaxPSC2": 3}}),
    ("pair 1 3, no mean", TARGETS, 10, {0: {"roiMode": 4, "VisualizeROIs": 1, "NrOfPastValues": 1},
                                        45: {"NrOfPastValues": 2}}),
    ("pair 2 3, base 5", TARGETS, 11, {0: {"roiMode": 5, "VisualizeROIs": 1,
                                           "DisplayBaseLevel": 5}}),
    ("visualized triple", REST, 12, {0: {"roiMode": 6, "VisualizeROIs": 1}}),
    ("maximum follows", REST, 13, {0: {"SetToMaxValue": 1, "MaxPSC1": 0.5}}),
    ("maxima of a pair follow", REST, 14, {0: {"roiMode": 5, "SetToMaxValue": 1, "MaxPSC2": 0.3,
                                               "MaxPSC3": 0.6}}),
    ("maxima of three follow", REST, 15, {0: {"roiMode": 6, "SetToMaxValue": 1, "MaxPSC1": 0.1,
                                              "MaxPSC2": 0.4, "MaxPSC3": 0.9}}),
    ("visualized maxima follow 1 2", REST, 16, {0: {"roiMode": 3, "VisualizeROIs": 1,
                                                    "SetToMaxValue": 1, "MaxPSC1": 0.2,
                                                    "MaxPSC2": 0.3}}),
    ("visualized maxima follow 1 3", REST, 17, {0: {"roiMode": 4, "VisualizeROIs": 1,
                                                    "SetToMaxValue": 1, "MaxPSC1": 0.2,
                                                    "MaxPSC2": 0.3, "MaxPSC3": 1.2}}),
    ("visualized maxima follow 2 3", TARGETS, 18, {0: {"roiMode": 5, "VisualizeROIs": 1,
                                                       "SetToMaxValue": 1, "MaxPSC1": 0.2,
                                                       "MaxPSC2": 0.3}}),
    ("quiet", QUIET, 19, {0: {"NoFbCondition": 2}}),
    ("quiet, other shifts", QUIET, 20, {0: {"NoFbCondition": 1, "NoFbStartShift": 0,
                                            "NoFbStopShift": 12, "roiMode": 3}}),
    ("quiet at rest, long start", QUIET, 21, {0: {"NoFbCondition": 0, "NoFbStartShift": 20,
                                                  "NoFbStopShift": 1}}),
    ("modes change", TARGETS, 22, {0: {"roiMode": 3}, 30: {"roiMode": 0}, 47: {"roiMode": 6},
                                   54: {"roiMode": 1}, 55: {"roiMode": 6}, 75: {"roiMode": 5}}),
    ("modes change, pairs", TARGETS, 23, {0: {"roiMode": 3, "VisualizeROIs": 1},
                                          33: {"roiMode": 4}, 50: {"VisualizeROIs": 0},
                                          58: {"VisualizeROIs": 1}, 61: {"type": 1},
                                          66: {"type": 2}, 76: {"roiMode": 0, "type": 1},
                                          79: {"type": 0}}),
    ("long end shift", REST, 24, {0: {"BaselineStartShift": 9, "BaselineEndShift": 7}}),
    ("early signal as baseline", REST, 25, {0: {"BaselineStartShift": 2, "BaselineEndShift": 14,
                                                "roiMode": 6}, 17: {"roiMode": 3}}),
    ("early pair", REST, 26, {0: {"BaselineEndShift": 12, "roiMode": 4, "VisualizeROIs": 1,
                                  "BaselineStartShift": 4}}),
    ("milliseconds", MILLISECONDS, 27, {0: {"roiMode": 1}}),
    ("milliseconds, pair", MILLISECONDS, 28, {0: {"roiMode": 5, "VisualizeROIs": 1}}),
    ("short blocks", SHORT, 29, {0: {}}),
    ("shorter window", SHORT, 30, {0: {"BaselineStartShift": 1, "BaselineEndShift": 1,
                                       "roiMode": 3, "VisualizeROIs": 1}}),
    ("constant, mode 4", REST, 31, {0: {"UseTCGLMB0ForBaseline": 1, "roiMode": 4},
                                    20: {("constant", 1): 801.5}, 26: {("constant", 3): 1100.25},
                                    40: {("constant", 2): 955}, 50: {"roiMode": 6},
                                    60: {"roiMode": 1}, 65: {"UseTCGLMB0ForBaseline": 0}}),
    ("constant, pair", REST, 32, {0: {"UseTCGLMB0ForBaseline": 1, "roiMode": 5,
                                      "VisualizeROIs": 1}, 20: {("constant", 2): 951.5},
                                  30: {("constant", 3): 1101}, 70: {("constant", 2): -3}}),
    ("no confounds", REST, 33, {0: {"UseTCGLMB0ForBaseline": 1, ("constant", 1): 800}}),
    ("two regions", REST, 34, {0: {"roiMode": 3}, 50: {"roiMode": 6}, 70: {"roiMode": 4}}),
    ("missing partner", REST, 35, {0: {"roiMode": 4, "VisualizeROIs": 1}}),
    ("one region, another mode", REST, 36, {0: {"roiMode": 2}}),
    ("one level in a name", TARGETS, 37, {0: {"roiMode": 3, "VisualizeROIs": 1}}),
    ("flat", REST, 38, {0: {"NrOfPastValues": 4}}),
]
SETTINGS = {"no confounds": {"confounds": 0}, "two regions": {"regions": 2},
            "missing partner": {"regions": 2}, "one region, another mode": {"regions": 1},
            "one level in a name": {"levels": 1}, "one region": {"regions": 1}}


def main():
    for name, conditions, seed, choices in RUNS:
        unit = 2 if conditions is MILLISECONDS else 1
        run = dict(n=75 if unit == 1 else 64, regions=3, TR=1500, unit=unit, confounds=1, levels=2,
                   conditions=conditions)
        if max(choices) > 70 or conditions is SHORT:
            run["n"] = 90
        run.update(SETTINGS.get(name, {}))
        flat = name == "flat"
        run["signals"] = made_signals(run, seed, 0 if flat else 2.5, 1.5)
        if flat:
            run["signals"] = [[F(900)] * 40 + [F(909)] + [F(900)] * 2 + [F(905)] * 32] * 3
        head = [run["n"], run["regions"], run["TR"], unit, run["confounds"], run["levels"]]
        print("run", name, *head, sep="\t")
        for condition, intervals in conditions:
            print("condition", condition, *(x for pair in intervals for x in pair), sep="\t")
        display = Display(run)
        for t in range(run["n"]):
            for key, value in choices.get(t, {}).items():
                if isinstance(key, tuple):
                    display.constants[key[1] - 1] = value
                    print("constant", t, key[1], value, sep="\t")
                else:
                    display.choose(key, value)
                    print("choice", t, key, value, sep="\t")
            cells = [f"{s[t]:.7g}" for s in run["signals"]] + ["|"]
            if t >= 10:
                display.update(t)
                cells.append(display.row())
            print(*cells, sep="\t")


main()
