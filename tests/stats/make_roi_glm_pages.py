#!/usr/bin/env python3
"""Writes the runs of roi_glm_test.cpp and the pages that it expects: models of a region by NumPy.

Least squares with numpy.linalg.lstsq, standard errors from the pseudo-inverse of X, probabilities
by Gauss-Legendre integration of the densities. The second table is that of generalised least
squares with a given lag-one value. Usage: make_roi_glm_pages.py FOLDER
"""
# SPDX-License-Identifier: GPL-3.0-or-later
import sys

import numpy as np

HEAD = """<html>
 <head>
  <title>ROI Time Course - GLM Results</title>
  <meta name="generator" content="Cortivo">
 </head>
 <body bgcolor=#000000>
 <font face="Helvetica,Arial" color=#ffffff>
  <pre>
</pre>
  <h1 align="center"> ROI Time Course - GLM Results</h1>
  <br />
  </font>
  <font face="Helvetica,Arial" color=#000000>
"""
ANOVA = """  <table border="0" cellpadding="8" cellspacing="1">
  <tr bgcolor=#90f090><th align="center" colspan="6">ANOVA</th></tr>
  <tr bgcolor=#90f090><th>Source of Variation </th><th>df</th><th>SS</th><th>MS</th><th><i>F</i></th><th><i>p</i></th></tr>
  <tr bgcolor=#9090f0><td align="right"><b>Regression</b></td><td>%i</td><td>%6.3f</td><td>%6.3f</td><td>%6.3f</td><td>%8.6f</td></tr>
  <tr bgcolor=#9090f0><td align="right"><b>Residual</b></td><td>%i</td><td>%6.3f</td><td>%6.3f</td><td> </td><td> </td></tr>
  <tr bgcolor=#9090f0><td align="right"><b>Total</b></td><td>%i</td><td>%6.3f</td><td>%6.3f</td><td> </td><td> </td></tr>
  <tr bgcolor=#9090f0><td colspan="6">data points = %i &nbsp; &nbsp; <b>R</b> = %4.3f &nbsp; adj.R = %4.3f &nbsp; &nbsp; <b>AR(1)</b> = %4.3f</td></tr>
  </table>
  <br /><br />
"""
PREDICTORS = """  <table border="0" cellpadding="8" cellspacing="1">
  <tr bgcolor=#90f090><th>Predictor</th><th>beta</th><th>se</th><th><i>t</i></th><th><i>p</i></th></tr>
"""
ROW = '  <tr bgcolor=#9090f0><td align="right"><b>%s</b></td><td>%6.3f</td><td>%6.3f</td><td>%6.3f</td><td>%8.6f</td></tr>\n'
NOTE = """  <font color=#ffffff>
  <h2 align="center"> After Correction of Serial Correlations</h2>
  <p>Data and design of each run were whitened with the AR(1) value %4.3f above: each point less %4.3f times the one before. The first point of each run is left out.</p>
  </font>
"""
END_OF_TABLE = "  </table>\n  <br /><br />\n"
TAIL = "  </font>\n </body>\n</html>\n"


def tail(a, b, start):
    """Share of the integral of sin^a cos^b over 0 to pi / 2 that lies above start."""
    def integral(low):
        x, w = np.polynomial.legendre.leggauss(400)
        angle = low + (x + 1) * (np.pi / 2 - low) / 2
        return np.sum(w * np.sin(angle) ** a * np.cos(angle) ** b) * (np.pi / 2 - low) / 2
    return integral(start) / integral(0.0)


def p_of_t(t, df):
    return tail(0, df - 1, np.arctan(abs(t) / np.sqrt(df)))


def p_of_f(f, df1, df2):
    return tail(df1 - 1, df2 - 1, np.arctan(np.sqrt(df1 * f / df2)))


def lag_one(e, starts):
    products = e[1:] * e[:-1]
    inside = [t for t in range(1, len(e)) if t not in starts]
    return products[np.array(inside) - 1].sum() / (e * e).sum()


def tables(y, X, starts, names):
    n = len(y)
    beta, _, rank, _ = np.linalg.lstsq(X, y, rcond=None)
    model = X @ beta
    e = y - model
    total = ((y - y.mean()) ** 2).sum()
    residual = (e * e).sum()
    regression = total - residual
    df1, df2 = max(1, rank - 1), n - rank
    mse = residual / df2
    f = regression / df1 / mse
    r2 = regression / total
    adjusted = max(0.0, 1 - (1 - r2) * (n - 1) / df2)
    rho = lag_one(e, starts)
    text = ANOVA % (df1, regression, regression / df1, f, p_of_f(f, df1, df2), df2, residual, mse,
                    n - 1, total, total / (n - 1), n, np.sqrt(r2), np.sqrt(adjusted), rho)
    inverse = np.linalg.pinv(X)
    errors = np.sqrt(mse * (inverse * inverse).sum(axis=1))
    text += PREDICTORS
    for name, b, se in zip(names, beta, errors):
        text += ROW % (name, b, se, b / se, p_of_t(b / se, df2))
    return text + END_OF_TABLE, rho


def page(y, X, starts, names):
    first, rho = tables(y, X, starts, names)
    kept = [t for t in range(len(y)) if t not in starts]
    before = [t - 1 for t in kept]
    left = [kept.index(start + 1) for start in starts]
    second, _ = tables(y[kept] - rho * y[before], X[kept] - rho * X[before], left, names)
    return HEAD + first + NOTE % (rho, rho) + second + TAIL


def noise(n):
    state, value, values = 12345, 0.0, []
    for _ in range(n):
        state = (state * 1103515245 + 12345) % 2**31
        value = 0.5 * value + ((state >> 16) % 2001 - 1000) / 64
        values.append(value)
    return np.array(values)


def data(points):
    """Two conditions and a constant for each run; of one run also a trend."""
    n = sum(points)
    t = np.arange(n)
    conditions = [(t % 20 // 5 == 1) * 1.0, np.where(t % 18 < 12, 0.0, (t % 18 - 11) / 4)]
    run = np.repeat(np.arange(len(points)), points)
    constants = [(run == i) * 1.0 for i in range(len(points))]
    trend = [t / 64] if len(points) == 1 else []
    X = np.column_stack(conditions + constants + trend).astype(np.float32)
    y = (1000 + 40 * run + 12 * conditions[0] - 5 * conditions[1] + noise(n)).astype(np.float32)
    names = ["Faces &lt;left&gt;", "H&#228;user"] + ["Constant %i" % (i + 1) for i in range(len(points))]
    starts = [int(np.argmax(run == i)) for i in range(len(points))]
    return y.astype(float), X.astype(float), starts, names + ["Trend"] * len(trend)


with open("%s/roi_glm_runs.tsv" % sys.argv[1], "w") as table:
    for name, points in (("one_run", [120]), ("two_runs", [50, 40])):
        y, X, starts, names = data(points)
        print(name + " curve", *("%.9g" % value for value in y), sep="\t", file=table)
        print(name + " design", *("%.9g" % value for value in X.ravel()), sep="\t", file=table)
        with open("%s/roi_glm_%s.html" % (sys.argv[1], name), "w") as file:
            file.write(page(y, X, starts, names))
